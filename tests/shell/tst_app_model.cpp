// The app model against a fake service over loopback: launch with and
// without a stored sign-in, sign-in and its refusals, the frame's failure
// and retry, sign-out, workspace switching, deep links and data changes.

#include "shell/AppModel.h"
#include "shell/Router.h"

#include "FakeService.h"
#include "service/Auth.h"
#include "service/BlockingWait.h"
#include "service/Client.h"
#include "service/MemorySecretStore.h"

#include <QJsonArray>
#include <QSignalSpy>
#include <QTest>
#include <QUrlQuery>

using namespace Kestro;
using namespace KestroTest;
using namespace Qt::Literals::StringLiterals;

namespace {

QJsonObject frameOf(const QString& workspace, const QString& name, const QString& role = u"owner"_s)
{
    return QJsonObject{
        {u"user"_s,
         QJsonObject{{u"id"_s, u"u1"_s}, {u"name"_s, u"Maya"_s}, {u"email"_s, u"maya@example.com"_s}}},
        {u"workspace"_s,
         QJsonObject{{u"id"_s, workspace}, {u"name"_s, name}, {u"slug"_s, workspace}, {u"role"_s, role}}},
        {u"workspaces"_s, QJsonArray{}},
        {u"counts"_s,
         QJsonObject{{u"needsYou"_s, 1}, {u"tasks"_s, 2}, {u"inbox"_s, 0}, {u"notifications"_s, 3}}},
        {u"kest"_s, QJsonArray{}},
    };
}

// One fake service, one client, one app model; the service's frame and
// workspace switch are scripted per test.
struct World {
    FakeService service;
    MemorySecretStore store;
    std::unique_ptr<Auth> auth;
    std::unique_ptr<Client> client;
    std::unique_ptr<Router> router;
    std::unique_ptr<AppModel> app;
    QList<QUrl> browsed;
    int frameCalls = 0;
    int badgeClears = 0;
    int webClears = 0;
    int revocationsAtWebClear = -1;
    int failFrames = 0;            // the next n frame loads answer 500
    bool revalidateFrames = false; // frame answers ask for a data refresh
    QStringList frameRedirects;    // the next frame loads send the app to these paths
    int signIns = 0;
    QString workspace = u"w1"_s;
    QString switchRefusal;
    std::function<std::optional<QUrl>(const QUrl&)> browser; // the sign-in sheet's stand-in

    explicit World(bool signedIn)
    {
        if (!service.start())
            qFatal("The test server could not listen on 127.0.0.1.");
        auth = std::make_unique<Auth>(service.origin(), store);
        if (signedIn) {
            const auto [access, refresh] = service.issueTokens();
            blockingWait(auth->store(Tokens{access, refresh, QDateTime::currentDateTimeUtc().addSecs(3600)}));
        }
        client = std::make_unique<Client>(service.origin(), *auth);
        Client::setShared(client.get());
        router = std::make_unique<Router>(service.origin(), Route::parse(u"/activity"_s),
                                          [this](const QUrl& url) { browsed.append(url); });
        AppModel::Desktop desktop;
        desktop.authenticate = [this](QUrl authorize) -> QCoro::Task<std::optional<QUrl>> {
            ++signIns;
            co_return browser ? browser(authorize) : std::nullopt;
        };
        desktop.clearBadge = [this] { ++badgeClears; };
        desktop.clearWebSession = [this] {
            ++webClears;
            revocationsAtWebClear = service.revocations;
        };
        app = std::make_unique<AppModel>(*client, *router, std::move(desktop));

        service.setActionHandler([this](const QByteArray& module, const QByteArray& action,
                                        const QJsonValue& args,
                                        const TestHttpServer::Request&) -> TestHttpServer::Response {
            if (module == "shell" && action == "frame") {
                ++frameCalls;
                if (failFrames > 0) {
                    --failFrames;
                    return {500, "down"};
                }
                if (!frameRedirects.isEmpty())
                    return jsonAnswer(QJsonValue::Null,
                                      QJsonObject{{u"redirect"_s, frameRedirects.takeFirst()}});
                return jsonAnswer(
                    frameOf(workspace, workspace == u"w1"_s ? u"Northwind Studio"_s : u"Lakeside Labs"_s,
                            workspace == u"w1"_s ? u"owner"_s : u"viewer"_s),
                    revalidateFrames
                        ? QJsonObject{{u"revalidate"_s, QJsonArray{QJsonObject{{u"path"_s, u"/"_s}}}}}
                        : QJsonObject{});
            }
            if (module == "app" && action == "switchWorkspaceAction") {
                if (!switchRefusal.isEmpty())
                    return jsonAnswer(QJsonObject{{u"error"_s, switchRefusal}});
                workspace = args.toArray().at(0).toString();
                return jsonAnswer(QJsonObject{{u"done"_s, true}});
            }
            return {404, "{}"};
        });
    }
    ~World()
    {
        app.reset();
        Client::setShared(nullptr);
    }
    QString workspaceName() const
    {
        return app->frame().value(u"workspace"_s).toMap().value(u"name"_s).toString();
    }
};

} // namespace

