// The task list's rules: which group a status falls in and what a task
// added there gets, the marks, the new-task dialog's sentence, and how
// often the list and a task's page load again.

#include "agentwork/TaskRules.h"

#include <QTest>

using namespace Kestro;
using namespace Kestro::TaskRules;
using namespace Qt::StringLiterals;
using Assignee = NewTaskChoice::Assignee;

Q_DECLARE_METATYPE(Kestro::TaskRules::NewTaskChoice)

namespace {

Model::TaskSummaryView task(const QString& status, const QString& assigneeType = {}, bool working = false)
{
    Model::TaskSummaryView t;
    t.status = status;
    if (!assigneeType.isEmpty()) {
        t.assignee.emplace();
        t.assignee->type = assigneeType;
    }
    if (working)
        t.working.emplace();
    return t;
}

NewTaskChoice choice(const QString& status, Assignee assignee, const QString& name = {})
{
    NewTaskChoice c;
    c.status = status;
    c.assignee = assignee;
    c.assigneeName = name;
    c.leadName = u"Nova"_s;
    return c;
}

NewTaskChoice engineering(const QString& kind, const QStringList& engineers, const QString& named = {})
{
    NewTaskChoice c = choice(u"todo"_s, named.isEmpty() ? Assignee::Lead : Assignee::Teammate, named);
    c.engineering = true;
    c.engineeringKind = kind;
    c.engineers = engineers;
    return c;
}

} // namespace

class TaskRulesTest : public QObject {
    Q_OBJECT

private slots:
    void groupsInTheirOrder()
    {
        QStringList titles;
        for (const StatusGroup& g : statusGroups())
            titles << g.title;
        QCOMPARE(titles, (QStringList{u"Needs you"_s, u"In progress"_s, u"To do"_s, u"Backlog"_s, u"Done"_s,
                                      u"Canceled"_s}));
        // Waiting for the user and waiting for a review are one group, and
        // a task added there waits for a review.
        QCOMPARE(groupOf(u"needs_you"_s), 0);
        QCOMPARE(groupOf(u"in_review"_s), 0);
        QCOMPARE(statusGroups()[0].addStatus, u"in_review"_s);
        QCOMPARE(groupOf(u"todo"_s), 2);
        QCOMPARE(groupOf(u"someday"_s), -1);
        // Each status in its own group, and a task added there keeps it.
        const QList<QPair<const char*, int>> placed{
            {"in_progress", 1}, {"todo", 2}, {"backlog", 3}, {"done", 4}, {"canceled", 5}};
        for (const auto& [status, group] : placed) {
            QCOMPARE(groupOf(QLatin1String(status)), group);
            QCOMPARE(statusGroups()[group].addStatus, QLatin1String(status));
        }
        // Every status of the ladder has a group and a mark of its own.
        QSet<QString> shapes;
        for (const char* status :
             {"backlog", "todo", "in_progress", "needs_you", "in_review", "done", "canceled"}) {
            QVERIFY(groupOf(QLatin1String(status)) >= 0);
            shapes << markOf(QLatin1String(status)).shape;
        }
        QCOMPARE(shapes.size(), 7);
        QCOMPARE(markOf(u"todo"_s, true).shape, u"pause"_s);
        QCOMPARE(markOf(u"done"_s, true).shape, u"check"_s); // finished work waits on nothing
    }

