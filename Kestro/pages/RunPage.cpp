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

const Model::RunCallView& callOf(const RunCallRow& row)
{
    return row.of.calls[row.call];
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
      m_calls(new KeyedList<RunCallRow>(
          [](const RunCallRow& r) { return QStringLiteral("r%1c%2").arg(r.round).arg(r.call); },
          {{"heading",
            [](const RunCallRow& r) {
                return QVariant(r.call <= 0 ? QStringLiteral("Round %1").arg(r.round + 1) : QString());
            }},
           {"detail",
            [](const RunCallRow& r) {
                const QString doing = r.of.doing.value_or(r.of.action.value_or(QString()));
                const QString time = took(r.of.startedAt, r.of.endedAt);
                return QVariant(doing.isEmpty() || time.isEmpty() ? doing + time
                                                                  : doing + QStringLiteral(" · ") + time);
            }},
           {"hasCall", [](const RunCallRow& r) { return QVariant(r.call >= 0); }},
           {"icon",
            [](const RunCallRow& r) {
                return QVariant(r.call < 0 ? QString() : TraceRules::toolIcon(callOf(r).tool));
            }},
           {"label", [](const RunCallRow& r) { return QVariant(r.call < 0 ? QString() : callOf(r).label); }},
           {"status",
            [](const RunCallRow& r) { return QVariant(r.call < 0 ? QString() : callOf(r).status); }},
           {"markIcon",
            [](const RunCallRow& r) {
                return QVariant(r.call < 0 ? QString() : TraceRules::mark(callOf(r).status).icon);
            }},
           {"markWords",
            [](const RunCallRow& r) {
                return QVariant(r.call < 0 ? QString() : TraceRules::mark(callOf(r).status).words);
            }},
           {"busy",
            [](const RunCallRow& r) {
                return QVariant(r.call >= 0 && TraceRules::mark(callOf(r).status).busy);
            }},
           {"why",
            [](const RunCallRow& r) {
                return QVariant(r.call < 0 ? QString() : callOf(r).why.value_or(QString()));
            }},
           {"input",
            [](const RunCallRow& r) {
                return QVariant(r.call < 0 ? QString() : inputText(callOf(r).input));
            }},
           {"inputJson",
            [](const RunCallRow& r) {
                const QJsonValue input = r.call < 0 ? QJsonValue() : callOf(r).input.toQJsonValue();
                return QVariant(input.isObject() || input.isArray());
            }},
           {"result",
            [](const RunCallRow& r) {
                return QVariant(r.call < 0 ? QString() : callOf(r).result.value_or(QString()));
            }},
           {"failed",
            [](const RunCallRow& r) {
                return QVariant(r.call >= 0 && callOf(r).status == QLatin1String("failed"));
            }},
           {"approval",
            [](const RunCallRow& r) {
                return QVariant(r.call >= 0 && callOf(r).status == QLatin1String("waiting") &&
                                        callOf(r).approvalId
                                    ? *callOf(r).approvalId
                                    : QString());
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
    QList<RunCallRow> rows;
    for (qsizetype round = 0; round < result.run.rounds.size(); ++round) {
        const auto& of = result.run.rounds[round];
        if (of.calls.isEmpty())
            rows.append({int(round), -1, of});
        for (qsizetype call = 0; call < of.calls.size(); ++call)
            rows.append({int(round), int(call), of});
    }
    m_calls->apply(std::move(rows));
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

KeyedListModel* RunPage::calls() const
{
    return m_calls;
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
