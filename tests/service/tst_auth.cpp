// Sign-in and tokens: PKCE shapes, the callback's checks, the token
// endpoint's answers, when a refresh happens, sign-out, and the keychain
// item's shape. Against the fake service on 127.0.0.1 with an in-memory store.

#include "FakeService.h"

#include "service/Auth.h"
#include "service/AuthError.h"
#include "service/BlockingWait.h"
#include "service/CallError.h"
#include "service/LogRedaction.h"
#include "service/MemorySecretStore.h"

#include <QCoroSignal>
#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>
#include <QUrlQuery>

using namespace Kestro;
using namespace KestroTest;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Rig {
    FakeService service;
    MemorySecretStore store;
    std::unique_ptr<Auth> auth;
    QDateTime now = QDateTime::fromSecsSinceEpoch(1'800'000'000, Qt::UTC);

    Rig()
    {
        if (!service.start())
            qFatal("The test server could not listen on 127.0.0.1.");
        auth = std::make_unique<Auth>(service.origin(), store);
        auth->setClock([this] { return now; });
    }
    QString key() const { return service.origin().toString(); }

    // Tokens the service accepts, stored as if signed in earlier, expiring in `seconds`.
    Tokens signedInFor(int seconds)
    {
        const auto [access, refresh] = service.issueTokens();
        const Tokens tokens{access, refresh, now.addSecs(seconds)};
        store.items.insert(key(), tokens.toJson());
        return tokens;
    }
};

// A secret store that never answers, like a hung keyring daemon.
class SilentStore final : public SecretStore {
public:
    QCoro::Task<ReadResult> read(QString) override
    {
        co_await qCoro(&m_never, &QTimer::timeout);
        co_return ReadResult{};
    }
    QCoro::Task<Outcome> write(QString, QByteArray) override
    {
        co_await qCoro(&m_never, &QTimer::timeout);
        co_return Outcome{};
    }
    QCoro::Task<Outcome> remove(QString) override
    {
        co_await qCoro(&m_never, &QTimer::timeout);
        co_return Outcome{};
    }

private:
    QTimer m_never;
};

template <typename Error, typename T> Error failure(QCoro::Task<T> task)
{
    try {
        blockingWait(std::move(task));
    } catch (const Error& error) {
        return error;
    } catch (const std::exception& other) {
        qFatal("Expected another error, got: %s", other.what());
    }
    qFatal("The task did not fail.");
}

} // namespace

