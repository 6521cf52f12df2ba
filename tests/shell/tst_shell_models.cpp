// The frame's smaller pieces: the scripts pushed into web pages and the
// checks on what pages send back, the navigation policy, which page shows a
// route, the palette's list and the bell against a fake service.

#include "shell/BellModel.h"
#include "shell/HandOffLine.h"
#include "shell/PageCatalog.h"
#include "shell/PaletteModel.h"
#include "shell/SchemeHandler.h"
#include "shell/SingleInstance.h"
#include "shell/WebPolicy.h"
#include "shell/WebScripts.h"
#include "shell/WebSession.h"

#include "SignedInClient.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Kestro;
using namespace KestroTest;
using namespace Qt::Literals::StringLiterals;

Q_DECLARE_METATYPE(Kestro::WebPolicy::Decision)

class TestShellModels : public QObject {
    Q_OBJECT
private slots:
    void scriptsCarryTheAppearance()
    {
        QCOMPARE(WebScripts::storage(u"dark"_s, u"ink"_s, u"sand"_s),
                 u"try{localStorage.setItem(\"theme\",\"dark\");localStorage.setItem(\"kestro:dark-shade\","
                 u"\"ink\");"
                 "localStorage.setItem(\"kestro:light-shade\",\"sand\")}catch(e){}"_s);
        QCOMPARE(WebScripts::theme(false, u"system"_s, u"graphite"_s, u"paper"_s),
                 WebScripts::storage(u"system"_s, u"graphite"_s, u"paper"_s) +
                     u";var d=document.documentElement;d.classList.toggle(\"dark\",false);"
                     "d.classList.toggle(\"light\",true);d.dataset.shade=\"graphite\";"
                     "d.dataset.lightShade=\"paper\";d.style.colorScheme=\"light\";"_s);
        // A hand-edited setting never reaches the page as script.
        QVERIFY(!WebScripts::storage(u"x\");alert(1);//"_s, u"ink"_s, u"sand"_s).contains(u"alert"_s));
        QCOMPARE(WebScripts::sessionCookieName(QUrl(u"https://kestro.app"_s)), u"__Host-kestro_app_token"_s);
        QCOMPARE(WebScripts::sessionCookieName(QUrl(u"http://127.0.0.1:8787"_s)), u"kestro_app_token"_s);
        QCOMPARE(WebScripts::sessionCookieName(QUrl(u"//host"_s)), u"kestro_app_token"_s);
    }

