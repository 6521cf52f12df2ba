// The service client against a real HTTP server on 127.0.0.1: the request it
// builds, the single refresh-and-repeat, sign-in redirects, effects, cookies,
// and the errors a broken answer or network ends in.

#include "SignedInClient.h"

#include "service/AppLink.h"
#include "service/Auth.h"
#include "service/BlockingWait.h"
#include "service/CallError.h"
#include "service/Client.h"
#include "service/HttpExchange.h"
#include "service/MemorySecretStore.h"
#include "service/ServiceError.h"
#include "service/Wire.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QTest>

using namespace Kestro;
using namespace KestroTest;
using namespace Qt::Literals::StringLiterals;

namespace {

class RecordingApp final : public AppLink {
public:
    void signOutFromService() override { ++signOuts; }
    void restartDataRefresh() override { ++refreshes; }
    void openAppPath(const QString& path) override { opened.append(path); }
    void startSetup(const QString& path) override { setups.append(path); }
    int signOuts = 0;
    int refreshes = 0;
    QStringList opened;
    QStringList setups;
};

// One client, signed in at a fake service, with the app link recorded.
struct Rig : SignedInClient {
    RecordingApp app;
    Rig() { client->setAppLink(&app); }

    int actionRequests() const
    {
        int n = 0;
        for (const auto& request : service.server.requests())
            n += request.path().startsWith("/api/app/");
        return n;
    }
};

template <typename Error>
Error callFailure(Client& client, const QString& module = u"m"_s, const QString& action = u"a"_s)
{
    try {
        blockingWait(client.call(module, action, {}));
    } catch (const Error& error) {
        return error;
    } catch (const ServiceError& other) {
        qFatal("Expected another error, got: %s", qPrintable(other.description()));
    }
    qFatal("The call did not fail.");
}

} // namespace

class ClientTest : public QObject {
    Q_OBJECT
private slots:
    void buildsTheRequest()
    {
        Rig rig;
        rig.client->setPreferredLanguages({u"de-CH"_s, u"de"_s, u"en-US"_s, u"en"_s, u"fr"_s, u"it"_s});
        const QByteArray answer = blockingWait(
            rig.client->call(u"vault"_s, u"updateVaultItemAction"_s,
                             {JSONValue::Object{{"url", "https://a/b"}, {"b", 1}}, JSONValue::absent(), 3}));
        QCOMPARE(rig.service.server.requests().size(), 1);
        const TestHttpServer::Request request = rig.service.server.requests().first();
        QCOMPARE(request.method, QByteArray("POST"));
        QCOMPARE(request.target, QByteArray("/api/app/vault/updateVaultItemAction"));
        QCOMPARE(request.header("content-type"), QByteArray("application/json"));
        QCOMPARE(request.header("authorization"), "Bearer " + rig.access.toUtf8());
        QCOMPARE(request.header("accept-language"), QByteArray("de-CH,de,en-US"));
        QCOMPARE(request.header("user-agent"), QByteArray("KestroMac/0"));
        static const QRegularExpression uuid(
            u"^[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}$"_s);
        QVERIFY2(uuid.match(QString::fromLatin1(request.header("x-request-id"))).hasMatch(),
                 request.header("x-request-id"));
        // Keys sorted, slashes as they are, the absent marker in its place.
        QCOMPARE(request.body,
                 QByteArray("{\"args\":[{\"b\":1,\"url\":\"https://a/b\"},{\"$undefined\":true},3]}"));
        QVERIFY(answer.startsWith("{\"value\":{\"action\":\"updateVaultItemAction\""));

        blockingWait(rig.client->call(u"home"_s, u"home"_s, {}));
        QCOMPARE(rig.service.server.requests().last().body, QByteArray(R"({"args":[]})"));
        QVERIFY(rig.service.server.requests().last().header("x-request-id") !=
                request.header("x-request-id"));
    }