class TestAppModel : public QObject {
    Q_OBJECT
private slots:
    void launchWithoutSignInMakesNoFrameCall()
    {
        World world(false);
        QCOMPARE(world.app->phase(), AppModel::Phase::Launching);
        world.app->start();
        QTRY_COMPARE(world.app->phase(), AppModel::Phase::SignedOut);
        QCOMPARE(world.frameCalls, 0);
        QVERIFY(world.app->frame().isEmpty());
    }

    void launchWithSignInShowsTheFrameAndSignsOutOnce()
    {
        World world(true);
        world.app->start();
        QTRY_COMPARE(world.app->phase(), AppModel::Phase::SignedIn);
        QCOMPARE(world.workspaceName(), u"Northwind Studio"_s);
        QVERIFY(world.app->canWrite());

        world.router->open(u"/tasks"_s);
        world.app->signOut();
        QCOMPARE(world.app->phase(), AppModel::Phase::SignedOut);
        QVERIFY(world.app->frame().isEmpty());
        QCOMPARE(world.badgeClears, 1);
        QCOMPARE(world.router->route().path, u"/activity"_s);
        QVERIFY(!world.router->canGoBack());
        QTRY_COMPARE(world.webClears, 1);
        QTRY_COMPARE(world.service.revocations, 1);
        // The web session's cookie goes before the revoke is even asked.
        QCOMPARE(world.revocationsAtWebClear, 0);
        QVERIFY(!world.auth->tokens());

        // The second time there is nothing to do.
        world.app->signOut();
        QTest::qWait(50);
        QCOMPARE(world.badgeClears, 1);
        QCOMPARE(world.webClears, 1);
        QCOMPARE(world.service.revocations, 1);
    }

    void aFailedFrameShowsItsMessageAndTryAgainRecovers()
    {
        World world(true);
        world.failFrames = 1;
        world.app->start();
        QTRY_COMPARE(world.app->frameError(), u"The server answered 500."_s);
        QCOMPARE(world.app->phase(), AppModel::Phase::Launching);
        world.app->reload();
        QTRY_COMPARE(world.app->phase(), AppModel::Phase::SignedIn);
        QVERIFY(world.app->frameError().isEmpty());
    }

    void aFrameThatFailsAfterSignInIsTriedAgainWithoutSigningInAgain()
    {
        World world(false);
        world.app->start();
        QTRY_COMPARE(world.app->phase(), AppModel::Phase::SignedOut);
        world.browser = [&world](const QUrl& authorize) {
            return std::optional<QUrl>(world.service.approve(authorize));
        };
        world.failFrames = 1;
        world.app->signIn();
        QTRY_VERIFY(!world.app->isSigningIn());
        // The failure page, not the sign-in card.
        QCOMPARE(world.app->phase(), AppModel::Phase::Launching);
        QCOMPARE(world.app->frameError(), u"The server answered 500."_s);
        QVERIFY(world.app->signInError().isEmpty());
        world.app->reload();
        QTRY_COMPARE(world.app->phase(), AppModel::Phase::SignedIn);
        QCOMPARE(world.signIns, 1);
    }

