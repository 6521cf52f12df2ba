// The analytics pages against a real kestro-devservice: the route table,
// the ranges and the range before, the demo site's figures with their
// change, its breakdowns with source names, kinds, icons and flags, a
// reload that moves no row, the custom range's sentences, and the site
// settings' host check and saves.

#include "DevServiceProcess.h"
#include "DevServiceSession.h"

#include "pages/AnalyticsPage.h"
#include "pages/AnalyticsSettingsPage.h"
#include "shell/PageCatalog.h"
#include "shell/Router.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Kestro;

namespace {

QVariant valueOf(KeyedListModel* list, const QString& key, const QString& role)
{
    return list->valueAt(list->indexOf(key), role);
}

} // namespace

class AnalyticsPageTest : public QObject {
    Q_OBJECT

    KestroTest::DevServiceProcess m_service{QStringLiteral(DEVSERVICE_PATH)};
    std::unique_ptr<KestroTest::DevServiceSession> m_session;
    std::unique_ptr<Router> m_router;

    void load(PageModel& page, const QString& path)
    {
        page.setRouter(m_router.get());
        page.setRoute(Route::parse(path));
        page.start();
        QTRY_COMPARE_WITH_TIMEOUT(page.loader()->state(), Loaded::State::Content, 10000);
    }

private slots:
    void initTestCase()
    {
        m_service.start({u"--auto-approve"_s});
        m_session = std::make_unique<KestroTest::DevServiceSession>(m_service.origin());
        m_router =
            std::make_unique<Router>(m_service.origin(), Route::parse(u"/analytics"_s), [](const QUrl&) {});
    }
    void cleanupTestCase()
    {
        m_session.reset();
        m_service.stop();
    }

    void theRouteTableSendsAnalyticsHere()
    {
        QCOMPARE(PageCatalog::pageOf(Route::parse(u"/analytics?range=30d"_s)).component,
                 u"qrc:/Kestro/Pages/AnalyticsPage.qml"_s);
        QCOMPARE(PageCatalog::pageOf(Route::parse(u"/analytics/settings?site=s1"_s)).component,
                 u"qrc:/Kestro/Pages/AnalyticsSettingsPage.qml"_s);
        // The other families stay the service's own pages.
        QVERIFY(PageCatalog::pageOf(Route::parse(u"/analytics/funnels"_s)).kind == PageCatalog::Kind::Web);
    }

    void rangesAndTheRangeBefore()
    {
        const QDate today(2026, 11, 25);
        const auto week = AnalyticsRange::fromQuery({}, {}, {}, today);
        QCOMPARE(week.key, u"7d"_s);
        QCOMPARE(week.from, QDate(2026, 11, 19));
        QCOMPARE(week.previous().from, QDate(2026, 11, 12));
        QCOMPARE(week.previous().to, QDate(2026, 11, 18));
        QCOMPARE(AnalyticsRange::fromQuery(u"today"_s, {}, {}, today).previous().from, QDate(2026, 11, 24));

        const auto custom = AnalyticsRange::fromQuery(u"custom"_s, u"2026-03-03"_s, u"2026-03-09"_s, today);
        QCOMPARE(custom.label(), u"3 Mar \u2013 9 Mar 2026"_s);
        QCOMPARE(custom.toJson()[u"from"_s].toString(), u"2026-03-03"_s);
        QCOMPARE(AnalyticsRange::fromQuery(u"custom"_s, u"2025-12-30"_s, u"2026-01-02"_s, today).label(),
                 u"30 Dec 2025 \u2013 2 Jan 2026"_s);
        // Days to come, turned round or unreadable: the last 7 days instead.
        QCOMPARE(AnalyticsRange::fromQuery(u"custom"_s, u"2026-11-20"_s, u"2026-11-30"_s, today).key,
                 u"7d"_s);
        QCOMPARE(AnalyticsRange::fromQuery(u"custom"_s, u"2026-11-09"_s, u"2026-11-02"_s, today).key,
                 u"7d"_s);
        QCOMPARE(AnalyticsRange::fromQuery(u"forever"_s, {}, {}, today).label(), u"Last 7 days"_s);
    }

