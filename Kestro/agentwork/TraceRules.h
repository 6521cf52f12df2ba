#pragma once

#include "calls/Model.h"

#include <QDateTime>
#include <QList>
#include <QString>

namespace Kestro::TraceRules {

// The icon of a step, by its tool's name: the first pattern of an ordered
// table that matches, "wrench" when none does.
QString toolIcon(const QString& tool);

// "1 step", "7 steps".
QString stepCount(qsizetype steps);

// The line under a finished (or stopped) trace: "Worked for 2 min · 7
// steps", "Stopped after 40 s · 3 steps", or the count alone when the time
// is not known. A run still going is measured up to `now`.
QString summary(const Model::RunTrace& trace, const QDateTime& now = QDateTime::currentDateTimeUtc());

// The header while the run is in progress: what it is doing, else
// "Thinking" once it runs and "Waking the computer" before that. Empty
// when the run is over (the summary shows then).
QString header(const Model::RunTrace& trace);
bool inProgress(const QString& status);

// One row of the trace view: a step of its own, or a run of page reads
// folded into "Read N pages".
struct Row {
    enum class Kind { Step, Pages };
    Kind kind = Kind::Step;
    QString icon;
    QString label;
    // Kind::Step: the step. Kind::Pages: the reads, in order.
    QList<Model::TraceStep> steps;
};
QList<Row> rows(const Model::RunTrace& trace);

// A step's status mark: an icon, or words ("Waiting for you"), or the
// activity mark (`busy`) while it runs.
struct Mark {
    QString icon;
    QString words;
    bool busy = false;
};
Mark mark(const QString& status);

} // namespace Kestro::TraceRules