    void aRevalidateOnTheFrameDoesNotLoop()
    {
        World world(true);
        world.app->start();
        QTRY_COMPARE(world.app->phase(), AppModel::Phase::SignedIn);
        world.revalidateFrames = true;
        const int frames = world.frameCalls;
        world.app->restartDataRefresh();
        QTRY_COMPARE(world.frameCalls, frames + 1);
        QTest::qWait(500);
        QCOMPARE(world.frameCalls, frames + 1);
        QVERIFY(world.app->frameError().isEmpty());
    }

    void aWorkspaceInSetupShowsItsStepsThenItsFrame()
    {
        // The frame call sends a workspace that is not set up to its setup:
        // no frame and no failure, the step to show.
        World world(true);
        world.frameRedirects = {u"/setup/business"_s};
        world.app->start();
        QTRY_COMPARE(world.app->setupPath(), u"/setup/business"_s);
        QTRY_VERIFY(!world.app->isLoadingFrame());
        QCOMPARE(world.app->phase(), AppModel::Phase::Launching);
        QVERIFY(world.app->frameError().isEmpty());
        QCOMPARE(world.router->route().text(), u"/setup/business"_s);
        QCOMPARE(world.frameCalls, 1);

        // Its link to the next step moves the setup on, not the frame.
        world.router->open(u"/setup/launch"_s);
        QCOMPARE(world.app->setupPath(), u"/setup/launch"_s);
        QCOMPARE(world.frameCalls, 1);

        // The last step sends the app on: the frame loads, on that page,
        // with no way back into the setup.
        world.router->open(u"/activity?view=you"_s);
        QTRY_COMPARE(world.app->phase(), AppModel::Phase::SignedIn);
        QVERIFY(world.app->setupPath().isEmpty());
        QCOMPARE(world.router->route().text(), u"/activity?view=you"_s);
        QVERIFY(!world.router->canGoBack());

        // A workspace sent back to its setup while it shows (a switch, a
        // reload): the setup takes the frame's place, the old frame goes.
        world.frameRedirects = {u"/setup/business"_s};
        world.app->reload();
        QTRY_COMPARE(world.app->phase(), AppModel::Phase::Launching);
        QCOMPARE(world.app->setupPath(), u"/setup/business"_s);
        QVERIFY(world.app->frame().isEmpty());
        QVERIFY(world.app->frameError().isEmpty());

        // Signing out from the setup leaves nothing of it.
        world.app->signOut();
        QVERIFY(world.app->setupPath().isEmpty());
        QCOMPARE(world.router->route().text(), u"/activity"_s);
    }

    void aFrameSentElsewhereOpensThatPageOnceItShows()
    {
        World world(true);
        world.frameRedirects = {u"/settings?tab=billing"_s};
        world.app->start();
        QTRY_COMPARE(world.app->phase(), AppModel::Phase::SignedIn);
        QCOMPARE(world.frameCalls, 2);
        QCOMPARE(world.router->route().text(), u"/settings?tab=billing"_s);

        // A service that keeps sending it elsewhere gets a sentence, not a
        // loop.
        World stuck(true);
        stuck.frameRedirects = {u"/settings"_s, u"/settings"_s, u"/settings"_s};
        stuck.app->start();
        QTRY_VERIFY(!stuck.app->frameError().isEmpty());
        QVERIFY2(stuck.app->frameError().startsWith(u"The service sent Kestro elsewhere"_s),
                 qPrintable(stuck.app->frameError()));
        QCOMPARE(stuck.frameCalls, 2);
    }