    void showsTheSitesTrafficWithItsSources()
    {
        AnalyticsPage page;
        page.setRouter(m_router.get());
        page.setRoute(Route::parse(u"/analytics"_s));
        QCOMPARE(page.loader()->state(), Loaded::State::Bones);
        load(page, u"/analytics"_s);
        QCOMPARE(page.siteId(), u"s1"_s);
        QCOMPARE(page.failed(), QVariantMap());
        QCOMPARE(page.domain(), u"northwind.example"_s);
        QCOMPARE(page.sites()->count(), 2);
        QCOMPARE(page.rangeLabel(), u"Last 7 days"_s);
        QCOMPARE(page.chart().size(), 7);

        // Five figures, each with its move against the week before.
        QCOMPARE(page.headline()->count(), 5);
        QCOMPARE(valueOf(page.headline(), u"bounce"_s, u"label"_s).toString(), u"Bounce rate"_s);
        QVERIFY(valueOf(page.headline(), u"bounce"_s, u"value"_s).toString().endsWith(u'%'));
        QVERIFY(valueOf(page.headline(), u"bounce"_s, u"change"_s).toString().endsWith(u" pts"_s));
        for (int row = 0; row < 5; ++row)
            QVERIFY2(!page.headline()->valueAt(row, u"change"_s).toString().isEmpty(),
                     qPrintable(page.headline()->keyAt(row)));

        // No referrer first, then the sources by name, kind and icon.
        KeyedListModel* sources = page.referrers();
        QCOMPARE(sources->valueAt(0, u"label"_s).toString(), u"Direct/None"_s);
        QCOMPARE(sources->valueAt(0, u"icon"_s).toString(), QString());
        const QString google = u"https://www.google.com/"_s;
        QCOMPARE(valueOf(sources, google, u"label"_s).toString(), u"Google"_s);
        QCOMPARE(valueOf(sources, google, u"detail"_s).toString(), u"google.com"_s);
        QCOMPARE(valueOf(sources, google, u"kind"_s).toString(), u"Search"_s);
        QCOMPARE(valueOf(sources, google, u"icon"_s).toString(), u"image://site/google.com"_s);
        QCOMPARE(valueOf(sources, u"https://mail.google.com/"_s, u"kind"_s).toString(), u"Email"_s);
        QCOMPARE(valueOf(sources, u"https://chatgpt.com/"_s, u"kind"_s).toString(), u"AI"_s);
        // A host that is no known source: its own name and icon.
        QCOMPARE(valueOf(sources, u"https://partner-shop.example/"_s, u"label"_s).toString(),
                 u"partner-shop.example"_s);
        QCOMPARE(valueOf(sources, u"https://partner-shop.example/"_s, u"icon"_s).toString(),
                 u"image://site/partner-shop.example"_s);
        QCOMPARE(valueOf(page.countries(), u"DE"_s, u"label"_s).toString(), u"Germany"_s);
        QCOMPARE(valueOf(page.countries(), u"DE"_s, u"icon"_s).toString(), u"image://site/flag:DE"_s);
        QCOMPARE(valueOf(page.countries(), QString(), u"label"_s).toString(), u"Unknown"_s);
        QCOMPARE(valueOf(page.browsers(), u"Safari"_s, u"icon"_s).toString(), u"image://site/apple.com"_s);
        QCOMPARE(valueOf(page.browsers(), u"Brave"_s, u"icon"_s).toString(), QString());
        QCOMPARE(valueOf(page.systems(), u"Mac OS"_s, u"icon"_s).toString(), u"image://site/apple.com"_s);
        QCOMPARE(valueOf(page.devices(), u"Mobile"_s, u"icon"_s).toString(), u"image://icon/smartphone"_s);
        QVERIFY(page.pages()->count() > 5);
        QCOMPARE(valueOf(page.exits(), u"https://github.com/northwind-studio"_s, u"label"_s).toString(),
                 u"github.com/northwind-studio"_s);

        // A reload of the same range adds and removes no row.
        QSignalSpy inserted(sources, &QAbstractItemModel::rowsInserted);
        QSignalSpy removed(sources, &QAbstractItemModel::rowsRemoved);
        const int loads = page.loader()->loads();
        m_router->setTick(m_router->tick() + 1);
        QTRY_COMPARE(page.loader()->loads(), loads + 1);
        QCOMPARE(inserted.size(), 0);
        QCOMPARE(removed.size(), 0);
    }