    void oneRefreshAfterA401()
    {
        Rig rig;
        rig.service.expireAccess(rig.access);
        blockingWait(rig.client->call(u"m"_s, u"a"_s, {}));
        QCOMPARE(rig.service.tokenRequests, 1);
        QCOMPARE(rig.actionRequests(), 2);
        QVERIFY(rig.auth->tokens()->access != rig.access);
        QCOMPARE(rig.service.server.requests().last().header("authorization"),
                 "Bearer " + rig.auth->tokens()->access.toUtf8());
        QCOMPARE(rig.app.signOuts, 0);
    }

    void twoUnauthorizedAnswersSignOut()
    {
        Rig rig;
        rig.service.setActionHandler([](auto&&...) { return TestHttpServer::Response{401, "{}"}; });
        const CallError error = callFailure<CallError>(*rig.client);
        QCOMPARE(error, CallError::signedOut());
        QCOMPARE(error.description(), u"Sign in again."_s);
        QCOMPARE(rig.service.tokenRequests, 1);
        QCOMPARE(rig.actionRequests(), 2);
        QCOMPARE(rig.app.signOuts, 1);
    }

    void concurrentUnauthorizedCallsShareOneRefresh()
    {
        Rig rig;
        rig.service.expireAccess(rig.access);
        rig.service.tokenDelayMs = 100; // keep the refresh open while the others arrive
        std::vector<QCoro::Task<QByteArray>> calls;
        for (int i = 0; i < 10; ++i)
            calls.push_back(rig.client->call(u"m"_s, u"a%1"_s.arg(i), {}));
        for (auto& call : calls)
            QVERIFY(blockingWait(std::move(call)).contains("\"action\""));
        QCOMPARE(rig.service.tokenRequests, 1);
        QCOMPARE(rig.actionRequests(), 20);
    }

    void refusedTokenAlreadyReplacedDoesNotRefresh()
    {
        Rig rig;
        const QString old = rig.access;
        rig.service.expireAccess(old);
        blockingWait(rig.auth->refresh(old)); // another call refreshed
        QCOMPARE(rig.service.tokenRequests, 1);
        blockingWait(rig.auth->refresh(old)); // a late 401 for the old token
        QCOMPARE(rig.service.tokenRequests, 1);
        blockingWait(rig.client->call(u"m"_s, u"a"_s, {}));
        QCOMPARE(rig.service.tokenRequests, 1);
    }

    void signedOutSendsNothing()
    {
        Rig rig;
        blockingWait(rig.auth->store(std::nullopt));
        QCOMPARE(callFailure<CallError>(*rig.client), CallError::signedOut());
        QCOMPARE(rig.service.server.requests().size(), 0);
        QCOMPARE(rig.app.signOuts, 1);
    }

    void signInRedirects()
    {
        Rig rig;
        int served = 0;
        rig.service.setActionHandler([&](auto&&...) {
            ++served;
            return jsonAnswer(served == 1 ? QJsonValue() : QJsonValue(7),
                              served == 1 ? QJsonObject{{u"redirect"_s, u"/login?next=%2Ftasks"_s}}
                                          : QJsonObject{});
        });
        QCOMPARE(blockingWait(rig.client->call(u"m"_s, u"a"_s, {})), QByteArray(R"({"value":7})"));
        QCOMPARE(rig.service.tokenRequests, 1);
        QVERIFY(rig.app.opened.isEmpty());

        // A sign-in redirect to the repeat too: signed out.
        rig.service.setActionHandler([](auto&&...) {
            return jsonAnswer(QJsonValue(), {{u"redirect"_s, u"/signup"_s}});
        });
        QCOMPARE(callFailure<CallError>(*rig.client), CallError::signedOut());
        QCOMPARE(rig.app.signOuts, 1);
    }