    void pageTitles_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("shown");
        QTest::newRow("middle dot") << u"Tasks \u00b7 Kestro"_s << u"Tasks"_s;
        QTest::newRow("bar") << u"Tasks | Kestro"_s << u"Tasks"_s;
        QTest::newRow("dash") << u"Tasks - Kestro"_s << u"Tasks"_s;
        QTest::newRow("begins with it") << u"Kestro \u00b7 Tasks"_s << u"Kestro \u00b7 Tasks"_s;
        QTest::newRow("only one suffix") << u"A \u00b7 Kestro \u00b7 Kestro"_s << u"A \u00b7 Kestro"_s;
        QTest::newRow("no blank") << u"Tasks\u00b7Kestro"_s << u"Tasks\u00b7Kestro"_s;
    }
    void pageTitles()
    {
        QFETCH(QString, title);
        QFETCH(QString, shown);
        QCOMPARE(WebScripts::pageTitle(title), shown);
    }

    void navigationPolicy_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<bool>("mainFrame");
        QTest::addColumn<bool>("linkClicked");
        QTest::addColumn<bool>("newWindow");
        QTest::addColumn<WebPolicy::Decision>("decision");
        using D = WebPolicy::Decision;
        const QString own = u"http://127.0.0.1:8787"_s;
        QTest::newRow("no address") << QString() << true << true << false << D::Cancel;
        QTest::newRow("about:blank") << u"about:blank"_s << true << false << false << D::Allow;
        QTest::newRow("data") << u"data:text/html,x"_s << true << true << false << D::Allow;
        QTest::newRow("blob") << u"blob:http://127.0.0.1:8787/1"_s << true << true << false << D::Allow;
        QTest::newRow("own link, main frame") << own + u"/tasks"_s << true << true << false << D::Route;
        QTest::newRow("own load, main frame") << own + u"/tasks"_s << true << false << false << D::Allow;
        QTest::newRow("own link, subframe") << own + u"/embed"_s << false << true << false << D::Allow;
        QTest::newRow("own new window") << own + u"/tasks"_s << true << true << true << D::Allow;
        QTest::newRow("other port, same host")
            << u"http://127.0.0.1:9999/x"_s << true << true << false << D::Route;
        QTest::newRow("foreign link") << u"https://example.com/"_s << true << true << false << D::Browser;
        QTest::newRow("foreign redirect")
            << u"https://example.com/"_s << true << false << false << D::Browser;
        QTest::newRow("foreign subframe")
            << u"https://video.example/embed"_s << false << false << false << D::Allow;
        QTest::newRow("foreign new window")
            << u"https://example.com/"_s << true << true << true << D::Browser;
    }
    void navigationPolicy()
    {
        QFETCH(QString, url);
        QFETCH(bool, mainFrame);
        QFETCH(bool, linkClicked);
        QFETCH(bool, newWindow);
        QFETCH(WebPolicy::Decision, decision);
        QCOMPARE(
            WebPolicy::decide(QUrl(u"http://127.0.0.1:8787"_s), QUrl(url), mainFrame, linkClicked, newWindow),
            decision);
    }

    void aPageOpensWindowsAndProgramsOnlyWhenItShould()
    {
        using D = WebPolicy::Decision;
        const QUrl own(u"http://127.0.0.1:8787"_s);
        // A window no click asked for never opens; one the user asked for
        // goes through the router or to the browser.
        QCOMPARE(WebPolicy::decideWindow(own, QUrl(u"https://example.com/"_s), false), D::Cancel);
        QCOMPARE(WebPolicy::decideWindow(own, QUrl(u"http://127.0.0.1:8787/tasks"_s), false), D::Cancel);
        QCOMPARE(WebPolicy::decideWindow(own, QUrl(u"https://example.com/"_s), true), D::Browser);
        QCOMPARE(WebPolicy::decideWindow(own, QUrl(u"http://127.0.0.1:8787/tasks"_s), true), D::Route);
        QCOMPARE(WebPolicy::decideWindow(own, QUrl(), true), D::Cancel);
        // Only web pages and mail reach the desktop's opener.
        for (const QString& fine :
             {u"https://example.com/"_s, u"http://example.com/"_s, u"mailto:ada@example.com"_s})
            QVERIFY2(WebPolicy::opensOutside(QUrl(fine)), qPrintable(fine));
        for (const QString& refused :
             {u"file:///etc/passwd"_s, u"kestro://settings"_s, u"javascript:alert(1)"_s,
              u"smb://host/share"_s, u"vscode://file/x"_s, u"ftp://example.com/"_s, u""_s})
            QVERIFY2(!WebPolicy::opensOutside(QUrl(refused)), qPrintable(refused));
    }

    void aPageOnTheSignInPageRenewsTheSession()
    {
        // The access token expired while the refresh token is good: the
        // page's cookie gets a fresh token and nobody is signed out.
        FakeService service;
        QVERIFY(service.start());
        MemorySecretStore store;
        Auth auth(service.origin(), store);
        const auto [access, refresh] = service.issueTokens();
        blockingWait(auth.store(Tokens{access, refresh, QDateTime::currentDateTimeUtc().addSecs(-60)}));
        QList<QNetworkCookie> written;
        QList<QUrl> at;
        WebSession session(service.origin(), auth, [&](const QNetworkCookie& cookie, const QUrl& origin) {
            written.append(cookie);
            at.append(origin);
        });
        QCOMPARE(blockingWait(session.renew()), WebSession::Renewal::Renewed);
        QCOMPARE(service.tokenRequests, 1);
        QCOMPARE(written.size(), 1);
        QVERIFY(written[0].value() != access.toUtf8());
        QVERIFY(service.isValidAccess(written[0].value()));
        QCOMPARE(at[0].host(), service.origin().host());
        QCOMPARE(at[0].port(), service.origin().port());
        // Kept out of the profile's cookie database, and off other sites' requests.
        QVERIFY(written[0].isSessionCookie());
        QVERIFY(written[0].isHttpOnly());
        QCOMPARE(written[0].sameSitePolicy(), QNetworkCookie::SameSite::Lax);
        const QNetworkCookie secure = WebSession::cookieFor(QUrl(u"https://kestro.app"_s), u"t"_s);
        QCOMPARE(secure.name(), QByteArray("__Host-kestro_app_token"));
        QVERIFY(secure.isSecure() && secure.domain().isEmpty() && secure.path() == u"/"_s);

        // Only a refused refresh ends the session; a service out of reach
        // writes nothing and ends nothing.
        blockingWait(
            auth.store(Tokens{access, u"refresh-unknown"_s, QDateTime::currentDateTimeUtc().addSecs(-60)}));
        QCOMPARE(blockingWait(session.renew()), WebSession::Renewal::Refused);
        QCOMPARE(written.size(), 1);
        blockingWait(auth.store(Tokens{access, refresh, QDateTime::currentDateTimeUtc().addSecs(-60)}));
        service.server.close();
        QCOMPARE(blockingWait(session.renew()), WebSession::Renewal::Unreachable);
        QCOMPARE(written.size(), 1);
        QVERIFY(auth.tokens());
    }

    void bridgeMessagesAreChecked()
    {
        const QUrl origin(u"http://127.0.0.1:8787"_s);
        const QUrl page(u"http://127.0.0.1:8787/analytics"_s);
        using K = WebPolicy::Message::Kind;
        auto read = [&](const QString& json, const QUrl& from) {
            return WebPolicy::readMessage(json, from, origin);
        };

        auto title = read(u"{\"kind\":\"title\",\"title\":\"Analytics \u00b7 Kestro\"}"_s, page);
        QVERIFY(title);
        QCOMPARE(title->kind, K::Title);
        QCOMPARE(title->text, u"Analytics"_s);
        auto open = read(u"{\"kind\":\"open\",\"path\":\"/crm/customers?segment=a#top\"}"_s, page);
        QVERIFY(open);
        QCOMPARE(open->kind, K::Open);
        QCOMPARE(open->text, u"/crm/customers?segment=a#top"_s);
        QVERIFY(read(u"{\"kind\":\"changed\"}"_s, page));

        // Dropped without a word:
        QVERIFY(!read(u"{\"kind\":\"title\",\"title\":\"x\"}"_s, QUrl(u"https://ads.example/frame"_s)));
        QVERIFY(!read(u"{\"kind\":\"open\",\"path\":\"//evil.example/x\"}"_s, page));
        QVERIFY(!read(u"{\"kind\":\"open\",\"path\":\"https://evil.example/x\"}"_s, page));
        QVERIFY(!read(u"{\"kind\":\"title\",\"title\":3}"_s, page));
        QVERIFY(!read(u"{\"kind\":\"title\"}"_s, page));
        QVERIFY(!read(u"{\"kind\":7}"_s, page));
        QVERIFY(!read(u"[\"title\"]"_s, page));
        QVERIFY(!read(u"not json"_s, page));
        QVERIFY(!read(u"{\"kind\":\"replay\",\"message\":{}}"_s, page));

        QVERIFY(WebPolicy::isSignInLanding(QUrl(u"http://h/login?next=/tasks"_s)));
        QVERIFY(WebPolicy::isSignInLanding(QUrl(u"http://h/signup"_s)));
        QVERIFY(!WebPolicy::isSignInLanding(QUrl(u"http://h/loginx"_s)));
        QVERIFY(!WebPolicy::isSignInLanding(QUrl(u"http://h/tasks"_s)));
    }

    void routesFindTheirPage()
    {
        // The native settings show hosts, cookies and reports; another tab
        // is the service's page.
        QCOMPARE(PageCatalog::kindOf(Route::parse(u"/analytics/settings?tab=crawlers"_s)),
                 PageCatalog::Kind::Web);
        QCOMPARE(PageCatalog::kindOf(Route::parse(u"/analytics/settings?site=s1"_s)),
                 PageCatalog::Kind::Native);
        QCOMPARE(PageCatalog::kindOf(Route::parse(u"/analytics/goals/signup"_s)), PageCatalog::Kind::Web);
        QCOMPARE(PageCatalog::kindOf(Route::parse(u"/kest/nova/chat"_s)), PageCatalog::Kind::Native);
        QCOMPARE(PageCatalog::kindOf(Route::parse(u"/kest/nova/settings"_s)), PageCatalog::Kind::Web);
        QCOMPARE(PageCatalog::kindOf(Route::parse(u"/nowhere"_s)), PageCatalog::Kind::Missing);
        QCOMPARE(PageCatalog::kindOf(Route::parse(u"/docsearch"_s)), PageCatalog::Kind::Missing);
        QCOMPARE(PageCatalog::titleOf(Route::parse(u"/activity?view=you"_s)), u"Needs you"_s);
        QCOMPARE(PageCatalog::titleOf(Route::parse(u"/activity"_s)), u"Home"_s);
        QCOMPARE(PageCatalog::titleOf(Route::parse(u"/crm/customers"_s)), u"Customers"_s);
        // A native page is one object per path: its query is handed over,
        // another path of the same page is another page.
        const auto home = PageCatalog::pageOf(Route::parse(u"/activity"_s));
        QCOMPARE(home.kind, PageCatalog::Kind::Native);
        QCOMPARE(PageCatalog::pageOf(Route::parse(u"/activity?view=you"_s)).identity, home.identity);
        // Every place the sidebar offers has a page.
        for (const auto& place : PageCatalog::placeList())
            QVERIFY2(PageCatalog::kindOf(Route::parse(place.path)) != PageCatalog::Kind::Missing,
                     qPrintable(place.path));
    }

    void paletteListsPlacesTeammatesThenTheServicesMatches()
    {
        const QVariantList mates{
            QVariantMap{{u"handle"_s, u"nova"_s}, {u"name"_s, u"Nova"_s}, {u"title"_s, u"Team lead"_s}},
            QVariantMap{{u"handle"_s, u"quill"_s}, {u"name"_s, u"Quill"_s}, {u"title"_s, u"Writer"_s}}};
        auto hrefs = [](const QVariantList& items) {
            QStringList out;
            for (const QVariant& item : items)
                out.append(item.toMap().value(u"href"_s).toString());
            return out;
        };
        QCOMPARE(hrefs(PaletteModel::localItems(u"TASK"_s, mates)), QStringList{u"/tasks"_s});
        QCOMPARE(hrefs(PaletteModel::localItems(u"writer"_s, mates)), QStringList{u"/kest/quill/chat"_s});
        QCOMPARE(PaletteModel::localItems(QString(), mates).size(), PageCatalog::placeList().size() + 2);

        const QVariantList remote{
            QVariantMap{{u"href"_s, u"/tasks"_s}, {u"title"_s, u"Tasks"_s}},
            QVariantMap{{u"href"_s, u"/tasks/NW-12"_s}, {u"title"_s, u"Fix the task board"_s}},
            QVariantMap{{u"href"_s, QString()}, {u"title"_s, u"nowhere"_s}}};
        QCOMPARE(hrefs(PaletteModel::merge(PaletteModel::localItems(u"task"_s, mates), remote)),
                 (QStringList{u"/tasks"_s, u"/tasks/NW-12"_s}));
    }

    void aSecondLaunchHandsItsLinksToTheFirst()
    {
        const QString name = u"kestro-test-%1"_s.arg(QCoreApplication::applicationPid());
        SingleInstance second(name);
        QVERIFY(!second.handOff({QUrl(u"kestro://tasks"_s)})); // nobody is running yet

        SingleInstance first(name);
        QVERIFY(first.listen());
        QSignalSpy received(&first, &SingleInstance::received);
        QVERIFY(second.handOff({QUrl(u"kestro://settings?tab=billing"_s), QUrl(u"kestro://kest"_s)}));
        QTRY_COMPARE(received.count(), 2);
        QCOMPARE(received.at(0).at(0).toUrl(), QUrl(u"kestro://settings?tab=billing"_s));
        QCOMPARE(received.at(1).at(0).toUrl(), QUrl(u"kestro://kest"_s));
        // No links: just come to the front.
        QVERIFY(second.handOff({}));
        QTRY_COMPARE(received.count(), 3);
        QVERIFY(received.at(2).at(0).toUrl().isEmpty());
        // `kestro --palette`: the palette, and no link besides.
        QSignalSpy palette(&first, &SingleInstance::paletteRequested);
        QVERIFY(second.handOff({}, true));
        QTRY_COMPARE(palette.count(), 1);
        QCOMPARE(received.count(), 3);

        // One serves: the lock keeps a third from taking the socket over.
        SingleInstance third(name);
        QVERIFY(!third.listen());
        // The socket is the user's alone.
        const QFileInfo socketFile(first.address());
        QVERIFY2(socketFile.exists() && !(socketFile.permissions() & (QFile::ReadOther | QFile::WriteOther)),
                 qPrintable(first.address()));

        // Only "kestro:" addresses are taken, and an endless line ends the
        // connection instead of filling memory.
        QLocalSocket raw;
        raw.connectToServer(first.address());
        QVERIFY(raw.waitForConnected(1000));
        raw.write("file:///etc/passwd\nhttps://evil.example/\nkestro://tasks\n");
        QTRY_COMPARE(received.count(), 4);
        QCOMPARE(received.at(3).at(0).toUrl(), QUrl(u"kestro://tasks"_s));
        raw.write(QByteArray(9000, 'k'));
        QTRY_COMPARE(raw.state(), QLocalSocket::UnconnectedState);
        QCOMPARE(received.count(), 4);
        QCOMPARE(readHandOffLine("kestro://kest\r\n"), std::optional<QUrl>(QUrl(u"kestro://kest"_s)));
        QCOMPARE(readHandOffLine("\n"), std::optional<QUrl>(QUrl()));
        QCOMPARE(readHandOffLine("kestro:// bad url"), std::nullopt);
    }

    void registersItselfForKestroLinksWhenNobodyDoes()
    {
        // A stand-in xdg-mime: answers the query from a file, notes the
        // default it is given.
        QTemporaryDir home;
        QVERIFY(home.isValid());
        QDir(home.path()).mkpath(u"bin"_s);
        const QString tool = home.filePath(u"bin/xdg-mime"_s);
        QFile script(tool);
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\nhere=$(dirname \"$0\")\n"
                     "if [ \"$1\" = query ]; then cat \"$here/answer\" 2>/dev/null; exit 0; fi\n"
                     "echo \"$@\" > \"$here/set\"\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        const QByteArray path = qgetenv("PATH");
        const std::optional<QByteArray> data = qEnvironmentVariableIsSet("XDG_DATA_HOME")
                                                   ? std::optional(qgetenv("XDG_DATA_HOME"))
                                                   : std::nullopt;
        qputenv("PATH", home.filePath(u"bin"_s).toUtf8() + ':' + path);
        qputenv("XDG_DATA_HOME", home.filePath(u"data"_s).toUtf8());
        auto registerNow = [] {
            std::optional<bool> registered;
            SchemeHandler::ensureRegistered(u"/opt/My Apps/kestro"_s, [&](bool done) { registered = done; });
            [&] { QTRY_VERIFY(registered.has_value()); }();
            return registered.value_or(false);
        };
        QVERIFY(registerNow());
        QFile entry(home.filePath(u"data/applications/kestro-url-handler.desktop"_s));
        QVERIFY(entry.open(QIODevice::ReadOnly));
        const QByteArray written = entry.readAll();
        QVERIFY2(written.contains("Exec=\"/opt/My Apps/kestro\" %u\n"), written.constData());
        QVERIFY(written.contains("MimeType=x-scheme-handler/kestro;"));
        QFile set(home.filePath(u"bin/set"_s));
        QVERIFY(set.open(QIODevice::ReadOnly));
        QCOMPARE(set.readAll().trimmed(),
                 QByteArray("default kestro-url-handler.desktop x-scheme-handler/kestro"));
        set.close();
        // Once a handler is there (an installed package's), nothing changes.
        QVERIFY(set.remove());
        QFile answer(home.filePath(u"bin/answer"_s));
        QVERIFY(answer.open(QIODevice::WriteOnly));
        answer.write("kestro.desktop\n");
        answer.close();
        QVERIFY(!registerNow());
        QVERIFY(!QFile::exists(home.filePath(u"bin/set"_s)));
        // Quoted, escaped, and escaped again as a string: /a"b$c% reads back.
        QVERIFY(SchemeHandler::desktopEntry(u"/a\"b$c%"_s).contains(u"Exec=\"/a\\\\\"b\\\\$c%%\" %u\n"_s));
        qputenv("PATH", path);
        if (data)
            qputenv("XDG_DATA_HOME", *data);
        else
            qunsetenv("XDG_DATA_HOME");
    }

    void bellCountsReadsAndClears()
    {
        SignedInClient world;
        Client::setShared(world.client.get());
        QJsonArray items{QJsonObject{{u"id"_s, u"n1"_s},
                                     {u"kind"_s, u"reply"_s},
                                     {u"verb"_s, u"replied"_s},
                                     {u"title"_s, u"Nova replied"_s},
                                     {u"text"_s, u"Done."_s},
                                     {u"href"_s, u"/kest"_s},
                                     {u"read"_s, false},
                                     {u"at"_s, u"2026-11-21T10:00:00Z"_s}},
                         QJsonObject{{u"id"_s, u"n2"_s},
                                     {u"kind"_s, u"task"_s},
                                     {u"verb"_s, u"finished"_s},
                                     {u"title"_s, u"Atlas finished NW-3"_s},
                                     {u"text"_s, u""_s},
                                     {u"href"_s, u"/tasks/NW-3"_s},
                                     {u"read"_s, false},
                                     {u"at"_s, u"2026-11-21T09:00:00Z"_s}}};
        QStringList readIds;
        int calls = 0;
        world.service.setActionHandler([&](const QByteArray&, const QByteArray& action,
                                           const QJsonValue& args,
                                           const TestHttpServer::Request&) -> TestHttpServer::Response {
            ++calls;
            auto unread = [&] {
                int n = 0;
                for (const QJsonValue& item : items)
                    n += !item[u"read"_s].toBool();
                return n;
            };
            if (action == "notificationCountAction")
                return jsonAnswer(QJsonObject{{u"unread"_s, unread()}});
            if (action == "notificationsAction")
                return jsonAnswer(QJsonObject{{u"items"_s, items}, {u"unread"_s, unread()}});
            if (action == "readNotificationsAction") {
                for (const QJsonValue& id : args.toArray().at(0).toArray()) {
                    readIds.append(id.toString());
                    for (QJsonValueRef item : items)
                        if (item[u"id"_s] == id) {
                            QJsonObject changed = item.toObject();
                            changed[u"read"_s] = true;
                            item = changed;
                        }
                }
                return jsonAnswer(QJsonObject{{u"unread"_s, unread()}});
            }
            if (action == "clearNotificationsAction") {
                items = {};
                return jsonAnswer(QJsonObject{{u"done"_s, true}});
            }
            return {404, "{}"};
        });

        BellModel bell;
        bell.refreshCount();
        bell.load();
        QTest::qWait(50);
        QCOMPARE(calls, 0); // not polling while signed out

        bell.setActive(true);
        QTRY_COMPARE(bell.unread(), 2);
        bell.load();
        QTRY_COMPARE(bell.items().size(), 2);
        bell.markRead(u"n1"_s);
        QVERIFY(bell.items().at(0).toMap().value(u"read"_s).toBool()); // at once
        QTRY_COMPARE(bell.unread(), 1);
        bell.markAllRead();
        QTRY_COMPARE(bell.unread(), 0);
        QCOMPARE(readIds, (QStringList{u"n1"_s, u"n2"_s}));
        bell.clear();
        QTRY_VERIFY(bell.items().isEmpty());

        bell.setActive(false);
        QCOMPARE(bell.unread(), 0);
        Client::setShared(nullptr);
    }
};

QTEST_GUILESS_MAIN(TestShellModels)
#include "tst_shell_models.moc"
