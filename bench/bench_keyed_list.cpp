// A page's reload of 1,000 records of which one changed: decoding the
// answer and applying it to the keyed list model a view reads, against
// decoding the same answer alone, measured in the same run. Also counts the
// signals a reload sends: one changed record must be one dataChanged.

#include "calls/shell.h"
#include "service/Codec.h"
#include "service/Wire.h"
#include "shell/KeyedListModel.h"
#include "shell/RelativeTime.h"

#include "Median.h"

#include <QCoreApplication>
#include <QTextStream>

using namespace Kestro;
using Calls::shell::ActivityResult;
using Calls::shell::ActivityResultItem;

namespace {

constexpr int records = 1000;

// The kest's day as the service sends it; `changed` gets a new title.
QByteArray makeAnswer(int changed)
{
    QByteArray out = R"({"revalidate":[],"value":{"day":"2026-11-23","done":)" + QByteArray::number(records) +
                     R"(,"failed":3,"running":[],"items":[)";
    for (int i = 0; i < records; ++i) {
        if (i > 0)
            out += ',';
        out += QStringLiteral(
                   R"({"id":"a%1","kind":"task","actor":{"type":"agent","id":"ag%2","name":"Iris",)"
                   R"("handle":"iris"},"verb":"finished","title":"Sent the weekly digest to segment %1%3",)"
                   R"("text":{"$undefined":true},"href":"/tasks/KES-%1","at":"2026-11-23T09:%4:00.000Z"})")
                   .arg(i)
                   .arg(i % 7)
                   .arg(i == changed ? QStringLiteral(" (again)") : QString())
                   .arg(i % 60, 2, 10, QLatin1Char('0'))
                   .toUtf8();
    }
    out += "]}}";
    return out;
}

QList<ActivityResultItem> decode(const QByteArray& answer)
{
    return decodeValue<Answer<ActivityResult>>(Wire::parse(answer)).value.items;
}

// The roles Home's "Today" list shows.
std::unique_ptr<KeyedList<ActivityResultItem>> makeList()
{
    using Item = ActivityResultItem;
    return std::make_unique<KeyedList<Item>>(
        [](const Item& r) { return r.id; },
        QList<KeyedList<Item>::Role>{
            {"kind", [](const Item& r) { return QVariant(r.kind); }},
            {"name", [](const Item& r) { return QVariant(r.actor.name); }},
            {"agent", [](const Item& r) { return QVariant(r.actor.type == QLatin1String("agent")); }},
            {"verb", [](const Item& r) { return QVariant(r.verb); }},
            {"title", [](const Item& r) { return QVariant(r.title); }},
            {"text", [](const Item& r) { return QVariant(r.text.value_or(QString())); }},
            {"href", [](const Item& r) { return QVariant(r.href); }},
            {"when", [](const Item& r) { return QVariant(relativeTime(r.at)); }, true}});
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    // Two answers that differ in one record, taken in turn so that every
    // reload has exactly one change to find.
    const QByteArray answers[2] = {makeAnswer(-1), makeAnswer(records / 2)};
    const int rounds = 61;
    qsizetype sink = 0;

    int turn = 0;
    const double decodeOnly =
        1000 * medianMillis(rounds, [&] { sink += decode(answers[turn++ % 2]).size(); });

    auto list = makeList();
    list->apply(decode(answers[0]));
    int sent = 0, changes = 0, rowsTouched = 0;
    const auto count = [&] { ++sent; };
    QObject::connect(list.get(), &QAbstractItemModel::dataChanged, list.get(),
                     [&](const QModelIndex& from, const QModelIndex& to) {
                         ++changes;
                         rowsTouched += to.row() - from.row() + 1;
                     });
    QObject::connect(list.get(), &QAbstractItemModel::dataChanged, list.get(), count);
    QObject::connect(list.get(), &QAbstractItemModel::rowsInserted, list.get(), count);
    QObject::connect(list.get(), &QAbstractItemModel::rowsRemoved, list.get(), count);
    QObject::connect(list.get(), &QAbstractItemModel::rowsMoved, list.get(), count);
    QObject::connect(list.get(), &QAbstractItemModel::modelReset, list.get(), count);

    turn = 1;
    const double reload = 1000 * medianMillis(rounds, [&] {
                              list->apply(decode(answers[turn++ % 2]));
                              sink += list->count();
                          });

    QTextStream out(stdout);
    out << records << " records, one changed per reload, " << rounds << " rounds each\n"
        << "decode alone:             " << decodeOnly << " us (median)\n"
        << "decode + apply to model:  " << reload << " us (median)\n"
        << "ratio: " << QString::number(reload / decodeOnly, 'f', 2) << "x (goal: at most 1.5x)\n"
        << "signals per reload: " << double(sent) / rounds
        << ", dataChanged per reload: " << double(changes) / rounds
        << ", rows touched per reload: " << double(rowsTouched) / rounds << " (goal: exactly 1 each)\n"
        << "(checksum " << sink << ")\n";
    return sent == rounds && changes == rounds && rowsTouched == rounds ? 0 : 1;
}
