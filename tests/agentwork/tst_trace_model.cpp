// The trace as its view reads it: rows keep their keys while steps
// accumulate (so an opened row stays open and a reload tells the view only
// what moved), page reads fold, a step's input shows as JSON only when it
// is JSON, and the headline follows the run from "Waking the computer" to
// its summary.

#include "agentwork/TraceModel.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Kestro;

namespace {

Model::TraceStep step(const QString& tool, const QString& status, bool chip = false)
{
    Model::TraceStep s;
    s.tool = tool;
    s.label = tool + u" step"_s;
    s.status = status;
    if (chip)
        s.chip = Model::TraceChip{u"example.org"_s, u"example.org"_s, u"https://example.org/"_s};
    return s;
}

Model::RunTrace traceOf(const QString& status, QList<Model::TraceStep> steps)
{
    Model::RunTrace trace;
    trace.id = u"run_1"_s;
    trace.status = status;
    trace.startedAt = u"2026-11-23T10:00:00Z"_s;
    trace.rounds.append({std::nullopt, std::move(steps)});
    return trace;
}

} // namespace

class TraceModelTest : public QObject {
    Q_OBJECT

private slots:
    void rowsKeepTheirKeysAsStepsAccumulate()
    {
        TraceModel model;
        model.setTrace(QVariant::fromValue(traceOf(
            u"running"_s, {step(u"search_web"_s, u"done"_s), step(u"browser"_s, u"running"_s, true)})));
        KeyedListModel* rows = model.rows();
        QCOMPARE(rows->count(), 2);
        QCOMPARE(rows->keyAt(0), u"s0"_s);
        QCOMPARE(rows->keyAt(1), u"s1"_s);
        QVERIFY(rows->valueAt(1, u"busy"_s).toBool());

        // The read is done and two more came: it joins a fold in its own
        // place, the first row is not touched.
        QSignalSpy inserted(rows, &QAbstractItemModel::rowsInserted);
        QSignalSpy removed(rows, &QAbstractItemModel::rowsRemoved);
        QSignalSpy changed(rows, &QAbstractItemModel::dataChanged);
        model.setTrace(QVariant::fromValue(
            traceOf(u"running"_s, {step(u"search_web"_s, u"done"_s), step(u"browser"_s, u"done"_s, true),
                                   step(u"read_web_page"_s, u"done"_s, true), step(u"x"_s, u"waiting"_s)})));
        QCOMPARE(rows->count(), 3);
        QCOMPARE(rows->keyAt(0), u"s0"_s);
        QCOMPARE(rows->keyAt(1), u"p1"_s);
        QCOMPARE(rows->valueAt(1, u"label"_s).toString(), u"Read 2 pages"_s);
        QCOMPARE(rows->valueAt(1, u"pages"_s).toList().size(), 2);
        QCOMPARE(rows->keyAt(2), u"s3"_s);
        QCOMPARE(rows->valueAt(2, u"markWords"_s).toString(), u"Waiting for you"_s);
        for (const QList<QVariant>& args : changed)
            QVERIFY(args.at(0).toModelIndex().row() != 0);

        // The same trace again tells nothing.
        const qsizetype before = inserted.size() + removed.size() + changed.size();
        model.setTrace(model.trace());
        QCOMPARE(inserted.size() + removed.size() + changed.size(), before);
    }

    void theHeadlineFollowsTheRun()
    {
        TraceModel model;
        QVERIFY(!model.present());
        QCOMPARE(model.headline(), QString());
        model.setTrace(QVariant::fromValue(traceOf(u"queued"_s, {})));
        QCOMPARE(model.headline(), u"Waking the computer"_s);
        auto trace = traceOf(u"failed"_s, {step(u"x"_s, u"failed"_s)});
        model.setTrace(QVariant::fromValue(trace));
        QVERIFY(model.failed());
        QCOMPARE(model.headline(), u"Stopped 1 step"_s);
        trace.status = u"done"_s;
        trace.endedAt = u"2026-11-23T10:01:05Z"_s;
        model.setTrace(QVariant::fromValue(trace));
        QCOMPARE(model.headline(), u"Worked for 1 min 5 s · 1 step"_s);
        // Anything but a trace shows nothing.
        model.setTrace(QVariant(u"not a trace"_s));
        QVERIFY(!model.present());
        QCOMPARE(model.rows()->count(), 0);
    }

    void inputShowsAsJsonOnlyWhenItIs()
    {
        QVERIFY(TraceModel::inputIsJson(u"  {\"q\": 1}"_s));
        QVERIFY(TraceModel::inputIsJson(u"[1, 2]"_s));
        QVERIFY(!TraceModel::inputIsJson(u"To: team@example.com"_s));
        QCOMPARE(TraceModel::prettyInput(u"{\"q\":\"launch\"}"_s), u"{\n    \"q\": \"launch\"\n}"_s);
        // Broken JSON is shown as it was sent.
        QCOMPARE(TraceModel::prettyInput(u"{not json"_s), u"{not json"_s);
        QCOMPARE(TraceModel::prettyInput(u"plain words"_s), u"plain words"_s);
    }
};

QTEST_GUILESS_MAIN(TraceModelTest)
#include "tst_trace_model.moc"
