// Home and Needs you against a real kestro-devservice: bones until the
// first answer, the demo workspace's day, a row that opens its route, a
// failure that says what happened and a retry that recovers, and the route
// table that sends /activity to this page.

#include "DevServiceProcess.h"
#include "DevServiceSession.h"

#include "pages/ActivityPage.h"
#include "shell/PageCatalog.h"
#include "shell/Router.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Kestro;

class ActivityPageTest : public QObject {
    Q_OBJECT

    KestroTest::DevServiceProcess m_service{QStringLiteral(DEVSERVICE_PATH)};
    std::unique_ptr<KestroTest::DevServiceSession> m_session;
    std::unique_ptr<Router> m_router;
    QList<QUrl> m_browser;

private slots:
    void initTestCase()
    {
        m_service.start({u"--auto-approve"_s});
        m_session = std::make_unique<KestroTest::DevServiceSession>(m_service.origin());
        m_router = std::make_unique<Router>(m_service.origin(), Route::parse(u"/activity"_s),
                                            [this](const QUrl& url) { m_browser.append(url); });
    }
    void cleanupTestCase()
    {
        m_session.reset();
        m_service.stop();
    }

    void theRouteTableSendsActivityHere()
    {
        const auto home = PageCatalog::pageOf(Route::parse(u"/activity"_s));
        const auto you = PageCatalog::pageOf(Route::parse(u"/activity?view=you"_s));
        QCOMPARE(home.kind, PageCatalog::Kind::Native);
        QCOMPARE(home.component, u"qrc:/Kestro/Pages/ActivityPage.qml"_s);
        QCOMPARE(home.title, u"Home"_s);
        QCOMPARE(you.title, u"Needs you"_s);
        // Only the query differs: one page object shows both.
        QCOMPARE(you.identity, home.identity);
        QVERIFY(PageCatalog::pageOf(Route::parse(u"/activity/older"_s)).kind == PageCatalog::Kind::Missing);
        QVERIFY(PageCatalog::pageOf(Route::parse(u"/tasks/NOR-1"_s)).identity ==
                PageCatalog::pageOf(Route::parse(u"/analytics/funnels"_s)).identity); // the one web view
    }

    void showsTheDayAndOpensARow()
    {
        ActivityPage page;
        page.setRouter(m_router.get());
        page.setRoute(Route::parse(u"/activity"_s));
        QCOMPARE(page.loader()->state(), Loaded::State::Bones);
        page.start();
        QTRY_COMPARE_WITH_TIMEOUT(page.loader()->state(), Loaded::State::Content, 10000);
        QVERIFY2(page.greeting().contains(u"Maya"_s), qPrintable(page.greeting()));
        QVERIFY(page.today()->count() > 0);
        QVERIFY(page.waiting()->count() > 0);
        QCOMPARE(page.kest()->count(), 6);
        QVERIFY(!page.summary().isEmpty());
        QVERIFY(page.waitingLine().endsWith(u"for you."_s));

        // A reload with the same day tells the lists nothing new.
        QSignalSpy inserted(page.today(), &QAbstractItemModel::rowsInserted);
        QSignalSpy removed(page.today(), &QAbstractItemModel::rowsRemoved);
        const int loads = page.loader()->loads();
        m_router->setTick(m_router->tick() + 1);
        QTRY_COMPARE(page.loader()->loads(), loads + 1);
        QCOMPARE(removed.size(), 0);
        QVERIFY(inserted.isEmpty() || page.today()->count() > 0);

        // A row opens its page through the router.
        const QString href = page.waiting()->valueAt(0, u"href"_s).toString();
        QVERIFY(href.startsWith(u'/'));
        page.open(href);
        QCOMPARE(m_router->route().text(), href);
        QVERIFY(m_browser.isEmpty());

        // Needs you is a new route for the same model, without a new load.
        page.setRoute(Route::parse(u"/activity?view=you"_s));
        QVERIFY(page.needsYou());
        QCOMPARE(page.loader()->loads(), loads + 1);
    }

    void saysWhatFailedAndRecovers()
    {
        m_service.stop();
        ActivityPage page;
        page.setRouter(m_router.get());
        page.setRoute(Route::parse(u"/activity"_s));
        page.start();
        QTRY_COMPARE_WITH_TIMEOUT(page.loader()->state(), Loaded::State::Failed, 10000);
        const QString error = page.loader()->error();
        QVERIFY2(error.endsWith(u'.') && error.size() > 20, qPrintable(error));

        m_service.start({u"--auto-approve"_s}, m_service.folder());
        m_session.reset(); // before the next one is made: it owns the shared client
        m_session = std::make_unique<KestroTest::DevServiceSession>(m_service.origin());
        page.loader()->reload();
        QTRY_COMPARE_WITH_TIMEOUT(page.loader()->state(), Loaded::State::Content, 10000);
        QVERIFY(page.today()->count() > 0);
    }
};

QTEST_GUILESS_MAIN(ActivityPageTest)
#include "tst_activity_page.moc"
