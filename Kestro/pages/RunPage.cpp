#include "RunPage.h"

#include "agentwork/Duration.h"
#include "agentwork/TraceRules.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Kestro {

namespace {

QString textOf(const QJsonObject& object, std::initializer_list<const char*> keys)
{
    for (const char* key : keys) {
        const QJsonValue value = object.value(QLatin1String(key));
        if (value.isString() && !value.toString().isEmpty())
            return value.toString();
    }
    return {};
}

// "12 s" between two times, or nothing when either is unknown.
QString took(const QString& from, const std::optional<QString>& to)
{
    const QDateTime start = QDateTime::fromString(from, Qt::ISODateWithMs);
    const QDateTime end = to ? QDateTime::fromString(*to, Qt::ISODateWithMs) : QDateTime();
    if (!start.isValid() || !end.isValid() || end < start)
        return {};
    return durationText(double(start.msecsTo(end)) / 1000.0);
}

} // namespace

RunPage::RunPage(QObject* parent, Timers& timers)
    : PageModel(&RunPage::fetch, parent, timers),
      m_rounds(new KeyedList<RunRoundRow>(
          [](const RunRoundRow& r) { return QString::number(r.place); },
          {{"title",
            [](const RunRoundRow& r) { return QVariant(QStringLiteral("Round %1").arg(r.place + 1)); }},
           {"doing",
            [](const RunRoundRow& r) {
                return QVariant(r.round.doing.value_or(r.round.action.value_or(QString())));
            }},
           {"took", [](const RunRoundRow& r) { return QVariant(took(r.round.startedAt, r.round.endedAt)); }},
           {"calls",
            [](const RunRoundRow& r) {
                QVariantList calls;
                for (const auto& call : r.round.calls) {
                    const TraceRules::Mark mark = TraceRules::mark(call.status);
                    const QString input = inputText(call.input);
                    calls.append(
                        QVariantMap{{QStringLiteral("icon"), TraceRules::toolIcon(call.tool)},
                                    {QStringLiteral("tool"), call.tool},
                                    {QStringLiteral("label"), call.label},
                                    {QStringLiteral("status"), call.status},
                                    {QStringLiteral("markIcon"), mark.icon},
                                    {QStringLiteral("markWords"), mark.words},
                                    {QStringLiteral("busy"), mark.busy},
                                    {QStringLiteral("why"), call.why.value_or(QString())},
                                    {QStringLiteral("input"), input},
                                    {QStringLiteral("inputJson"), input.startsWith(QLatin1Char('{')) ||
                                                                      input.startsWith(QLatin1Char('['))},
                                    {QStringLiteral("result"), call.result.value_or(QString())},
                                    {QStringLiteral("failed"), call.status == QLatin1String("failed")},
                                    {QStringLiteral("approval"), call.approvalId.value_or(QString())}});
                }
                return QVariant(calls);
            }}},
          this))
{
}

QCoro::Task<QVariant> RunPage::fetch(Route route)
{
    // "/kest/<handle>/runs/<id>"
    Arg handle{JSONValue(route.segments.value(1))};
    Arg runId{JSONValue(route.segments.value(3))};
    auto result = co_await Calls::kest::run(std::move(handle), std::move(runId));
    co_return QVariant::fromValue(std::move(result));
}

void RunPage::apply(const QVariant& value)
{
    auto result = value.value<Calls::kest::RunResult>();
    QList<RunRoundRow> rows;
    for (qsizetype i = 0; i < result.run.rounds.size(); ++i)
        rows.append({int(i), result.run.rounds[i]});
    m_rounds->apply(std::move(rows));
    if (m_loaded && result == m_result)
        return;
    m_loaded = true;
    m_result = std::move(result);
    emit answered();
}

std::optional<double> RunPage::every(const QVariant& value) const
{
    const auto result = value.value<Calls::kest::RunResult>();
    if (TraceRules::inProgress(result.run.status) || TraceRules::inProgress(result.trace.status))
        return 2.0;
    return std::nullopt;
}

QString RunPage::title() const
{
    return m_result.agent.name.isEmpty() ? QStringLiteral("Run")
                                         : QStringLiteral("%1's run").arg(m_result.agent.name);
}

bool RunPage::inProgress() const
{
    return TraceRules::inProgress(m_result.run.status);
}

QVariantList RunPage::cites() const
{
    QVariantList cites;
    for (const auto& cite : m_result.run.cites)
        cites.append(QVariantMap{{QStringLiteral("title"), cite.title}, {QStringLiteral("kind"), cite.kind}});
    return cites;
}

QString RunPage::draftTitle() const
{
    if (!m_result.run.draft)
        return {};
    const QJsonValue draft = m_result.run.draft->toQJsonValue();
    return draft.isObject() ? textOf(draft.toObject(), {"subject", "title"}) : QString();
}

QString RunPage::draftText() const
{
    if (!m_result.run.draft)
        return {};
    const QJsonValue draft = m_result.run.draft->toQJsonValue();
    if (draft.isString())
        return draft.toString();
    if (draft.isObject()) {
        const QString body = textOf(draft.toObject(), {"body", "text", "markdown"});
        if (!body.isEmpty())
            return body;
    }
    return inputText(*m_result.run.draft);
}

int RunPage::waiting() const
{
    int n = 0;
    for (const auto& round : m_result.run.rounds)
        for (const auto& call : round.calls)
            if (call.status == QLatin1String("waiting"))
                ++n;
    return n;
}

KeyedListModel* RunPage::rounds() const
{
    return m_rounds;
}

QString RunPage::inputText(const JSONValue& input)
{
    const QJsonValue value = input.toQJsonValue();
    if (value.isString())
        return value.toString();
    if (value.isObject())
        return QString::fromUtf8(QJsonDocument(value.toObject()).toJson(QJsonDocument::Indented)).trimmed();
    if (value.isArray())
        return QString::fromUtf8(QJsonDocument(value.toArray()).toJson(QJsonDocument::Indented)).trimmed();
    if (value.isDouble() || value.isBool())
        return QString::fromUtf8(
            QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact).mid(1).chopped(1));
    return {};
}

} // namespace Kestro
