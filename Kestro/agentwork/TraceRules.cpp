#include "TraceRules.h"

#include "Duration.h"

#include <QRegularExpression>

namespace Kestro::TraceRules {

namespace {

struct ToolIcon {
    QRegularExpression pattern;
    const char* icon;
};

// Order matters: "browser" before the generic patterns, the two named
// searches before "search_", "web_page" before "page".
const QList<ToolIcon>& toolIcons()
{
    static const QList<ToolIcon> table = [] {
        const std::pair<const char*, const char*> rows[] = {
            {"login", "key-round"},
            {"^browser$", "mouse-pointer-2"},
            {"^search_places$", "map-pin"},
            {"^search_news$", "newspaper"},
            {"^search_", "search"},
            {"^capture_", "camera"},
            {"^make_card$", "layout-template"},
            {"^make_image$", "image-plus"},
            {"^find_photo$", "image"},
            {"^put_pictures$", "images"},
            {"web_page", "globe"},
            {"skill|playbook", "book-open"},
            {"teammate|handoff", "forward"},
            {"stripe|posthog", "chart-line"},
            {"incident|bug", "bug"},
            {"test", "flask-conical"},
            {"research|report", "telescope"},
            {"canvas", "square-pen"},
            {"lead|list$|campaign|repl", "table-2"},
            {"support|call_transcript", "life-buoy"},
            {"email|inbox", "mail"},
            {"code|repo|pull_request|analysis|plan$", "code-xml"},
            {"task|project", "square-kanban"},
            {"page|source|remember|memory|workspace", "brain"},
            {"draft|post", "pen-line"},
            {"hire", "megaphone"},
        };
        QList<ToolIcon> out;
        for (const auto& [pattern, icon] : rows)
            out.append({QRegularExpression(QString::fromLatin1(pattern)), icon});
        return out;
    }();
    return table;
}

bool isPageRead(const Model::TraceStep& step)
{
    return step.status == QLatin1String("done") && step.chip &&
           (step.tool.endsWith(QLatin1String("web_page")) || step.tool == QLatin1String("browser"));
}

qsizetype countSteps(const Model::RunTrace& trace)
{
    qsizetype n = 0;
    for (const auto& round : trace.rounds)
        n += round.steps.size();
    return n;
}

} // namespace

QString toolIcon(const QString& tool)
{
    for (const ToolIcon& row : toolIcons())
        if (row.pattern.match(tool).hasMatch())
            return QString::fromLatin1(row.icon);
    return QStringLiteral("wrench");
}

QString stepCount(qsizetype steps)
{
    return steps == 1 ? QStringLiteral("1 step") : QStringLiteral("%1 steps").arg(steps);
}

bool inProgress(const QString& status)
{
    return status == QLatin1String("queued") || status == QLatin1String("running");
}

QString summary(const Model::RunTrace& trace, const QDateTime& now)
{
    const QString count = stepCount(countSteps(trace));
    const QDateTime started = QDateTime::fromString(trace.startedAt, Qt::ISODateWithMs);
    const QDateTime ended = trace.endedAt ? QDateTime::fromString(*trace.endedAt, Qt::ISODateWithMs) : now;
    const bool timed = started.isValid() && ended.isValid() && started <= ended;
    const QString took = timed ? durationText(double(started.msecsTo(ended)) / 1000.0) : QString();
    if (trace.status == QLatin1String("failed")) {
        if (!trace.endedAt || !timed)
            return QStringLiteral("Stopped ") + count;
        return QStringLiteral("Stopped after %1 · %2").arg(took, count);
    }
    return timed ? QStringLiteral("Worked for %1 · %2").arg(took, count) : count;
}

QString header(const Model::RunTrace& trace)
{
    if (!inProgress(trace.status))
        return {};
    if (trace.doing && !trace.doing->trimmed().isEmpty())
        return *trace.doing;
    // Queued: the teammate's computer is still starting.
    return trace.status == QLatin1String("running") ? QStringLiteral("Thinking")
                                                    : QStringLiteral("Waking the computer");
}

QList<Row> rows(const Model::RunTrace& trace)
{
    QList<Row> out;
    for (const auto& round : trace.rounds) {
        for (const Model::TraceStep& step : round.steps) {
            // A read right after a read joins its fold, across rounds too.
            if (isPageRead(step)) {
                if (out.isEmpty() || out.last().kind != Row::Kind::Pages)
                    out.append({Row::Kind::Pages, QStringLiteral("globe"), {}, {}});
                Row& fold = out.last();
                fold.steps.append(step);
                fold.label = fold.steps.size() == 1 ? QStringLiteral("Read 1 page")
                                                    : QStringLiteral("Read %1 pages").arg(fold.steps.size());
                continue;
            }
            out.append({Row::Kind::Step, toolIcon(step.tool), step.label, {step}});
        }
    }
    return out;
}

Mark mark(const QString& status)
{
    if (status == QLatin1String("done"))
        return {QStringLiteral("check"), {}, false};
    if (status == QLatin1String("failed"))
        return {QStringLiteral("circle-x"), {}, false};
    if (status == QLatin1String("refused"))
        return {QStringLiteral("ban"), {}, false};
    if (status == QLatin1String("waiting"))
        return {{}, QStringLiteral("Waiting for you"), false};
    return {{}, {}, inProgress(status)};
}

} // namespace Kestro::TraceRules