    void ordinaryRedirects()
    {
        Rig rig;
        rig.service.setActionHandler([](auto&&...) {
            return jsonAnswer(1, {{u"redirect"_s, u"/loginx"_s}});
        });
        const CallError error = callFailure<CallError>(*rig.client);
        QCOMPARE(error, CallError::redirect(u"/loginx"_s));
        QCOMPARE(error.description(), u"Opened /loginx."_s);
        QCOMPARE(rig.app.opened, QStringList{u"/loginx"_s});
        QCOMPARE(rig.service.tokenRequests, 0);

        rig.service.setActionHandler([](auto&&...) {
            return jsonAnswer(1, {{u"redirect"_s, u"/setup/plan"_s}});
        });
        QCOMPARE(callFailure<CallError>(*rig.client), CallError::redirect(u"/setup/plan"_s));
        QCOMPARE(rig.app.setups, QStringList{u"/setup/plan"_s});
    }

    void anHttpRedirectIsAnAnswer()
    {
        // Followed, a redirect would carry the bearer token to whatever
        // address it names.
        TestHttpServer elsewhere;
        QVERIFY(elsewhere.listen());
        Rig rig;
        const QByteArray target = elsewhere.origin().toString().toUtf8() + "/api/app/m/a";
        for (const int status : {301, 302, 303, 307, 308}) {
            rig.service.setActionHandler([&](auto&&...) {
                return TestHttpServer::Response{status, {}, {}, {{"Location", target}}};
            });
            QCOMPARE(callFailure<CallError>(*rig.client), CallError::http(status, {}));
        }
        QCOMPARE(elsewhere.requests().size(), 0);
    }

