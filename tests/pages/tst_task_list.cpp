// The task list against a real kestro-devservice: the demo workspace's
// tasks in their groups (waiting for the user and waiting for a review
// together), folding that is remembered, filters that are addresses and
// are remembered, the empty result's words, and a new task that opens once
// made.

#include "DevServiceProcess.h"
#include "DevServiceSession.h"

#include "pages/TaskListPage.h"
#include "shell/PageCatalog.h"
#include "shell/Router.h"

#include "calls/app.h"
#include "service/BlockingWait.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Kestro;

class TaskListTest : public QObject {
    Q_OBJECT

    KestroTest::DevServiceProcess m_service{QStringLiteral(DEVSERVICE_PATH)};
    std::unique_ptr<KestroTest::DevServiceSession> m_session;
    std::unique_ptr<Router> m_router;

    void load(TaskListPage& page, const QString& path)
    {
        page.setRouter(m_router.get());
        page.setRoute(Route::parse(path));
        page.start();
        QTRY_COMPARE_WITH_TIMEOUT(page.loader()->state(), Loaded::State::Content, 10000);
    }
    // The rows as "heading:<title>" and task keys, in order.
    static QStringList rowsOf(const TaskListPage& page)
    {
        QStringList rows;
        for (int row = 0; row < page.rows()->count(); ++row)
            rows << (page.rows()->valueAt(row, u"header"_s).toBool()
                         ? u"heading:"_s + page.rows()->valueAt(row, u"groupTitle"_s).toString()
                         : page.rows()->valueAt(row, u"taskKey"_s).toString());
        return rows;
    }