    void signInThroughTheWebSession()
    {
        World world(false);
        world.app->start();
        QTRY_COMPARE(world.app->phase(), AppModel::Phase::SignedOut);

        // Given up: back on the sign-in page, no error.
        world.app->signIn();
        QTRY_VERIFY(!world.app->isSigningIn());
        QCOMPARE(world.app->phase(), AppModel::Phase::SignedOut);
        QVERIFY(world.app->signInError().isEmpty());

        // Refused on the consent page: the service's words on the card.
        world.browser = [](const QUrl& authorize) {
            const QString state = QUrlQuery(authorize).queryItemValue(u"state"_s);
            return std::optional<QUrl>(QUrl(
                u"kestro://oauth/callback?error=access_denied&error_description=You%20said%20no.&state="_s +
                state));
        };
        world.app->signIn();
        QTRY_COMPARE(world.app->signInError(), u"You said no."_s);
        QCOMPARE(world.app->phase(), AppModel::Phase::SignedOut);

        // Allowed: signed in, the frame shows, the error is gone.
        world.browser = [&world](const QUrl& authorize) {
            return std::optional<QUrl>(world.service.approve(authorize));
        };
        world.app->signIn();
        QVERIFY(world.app->isSigningIn());
        QTRY_COMPARE(world.app->phase(), AppModel::Phase::SignedIn);
        QVERIFY(!world.app->isSigningIn());
        QVERIFY(world.app->signInError().isEmpty());
        QVERIFY(world.auth->tokens());
    }

    void deepLinksWaitForTheFrameAndSignInLinksNeverNavigate()
    {
        World world(true);
        QSignalSpy callbacks(world.app.get(), &AppModel::callbackArrived);
        world.app->openUrl(QUrl(u"kestro://settings?tab=billing"_s));
        QCOMPARE(world.router->route().path, u"/activity"_s);
        world.app->start();
        QTRY_COMPARE(world.app->phase(), AppModel::Phase::SignedIn);
        QCOMPARE(world.router->route().text(), u"/settings?tab=billing"_s);

        world.app->openUrl(QUrl(u"kestro://oauth/callback?code=x"_s));
        QCOMPARE(callbacks.count(), 1);
        QCOMPARE(world.router->route().text(), u"/settings?tab=billing"_s);
        world.app->openUrl(QUrl(u"https://example.com/x"_s));
        QCOMPARE(world.router->route().text(), u"/settings?tab=billing"_s);
    }

    void aBurstOfChangesRefreshesOnce()
    {
        World world(true);
        world.app->start();
        QTRY_COMPARE(world.app->phase(), AppModel::Phase::SignedIn);
        const int before = world.router->tick();
        const int frames = world.frameCalls;
        for (int i = 0; i < 5; ++i)
            world.app->dataChanged();
        QTRY_COMPARE(world.router->tick(), before + 1);
        QTRY_COMPARE(world.frameCalls, frames + 1);
        QTest::qWait(400);
        QCOMPARE(world.router->tick(), before + 1);
    }

    void switchingWorkspace()
    {
        World world(true);
        world.app->start();
        QTRY_COMPARE(world.app->phase(), AppModel::Phase::SignedIn);
        world.router->open(u"/tasks"_s);

        world.switchRefusal = u"You are no longer a member of Lakeside Labs."_s;
        world.app->switchWorkspace(u"w2"_s);
        QTRY_COMPARE(world.app->switchError(), world.switchRefusal);
        QCOMPARE(world.workspaceName(), u"Northwind Studio"_s);
        QCOMPARE(world.router->route().path, u"/tasks"_s);

        world.switchRefusal.clear();
        world.app->switchWorkspace(u"w2"_s);
        QTRY_COMPARE(world.workspaceName(), u"Lakeside Labs"_s);
        QVERIFY(world.app->switchError().isEmpty());
        QVERIFY(!world.app->canWrite()); // a viewer there
        // Another workspace starts at its home with no history.
        QCOMPARE(world.router->route().path, u"/activity"_s);
        QVERIFY(!world.router->canGoBack());
    }
};

QTEST_GUILESS_MAIN(TestAppModel)
#include "tst_app_model.moc"
