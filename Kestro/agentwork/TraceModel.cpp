#include "TraceModel.h"

#include <QJsonDocument>

namespace Kestro {

namespace {

using Row = TraceRules::Row;

// The one step of a step row (a fold's rows have no single step).
const Model::TraceStep* stepOf(const Row& row)
{
    return row.kind == Row::Kind::Step && !row.steps.isEmpty() ? &row.steps.first() : nullptr;
}

QString optionalText(const std::optional<QString>& text)
{
    return text.value_or(QString());
}

} // namespace

TraceModel::TraceModel(QObject* parent)
    : QObject(parent),
      m_rows(new KeyedList<KeyedRow>(
          [](const KeyedRow& r) { return r.key; },
          {{"fold", [](const KeyedRow& r) { return QVariant(r.row.kind == Row::Kind::Pages); }},
           {"icon", [](const KeyedRow& r) { return QVariant(r.row.icon); }},
           {"label", [](const KeyedRow& r) { return QVariant(r.row.label); }},
           {"status",
            [](const KeyedRow& r) {
                const auto* step = stepOf(r.row);
                return QVariant(step ? step->status : QStringLiteral("done"));
            }},
           {"markIcon",
            [](const KeyedRow& r) {
                const auto* step = stepOf(r.row);
                return QVariant(step ? TraceRules::mark(step->status).icon : QStringLiteral("check"));
            }},
           {"markWords",
            [](const KeyedRow& r) {
                const auto* step = stepOf(r.row);
                return QVariant(step ? TraceRules::mark(step->status).words : QString());
            }},
           {"busy",
            [](const KeyedRow& r) {
                const auto* step = stepOf(r.row);
                return QVariant(step && TraceRules::mark(step->status).busy);
            }},
           {"chipText",
            [](const KeyedRow& r) {
                const auto* step = stepOf(r.row);
                return QVariant(step && step->chip ? step->chip->text : QString());
            }},
           {"chipHost",
            [](const KeyedRow& r) {
                const auto* step = stepOf(r.row);
                return QVariant(step && step->chip ? optionalText(step->chip->host) : QString());
            }},
           {"chipUrl",
            [](const KeyedRow& r) {
                const auto* step = stepOf(r.row);
                return QVariant(step && step->chip ? optionalText(step->chip->url) : QString());
            }},
           {"why",
            [](const KeyedRow& r) {
                const auto* step = stepOf(r.row);
                return QVariant(step ? optionalText(step->why) : QString());
            }},
           {"input",
            [](const KeyedRow& r) {
                const auto* step = stepOf(r.row);
                return QVariant(step ? prettyInput(optionalText(step->input)) : QString());
            }},
           {"inputJson",
            [](const KeyedRow& r) {
                const auto* step = stepOf(r.row);
                return QVariant(step && inputIsJson(optionalText(step->input)));
            }},
           {"result",
            [](const KeyedRow& r) {
                const auto* step = stepOf(r.row);
                return QVariant(step ? optionalText(step->result) : QString());
            }},
           {"failed",
            [](const KeyedRow& r) {
                const auto* step = stepOf(r.row);
                return QVariant(step && step->status == QLatin1String("failed"));
            }},
           // A fold's pages: text, host and address of each read.
           {"pages",
            [](const KeyedRow& r) {
                QVariantList pages;
                if (r.row.kind == Row::Kind::Pages)
                    for (const Model::TraceStep& step : r.row.steps)
                        pages.append(QVariantMap{
                            {QStringLiteral("text"), step.chip ? step.chip->text : step.label},
                            {QStringLiteral("host"), step.chip ? optionalText(step.chip->host) : QString()},
                            {QStringLiteral("url"), step.chip ? optionalText(step.chip->url) : QString()}});
                return QVariant(pages);
            }}},
          this))
{
}

void TraceModel::setTrace(const QVariant& value)
{
    const bool present = value.metaType() == QMetaType::fromType<Model::RunTrace>();
    Model::RunTrace trace = present ? value.value<Model::RunTrace>() : Model::RunTrace{};
    if (present == m_present && trace == m_trace)
        return;
    m_value = value;
    m_present = present;
    m_trace = std::move(trace);

    // A row's key is the place of its first step in the run: steps only
    // accumulate, so a row keeps its key from one reload to the next.
    QList<KeyedRow> keyed;
    qsizetype place = 0;
    for (Row& row : TraceRules::rows(m_trace)) {
        QString key = (row.kind == Row::Kind::Pages ? QStringLiteral("p") : QStringLiteral("s")) +
                      QString::number(place);
        place += row.steps.size();
        keyed.append({std::move(key), std::move(row)});
    }
    m_rows->apply(std::move(keyed));
    emit changed();
}

KeyedListModel* TraceModel::rows() const
{
    return m_rows;
}

QAbstractItemModel* TraceModel::rowsModel() const
{
    return m_rows;
}

QString TraceModel::headline() const
{
    if (!m_present)
        return {};
    return inProgress() ? TraceRules::header(m_trace) : TraceRules::summary(m_trace);
}

int TraceModel::steps() const
{
    int n = 0;
    for (const auto& round : m_trace.rounds)
        n += int(round.steps.size());
    return n;
}

bool TraceModel::inputIsJson(const QString& input)
{
    const QString text = input.trimmed();
    return text.startsWith(QLatin1Char('[')) || text.startsWith(QLatin1Char('{'));
}

QString TraceModel::prettyInput(const QString& input)
{
    if (!inputIsJson(input))
        return input;
    // Indented when it parses; shown as sent when it does not.
    const QJsonDocument document = QJsonDocument::fromJson(input.toUtf8());
    return document.isNull() ? input : QString::fromUtf8(document.toJson(QJsonDocument::Indented)).trimmed();
}

} // namespace Kestro