    // The keys on a board column, top to bottom: the demo's six tasks only
    // (a task made by an earlier case is left out).
    static QStringList cardsOf(const TaskListPage& page, int group)
    {
        auto* cards = qobject_cast<KeyedListModel*>(
            page.columns().value(group).toMap().value(u"tasks"_s).value<QObject*>());
        QStringList keys;
        for (int row = 0; cards && row < cards->count(); ++row) {
            const QString key = cards->valueAt(row, u"taskKey"_s).toString();
            if (key.mid(4).toInt() <= 6)
                keys << key;
        }
        return keys;
    }
    static QString idOf(const TaskListPage& page, const QString& key)
    {
        for (int row = 0; row < page.rows()->count(); ++row)
            if (page.rows()->valueAt(row, u"taskKey"_s).toString() == key)
                return page.rows()->keyAt(row);
        return {};
    }

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QSettings().clear();
        m_service.start({u"--auto-approve"_s});
        m_session = std::make_unique<KestroTest::DevServiceSession>(m_service.origin());
        m_router =
            std::make_unique<Router>(m_service.origin(), Route::parse(u"/tasks"_s), [](const QUrl&) {});
    }
    void cleanupTestCase()
    {
        m_session.reset();
        m_service.stop();
    }

    void theRouteTableSendsTheListHere()
    {
        QCOMPARE(PageCatalog::pageOf(Route::parse(u"/tasks?mine=1"_s)).component,
                 u"qrc:/Kestro/Pages/TasksPage.qml"_s);
        // A task's own page is still the service's.
        QVERIFY(PageCatalog::pageOf(Route::parse(u"/tasks/NOR-1"_s)).kind == PageCatalog::Kind::Web);
    }

    void groupsFoldsAndFilters()
    {
        TaskListPage page;
        load(page, u"/tasks"_s);
        QVERIFY(page.canManage());
        QCOMPARE(rowsOf(page),
                 (QStringList{u"heading:Needs you"_s, u"NOR-1"_s, u"NOR-6"_s, u"heading:In progress"_s,
                              u"NOR-4"_s, u"heading:To do"_s, u"NOR-3"_s, u"heading:Backlog"_s, u"NOR-5"_s,
                              u"heading:Done"_s, u"NOR-2"_s}));
        const int fixIt = page.rows()->indexOf(page.rows()->keyAt(6));
        QCOMPARE(page.rows()->valueAt(fixIt, u"assignee"_s).toString(), u"Nobody yet"_s);
        QCOMPARE(page.rows()->valueAt(fixIt, u"markShape"_s).toString(), u"open"_s);
        QCOMPARE(page.rows()->valueAt(fixIt, u"href"_s).toString(), u"/tasks/NOR-3"_s);

        // Folded, a group keeps its heading and count; the next list too.
        QSignalSpy removed(page.rows(), &QAbstractItemModel::rowsRemoved);
        page.toggleFolded(4);
        QCOMPARE(rowsOf(page).mid(9), QStringList{u"heading:Done"_s});
        QCOMPARE(removed.size(), 1);
        TaskListPage again;
        load(again, u"/tasks"_s);
        QVERIFY(!rowsOf(again).contains(u"NOR-2"_s));
        again.toggleFolded(4);
        QVERIFY(rowsOf(again).contains(u"NOR-2"_s));

        // Filters are the address, and the last one is kept.
        page.search(u"  launch "_s);
        QCOMPARE(m_router->route().text(), u"/tasks?q=launch"_s);
        TaskListPage found;
        load(found, u"/tasks?q=launch"_s);
        QCOMPARE(rowsOf(found), (QStringList{u"heading:Needs you"_s, u"NOR-1"_s}));
        QCOMPARE(QSettings().value(u"kestro:tasks-address"_s).toString(), u"/tasks?q=launch"_s);
        found.setMine(true);
        QCOMPARE(m_router->route().text(), u"/tasks?mine=1&q=launch"_s);

        // "/tasks" with no filters opens with the last ones, in place.
        m_router->open(u"/tasks"_s);
        const bool couldGoBack = m_router->canGoBack();
        TaskListPage restored;
        restored.setRouter(m_router.get());
        restored.setRoute(Route::parse(u"/tasks"_s));
        restored.restoreAddress();
        QTRY_COMPARE(m_router->route().text(), u"/tasks?q=launch"_s);
        QCOMPARE(m_router->canGoBack(), couldGoBack);

        TaskListPage none;
        load(none, u"/tasks?mine=1&q=launch"_s);
        QCOMPARE(none.shown(), 0);
        QCOMPARE(none.emptyLine(), u"No tasks match."_s);
    }

    void aNewTaskSaysWhatHappensAndOpens()
    {
        TaskListPage page;
        load(page, u"/tasks"_s);
        QCOMPARE(page.addStatus(0), u"in_review"_s);
        QCOMPARE(page.addLabel(2), u"New task in To do"_s);
        const QVariantList assignees = page.assignees();
        QCOMPARE(assignees.first().toMap().value(u"label"_s).toString(), u"Nova picks who"_s);
        QCOMPARE(assignees[1].toMap().value(u"label"_s).toString(), u"Nobody yet"_s);
        QCOMPARE(page.hint(u"todo"_s, u"lead"_s, u"Nova"_s), u"Nova hands it to the right teammate."_s);
        QCOMPARE(page.hint(u"todo"_s, u"teammate"_s, u"Quill"_s),
                 u"Quill starts on it as soon as it's free."_s);

        QVERIFY(!page.create(u"   "_s, {}, u"todo"_s, u"lead"_s, u"nova"_s));
        QVERIFY(!page.createError().isEmpty());
        QVERIFY(page.create(u"Write the spring newsletter"_s, u"Three stories."_s, u"todo"_s, u"teammate"_s,
                            u"quill"_s));
        QVERIFY(page.creating());
        QTRY_VERIFY(!page.creating());
        QCOMPARE(page.createError(), QString());
        QVERIFY2(m_router->route().text().startsWith(u"/tasks/NOR-"_s), qPrintable(m_router->route().text()));
        // The list shows it after the reload that followed.
        QTRY_COMPARE(rowsOf(page).size(), 12);
    }

    // Maya only reads the other workspace: its list has no way to add.
    void aReaderGetsNoNewTask()
    {
        QVERIFY(!blockingWait(Calls::app::switchWorkspaceAction(u"w2"_s)).error);
        TaskListPage page;
        load(page, u"/tasks"_s);
        QVERIFY(!page.canManage());
        QCOMPARE(page.shown(), 1);
        // Nor any way to move one.
        QVERIFY(!page.moveTask(page.rows()->keyAt(1), 0, 0));
        QVERIFY(!blockingWait(Calls::app::switchWorkspaceAction(u"w1"_s)).error);
    }

    // Moves show at once and are kept once the service agrees; a move from
    // a stale board, or past a teammate's open question, goes back with the
    // service's sentence, and the latter can be made anyway.
    void theBoardMovesCardsAndSnapsBackWhenRefused()
    {
        QCOMPARE(TaskListPage::orderAt({}, 0), 0.0);
        QList<Model::TaskSummaryView> column(2);
        column[0].sortOrder = 1;
        column[1].sortOrder = 2;
        QCOMPARE(TaskListPage::orderAt(column, 0), 0.0);
        QCOMPARE(TaskListPage::orderAt(column, 1), 1.5);
        QCOMPARE(TaskListPage::orderAt(column, 2), 3.0);

        TaskListPage page;
        load(page, u"/tasks?layout=board"_s);
        QVERIFY(page.board());
        QCOMPARE(page.columns().size(), 6);
        const QString fix = idOf(page, u"NOR-3"_s);
        QCOMPARE(cardsOf(page, 2), QStringList{u"NOR-3"_s});

        QSignalSpy moved(&page, &TaskListPage::cardMoved);
        QVERIFY(page.moveTask(fix, 1, 1));
        QTRY_COMPARE(moved.size(), 1);
        QCOMPARE(cardsOf(page, 1), (QStringList{u"NOR-4"_s, u"NOR-3"_s})); // before the service answered
        QVERIFY(cardsOf(page, 2).isEmpty());
        // Once the service agreed, the board and a new one show it there.
        QSignalSpy answered(&page, &TaskListPage::answered);
        QTRY_VERIFY_WITH_TIMEOUT(!page.moving(), 10000);
        QCOMPARE(cardsOf(page, 1), (QStringList{u"NOR-4"_s, u"NOR-3"_s}));
        TaskListPage fresh;
        load(fresh, u"/tasks?layout=board"_s);
        QCOMPARE(cardsOf(fresh, 1), (QStringList{u"NOR-4"_s, u"NOR-3"_s}));
        // Up one place, and back to To do, by keys.
        QVERIFY(page.moveBy(fix, 0, -1));
        QTRY_COMPARE(cardsOf(page, 1), (QStringList{u"NOR-3"_s, u"NOR-4"_s}));
        QVERIFY(!page.moveBy(fix, 0, -1)); // at the top already
        QVERIFY(page.moveBy(fix, 1, 0));   // sent after the one before
        QTRY_COMPARE(cardsOf(page, 2), QStringList{u"NOR-3"_s});
        QTRY_VERIFY_WITH_TIMEOUT(!page.moving(), 10000);
        QVERIFY2(page.moveError().isEmpty(), qPrintable(page.moveError()));
        // Moved again at once, before any reload: the version it sends is
        // the one the last move left.
        QVERIFY(page.moveBy(fix, -1, 0));
        QTRY_COMPARE(cardsOf(page, 1).size(), 2);
        QTRY_VERIFY_WITH_TIMEOUT(!page.moving(), 10000);
        QVERIFY2(page.moveError().isEmpty(), qPrintable(page.moveError()));
        QVERIFY(page.moveBy(fix, 1, 0));
        QTRY_COMPARE(cardsOf(page, 2), QStringList{u"NOR-3"_s});

        // Within "Needs you", a task waiting for a review keeps that status.
        QVERIFY(page.moveTask(idOf(page, u"NOR-1"_s), 0, 2));
        QTRY_COMPARE(cardsOf(page, 0), (QStringList{u"NOR-6"_s, u"NOR-1"_s}));
        auto* needsYou = qobject_cast<KeyedListModel*>(
            page.columns().value(0).toMap().value(u"tasks"_s).value<QObject*>());
        QCOMPARE(needsYou->valueAt(needsYou->indexOf(idOf(page, u"NOR-1"_s)), u"status"_s).toString(),
                 u"in_review"_s);

        // Changed elsewhere since the board was drawn: refused, and back.
        const QString press = idOf(page, u"NOR-5"_s);
        QVERIFY(!blockingWait(Calls::app::updateTasksAction(
                                  Arg{JSONValue::fromQJsonValue(QJsonArray{press})},
                                  Arg{JSONValue::fromQJsonValue(QJsonObject{{u"priority"_s, u"high"_s}})}))
                     .error);
        QVERIFY(page.moveTask(press, 2, 0));
        QTRY_COMPARE(page.moveError(),
                     u"NOR-5 changed while you moved it. Look at it again, then move it once more."_s);
        QVERIFY(!page.canMoveAnyway());
        QCOMPARE(cardsOf(page, 3), QStringList{u"NOR-5"_s});
        QCOMPARE(cardsOf(page, 2), QStringList{u"NOR-3"_s});
        // The refusal brought the board up to date: moved again, it goes.
        answered.clear();
        QTRY_VERIFY_WITH_TIMEOUT(answered.size() > 0, 10000);
        QVERIFY(page.moveTask(press, 2, 0));
        QTRY_COMPARE(cardsOf(page, 2), (QStringList{u"NOR-5"_s, u"NOR-3"_s}));
        QTRY_VERIFY_WITH_TIMEOUT(!page.moving(), 10000);
        QVERIFY2(page.moveError().isEmpty(), qPrintable(page.moveError()));
        QCOMPARE(cardsOf(page, 2), (QStringList{u"NOR-5"_s, u"NOR-3"_s}));

        // Nova waits for an answer on NOR-6: only "Move anyway" moves it
        // (to the backlog, where no teammate takes it up at once).
        const QString checklist = idOf(page, u"NOR-6"_s);
        QVERIFY(page.moveTask(checklist, 3, 1));
        QTRY_COMPARE(page.moveError(), u"Nova is waiting for your answer on NOR-6."_s);
        QVERIFY(page.canMoveAnyway());
        QVERIFY(cardsOf(page, 0).contains(u"NOR-6"_s));
        page.moveAnyway();
        QTRY_COMPARE(cardsOf(page, 3), QStringList{u"NOR-6"_s});
        QTRY_VERIFY_WITH_TIMEOUT(!page.moving(), 10000);
        QVERIFY2(page.moveError().isEmpty(), qPrintable(page.moveError()));
        QVERIFY(!page.canMoveAnyway());
        TaskListPage after;
        load(after, u"/tasks?layout=board"_s);
        QCOMPARE(cardsOf(after, 3), QStringList{u"NOR-6"_s});
        QCOMPARE(cardsOf(after, 0), QStringList{u"NOR-1"_s});
    }
};

QTEST_MAIN(TaskListTest)
#include "tst_task_list.moc"