    void theNewTaskSentence_data()
    {
        QTest::addColumn<NewTaskChoice>("choice");
        QTest::addColumn<QString>("hint");
        QTest::newRow("done") << choice(u"done"_s, Assignee::Lead) << u"It goes straight to Done."_s;
        QTest::newRow("canceled") << choice(u"canceled"_s, Assignee::Person, u"Maya"_s)
                                  << u"It goes straight to Canceled."_s;
        QTest::newRow("review") << choice(u"in_review"_s, Assignee::Nobody)
                                << u"It waits for a review in Needs you."_s;
        QTest::newRow("nobody") << choice(u"todo"_s, Assignee::Nobody)
                                << u"It waits in To do until someone takes it."_s;
        QTest::newRow("person") << choice(u"todo"_s, Assignee::Person, u"Maya"_s)
                                << u"It goes on Maya's list."_s;
        QTest::newRow("teammate") << choice(u"todo"_s, Assignee::Teammate, u"Quill"_s)
                                  << u"Quill starts on it as soon as it's free."_s;
        QTest::newRow("in progress, nobody") << choice(u"in_progress"_s, Assignee::Nobody)
                                             << u"It shows as in progress, with nobody on it yet."_s;
        QTest::newRow("in progress, a person")
            << choice(u"in_progress"_s, Assignee::Person, u"Maya"_s) << u"It goes on Maya's list."_s;
        QTest::newRow("the lead") << choice(u"todo"_s, Assignee::Lead)
                                  << u"Nova hands it to the right teammate."_s;
        QTest::newRow("backlog") << choice(u"backlog"_s, Assignee::Teammate, u"Quill"_s)
                                 << u"It waits in the backlog until someone takes it."_s;
        NewTaskChoice engineeringBacklog = engineering(u"bug"_s, {u"Forge"_s});
        engineeringBacklog.status = u"backlog"_s;
        QTest::newRow("engineering backlog")
            << engineeringBacklog << u"It waits in the backlog. Move it to Analyze when it should start."_s;
        QTest::newRow("engineering, no kind")
            << engineering({}, {u"Forge"_s}) << u"Pick what it is: a bug, a feature or a change."_s;
        QTest::newRow("one Engineer")
            << engineering(u"feature"_s, {u"Forge"_s})
            << u"Forge reads the code and asks you questions, then writes a plan for you to approve."_s;
        QTest::newRow("the Engineer chosen")
            << engineering(u"bug"_s, {u"Forge"_s, u"Anvil"_s}, u"Anvil"_s)
            << u"Anvil reads the code and asks you questions, then writes a plan for you to approve."_s;
        QTest::newRow("no Engineer named")
            << engineering(u"change"_s, {u"Forge"_s, u"Anvil"_s}) << u"The least busy Engineer takes it"_s;
        QTest::newRow("no Engineer at all")
            << engineering(u"bug"_s, {})
            << u"Nova proposes to hire an Engineer. Only an Engineer builds it."_s;
    }
    void theNewTaskSentence()
    {
        QFETCH(NewTaskChoice, choice);
        QFETCH(QString, hint);
        QCOMPARE(newTaskHint(choice), hint);
    }

    void cadences()
    {
        QCOMPARE(listCadence({}), 30.0);
        QCOMPARE(listCadence({task(u"todo"_s, u"person"_s), task(u"done"_s, u"agent"_s)}), 30.0);
        QCOMPARE(listCadence({task(u"done"_s), task(u"todo"_s, u"agent"_s)}), 5.0);
        QCOMPARE(listCadence({task(u"in_review"_s, u"person"_s, true)}), 5.0);

        QCOMPARE(taskCadence(false, {}, {}), 15.0);
        QCOMPARE(taskCadence(true, {}, {}), 3.0);
        QCOMPARE(taskCadence(false, u"running"_s, {}), 3.0);
        QCOMPARE(taskCadence(false, u"done"_s, {u"done"_s, u"queued"_s}), 3.0);
        QCOMPARE(taskCadence(false, u"done"_s, {u"done"_s, u"failed"_s}), 15.0);
        QCOMPARE(taskCadence(false, {}, {u"working"_s}), 3.0);
    }

    void dueDates()
    {
        const QDateTime now = QDateTime::fromString(u"2026-11-25T12:00:00Z"_s, Qt::ISODate);
        QCOMPARE(dueWords(u"2026-11-24T12:00:00.000Z"_s, u"todo"_s, now), u"Past due"_s);
        QCOMPARE(dueWords(u"2026-11-24T12:00:00.000Z"_s, u"done"_s, now), u"Due"_s);
        QCOMPARE(dueWords(u"2026-11-26T12:00:00Z"_s, u"todo"_s, now), u"Due"_s);
        QCOMPARE(dueWords(u"soon"_s, u"todo"_s, now), u"Due"_s);
        // Due earlier today: not late before the day is over.
        const QDateTime evening = QDateTime(QDate(2026, 11, 25), QTime(20, 0));
        QCOMPARE(dueWords(QDateTime(QDate(2026, 11, 25), QTime(9, 0)).toUTC().toString(Qt::ISODate),
                          u"todo"_s, evening),
                 u"Due"_s);
    }
};

QTEST_GUILESS_MAIN(TaskRulesTest)
#include "tst_task_rules.moc"