    void anAnswerHasASizeAndATimeLimit()
    {
        TestHttpServer server;
        QVERIFY(server.listen());
        QNetworkAccessManager network;
        auto failureOf = [&](TestHttpServer::Response response, HttpLimits limits) {
            server.setHandler([response](const TestHttpServer::Request&) { return response; });
            try {
                blockingWait(exchange(network.get(QNetworkRequest(server.origin())), limits));
            } catch (const TransportError& error) {
                return error;
            }
            qFatal("The answer was read.");
        };
        const TransportError large = failureOf({200, QByteArray(4096, 'x')}, {1024, 10'000});
        QCOMPARE(large.kind(), TransportError::Kind::TooLarge);
        QVERIFY2(large.description().endsWith(u"so it was left unread. Try again later."_s),
                 qPrintable(large.description()));
        // A byte every 50 ms never stalls the transfer, but the deadline ends it.
        TestHttpServer::Response trickle{200, QByteArray(1000, 'x')};
        trickle.trickleMs = 50;
        QCOMPARE(failureOf(trickle, {1024, 400}).kind(), TransportError::Kind::TimedOut);
        // Within the limits, the answer is read whole.
        server.setHandler([](const TestHttpServer::Request&) { return TestHttpServer::Response{200, "{}"}; });
        QCOMPARE(blockingWait(exchange(network.get(QNetworkRequest(server.origin())), {1024, 10'000})).body,
                 QByteArray("{}"));
    }

    void notFoundAfterEffects()
    {
        Rig rig;
        rig.service.setActionHandler([](auto&&...) {
            return jsonAnswer(
                3, {{u"notFound"_s, true},
                    {u"revalidate"_s, QJsonArray{QJsonObject{{u"path"_s, u"/tasks"_s}}}},
                    {u"cookies"_s, QJsonArray{QJsonObject{{u"name"_s, u"seen"_s}, {u"value"_s, u"1"_s}}}}});
        });
        const CallError error = callFailure<CallError>(*rig.client);
        QCOMPARE(error, CallError::notFound());
        QCOMPARE(error.description(), u"This page could not be found."_s);
        QCOMPARE(rig.app.refreshes, 1);
        QCOMPARE(rig.client->cookies().all().size(), 1);

        // An empty revalidate list changes nothing.
        rig.service.setActionHandler([](auto&&...) {
            return jsonAnswer(3, {{u"revalidate"_s, QJsonArray{}}});
        });
        blockingWait(rig.client->call(u"m"_s, u"a"_s, {}));
        QCOMPARE(rig.app.refreshes, 1);
    }

    void unexpectedStatuses()
    {
        Rig rig;
        const QByteArray page = "<html>" + QByteArray(2000 - 13, 'x') + "</html>";
        QCOMPARE(page.size(), 2000);
        rig.service.setActionHandler([&](auto&&...) {
            return TestHttpServer::Response{500, page, "text/html"};
        });
        const CallError error = callFailure<CallError>(*rig.client);
        QCOMPARE(error.kind(), CallError::Kind::Http);
        QCOMPARE(error.status(), 500);
        QCOMPARE(error.body(), QString::fromUtf8(page.left(500)));
        QCOMPARE(error.description(), u"The server answered 500."_s);

        rig.service.setActionHandler([](auto&&...) { return TestHttpServer::Response{204, {}, {}}; });
        callFailure<JsonSyntaxError>(*rig.client);
    }

    void brokenAnswers()
    {
        Rig rig;
        rig.service.setActionHandler([](auto&&...) {
            return TestHttpServer::Response{200, "<html>oops</html>"};
        });
        QVERIFY(callFailure<JsonSyntaxError>(*rig.client)
                    .description()
                    .startsWith(u"The service's answer is not JSON"_s));

        // Through the typed layer, shape problems read as sentences with the path.
        auto typedFailure = [&](const char* body) {
            rig.service.setActionHandler([body](auto&&...) { return TestHttpServer::Response{200, body}; });
            try {
                blockingWait(rig.client->fetch<double>(u"analytics"_s, u"dashboard"_s, {}));
            } catch (const CallError& error) {
                return error.description();
            }
            return u"(no error)"_s;
        };
        QCOMPARE(typedFailure("[1,2]"),
                 u"The answer did not read: analytics/dashboard:  is not Dictionary."_s);
        QCOMPARE(typedFailure(R"({"value":"12"})"),
                 u"The answer did not read: analytics/dashboard: .value is not Double."_s);
        QCOMPARE(typedFailure(R"({"range":1})"),
                 u"The answer did not read: analytics/dashboard: missing .value."_s);
        QCOMPARE(typedFailure(R"({"value":{"$undefined":true}})"),
                 u"The answer did not read: analytics/dashboard: .value has no Double."_s);
        QCOMPARE(typedFailure(R"({"value":1,"cookies":"x"})"),
                 u"The answer did not read: analytics/dashboard: .cookies is not Array."_s);
        rig.service.setActionHandler([](auto&&...) {
            return TestHttpServer::Response{200, R"({"value":{"$date":"2024-02-29"}})"};
        });
        try {
            blockingWait(rig.client->fetch<WireDate>(u"m"_s, u"a"_s, {}));
            QFAIL("a bad date decoded");
        } catch (const CallError& error) {
            QCOMPARE(error.description(),
                     u"The answer did not read: m/a: .value: Not an ISO date: 2024-02-29."_s);
        }
        // An "error" in a 200 answer is an ordinary result.
        rig.service.setActionHandler([](auto&&...) {
            return jsonAnswer(QJsonObject{{u"error"_s, u"No room left."_s}});
        });
        const JSONValue value = blockingWait(rig.client->fetch<JSONValue>(u"m"_s, u"a"_s, {}));
        QCOMPARE(value["error"], JSONValue("No room left."));
    }

    void transportFailures()
    {
        Rig rig;
        rig.service.setActionHandler([](auto&&...) {
            TestHttpServer::Response dropped;
            dropped.drop = true;
            return dropped;
        });
        QVERIFY(!callFailure<TransportError>(*rig.client).description().isEmpty());
        rig.service.server.close();
        const TransportError refused = callFailure<TransportError>(*rig.client);
        QCOMPARE(refused.kind(), TransportError::Kind::Unreachable);
        QVERIFY(refused.description().endsWith(u"Check the connection and try again."_s));
    }

    void downloads()
    {
        Rig rig;
        rig.service.setFileHandler([](const TestHttpServer::Request& request) {
            return TestHttpServer::Response{200, "bytes of " + request.path(), "image/png"};
        });
        QCOMPARE(blockingWait(rig.client->download(u"/api/docs/a/images/1.png"_s)),
                 QByteArray("bytes of /api/docs/a/images/1.png"));
        QCOMPARE(rig.service.server.requests().last().header("authorization"),
                 "Bearer " + rig.access.toUtf8());
        rig.service.expireAccess(rig.access); // one refresh, then the file
        QCOMPARE(blockingWait(rig.client->download(u"/x.png"_s)), QByteArray("bytes of /x.png"));
        QCOMPARE(rig.service.tokenRequests, 1);
        try {
            blockingWait(rig.client->download(u"https://elsewhere.example/x.png"_s));
            QFAIL("a foreign address got the token");
        } catch (const CallError& error) {
            QCOMPARE(error, CallError::notFound());
        }
        rig.service.setFileHandler([](auto&&) { return TestHttpServer::Response{404, "gone"}; });
        try {
            blockingWait(rig.client->download(u"/missing.png"_s));
            QFAIL("a missing file downloaded");
        } catch (const CallError& error) {
            QCOMPARE(error.status(), 404);
        }
    }

    void cookies()
    {
        Rig rig;
        const QDateTime now = QDateTime::fromSecsSinceEpoch(1'800'000'000, Qt::UTC);
        rig.client->setClock([now] { return now; });
        auto cookie = [](const QString& name, const QString& value, const QJsonObject& options = {}) {
            QJsonObject c{{u"name"_s, name}, {u"value"_s, value}};
            if (!options.isEmpty())
                c.insert(u"options"_s, options);
            return c;
        };
        QJsonArray list{cookie(u"session"_s, u"abc"_s, {{u"maxAge"_s, 3600.9}, {u"path"_s, u"/app"_s}}),
                        cookie(u"theme"_s, u"dark"_s), cookie(u"gone"_s, u"x"_s)};
        rig.service.setActionHandler([&](auto&&...) { return jsonAnswer(1, {{u"cookies"_s, list}}); });
        blockingWait(rig.client->call(u"m"_s, u"a"_s, {}));
        const auto all = rig.client->cookies().all();
        QCOMPARE(all.size(), 3);
        for (const QNetworkCookie& c : all) {
            QCOMPARE(c.domain(), u"127.0.0.1"_s);
            QVERIFY(!c.isSecure()); // plain http
            if (c.name() == "session") {
                QCOMPARE(c.path(), u"/app"_s);
                QCOMPARE(now.secsTo(c.expirationDate()), 3600);
            } else {
                QCOMPARE(c.path(), u"/"_s);
                QVERIFY(c.isSessionCookie());
            }
        }
        // They go with the next request.
        list = {};
        blockingWait(rig.client->call(u"m"_s, u"a"_s, {}));
        QVERIFY(rig.service.server.requests().last().header("cookie").contains("theme=dark"));

        // An empty value, or a maximum age of 0 or less, deletes by name.
        list = {cookie(u"theme"_s, u""_s), cookie(u"gone"_s, u"y"_s, {{u"maxAge"_s, 0}}),
                cookie(u"session"_s, u"z"_s, {{u"maxAge"_s, -1}})};
        blockingWait(rig.client->call(u"m"_s, u"a"_s, {}));
        QCOMPARE(rig.client->cookies().all().size(), 0);

        // Over https the cookies are marked secure.
        MemorySecretStore store;
        Auth auth(QUrl(u"https://kestro.example"_s), store);
        Client secure(QUrl(u"https://kestro.example"_s), auth);
        secure.applyCookie({u"s"_s, u"v"_s, std::nullopt});
        QVERIFY(secure.cookies().all().value(0).isSecure());
    }
};

QTEST_GUILESS_MAIN(ClientTest)
#include "tst_client.moc"