    void rangesAreAddresses()
    {
        AnalyticsPage page;
        load(page, u"/analytics?site=s2&range=30d"_s);
        QCOMPARE(page.domain(), u"docs.northwind.example"_s);
        QCOMPARE(page.chart().size(), 30);
        QCOMPARE(page.rangeLabel(), u"Last 30 days"_s);

        // Today, hour by hour, without a change against a whole yesterday.
        AnalyticsPage today;
        load(today, u"/analytics?site=s1&range=today"_s);
        QVERIFY(!today.chart().isEmpty() && today.chart().size() <= 24);
        QCOMPARE(today.headline()->valueAt(0, u"change"_s).toString(), QString());

        page.chooseRange(u"today"_s);
        QCOMPARE(m_router->route().text(), u"/analytics?range=today&site=s2"_s);
        page.chooseSite(u"s1"_s);
        QCOMPARE(m_router->route().text(), u"/analytics?range=30d&site=s1"_s);

        QCOMPARE(page.chooseDays(u"2026-11-10"_s, u"2026-11-01"_s),
                 u"The first day comes after the last. Choose a first day on or before the last."_s);
        QVERIFY(page.chooseDays(u"yesterday"_s, u"2026-11-01"_s).startsWith(u"Write both days"_s));
        QVERIFY(
            page.chooseDays(u"2026-11-01"_s, u"2999-01-01"_s).startsWith(u"The last day is still to come"_s));
        QCOMPARE(page.chooseDays(u"2026-10-01"_s, u"2026-10-07"_s), QString());
        QCOMPARE(m_router->route().text(),
                 u"/analytics?from=2026-10-01&range=custom&site=s2&to=2026-10-07"_s);
    }

    void repeatedValuesAddUp()
    {
        Calls::app::AnalyticsBreakdownActionResultRow none{u""_s, std::nullopt, 10, 12, 0.1};
        Calls::app::AnalyticsBreakdownActionResultRow named{u"(none)"_s, std::nullopt, 5, 6, 0.05};
        Calls::app::AnalyticsBreakdownActionResultRow google{u"https://google.com/"_s, std::nullopt, 7, 8,
                                                             0.07};
        const auto rows = AnalyticsPage::rowsOf(u"referrers"_s, {none, google, named});
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows[0].of.value, QString());
        QCOMPARE(rows[0].of.visitors, 15.0);
        QCOMPARE(rows[1].of.value, u"https://google.com/"_s);
    }

    void settingsCheckHostsAndSave()
    {
        AnalyticsSettingsPage page;
        load(page, u"/analytics/settings?site=s1"_s);
        QCOMPARE(page.domain(), u"northwind.example"_s);
        QCOMPARE(page.allowedHostnames(), QStringList{u"www.northwind.example"_s});
        QVERIFY(page.canManage());

        QVERIFY(page.hostProblem(u"Shop.Northwind.example"_s).contains(u"lower-case"_s));
        QVERIFY(page.hostProblem(u"shop.northwind.e"_s).contains(u"is not a host name"_s));
        QVERIFY(page.hostProblem(u"-shop.northwind.example"_s).contains(u"is not a host name"_s));
        QVERIFY(page.hostProblem(u"www.northwind.example"_s).contains(u"allowed already"_s));
        QCOMPARE(page.hostProblem(u"ab.cd"_s), QString());

        // A refused name never reaches the service; a good one is saved.
        QVERIFY(!page.addHost(u"shop northwind"_s).isEmpty());
        QCOMPARE(page.addHost(u" shop.northwind.example "_s), QString());
        QTRY_VERIFY(!page.saving());
        QCOMPARE(page.saveError(), QString());
        page.setFlag(u"weeklyReport"_s, false);
        QTRY_VERIFY(!page.saving());

        AnalyticsSettingsPage again;
        load(again, u"/analytics/settings?site=s1"_s);
        QCOMPARE(again.allowedHostnames(),
                 (QStringList{u"www.northwind.example"_s, u"shop.northwind.example"_s}));
        QCOMPARE(again.flags().value(u"weeklyReport"_s).toBool(), false);
        again.removeHost(u"shop.northwind.example"_s);
        QTRY_VERIFY(!again.saving());
        QTRY_COMPARE(again.allowedHostnames(), QStringList{u"www.northwind.example"_s});
    }
};

QTEST_MAIN(AnalyticsPageTest)
#include "tst_analytics_page.moc"
