// The kest room's reload with nothing new: decoding the room's answer (500
// messages) and handing it to the room page's model, against decoding the
// same answer alone, measured in the same run. A reload that brings nothing
// new must tell the views nothing: no row inserted, moved, removed or
// changed, so no delegate is made again.

#include "calls/kest.h"
#include "pages/KestRoomPage.h"
#include "service/Codec.h"
#include "service/Wire.h"

#include "Median.h"

#include <QCoreApplication>
#include <QTextStream>

using namespace Kestro;
using Calls::kest::KestChatResult;

namespace {

constexpr int messages = 500;

// A room as the service sends it: people and teammates, Markdown, replies,
// reactions.
QByteArray makeAnswer()
{
    QByteArray out = R"({"revalidate":[],"value":{"me":"u1","answering":[],"traces":{},"reads":true,)"
                     R"("kest":[{"handle":"nova","name":"Nova","title":"Lead","avatar":"","status":"idle",)"
                     R"("needsYou":false,"lead":true},{"handle":"atlas","name":"Atlas","title":"Research",)"
                     R"("avatar":"","status":"idle","needsYou":false,"lead":false}],"messages":[)";
    for (int i = 0; i < messages; ++i) {
        if (i > 0)
            out += ',';
        const bool agent = i % 3 == 0;
        out +=
            QStringLiteral(
                R"({"id":"m%1","from":"%2","by":{"id":"%3","type":"%2","name":"%4"},%5"text":)"
                R"("## Week %1\n\nHere is **what** changed, with [a link](/tasks/KES-%1):\n\n- one\n- two",)"
                R"("to":[],"reads":["u1"],"failed":false,"approvalIds":[],"reactions":[{"emoji":"👍",)"
                R"("by":["u1","u2"]}],"cites":[],"at":"2026-11-%6T09:%7:00.000Z","replies":%8,)"
                R"("lastReplyAt":"2026-11-%6T10:00:00.000Z","repliedBy":[{"name":"Atlas","agent":"atlas"}],)"
                R"("answering":[]})")
                .arg(i)
                .arg(agent ? QStringLiteral("agent") : QStringLiteral("person"))
                .arg(agent ? QStringLiteral("atlas") : QStringLiteral("u1"))
                .arg(agent ? QStringLiteral("Atlas") : QStringLiteral("Maya Lindqvist"))
                .arg(agent ? QStringLiteral(R"("agent":"atlas","runId":"run%1",)").arg(i) : QString())
                .arg(1 + i % 22, 2, 10, QLatin1Char('0'))
                .arg(i % 60, 2, 10, QLatin1Char('0'))
                .arg(i % 4)
                .toUtf8();
    }
    out += "]}}";
    return out;
}

KestChatResult decode(const QByteArray& answer)
{
    return decodeValue<Answer<KestChatResult>>(Wire::parse(answer)).value;
}

// The room's model with its answer handed in as a load would.
class Room : public KestRoomPage {
public:
    void take(const KestChatResult& result) { apply(QVariant::fromValue(result)); }
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QByteArray answer = makeAnswer();
    const int rounds = 41;
    qsizetype sink = 0;

    const double decodeOnly = 1000 * medianMillis(rounds, [&] { sink += decode(answer).messages.size(); });

    Room room;
    room.take(decode(answer));
    int sent = 0;
    KeyedListModel* list = room.messages();
    const auto count = [&] { ++sent; };
    QObject::connect(list, &QAbstractItemModel::dataChanged, list, count);
    QObject::connect(list, &QAbstractItemModel::rowsInserted, list, count);
    QObject::connect(list, &QAbstractItemModel::rowsRemoved, list, count);
    QObject::connect(list, &QAbstractItemModel::rowsMoved, list, count);
    QObject::connect(list, &QAbstractItemModel::modelReset, list, count);

    const double reload = 1000 * medianMillis(rounds, [&] {
                              room.take(decode(answer));
                              sink += list->count();
                          });

    QTextStream out(stdout);
    out << messages << " messages, nothing new, " << rounds << " rounds each\n"
        << "decode alone:               " << decodeOnly << " us (median)\n"
        << "decode + apply to the room: " << reload << " us (median)\n"
        << "ratio: " << QString::number(reload / decodeOnly, 'f', 2) << "x (goal: at most 2x)\n"
        << "signals to the views: " << sent << " (goal: none)\n"
        << "(checksum " << sink << ")\n";
    return sent == 0 && list->count() == messages ? 0 : 1;
}
