#include "TaskRules.h"

namespace Kestro::TaskRules {

const QList<StatusGroup>& statusGroups()
{
    static const QList<StatusGroup> groups{
        {QStringLiteral("Needs you"),
         {QStringLiteral("needs_you"), QStringLiteral("in_review")},
         QStringLiteral("in_review")},
        {QStringLiteral("In progress"), {QStringLiteral("in_progress")}, QStringLiteral("in_progress")},
        {QStringLiteral("To do"), {QStringLiteral("todo")}, QStringLiteral("todo")},
        {QStringLiteral("Backlog"), {QStringLiteral("backlog")}, QStringLiteral("backlog")},
        {QStringLiteral("Done"), {QStringLiteral("done")}, QStringLiteral("done")},
        {QStringLiteral("Canceled"), {QStringLiteral("canceled")}, QStringLiteral("canceled")},
    };
    return groups;
}

int groupOf(const QString& status)
{
    const auto& groups = statusGroups();
    for (int i = 0; i < groups.size(); ++i)
        if (groups[i].statuses.contains(status))
            return i;
    return -1;
}

Mark markOf(const QString& status, bool blocked)
{
    const bool open = status != QLatin1String("done") && status != QLatin1String("canceled");
    if (blocked && open)
        return {QStringLiteral("pause"), QStringLiteral("muted")};
    if (status == QLatin1String("backlog"))
        return {QStringLiteral("dashed"), QStringLiteral("muted")};
    if (status == QLatin1String("todo"))
        return {QStringLiteral("open"), QStringLiteral("text")};
    if (status == QLatin1String("in_progress"))
        return {QStringLiteral("half"), QStringLiteral("busy")};
    if (status == QLatin1String("in_review"))
        return {QStringLiteral("most"), QStringLiteral("accent")};
    if (status == QLatin1String("needs_you"))
        return {QStringLiteral("alert"), QStringLiteral("badge")};
    if (status == QLatin1String("done"))
        return {QStringLiteral("check"), QStringLiteral("good")};
    if (status == QLatin1String("canceled"))
        return {QStringLiteral("cross"), QStringLiteral("muted")};
    // A status from a newer service: drawn as plain open work.
    return {QStringLiteral("open"), QStringLiteral("muted")};
}

QString newTaskHint(const NewTaskChoice& c)
{
    using Assignee = NewTaskChoice::Assignee;
    if (c.status == QLatin1String("done"))
        return QStringLiteral("It goes straight to Done.");
    if (c.status == QLatin1String("canceled"))
        return QStringLiteral("It goes straight to Canceled.");
    if (c.status == QLatin1String("in_review"))
        return QStringLiteral("It waits for a review in Needs you.");
    if (c.status == QLatin1String("backlog"))
        return c.engineering
                   ? QStringLiteral("It waits in the backlog. Move it to Analyze when it should start.")
                   : QStringLiteral("It waits in the backlog until someone takes it.");
    if (c.engineering) {
        if (c.engineeringKind.isEmpty())
            return QStringLiteral("Pick what it is: a bug, a feature or a change.");
        if (c.engineers.isEmpty())
            return QStringLiteral("%1 proposes to hire an Engineer. Only an Engineer builds it.")
                .arg(c.leadName);
        // The Engineer it goes to: the one chosen, or the only one there is.
        const QString engineer = c.assignee == Assignee::Teammate && c.engineers.contains(c.assigneeName)
                                     ? c.assigneeName
                                 : c.engineers.size() == 1 ? c.engineers.first()
                                                           : QString();
        if (engineer.isEmpty())
            return QStringLiteral("The least busy Engineer takes it");
        return QStringLiteral(
                   "%1 reads the code and asks you questions, then writes a plan for you to approve.")
            .arg(engineer);
    }
    switch (c.assignee) {
    case Assignee::Nobody:
        return c.status == QLatin1String("in_progress")
                   ? QStringLiteral("It shows as in progress, with nobody on it yet.")
                   : QStringLiteral("It waits in To do until someone takes it.");
    case Assignee::Person:
        return QStringLiteral("It goes on %1's list.").arg(c.assigneeName);
    case Assignee::Teammate:
        return QStringLiteral("%1 starts on it as soon as it's free.").arg(c.assigneeName);
    case Assignee::Lead:
        break;
    }
    return QStringLiteral("%1 hands it to the right teammate.").arg(c.leadName);
}

double listCadence(const QList<Model::TaskSummaryView>& tasks)
{
    for (const Model::TaskSummaryView& task : tasks) {
        if (task.working)
            return 5;
        if (task.status == QLatin1String("todo") && task.assignee &&
            task.assignee->type == QLatin1String("agent"))
            return 5;
    }
    return 30;
}

double taskCadence(bool running, const QString& lessonsStatus, const QStringList& nodeStates)
{
    if (running || lessonsStatus == QLatin1String("running") ||
        nodeStates.contains(QLatin1String("working")) || nodeStates.contains(QLatin1String("queued")))
        return 3;
    return 15;
}

QString dueWords(const QString& dueAt, const QString& status, const QDateTime& now)
{
    // By the day, on this machine's calendar: a task due today is not late
    // until tomorrow.
    const QDateTime due = QDateTime::fromString(dueAt, Qt::ISODateWithMs);
    const bool open = status != QLatin1String("done") && status != QLatin1String("canceled");
    return open && due.isValid() && due.toLocalTime().date() < now.toLocalTime().date()
               ? QStringLiteral("Past due")
               : QStringLiteral("Due");
}

} // namespace Kestro::TaskRules