class AuthTest : public QObject {
    Q_OBJECT
private slots:
    void beginBuildsAPkceRequest()
    {
        Rig rig;
        const Authorization a = rig.auth->begin(u"kestro://oauth/callback"_s);
        static const QRegularExpression urlSafe(u"^[A-Za-z0-9_-]+$"_s);
        QCOMPARE(a.verifier.size(), 64);
        QCOMPARE(a.state.size(), 32);
        QVERIFY(urlSafe.match(a.verifier).hasMatch());
        QVERIFY(urlSafe.match(a.state).hasMatch());
        QCOMPARE(a.url.path(), u"/oauth/authorize"_s);
        const QList<QPair<QString, QString>> items = QUrlQuery(a.url).queryItems(QUrl::FullyDecoded);
        QStringList names;
        for (const auto& item : items)
            names.append(item.first);
        QCOMPARE(names, (QStringList{u"client_id"_s, u"redirect_uri"_s, u"response_type"_s,
                                     u"code_challenge"_s, u"code_challenge_method"_s, u"state"_s}));
        const QUrlQuery query(a.url);
        QCOMPARE(query.queryItemValue(u"client_id"_s), u"kestro-mac"_s);
        QCOMPARE(query.queryItemValue(u"redirect_uri"_s, QUrl::FullyDecoded), u"kestro://oauth/callback"_s);
        QCOMPARE(query.queryItemValue(u"response_type"_s), u"code"_s);
        QCOMPARE(query.queryItemValue(u"code_challenge_method"_s), u"S256"_s);
        const QString challenge = query.queryItemValue(u"code_challenge"_s);
        QCOMPARE(challenge.size(), 43);
        QCOMPARE(challenge,
                 QString::fromLatin1(
                     QCryptographicHash::hash(a.verifier.toUtf8(), QCryptographicHash::Sha256)
                         .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals)));
        // Every sign-in starts afresh.
        const Authorization b = rig.auth->begin(u"kestro://oauth/callback"_s);
        QVERIFY(b.verifier != a.verifier && b.state != a.state);
    }

    void finishSignsInAndStores()
    {
        Rig rig;
        const Authorization a = rig.auth->begin(QString(Auth::redirectUri));
        const Tokens tokens = blockingWait(rig.auth->finish(rig.service.approve(a.url), a));
        QVERIFY(rig.service.isValidAccess(tokens.access.toUtf8()));
        QCOMPARE(rig.now.secsTo(tokens.expiresAt), 3600);
        // The stored item: {"access", "refresh", "expiresAt" in seconds since 2001}.
        const QJsonObject item = QJsonDocument::fromJson(rig.store.items.value(rig.key())).object();
        QCOMPARE(item.value(u"access"_s).toString(), tokens.access);
        QCOMPARE(item.value(u"refresh"_s).toString(), tokens.refresh);
        QCOMPARE(item.value(u"expiresAt"_s).toDouble(), 1'800'003'600.0 - 978'307'200.0);
        QCOMPARE(blockingWait(rig.auth->accessToken()), std::optional<QString>(tokens.access));

        // The token request's form: sorted by name, percent-encoded.
        const QByteArray body = rig.service.server.requests().last().body;
        QVERIFY2(body.startsWith("client_id=kestro-mac&code=code-"), body);
        QVERIFY2(body.contains("&redirect_uri=kestro%3A%2F%2Foauth%2Fcallback"), body);
        QVERIFY(body.indexOf("code_verifier=") < body.indexOf("grant_type=authorization_code"));
        QCOMPARE(rig.service.server.requests().last().header("content-type"),
                 QByteArray("application/x-www-form-urlencoded"));
        QVERIFY(rig.service.server.requests().last().header("user-agent").startsWith("KestroMac/0"));

        // The same code a second time is refused with the service's words.
        const QUrl reused(u"kestro://oauth/callback?code=code-1&state="_s + a.state);
        const AuthError reuse = failure<AuthError>(rig.auth->finish(reused, a));
        QCOMPARE(reuse, AuthError::refused(u"The sign-in code expired."_s));
    }

    void badCallbacks_data()
    {
        QTest::addColumn<QString>("query"); // STATE stands for the right state
        QTest::addColumn<QString>("description");
        const QString bad = u"Kestro did not send the app a sign-in. Try again."_s;
        QTest::newRow("code without state") << u"code=abc"_s << bad;
        QTest::newRow("wrong state") << u"code=abc&state=other"_s << bad;
        QTest::newRow("no code") << u"state=STATE"_s << bad;
        QTest::newRow("denied without description") << u"error=access_denied"_s << u"access_denied"_s;
        QTest::newRow("denied with description")
            << u"error=access_denied&error_description=You%20said%20no.&error=later"_s << u"You said no."_s;
    }
    void badCallbacks()
    {
        QFETCH(QString, query);
        QFETCH(QString, description);
        Rig rig;
        const Authorization a = rig.auth->begin(QString(Auth::redirectUri));
        const QUrl callback(u"kestro://oauth/callback?"_s + QString(query).replace(u"STATE"_s, a.state));
        QCOMPARE(failure<AuthError>(rig.auth->finish(callback, a)).description(), description);
        QCOMPARE(rig.service.tokenRequests, 0);
    }

    void tokenEndpointFailures()
    {
        Rig rig;
        const Authorization a = rig.auth->begin(QString(Auth::redirectUri));
        // A wrong verifier: refused with the service's description.
        Authorization tampered = a;
        tampered.verifier = u"x"_s.repeated(64);
        QCOMPARE(failure<AuthError>(rig.auth->finish(rig.service.approve(a.url), tampered)),
                 AuthError::refused(u"The sign-in did not match."_s));
        // Any other status is an HTTP error with no body text.
        rig.service.tokenStatus = 503;
        const CallError error = failure<CallError>(rig.auth->finish(rig.service.approve(a.url), a));
        QCOMPARE(error, CallError::http(503, {}));
        QCOMPARE(error.description(), u"The server answered 503."_s);
        // 401 without any text: "Sign in again."
        rig.service.server.setHandler([](const TestHttpServer::Request&) {
            return TestHttpServer::Response{401, "not json"};
        });
        QCOMPARE(failure<AuthError>(rig.auth->finish(rig.service.approve(a.url), a)),
                 AuthError::refused(u"Sign in again."_s));
        QVERIFY(!rig.store.items.contains(rig.key()));
    }

    void aStoreThatNeverAnswersMeansSignedOutWithAReason()
    {
        FakeService service;
        QVERIFY(service.start());
        SilentStore silent;
        Auth auth(service.origin(), silent);
        auth.setStoreDeadline(std::chrono::milliseconds(200));
        QCOMPARE(blockingWait(auth.accessToken()), std::nullopt);
        QVERIFY2(auth.storeProblem().startsWith(u"The secret store did not answer"_s),
                 qPrintable(auth.storeProblem()));

        // Nor does it hold up signing in (the tokens work for this run) or
        // signing out.
        const Authorization a = auth.begin(QString(Auth::redirectUri));
        QTest::ignoreMessage(QtWarningMsg, "The secret store did not answer, so Kestro could not keep your "
                                           "sign-in there.");
        blockingWait(auth.finish(service.approve(a.url), a));
        QVERIFY(auth.tokens());
        QTest::ignoreMessage(QtWarningMsg, "The secret store did not answer, so Kestro could not remove your "
                                           "sign-in there.");
        blockingWait(auth.signOut());
        QVERIFY(!auth.tokens());
    }

    void tokenAnswersAreCheckedBeforeUse()
    {
        // A token that would put a line break into every request's headers
        // is refused and never stored.
        Rig rig;
        const Authorization a = rig.auth->begin(QString(Auth::redirectUri));
        rig.service.server.setHandler([](const TestHttpServer::Request&) {
            return TestHttpServer::Response{
                200, R"({"access_token":"abc\r\nX-Injected: yes","refresh_token":"r1","expires_in":60})"};
        });
        QCOMPARE(failure<CallError>(rig.auth->finish(rig.service.approve(a.url), a)).kind(),
                 CallError::Kind::Decode);
        QVERIFY(!rig.store.items.contains(rig.key()));

        // A lifetime past any sane range ends in the future, not the past.
        for (const double seconds : {1e16, 1e300}) {
            Rig far;
            far.service.expiresIn = seconds;
            far.signedInFor(10);
            QVERIFY(blockingWait(far.auth->accessToken()));
            const qint64 left = far.now.secsTo(far.auth->tokens()->expiresAt);
            QVERIFY2(left > 3600 && left <= 10LL * 365 * 24 * 3600, qPrintable(QString::number(left)));
        }
    }

    void aRedirectNeverCarriesSecretsElsewhere()
    {
        // A 307 from the token endpoint to another origin is an answer: the
        // code and verifier are not posted there again.
        TestHttpServer elsewhere;
        QVERIFY(elsewhere.listen());
        elsewhere.setHandler([](const TestHttpServer::Request&) {
            return TestHttpServer::Response{200, R"({"access_token":"stolen","refresh_token":"stolen"})"};
        });
        Rig rig;
        const Authorization a = rig.auth->begin(QString(Auth::redirectUri));
        const QByteArray target = elsewhere.origin().toString().toUtf8() + "/api/oauth/token";
        for (const int status : {307, 308, 302}) {
            rig.service.server.setHandler([&](const TestHttpServer::Request&) {
                return TestHttpServer::Response{status, {}, {}, {{"Location", target}}};
            });
            QCOMPARE(failure<CallError>(rig.auth->finish(rig.service.approve(a.url), a)),
                     CallError::http(status, {}));
        }
        QCOMPARE(elsewhere.requests().size(), 0);
        QVERIFY(!rig.store.items.contains(rig.key()));
    }

    void refreshesOnlyWithinTheMargin()
    {
        Rig rig;
        const Tokens late = rig.signedInFor(301);
        QCOMPARE(blockingWait(rig.auth->accessToken()), std::optional<QString>(late.access));
        QCOMPARE(rig.service.tokenRequests, 0);

        Rig due;
        const Tokens soon = due.signedInFor(299);
        const std::optional<QString> fresh = blockingWait(due.auth->accessToken());
        QCOMPARE(due.service.tokenRequests, 1);
        QVERIFY(fresh && *fresh != soon.access);
        QVERIFY(due.service.isValidAccess(fresh->toUtf8()));
        // The refresh request and the rotated token in the store.
        QVERIFY(due.service.server.requests().last().body.contains("grant_type=refresh_token"));
        QCOMPARE(Tokens::fromJson(due.store.items.value(due.key()))->access, *fresh);
    }

    void tokensWithoutLifetimeLastAnHour()
    {
        Rig rig;
        rig.service.expiresIn.reset();
        rig.signedInFor(10);
        blockingWait(rig.auth->accessToken());
        QCOMPARE(rig.now.secsTo(rig.auth->tokens()->expiresAt), 3600);
    }

    void refusedRefreshSignsOut()
    {
        Rig rig;
        Tokens tokens = rig.signedInFor(10);
        tokens.refresh = u"refresh-unknown"_s;
        rig.store.items.insert(rig.key(), tokens.toJson());
        QCOMPARE(blockingWait(rig.auth->accessToken()), std::nullopt);
        QVERIFY(!rig.store.items.contains(rig.key()));
        QCOMPARE(blockingWait(rig.auth->accessToken()), std::nullopt);
        QCOMPARE(rig.service.tokenRequests, 1);
    }

    void failedRefreshKeepsTokens()
    {
        Rig rig;
        rig.signedInFor(10);
        rig.service.tokenStatus = 502;
        QCOMPARE(failure<CallError>(rig.auth->accessToken()), CallError::http(502, {}));
        QVERIFY(rig.store.items.contains(rig.key()));
        rig.service.server.close();
        failure<TransportError>(rig.auth->accessToken());
        QVERIFY(rig.auth->tokens());
    }

    void adoptsTokensAnotherCopyRefreshed()
    {
        Rig rig;
        const Tokens old = rig.signedInFor(3600);
        QCOMPARE(*blockingWait(rig.auth->accessToken()), old.access);
        const Tokens newer = rig.signedInFor(3600); // written by another running copy
        blockingWait(rig.auth->refresh(old.access));
        QCOMPARE(rig.auth->tokens()->access, newer.access);
        QCOMPARE(rig.service.tokenRequests, 0);
    }

    void keychainIsReadOnce()
    {
        Rig rig;
        rig.signedInFor(3600);
        for (int i = 0; i < 3; ++i)
            blockingWait(rig.auth->accessToken());
        QCOMPARE(rig.store.reads, 1);
        // Unreadable data means signed out.
        Rig broken;
        broken.store.items.insert(broken.key(), "{not json");
        QCOMPARE(blockingWait(broken.auth->accessToken()), std::nullopt);
    }

    void tokensBelongToOneAddress()
    {
        Rig rig;
        const Tokens tokens = rig.signedInFor(3600);
        Auth elsewhere(QUrl(u"http://127.0.0.2:9"_s), rig.store);
        QCOMPARE(blockingWait(elsewhere.accessToken()), std::nullopt);
        QCOMPARE(*blockingWait(rig.auth->accessToken()), tokens.access);
        QVERIFY(rig.store.items.contains(rig.key()));
    }

    void signOutRevokesAndForgets()
    {
        Rig rig;
        const Tokens tokens = rig.signedInFor(3600);
        blockingWait(rig.auth->signOut());
        QCOMPARE(rig.service.revocations, 1);
        const QByteArray body = rig.service.server.requests().last().body;
        QCOMPARE(body, "client_id=kestro-mac&token=" + QUrl::toPercentEncoding(tokens.refresh));
        QVERIFY(!rig.store.items.contains(rig.key()));
        QCOMPARE(blockingWait(rig.auth->accessToken()), std::nullopt);

        // Without a network the tokens are forgotten all the same.
        Rig offline;
        offline.signedInFor(3600);
        offline.service.server.close();
        blockingWait(offline.auth->signOut());
        QVERIFY(!offline.store.items.contains(offline.key()));
        QVERIFY(!offline.auth->tokens());
    }

    void logsNeverShowTokens()
    {
        Rig rig;
        const Tokens tokens = rig.signedInFor(3600);
        blockingWait(rig.auth->accessToken()); // the held tokens are now known secrets
        const QString line = LogRedaction::redact(u"sent %1 and %2"_s.arg(tokens.access, tokens.refresh));
        QVERIFY2(!line.contains(tokens.access) && !line.contains(tokens.refresh), qPrintable(line));
        QCOMPARE(LogRedaction::redact(u"Authorization: Bearer eyJabc.def-ghi"_s),
                 u"Authorization: Bearer [redacted]"_s);
        QCOMPARE(LogRedaction::redact(u"grant_type=refresh_token&refresh_token=r123&client_id=kestro-mac"_s),
                 u"grant_type=refresh_token&refresh_token=[redacted]&client_id=kestro-mac"_s);
        QCOMPARE(LogRedaction::redact(uR"({"access_token":"abc","expires_in":3600})"_s),
                 uR"({"access_token":"[redacted]","expires_in":3600})"_s);
        QCOMPARE(LogRedaction::redact(u"nothing secret here"_s), u"nothing secret here"_s);
        // The callback's code, a revoke form, the web session's cookie.
        QCOMPARE(LogRedaction::redact(u"kestro://oauth/callback?code=c0de1&state=s"_s),
                 u"kestro://oauth/callback?code=[redacted]&state=s"_s);
        QCOMPARE(LogRedaction::redact(u"token=r-42&client_id=kestro"_s),
                 u"token=[redacted]&client_id=kestro"_s);
        QCOMPARE(LogRedaction::redact(u"Cookie: __Host-kestro_app_token=abc.def; theme=dark"_s),
                 u"Cookie: __Host-kestro_app_token=[redacted]; theme=dark"_s);
        QCOMPARE(LogRedaction::redact(u"zipcode=12345 csrftoken=x"_s), u"zipcode=12345 csrftoken=x"_s);
        // Signed out, the old tokens are still hidden.
        blockingWait(rig.auth->signOut());
        const QString after = LogRedaction::redact(u"late line with %1"_s.arg(tokens.access));
        QVERIFY2(!after.contains(tokens.access), qPrintable(after));
    }
};

QTEST_GUILESS_MAIN(AuthTest)
#include "tst_auth.moc"
