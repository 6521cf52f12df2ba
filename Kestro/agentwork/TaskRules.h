#pragma once

#include "calls/Model.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

namespace Kestro::TaskRules {

// A group of the task list: its title, the statuses it gathers and the
// status a task added in it gets. The list shows them in this order.
struct StatusGroup {
    QString title;
    QStringList statuses;
    QString addStatus;
};
const QList<StatusGroup>& statusGroups();
// The group a status falls in, or -1 for a status the app does not know.
int groupOf(const QString& status);

// How a status is drawn: one of the marks "dashed", "open", "half",
// "most", "alert", "pause", "check", "cross", and its colour's name in the
// palette ("muted", "text", "busy", "accent", "badge", "good"). A task
// that waits on others shows "pause" while it is open.
struct Mark {
    QString shape;
    QString tone;
};
Mark markOf(const QString& status, bool blocked = false);

// Who a new task goes to, as the dialog's choice stands.
struct NewTaskChoice {
    enum class Assignee { Nobody, Person, Teammate, Lead };
    QString status = QStringLiteral("todo");
    Assignee assignee = Assignee::Lead;
    QString assigneeName; // the person's or teammate's
    QString leadName;
    bool engineering = false;
    QString engineeringKind; // "bug", "feature", "change" or empty
    // The kest's Engineers; `assigneeName` names one of them or none.
    QStringList engineers;
};
// The one sentence under the dialog's fields that says what happens next.
QString newTaskHint(const NewTaskChoice& choice);

// Seconds until the list loads again: 5 while a teammate works on a listed
// task or one waits in To do for a teammate, else 30 (an empty list too).
double listCadence(const QList<Model::TaskSummaryView>& tasks);

// Seconds until a task's page loads again: 3 while a run works on it, its
// lessons pass runs, or a node of its work tree works or waits in the
// queue; else 15.
double taskCadence(bool running, const QString& lessonsStatus, const QStringList& nodeStates);

// "Past due" for an open task whose day has gone by, else "Due".
QString dueWords(const QString& dueAt, const QString& status,
                 const QDateTime& now = QDateTime::currentDateTimeUtc());

} // namespace Kestro::TaskRules
