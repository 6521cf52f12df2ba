// Routes and the router: parsing, web-only paths, product areas, history,
// addresses of the service's own host, deep links and rich-text links.

#include "shell/Router.h"

#include <QSignalSpy>
#include <QTest>

using namespace Kestro;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Rig {
    QList<QUrl> browser;
    Router router{QUrl(u"https://kestro.example"_s), Route::parse(u"/home"_s),
                  [this](const QUrl& url) { browser.append(url); }};
    QString path() const { return router.route().text(); }
};

} // namespace

class RouterTest : public QObject {
    Q_OBJECT
private slots:
    void parsesRoutes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QStringList>("segments");
        QTest::addColumn<QVariantMap>("query");
        QTest::newRow("plain") << u"/crm/customers"_s << u"/crm/customers"_s
                               << QStringList{u"crm"_s, u"customers"_s} << QVariantMap{};
        QTest::newRow("query") << u"/crm/customers?segment=x&empty"_s << u"/crm/customers"_s
                               << QStringList{u"crm"_s, u"customers"_s}
                               << QVariantMap{{u"segment"_s, u"x"_s}, {u"empty"_s, u""_s}};
        QTest::newRow("no leading slash")
            << u"analytics"_s << u"/analytics"_s << QStringList{u"analytics"_s} << QVariantMap{};
        QTest::newRow("encoded segment keeps the encoded path")
            << u"/brain/a%20b"_s << u"/brain/a%20b"_s << QStringList{u"brain"_s, u"a b"_s} << QVariantMap{};
        QTest::newRow("encoded query")
            << u"/settings?tab=e%2Dmail&q=a%20b"_s << u"/settings"_s << QStringList{u"settings"_s}
            << QVariantMap{{u"tab"_s, u"e-mail"_s}, {u"q"_s, u"a b"_s}};
        QTest::newRow("empty parts dropped")
            << u"//tasks//x/"_s << u"//tasks//x/"_s << QStringList{u"tasks"_s, u"x"_s} << QVariantMap{};
        QTest::newRow("root") << u"/"_s << u"/"_s << QStringList{} << QVariantMap{};
        QTest::newRow("bad escape kept")
            << u"/a/%E0%A4"_s << u"/a/%E0%A4"_s << QStringList{u"a"_s, u"%E0%A4"_s} << QVariantMap{};
    }
    void parsesRoutes()
    {
        QFETCH(QString, text);
        QFETCH(QString, path);
        QFETCH(QStringList, segments);
        QFETCH(QVariantMap, query);
        const Route route = Route::parse(text);
        QCOMPARE(route.path, path);
        QCOMPARE(route.segments, segments);
        QCOMPARE(route.queryMap(), query);
    }

    void webOnlyPathsAndAreas()
    {
        for (const char* webOnly : {"/", "/docs", "/docs/x", "/share/a", "/invite", "/reset-password",
                                    "/admin/x", "/blog", "/pricing", "/legal/terms", "/download"})
            QVERIFY2(!isInAppPath(QString::fromLatin1(webOnly)), webOnly);
        for (const char* inApp : {"/docsearch", "/pricingx", "/tasks", "/home", "/documents"})
            QVERIFY2(isInAppPath(QString::fromLatin1(inApp)), inApp);
        const QList<QPair<QString, QString>> areas{{u"/documents/a"_s, u"docs"_s},
                                                   {u"/tests"_s, u"engineering"_s},
                                                   {u"/incidents/1"_s, u"engineering"_s},
                                                   {u"/projects"_s, u"tasks"_s},
                                                   {u"/crm"_s, u"crm"_s},
                                                   {u"/kest"_s, u""_s},
                                                   {u"/"_s, u""_s}};
        for (const auto& [path, area] : areas)
            QCOMPARE(Route::parse(path).area(), area);
    }

    void historyAndSameRoute()
    {
        Rig rig;
        QSignalSpy changes(&rig.router, &Router::routeChanged);
        rig.router.open(u"/crm/customers?segment=a"_s);
        rig.router.open(u"/crm/customers?segment=a"_s); // the same: nothing happens
        QCOMPARE(changes.size(), 1);
        QCOMPARE(rig.router.back().size(), 1);
        rig.router.open(u"/crm/customers?segment=b"_s);
        QCOMPARE(rig.router.back().size(), 2);
        rig.router.goBack();
        QCOMPARE(rig.path(), u"/crm/customers?segment=a"_s);
        QVERIFY(rig.router.canGoForward());
        rig.router.goForward();
        QCOMPARE(rig.path(), u"/crm/customers?segment=b"_s);
        rig.router.goBack();
        rig.router.open(u"/tasks"_s); // a new route empties Forward
        QVERIFY(!rig.router.canGoForward());
        rig.router.open(u"/tasks/NOR-1"_s, true); // replace: no history entry
        QCOMPARE(rig.router.back().last().text(), u"/crm/customers?segment=a"_s);
        rig.router.goBack();
        rig.router.goBack();
        rig.router.goBack(); // past the start: a no-op
        QCOMPARE(rig.path(), u"/home"_s);
        rig.router.goForward();
        QCOMPARE(rig.path(), u"/crm/customers?segment=a"_s);
        QVERIFY(rig.browser.isEmpty());
    }

    void addressesAndTheBrowser()
    {
        Rig rig;
        rig.router.open(u"https://kestro.example/analytics/sites?x=1"_s);
        QCOMPARE(rig.path(), u"/analytics/sites?x=1"_s);
        rig.router.open(u"https://elsewhere.example/analytics"_s);
        QCOMPARE(rig.browser.takeLast(), QUrl(u"https://elsewhere.example/analytics"_s));
        rig.router.open(u"https://kestro.example/pricing"_s);
        QCOMPARE(rig.browser.takeLast(), QUrl(u"https://kestro.example/pricing"_s));
        rig.router.open(u"/docs/getting-started"_s);
        QCOMPARE(rig.browser.takeLast(), QUrl(u"https://kestro.example/docs/getting-started"_s));
        rig.router.open(u"/"_s);
        QCOMPARE(rig.browser.takeLast(), QUrl(u"https://kestro.example/"_s));
        rig.router.open(u"/pricing?plan=team"_s);
        QCOMPARE(rig.browser.takeLast(), QUrl(u"https://kestro.example/pricing?plan=team"_s));
        QCOMPARE(rig.path(), u"/analytics/sites?x=1"_s); // none of those moved the app
        QVERIFY(rig.browser.isEmpty());
    }

    void deepAndTextLinks()
    {
        Rig rig;
        QVERIFY(!rig.router.openDeepLink(QUrl(u"kestro://oauth/callback?code=1"_s)));
        QVERIFY(!rig.router.openDeepLink(QUrl(u"https://kestro.example/tasks"_s)));
        QCOMPARE(rig.path(), u"/home"_s);
        QVERIFY(rig.router.openDeepLink(QUrl(u"kestro://settings?tab=billing"_s)));
        QCOMPARE(rig.path(), u"/settings?tab=billing"_s);
        QVERIFY(rig.router.openDeepLink(QUrl(u"kestro://crm/customers?segment=a"_s)));
        QCOMPARE(rig.path(), u"/crm/customers?segment=a"_s);
        QVERIFY(rig.router.openDeepLink(QUrl(u"kestro://activity"_s)));
        QCOMPARE(rig.path(), u"/activity"_s);
        QVERIFY(rig.router.openTextLink(u"app:/analytics"_s));
        QCOMPARE(rig.path(), u"/analytics"_s);
        QVERIFY(!rig.router.openTextLink(u"https://example.com"_s));
        QVERIFY(rig.browser.isEmpty());
    }
};

QTEST_GUILESS_MAIN(RouterTest)
#include "tst_router.moc"
