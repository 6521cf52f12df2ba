// kestro-devservice over HTTP on 127.0.0.1: sign-in and its refusals, every
// implemented action decoded through the client's generated records (so the
// service answers in the shapes of schema/), the teammates' simulation, a
// restart, bad input, and concurrent writes.

#include "DevServiceProcess.h"

#include "calls/Calls.h"
#include "service/Auth.h"
#include "service/AuthError.h"
#include "service/BlockingWait.h"
#include "service/MemorySecretStore.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QUrlQuery>

using namespace Kestro;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Reply {
    int status = 0;
    QByteArray body;
    QByteArray location;
    QJsonObject object() const { return QJsonDocument::fromJson(body).object(); }
};

QNetworkAccessManager& network()
{
    static QNetworkAccessManager manager;
    return manager;
}

Reply await(QNetworkReply* reply)
{
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    if (!reply->isFinished())
        loop.exec();
    Reply answer{reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->readAll(),
                 reply->rawHeader("Location")};
    reply->deleteLater();
    return answer;
}

// One running kestro-devservice with its own data folder and port.
class DevService {
public:
    explicit DevService(QStringList extra = {}, const QString& dataDir = {})
    {
        process.start(extra, dataDir);
    }
    ~DevService() { stop(); }

    void stop()
    {
        network().clearConnectionCache(); // idle keep-alive connections would hold the server's workers
        process.stop();
    }
    QUrl origin() const { return process.origin(); }
    QUrl url(const QString& path) const { return origin().resolved(QUrl(path)); }

    Reply get(const QString& path, const QByteArray& cookie = {})
    {
        QNetworkRequest request(url(path));
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
        if (!cookie.isEmpty())
            request.setRawHeader("Cookie", cookie);
        return await(network().get(request));
    }
    Reply post(const QString& path, const QByteArray& body, const QByteArray& type,
               const QByteArray& bearer = {})
    {
        QNetworkRequest request(url(path));
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
        request.setHeader(QNetworkRequest::ContentTypeHeader, type);
        if (!bearer.isEmpty())
            request.setRawHeader("Authorization", "Bearer " + bearer);
        return await(network().post(request, body));
    }
    Reply action(const QString& name, const QJsonArray& args, const QByteArray& bearer)
    {
        return post(u"/api/app/"_s + name, QJsonDocument(QJsonObject{{u"args"_s, args}}).toJson(),
                    "application/json", bearer);
    }
    Reply token(const QList<QPair<QString, QString>>& form)
    {
        QUrlQuery query;
        for (const auto& [name, value] : form)
            query.addQueryItem(name, QString::fromLatin1(QUrl::toPercentEncoding(value)));
        return post(u"/api/oauth/token"_s, query.toString(QUrl::FullyEncoded).toUtf8(),
                    "application/x-www-form-urlencoded");
    }

    KestroTest::DevServiceProcess process{QStringLiteral(DEVSERVICE_PATH)};
};

// A signed-in client of one service, made the process's own client.
struct Session {
    MemorySecretStore store;
    std::unique_ptr<Auth> auth;
    std::unique_ptr<Client> client;

    explicit Session(DevService& service)
    {
        auth = std::make_unique<Auth>(service.origin(), store);
        const Authorization authorization = auth->begin(QString(Auth::redirectUri));
        const Reply consent = service.get(
            authorization.url.toString(QUrl::FullyEncoded).mid(service.origin().toString().size()));
        if (!consent.location.startsWith("kestro://oauth/callback"))
            qFatal("The sign-in did not come back: %d %s", consent.status,
                   consent.body.left(200).constData());
        blockingWait(auth->finish(QUrl(QString::fromUtf8(consent.location)), authorization));
        client = std::make_unique<Client>(service.origin(), *auth);
        Client::setShared(client.get());
    }
    ~Session() { Client::setShared(nullptr); }
    QByteArray access() const { return auth->tokens()->access.toUtf8(); }
};

// A sign-in started and approved on the consent page: its authorization and
// the callback address the service sent back.
std::pair<Authorization, QUrl> approved(DevService& service, Auth& auth)
{
    const Authorization authorization = auth.begin(QString(Auth::redirectUri));
    const QUrl callback(QString::fromUtf8(
        service.get(authorization.url.toString().mid(service.origin().toString().size())).location));
    return {authorization, callback};
}

template <typename Predicate> bool eventually(Predicate&& done, int timeoutMs = 20'000)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!deadline.hasExpired()) {
        if (done())
            return true;
        QTest::qWait(100);
    }
    return done();
}

Calls::app::PostKestMessageActionResult post(const QString& text, const std::optional<QString>& thread = {})
{
    JSONValue::Object input{{"text", text}};
    if (thread)
        input["threadId"] = *thread;
    return blockingWait(Calls::app::postKestMessageAction(input));
}

// The thread once no teammate answers in it any more.
Model::KestThread settledThread(const QString& threadId)
{
    std::optional<Model::KestThread> thread;
    const bool settled = eventually([&] {
        thread = blockingWait(Calls::kest::kestChat(threadId)).thread;
        return thread && thread->answering.isEmpty();
    });
    if (!settled)
        qFatal("The answers in %s never finished.", qPrintable(threadId));
    return *thread;
}

const Model::KestMessageView* replyBy(const Model::KestThread& thread, const QString& agent)
{
    for (const auto& reply : thread.replies)
        if (reply.agent == agent)
            return &reply;
    return nullptr;
}

} // namespace

class DevServiceTest : public QObject {
    Q_OBJECT
private slots:
    void signInAndItsRefusals()
    {
        DevService service({u"--auto-approve"_s});
        Session session(service);
        QVERIFY(session.auth->tokens());

        // A code works once.
        MemorySecretStore store;
        Auth auth(service.origin(), store);
        const auto [a, callback] = approved(service, auth);
        blockingWait(auth.finish(callback, a));
        try {
            blockingWait(auth.finish(callback, a));
            QFAIL("a code worked twice");
        } catch (const AuthError& error) {
            QVERIFY2(error.description().contains(u"already used"_s), qPrintable(error.description()));
        }
        // The verifier must match the challenge.
        const Authorization b = auth.begin(QString(Auth::redirectUri));
        Authorization wrong = b;
        wrong.verifier = u"v"_s.repeated(64);
        try {
            blockingWait(auth.finish(
                QUrl(QString::fromUtf8(
                    service.get(b.url.toString().mid(service.origin().toString().size())).location)),
                wrong));
            QFAIL("a wrong verifier signed in");
        } catch (const AuthError& error) {
            QVERIFY2(error.description().contains(u"proof key"_s), qPrintable(error.description()));
        }

        // Refresh tokens rotate: the old one stops working.
        const QString refresh = session.auth->tokens()->refresh;
        const QList<QPair<QString, QString>> form{{u"grant_type"_s, u"refresh_token"_s},
                                                  {u"refresh_token"_s, refresh},
                                                  {u"client_id"_s, u"kestro-mac"_s}};
        const Reply rotated = service.token(form);
        QCOMPARE(rotated.status, 200);
        QVERIFY(rotated.object().contains(u"refresh_token"_s));
        // A revoked token no longer opens actions.
        const QByteArray newAccess = rotated.object().value(u"access_token"_s).toString().toUtf8();
        QCOMPARE(service.action(u"shell/frame"_s, {}, newAccess).status, 200);
        const QString newRefresh = rotated.object().value(u"refresh_token"_s).toString();
        QCOMPARE(service
                     .post(u"/api/oauth/revoke"_s, "token=" + newRefresh.toUtf8() + "&client_id=kestro-mac",
                           "application/x-www-form-urlencoded")
                     .status,
                 200);
        QCOMPARE(service.action(u"shell/frame"_s, {}, newAccess).status, 401);
        QCOMPARE(service.action(u"shell/frame"_s, {}, "at_made_up").status, 401);
        const Reply again = service.token(form);
        QCOMPARE(again.status, 400);
        QCOMPARE(again.object().value(u"error"_s).toString(), u"invalid_grant"_s);
        QVERIFY(!again.object().value(u"error_description"_s).toString().isEmpty());
        QCOMPARE(service.action(u"shell/frame"_s, {}, {}).status, 401);

        // A broken authorization request is answered with a page that says why.
        const Reply broken = service.get(u"/oauth/authorize?client_id=someone-else"_s);
        QCOMPARE(broken.status, 400);
        QVERIFY(broken.body.contains("does not know"));
    }

    void replaysEndTheSignInAndWorkspacesKeepToThemselves()
    {
        DevService service({u"--auto-approve"_s});
        Session session(service);
        auto frameWith = [&](const QByteArray& access) {
            return service.action(u"shell/frame"_s, {}, access).status;
        };

        // A refresh token used twice means someone holds a copy: every
        // token of that sign-in stops working.
        const QList<QPair<QString, QString>> form{{u"grant_type"_s, u"refresh_token"_s},
                                                  {u"refresh_token"_s, session.auth->tokens()->refresh},
                                                  {u"client_id"_s, u"kestro-mac"_s}};
        const Reply rotated = service.token(form);
        QCOMPARE(rotated.status, 200);
        const QByteArray rotatedAccess = rotated.object().value(u"access_token"_s).toString().toUtf8();
        QCOMPARE(frameWith(rotatedAccess), 200);
        QCOMPARE(service.token(form).status, 400);
        QCOMPARE(frameWith(rotatedAccess), 401);
        QCOMPARE(service
                     .token({{u"grant_type"_s, u"refresh_token"_s},
                             {u"refresh_token"_s, rotated.object().value(u"refresh_token"_s).toString()},
                             {u"client_id"_s, u"kestro-mac"_s}})
                     .status,
                 400);

        // A code used twice takes back the tokens it gave.
        MemorySecretStore store;
        Auth auth(service.origin(), store);
        const auto [a, callback] = approved(service, auth);
        blockingWait(auth.finish(callback, a));
        const QByteArray codeAccess = auth.tokens()->access.toUtf8();
        QCOMPARE(frameWith(codeAccess), 200);
        QVERIFY_THROWS_EXCEPTION(AuthError, blockingWait(auth.finish(callback, a)));
        QCOMPARE(frameWith(codeAccess), 401);

        // Another workspace's task cannot be read, changed or deleted by
        // its id from this one.
        Session owner(service);
        const QByteArray access = owner.access();
        QCOMPARE(service.action(u"app/switchWorkspaceAction"_s, {u"w2"_s}, access).status, 200);
        const QJsonArray theirs = service.action(u"tasks/tasks"_s, {QJsonObject{}}, access)
                                      .object()
                                      .value(u"value"_s)
                                      .toObject()
                                      .value(u"tasks"_s)
                                      .toArray();
        QVERIFY(!theirs.isEmpty());
        const QString id = theirs.first().toObject().value(u"id"_s).toString();
        QCOMPARE(service.action(u"app/switchWorkspaceAction"_s, {u"w1"_s}, access).status, 200);
        const Reply read = service.action(u"tasks/task"_s, {id}, access);
        QCOMPARE(read.object().value(u"notFound"_s).toBool(), true);
        const Reply removed = service.action(u"app/deleteTaskAction"_s, {id}, access);
        QCOMPARE(removed.object().value(u"value"_s).toObject().value(u"error"_s).toString(),
                 u"That task is gone already."_s);
        QCOMPARE(service.action(u"app/switchWorkspaceAction"_s, {u"w2"_s}, access).status, 200);
        QCOMPARE(service.action(u"tasks/task"_s, {id}, access).object().value(u"notFound"_s).toBool(), false);
    }

    void consentPageAndExpiries()
    {
        DevService consent;
        MemorySecretStore store;
        Auth auth(consent.origin(), store);
        const Authorization a = auth.begin(QString(Auth::redirectUri));
        const QString query = a.url.query(QUrl::FullyEncoded);
        const Reply page = consent.get(u"/oauth/authorize?"_s + query);
        QCOMPARE(page.status, 200);
        QVERIFY(page.body.contains(">Allow<") && page.body.contains(">Deny<"));
        const Reply denied = consent.post(u"/oauth/consent"_s, query.toUtf8() + "&decision=deny",
                                          "application/x-www-form-urlencoded");
        QVERIFY(denied.location.contains("error=access_denied"));
        try {
            blockingWait(auth.finish(QUrl(QString::fromUtf8(denied.location)), a));
            QFAIL("a denied sign-in went through");
        } catch (const AuthError& error) {
            QCOMPARE(error.description(), u"You did not allow Kestro desktop."_s);
        }
        const Reply allowed = consent.post(u"/oauth/consent"_s, query.toUtf8() + "&decision=allow",
                                           "application/x-www-form-urlencoded");
        blockingWait(auth.finish(QUrl(QString::fromUtf8(allowed.location)), a));
        QVERIFY(auth.tokens());

        // Codes and tokens that have run out.
        DevService expiring({u"--auto-approve"_s, u"--code-ttl"_s, u"0"_s});
        Auth late(expiring.origin(), store);
        const Authorization b = late.begin(QString(Auth::redirectUri));
        try {
            blockingWait(late.finish(
                QUrl(QString::fromUtf8(
                    expiring.get(u"/oauth/authorize?"_s + b.url.query(QUrl::FullyEncoded)).location)),
                b));
            QFAIL("an expired code signed in");
        } catch (const AuthError& error) {
            QVERIFY2(error.description().contains(u"expired"_s), qPrintable(error.description()));
        }
        DevService shortLived({u"--auto-approve"_s, u"--token-ttl"_s, u"0"_s});
        Session session(shortLived);
        QCOMPARE(shortLived.action(u"shell/frame"_s, {}, session.access()).status, 401);
    }

    void actionsAnswerInTheDeclaredShapes()
    {
        DevService service({u"--auto-approve"_s, u"--time-scale"_s, u"50"_s});
        Session session(service);
        try {
            const auto frame = blockingWait(Calls::shell::frame());
            QCOMPARE(frame.workspace.name, u"Northwind Studio"_s);
            QCOMPARE(frame.workspaces.size(), 2);
            QVERIFY(frame.kest.size() >= 5);
            QVERIFY(std::count_if(frame.kest.begin(), frame.kest.end(),
                                  [](const auto& t) { return t.lead; }) == 1);
            blockingWait(Calls::home::home());
            const auto count = blockingWait(Calls::app::notificationCountAction());
            const auto list = blockingWait(Calls::app::notificationsAction());
            QCOMPARE(double(list.items.size()), count.unread);
            blockingWait(Calls::app::readNotificationsAction(JSONValue::Array{list.items[0].id}));
            QCOMPARE(blockingWait(Calls::app::notificationCountAction()).unread, count.unread - 1);

            const auto posted = blockingWait(
                Calls::app::postKestMessageAction(JSONValue::Object{{"text", "@atlas compare tools"}}));
            QVERIFY(!posted.error);
            QCOMPARE(*posted.started, QList<QString>{u"atlas"_s});
            const auto room = blockingWait(Calls::kest::kestChat(*posted.threadId));
            QVERIFY(room.thread);
            QVERIFY(!room.traces.isEmpty());
            const QString runId = room.traces.firstKey();
            blockingWait(Calls::kest::run(u"atlas"_s, runId));
            blockingWait(Calls::app::reactInKestAction(*posted.threadId, u"👍"_s));
            const auto empty =
                blockingWait(Calls::app::postKestMessageAction(JSONValue::Object{{"text", "  "}}));
            QCOMPARE(empty.error, std::optional<QString>(u"Tell us what you need first, then press Send."_s));

            const auto tasks = blockingWait(Calls::tasks::tasks());
            QVERIFY(!tasks.tasks.isEmpty());
            const auto page = blockingWait(Calls::tasks::task(tasks.tasks[0].key));
            QCOMPARE(page.task.key, tasks.tasks[0].key);
            const auto made = blockingWait(Calls::app::createTaskAction(
                JSONValue::Object{{"title", "Write the FAQ"}, {"assignee", "quill"}, {"project", "p1"}}));
            QVERIFY(made.key);
            blockingWait(Calls::app::commentOnTaskAction(*made.key, u"Keep it short."_s));
            blockingWait(Calls::app::watchTaskAction(*made.key, true));
            blockingWait(Calls::app::reactToTaskAction(*made.key, u"🎉"_s));
            blockingWait(Calls::app::updateTasksAction(JSONValue::Array{*made.key},
                                                       JSONValue::Object{{"priority", "high"}}));
            QVERIFY(blockingWait(Calls::tasks::task(*made.key)).task.watching);
            const auto projects = blockingWait(Calls::tasks::projects());
            blockingWait(Calls::tasks::project(projects.projects[0].id));

            const auto sites = blockingWait(Calls::analytics::sites());
            const QString site = sites.sites[0].siteId;
            blockingWait(Calls::analytics::dashboard(site));
            blockingWait(Calls::analytics::settings(site));
            for (const char* kind :
                 {"referrer", "country", "device", "browser", "os", "language", "screen", "exit"})
                QVERIFY(!blockingWait(Calls::app::analyticsBreakdownAction(site, QString::fromLatin1(kind)))
                             .rows.isEmpty());
            QVERIFY(!blockingWait(Calls::app::skillOptionsAction()).skills.isEmpty());
            QVERIFY(!blockingWait(Calls::app::attachablesAction(u"launch"_s)).items.isEmpty());
            QVERIFY(!blockingWait(Calls::app::paletteAction(u"nova"_s)).items.isEmpty());

            // The viewer's workspace reads but refuses changes, in-band.
            const QString other =
                frame.workspaces[0].current ? frame.workspaces[1].id : frame.workspaces[0].id;
            blockingWait(Calls::app::switchWorkspaceAction(other));
            QCOMPARE(blockingWait(Calls::shell::frame()).workspace.role, u"viewer"_s);
            QVERIFY(blockingWait(Calls::app::createTaskAction(JSONValue::Object{{"title", "x"}})).error);
            blockingWait(Calls::app::switchWorkspaceAction(frame.workspace.id));
            // A task that is not there is not found.
            blockingWait(Calls::tasks::task(u"NOR-999"_s));
            QFAIL("a missing task was found");
        } catch (const CallError& error) {
            QCOMPARE(error.description(), u"This page could not be found."_s);
        } catch (const ServiceError& error) {
            QFAIL(qPrintable(error.description()));
        }
    }

    // Home's day and Needs you: a fresh seed already has a day, each event
    // keeps its id from call to call, a room answer shows once, and the
    // other workspace's viewer sees that workspace's items only.
    void homeDayAndNeedsYou()
    {
        DevService service({u"--auto-approve"_s, u"--time-scale"_s, u"4"_s});
        Session session(service);
        try {
            const auto day = blockingWait(Calls::shell::activity());
            QCOMPARE(day.day, QDateTime::currentDateTimeUtc().date().toString(Qt::ISODate));
            QVERIFY(day.done >= 3 && day.failed >= 1);
            const QRegularExpression stamp(u"^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z$"_s);
            QSet<QString> actors;
            for (qsizetype i = 0; i < day.items.size(); ++i) {
                const auto& item = day.items[i];
                QVERIFY2(item.at.startsWith(day.day) && stamp.match(item.at).hasMatch(), qPrintable(item.at));
                QVERIFY2(i == 0 || day.items[i - 1].at >= item.at, qPrintable(item.id)); // newest first
                const QString page = item.kind == u"task"_s ? u"^/tasks/NOR-\\d+$"_s
                                     : item.kind == u"message"_s
                                         ? u"^/kest\\?thread=m_\\w+$"_s
                                         : u"^/kest/%1/runs/run_\\w+$"_s.arg(item.actor.id);
                QVERIFY2(QRegularExpression(page).match(item.href).hasMatch(), qPrintable(item.href));
                const QString text = item.text.value_or(QString());
                QVERIFY2(!text.contains(u'*') && !text.contains(u'`') && !text.contains(u"[1]"_s),
                         qPrintable(text));
                actors.insert(item.actor.id);
            }
            QVERIFY(actors.size() >= 4);
            QVERIFY(std::any_of(day.items.begin(), day.items.end(),
                                [](const auto& item) { return item.kind == u"failed"_s && item.text; }));
            QCOMPARE(blockingWait(Calls::shell::activity()).items, day.items);

            const auto waits = blockingWait(Calls::shell::waiting());
            QMap<QString, int> kinds;
            for (qsizetype i = 0; i < waits.items.size(); ++i) {
                const auto& item = waits.items[i];
                ++kinds[item.kind];
                QVERIFY2(i == 0 || waits.items[i - 1].at <= item.at, qPrintable(item.id)); // oldest first
                QCOMPARE(item.task.has_value(), item.kind == u"ask"_s || item.kind == u"review"_s);
                if (item.task)
                    QCOMPARE(item.href, u"/tasks/"_s + item.task->key);
            }
            const auto& counts = waits.counts;
            QCOMPARE(counts.approvals, kinds.value(u"approval"_s));
            QCOMPARE(counts.asks, kinds.value(u"ask"_s));
            QCOMPARE(counts.drafts, kinds.value(u"draft"_s));
            QCOMPARE(counts.reviews, kinds.value(u"review"_s));
            QCOMPARE(counts.approvals + counts.asks + counts.drafts + counts.reviews,
                     double(waits.items.size()));
            QVERIFY(counts.asks >= 1 && counts.drafts >= 1 && counts.reviews >= 1);
            const auto frame = blockingWait(Calls::shell::frame());
            // The sidebar's count is the number the page lists.
            QCOMPARE(frame.counts.needsYou, double(waits.items.size()));
            QCOMPARE(blockingWait(Calls::shell::waiting()).items, waits.items);
            QCOMPARE(service.action(u"shell/waiting"_s, QJsonArray{1, u"x"_s}, session.access()).status, 200);

            // A question in the room runs, then is the day's newest line, once
            // (its "replied to" notification is not a second line).
            const auto posted = blockingWait(Calls::app::postKestMessageAction(
                JSONValue::Object{{"text", "@atlas compare pricing pages"}}));
            const auto busy = blockingWait(Calls::shell::activity());
            QVERIFY(std::any_of(busy.running.begin(), busy.running.end(), [](const auto& run) {
                return run.agent.id == u"atlas"_s && run.href == u"/kest/atlas/runs/"_s + run.id;
            }));
            QVERIFY(eventually([&] { return blockingWait(Calls::shell::activity()).done == day.done + 1; }));
            const auto after = blockingWait(Calls::shell::activity());
            QVERIFY(after.running.isEmpty());
            QCOMPARE(after.items.size(), day.items.size() + 1);
            QCOMPARE(after.items[0].href, u"/kest?thread="_s + *posted.threadId);
            QCOMPARE(after.items[0].verb, u"answered in the kest chat"_s);

            QSet<QString> ours;
            for (const auto& item : after.items)
                ours.insert(item.id);
            for (const auto& item : waits.items)
                ours.insert(item.id);
            const QString other =
                frame.workspaces[0].current ? frame.workspaces[1].id : frame.workspaces[0].id;
            blockingWait(Calls::app::switchWorkspaceAction(other));
            const auto theirDay = blockingWait(Calls::shell::activity());
            const auto theirWaits = blockingWait(Calls::shell::waiting());
            QVERIFY(!theirDay.items.isEmpty() && !theirWaits.items.isEmpty());
            for (const auto& item : theirDay.items)
                QVERIFY2(!ours.contains(item.id) && !item.href.contains(u"NOR-"_s), qPrintable(item.id));
            for (const auto& item : theirWaits.items)
                QVERIFY2(!ours.contains(item.id) && (!item.task || item.task->key.startsWith(u"LAK-"_s)),
                         qPrintable(item.id));
            blockingWait(Calls::app::switchWorkspaceAction(frame.workspace.id));
        } catch (const ServiceError& error) {
            QFAIL(qPrintable(error.description()));
        }
    }

    void teammatesFinishTheirWork()
    {
        DevService service({u"--auto-approve"_s, u"--time-scale"_s, u"40"_s});
        Session session(service);
        const auto posted = blockingWait(
            Calls::app::postKestMessageAction(JSONValue::Object{{"text", "Please draft a launch e-mail"}}));
        QVERIFY(*posted.triaging); // no mention: the lead decides
        QCOMPARE(*posted.started, QList<QString>{u"quill"_s});
        QVERIFY(eventually([&] {
            const auto room = blockingWait(Calls::kest::kestChat(*posted.threadId));
            return room.thread && room.thread->replies.size() == 1 && room.answering.isEmpty();
        }));
        const auto room = blockingWait(Calls::kest::kestChat(*posted.threadId));
        const auto& reply = room.thread->replies[0];
        QCOMPARE(reply.from, u"agent"_s);
        QVERIFY(reply.text.contains(u"## "_s) && reply.text.contains(u"```"_s) &&
                reply.text.contains(u"[1]"_s));
        const auto run = blockingWait(Calls::kest::run(u"quill"_s, *reply.runId));
        QCOMPARE(run.trace.status, u"done"_s);
        QVERIFY(run.trace.endedAt);
        QVERIFY(!run.trace.rounds.isEmpty());
        // The reply made a notification.
        const auto list = blockingWait(Calls::app::notificationsAction());
        QVERIFY(std::any_of(list.items.begin(), list.items.end(),
                            [](const auto& n) { return n.verb == u"replied to"_s; }));

        // A one-to-one chat: the thread replies, then goes quiet.
        const auto started = blockingWait(Calls::app::startThreadAction(
            JSONValue::Object{{"handle", "forge"}, {"text", "Is the build green?"}}));
        QVERIFY(started.id);
        QCOMPARE(blockingWait(Calls::kest::thread(u"forge"_s, *started.id)).thread->status, u"replying"_s);
        QVERIFY(blockingWait(Calls::kest::kestChat()).answering.isEmpty()); // not the room's work
        QVERIFY(eventually([&] {
            return blockingWait(Calls::kest::thread(u"forge"_s, *started.id)).thread->status == u"idle"_s;
        }));
        const auto chat = blockingWait(Calls::kest::thread(u"forge"_s, *started.id));
        QCOMPARE(chat.thread->messages.size(), 2);
        QCOMPARE(chat.thread->messages[1].role, u"agent"_s);
        QCOMPARE(blockingWait(Calls::kest::chat(u"forge"_s)).threads.size(), 1);
        const auto followUp = blockingWait(
            Calls::app::sendMessageAction(JSONValue::Object{{"threadId", *started.id}, {"text", "Thanks!"}}));
        QVERIFY(followUp.done.value_or(false));

        // A task given to a teammate goes todo -> in_progress -> in_review.
        const auto made = blockingWait(Calls::app::createTaskAction(
            JSONValue::Object{{"title", "Collect quotes"}, {"assignee", "atlas"}}));
        QVERIFY(eventually(
            [&] { return blockingWait(Calls::tasks::task(*made.key)).task.status == u"in_review"_s; }));
    }

    void restartKeepsEverything()
    {
        QTemporaryDir data;
        QString key;
        {
            DevService first({u"--auto-approve"_s}, data.path());
            Session session(first);
            key =
                *blockingWait(Calls::app::createTaskAction(JSONValue::Object{{"title", "Survive a restart"}}))
                     .key;
        }
        DevService second({u"--auto-approve"_s}, data.path());
        Session session(second);
        QCOMPARE(blockingWait(Calls::tasks::task(key)).task.title, u"Survive a restart"_s);
    }

    void badInputIsRefusedWhole()
    {
        DevService service({u"--auto-approve"_s});
        Session session(service);
        const QByteArray token = session.access();
        struct Case {
            const char* name;
            QByteArray body;
            const char* path;
            int status;
        };
        const Case cases[] = {
            {"malformed JSON", "{\"args\": [", "/api/app/shell/frame", 400},
            {"args not a list", "{\"args\": 3}", "/api/app/shell/frame", 400},
            {"no args", "[]", "/api/app/shell/frame", 400},
            {"unknown action", "{\"args\": []}", "/api/app/shell/nothing", 404},
            {"unknown module", "{\"args\": []}", "/api/app/nothing/frame", 404},
            {"wrong argument type", "{\"args\": [3]}", "/api/app/tasks/task", 400},
            {"missing argument", "{\"args\": []}", "/api/app/tasks/task", 400},
            {"over 10 MB", "{\"args\": [\"" + QByteArray(11 * 1024 * 1024, 'x') + "\"]}",
             "/api/app/tasks/task", 413},
        };
        for (const Case& c : cases) {
            const Reply answer = service.post(QString::fromLatin1(c.path), c.body, "application/json", token);
            QVERIFY2(answer.status == c.status,
                     qPrintable(u"%1: %2"_s.arg(QLatin1String(c.name)).arg(answer.status)));
            QVERIFY2(!answer.object().value(u"error"_s).toString().isEmpty(), c.name);
        }
        // A change to two tasks, one of them missing, changes neither.
        const auto tasks = blockingWait(Calls::tasks::tasks());
        const auto before = tasks.tasks[0];
        const auto refused = blockingWait(Calls::app::updateTasksAction(
            JSONValue::Array{before.key, "NOR-404"}, JSONValue::Object{{"status", "canceled"}}));
        QVERIFY(refused.error);
        QCOMPARE(blockingWait(Calls::tasks::task(before.key)).task.status, before.status);
        // A bad member type mid-change rolls the whole change back.
        const Reply typed = service.action(
            u"app/updateTasksAction"_s,
            QJsonArray{QJsonArray{before.key}, QJsonObject{{u"title"_s, u"New"_s}, {u"priority"_s, 5}}},
            token);
        QCOMPARE(typed.status, 400);
        QCOMPARE(blockingWait(Calls::tasks::task(before.key)).task.title, before.title);
    }

    void webPagesFollowTheSessionCookie()
    {
        DevService service({u"--auto-approve"_s});
        Session session(service);
        const Reply signedOut = service.get(u"/settings"_s);
        QCOMPARE(signedOut.status, 302);
        QCOMPARE(signedOut.location, QByteArray("/login?next=%2Fsettings"));
        QCOMPARE(service.get(u"/settings"_s, "kestro_app_token=at_not_real").status, 302);
        const QByteArray cookie = "theme=dark; kestro_app_token=" + session.access();
        const struct {
            const char* path;
            const char* title;
        } pages[] = {{"/analytics/settings?tab=crawlers", "Analytics settings · Kestro"},
                     {"/settings", "Settings · Kestro"},
                     {"/crm/customers", "Customers · Kestro"},
                     {"/incidents", "Incidents · Kestro"},
                     {"/tests", "Tests · Kestro"},
                     {"/surveys", "Surveys · Kestro"},
                     {"/sessions/replays", "Replays · Kestro"}};
        for (const auto& page : pages) {
            const Reply reply = service.get(QString::fromLatin1(page.path), cookie);
            QCOMPARE(reply.status, 200);
            QVERIFY2(reply.body.contains("<title>" + QByteArray(page.title) + "</title>"), page.path);
            QVERIFY(reply.body.contains("data-theme-switch"));
            QVERIFY(reply.body.contains("kestro:changed"));
            QVERIFY(reply.body.contains("localStorage.getItem('theme')"));
            QVERIFY(reply.body.contains("href=\"/incidents\""));
        }
        const Reply icon = service.get(u"/api/icons/chatgpt.com"_s);
        QCOMPARE(icon.status, 200);
        QVERIFY(icon.body.startsWith("<svg"));
        QCOMPARE(service.get(u"/api/icons/chatgpt.com"_s).body, icon.body); // the same every time
        QVERIFY(service.get(u"/api/flags/DE"_s).body.startsWith("<svg"));
        const Reply feed = service.get(u"/appcast.xml"_s);
        QCOMPARE(feed.status, 200);
        QVERIFY(feed.body.contains("<enclosure") && feed.body.contains("sparkle:version=\"0.2.0\""));
        QCOMPARE(service.get(u"/download"_s).status, 200);
    }

    // The demo room has weeks behind it: hundreds of messages, oldest first,
    // threads with the runs that wrote their answers, reactions by several
    // people, task chips, and one thread too long to show whole.
    void roomHasItsHistory()
    {
        DevService service({u"--auto-approve"_s});
        Session session(service);
        const auto room = blockingWait(Calls::kest::kestChat());
        QVERIFY2(room.messages.size() >= 400 && room.messages.size() <= 500,
                 qPrintable(QString::number(room.messages.size())));
        for (qsizetype i = 1; i < room.messages.size(); ++i)
            QVERIFY2(room.messages[i - 1].at <= room.messages[i].at, qPrintable(room.messages[i].id));
        const QDateTime first = QDateTime::fromString(room.messages.first().at, Qt::ISODateWithMs);
        QVERIFY(first.daysTo(QDateTime::currentDateTimeUtc()) >= 14);
        const auto count = [&](auto&& predicate) {
            return std::count_if(room.messages.begin(), room.messages.end(), predicate);
        };
        QVERIFY(count([](const auto& m) { return m.replies > 0; }) >= 150);
        QVERIFY(count([](const auto& m) { return m.from == u"agent"_s; }) >= 20);
        QVERIFY(count([](const auto& m) { return m.task && m.task->key.startsWith(u"NOR-"_s); }) >= 1);
        QVERIFY(count([](const auto& m) {
                    return std::any_of(m.reactions.begin(), m.reactions.end(),
                                       [](const auto& r) { return r.by.size() >= 2; });
                }) >= 5);

        // A thread shows its latest 50 replies and counts them all.
        const auto longest =
            std::max_element(room.messages.begin(), room.messages.end(),
                             [](const auto& a, const auto& b) { return a.replies < b.replies; });
        QVERIFY(longest->replies > 50);
        const auto thread = *blockingWait(Calls::kest::kestChat(longest->id)).thread;
        QCOMPARE(thread.total, longest->replies);
        QCOMPARE(thread.replies.size(), 50);
        QCOMPARE(thread.replies.last().at, *longest->lastReplyAt);

        // An answer from the past has the run that wrote it.
        const auto asked = std::find_if(room.messages.begin(), room.messages.end(), [](const auto& m) {
            return !m.to.isEmpty() && m.replies > 0 && m.replies <= 6;
        });
        QVERIFY(asked != room.messages.end());
        const auto opened = blockingWait(Calls::kest::kestChat(asked->id));
        const auto& answer = opened.thread->replies.first();
        QCOMPARE(answer.agent, std::optional<QString>(asked->to.first()));
        QVERIFY(answer.runId && opened.traces.contains(*answer.runId));
        const auto run = blockingWait(Calls::kest::run(*answer.agent, *answer.runId));
        QCOMPARE(run.run.status, answer.failed ? u"failed"_s : u"done"_s);
    }

    // Each teammate answers in its own voice; a message posted in the thread
    // while they work goes into their answers instead of starting new ones.
    void teammatesAnswerInTheirOwnVoices()
    {
        DevService service({u"--auto-approve"_s, u"--time-scale"_s, u"8"_s});
        Session session(service);
        const auto posted = post(u"@atlas @forge how do we speed up the pricing page?"_s);
        QCOMPARE(*posted.started, (QList<QString>{u"atlas"_s, u"forge"_s}));
        const auto more = post(u"Check it on mobile too"_s, posted.threadId);
        QCOMPARE(more.handed.value_or(QList<QString>()), (QList<QString>{u"atlas"_s, u"forge"_s}));
        QVERIFY(more.started->isEmpty() && !*more.triaging);

        const auto thread = settledThread(*posted.threadId);
        QCOMPARE(thread.replies.size(), 3); // the follow-up and one answer each
        const auto* atlas = replyBy(thread, u"atlas"_s);
        const auto* forge = replyBy(thread, u"forge"_s);
        QVERIFY(atlas && forge);
        QVERIFY(atlas->text != forge->text);
        for (const auto* answer : {atlas, forge}) {
            QVERIFY2(!answer->failed && answer->text.contains(u"pricing page"_s), qPrintable(answer->text));
            QVERIFY2(answer->text.contains(u"You also asked"_s) && answer->text.contains(u"mobile"_s),
                     qPrintable(answer->text));
            QVERIFY(answer->text.count(u'\n') >= 5);
        }
        // The researcher: a table and the sources it cites.
        QVERIFY2(atlas->text.contains(u"|---"_s) && atlas->text.contains(u"[2]"_s), qPrintable(atlas->text));
        QVERIFY(atlas->cites.size() >= 2 && atlas->cites.size() <= 3);
        for (const auto& cite : atlas->cites)
            QVERIFY2(cite.type == u"web"_s && cite.kind == u"page"_s && cite.id.startsWith(u"https://"_s),
                     qPrintable(cite.id));
        // The engineer: the change and how to check it.
        QVERIFY2(forge->text.contains(u"```diff"_s) &&
                     (forge->text.contains(u"```ts"_s) || forge->text.contains(u"```bash"_s)),
                 qPrintable(forge->text));

        const auto run = blockingWait(Calls::kest::run(u"atlas"_s, *atlas->runId));
        QCOMPARE(run.run.status, u"done"_s);
        QCOMPARE(run.run.cites, atlas->cites);
        QVERIFY(run.run.rounds.size() >= 3);
        for (const auto& round : run.run.rounds)
            QVERIFY(!round.startedAt.isEmpty() && round.endedAt && *round.endedAt >= round.startedAt);
        QVERIFY(run.run.rounds.last().doing.value_or(QString()).startsWith(u"Taking in the new request"_s));
        const auto calls = [&](auto&& predicate) {
            return std::any_of(run.run.rounds.begin(), run.run.rounds.end(), [&](const auto& round) {
                return std::any_of(round.calls.begin(), round.calls.end(), predicate);
            });
        };
        QVERIFY(calls([](const auto& call) { return call.input.toQJsonValue().isObject(); }));
        QVERIFY(calls([](const auto& call) { return call.tool == u"search_web"_s; }));
        QVERIFY(std::any_of(run.trace.rounds.begin(), run.trace.rounds.end(), [](const auto& round) {
            return std::any_of(round.steps.begin(), round.steps.end(),
                               [](const auto& step) { return step.chip && step.chip->host; });
        }));
    }

    // @all starts everyone; "stop" in the thread stops the teammate it names,
    // or everyone still at work there. A message that names nobody goes
    // through the lead, who says whom it went to when more than one fits.
    void everyoneStartsAndStopStops()
    {
        DevService service({u"--auto-approve"_s}); // real time: the runs outlast the posts here
        Session session(service);
        QList<QString> kest;
        for (const auto& mate : blockingWait(Calls::kest::kestChat()).kest)
            kest.append(mate.handle);
        const auto all = post(u"@all what should we cut to ship on time?"_s);
        QCOMPARE(*all.started, kest);
        QCOMPARE(blockingWait(Calls::kest::kestChat(*all.threadId)).thread->answering.size(), kest.size());

        const auto one = post(u"@forge stop"_s, all.threadId);
        QCOMPARE(one.stopped.value_or(QList<QString>()), QList<QString>{u"forge"_s});
        QVERIFY(one.started->isEmpty());
        const auto after = *blockingWait(Calls::kest::kestChat(*all.threadId)).thread;
        QCOMPARE(after.answering.size(), kest.size() - 1);
        QVERIFY(std::none_of(after.answering.begin(), after.answering.end(),
                             [](const auto& a) { return a.agent == u"forge"_s; }));
        const auto* stopped = replyBy(after, u"forge"_s);
        QVERIFY(stopped && !stopped->failed);
        QVERIFY2(stopped->text.startsWith(u"Stopped before finishing"_s), qPrintable(stopped->text));
        const auto run = blockingWait(Calls::kest::run(u"forge"_s, *stopped->runId));
        QCOMPARE(run.run.status, u"failed"_s);
        QVERIFY(run.run.endedAt && !run.run.reply);

        const auto rest = post(u"stop please"_s, all.threadId);
        QCOMPARE(rest.stopped.value_or(QList<QString>()).size(), kest.size() - 1);
        QVERIFY(blockingWait(Calls::kest::kestChat(*all.threadId)).thread->answering.isEmpty());
        const auto nothing = post(u"stop"_s, all.threadId);
        QVERIFY(nothing.stopped && nothing.stopped->isEmpty() && nothing.started->isEmpty());

        const auto triaged = post(u"Can you compare what our invoices cost against the budget?"_s);
        QVERIFY(*triaged.triaging);
        QCOMPARE(*triaged.started, QList<QString>{u"atlas"_s});
        const auto note = blockingWait(Calls::kest::kestChat(*triaged.threadId)).thread->replies;
        QCOMPARE(note.size(), 1);
        QCOMPARE(note[0].agent, std::optional<QString>(u"nova"_s));
        QVERIFY2(note[0].text.startsWith(u"Passing this to Atlas"_s) && note[0].text.contains(u"Ledger"_s),
                 qPrintable(note[0].text));
    }

    // Some answers fail: the message says why in one plain sentence and the
    // run ends failed there. A step that waits for approval shows in the
    // room: the answer's message carries the approval, its teammate needs
    // you, and the run page's call and Needs you name the same approval.
    void failuresAndApprovalsShowInTheRoom()
    {
        // At the demo's own pace, so an approval waits long enough (6 s) to
        // be seen by a slow poll, as under the sanitizers.
        DevService service({u"--auto-approve"_s});
        Session session(service);
        const double failedBefore = blockingWait(Calls::shell::activity()).failed;
        QStringList threads;
        for (int i = 0; i < 5; ++i)
            threads.append(*post(u"@all round %1: what should we do about pricing?"_s.arg(i)).threadId);
        bool sawApproval = false;
        QDeadlineTimer deadline(90'000);
        for (;;) {
            const auto room = blockingWait(Calls::kest::kestChat());
            if (room.answering.isEmpty())
                break;
            QVERIFY2(!deadline.hasExpired(), "The answers never finished.");
            const bool waiting =
                std::any_of(room.kest.begin(), room.kest.end(), [](const auto& t) { return t.needsYou; });
            for (const QString& id : threads) {
                if (!waiting || sawApproval)
                    break;
                const auto thread = *blockingWait(Calls::kest::kestChat(id)).thread;
                for (const auto& reply : thread.replies) {
                    if (reply.approvalIds.isEmpty())
                        continue;
                    const auto run = blockingWait(Calls::kest::run(*reply.agent, *reply.runId)).run;
                    const auto needs = blockingWait(Calls::shell::waiting()).items;
                    std::optional<QString> asked;
                    for (const auto& round : run.rounds)
                        for (const auto& call : round.calls)
                            if (call.status == u"waiting"_s)
                                asked = call.approvalId;
                    if (!asked)
                        continue; // it went on in the meantime
                    QCOMPARE(*asked, reply.approvalIds.first());
                    QVERIFY(std::any_of(needs.begin(), needs.end(),
                                        [&](const auto& item) { return item.id == *asked; }));
                    sawApproval = true;
                }
            }
            QTest::qWait(100);
        }
        QVERIFY(sawApproval);

        int answers = 0, failed = 0;
        for (const QString& id : threads) {
            const auto thread = *blockingWait(Calls::kest::kestChat(id)).thread;
            for (const auto& reply : thread.replies) {
                ++answers;
                QVERIFY(reply.approvalIds.isEmpty());
                if (!reply.failed)
                    continue;
                ++failed;
                static const QRegularExpression sentence(u"^[A-Z][^\\n#|`*\\[]+\\.$"_s);
                QVERIFY2(sentence.match(reply.text).hasMatch(), qPrintable(reply.text));
                const auto run = blockingWait(Calls::kest::run(*reply.agent, *reply.runId));
                QCOMPARE(run.run.status, u"failed"_s);
                QVERIFY(!run.run.reply);
                QCOMPARE(run.trace.rounds.last().steps.last().status, u"failed"_s);
                QCOMPARE(run.trace.rounds.last().steps.last().result, std::optional<QString>(reply.text));
            }
        }
        QCOMPARE(answers, 30);
        QVERIFY(failed >= 1 && failed <= 6);
        QCOMPARE(blockingWait(Calls::shell::activity()).failed, failedBefore + failed); // Home counts them
    }

    // A fresh demo plays the same way twice: the same plans, the same answers.
    void aFreshDemoRepeatsItself()
    {
        QStringList first;
        for (int run = 0; run < 2; ++run) {
            DevService service({u"--auto-approve"_s, u"--time-scale"_s, u"40"_s});
            Session session(service);
            const auto posted = post(u"@all how should we announce the beta?"_s);
            QStringList answers;
            for (const auto& reply : settledThread(*posted.threadId).replies)
                answers.append(*reply.agent + u": "_s + reply.text);
            answers.sort();
            QCOMPARE(answers.size(), 6);
            if (run == 0)
                first = answers;
            else
                QCOMPARE(answers, first);
        }
    }

    // Each teammate's chat has a past (Forge's is new); a message sent while
    // the teammate answers goes into that answer.
    void oneToOneChatsTakeFollowUps()
    {
        DevService service({u"--auto-approve"_s, u"--time-scale"_s, u"8"_s});
        Session session(service);
        const auto nova = blockingWait(Calls::kest::chat(u"nova"_s));
        QVERIFY(nova.threads.size() >= 3);
        const auto has = [&](auto&& predicate) {
            return std::any_of(nova.threads.begin(), nova.threads.end(), predicate);
        };
        QVERIFY(has([](const auto& t) { return t.telegram; }));
        QVERIFY(has([](const auto& t) { return t.call; }));
        QVERIFY(has([](const auto& t) {
            return t.status == u"failed"_s && t.error && t.lastMessage &&
                   t.lastMessage->failed.value_or(false) && t.lastMessage->text == *t.error;
        }));

        const auto started = blockingWait(Calls::app::startThreadAction(
            JSONValue::Object{{"handle", "quill"}, {"text", "Write a short note about the spring sale"}}));
        const auto working = blockingWait(Calls::kest::thread(u"quill"_s, *started.id)).thread;
        QCOMPARE(working->status, u"replying"_s);
        QVERIFY(working->doing);
        const auto more = blockingWait(Calls::app::sendMessageAction(
            JSONValue::Object{{"threadId", *started.id}, {"text", "Keep it under 80 words"}}));
        QVERIFY2(more.done.value_or(false) && !more.error, qPrintable(more.error.value_or(QString())));
        QVERIFY(eventually([&] {
            return blockingWait(Calls::kest::thread(u"quill"_s, *started.id)).thread->status == u"idle"_s;
        }));
        const auto done = *blockingWait(Calls::kest::thread(u"quill"_s, *started.id)).thread;
        QCOMPARE(done.messages.size(), 3);
        QCOMPARE(done.messages[1].role, u"user"_s);
        const auto& answer = done.messages[2];
        QCOMPARE(answer.role, u"agent"_s);
        QVERIFY2(answer.text.contains(u"80 words"_s) && answer.text.contains(u"spring sale"_s),
                 qPrintable(answer.text));
        QVERIFY(!done.doing);
    }

    void concurrentPostsLoseNothing()
    {
        DevService service({u"--auto-approve"_s});
        Session session(service);
        const QByteArray token = session.access();
        QList<QNetworkReply*> replies;
        for (int i = 0; i < 50; ++i) {
            QNetworkRequest request(service.url(u"/api/app/app/postKestMessageAction"_s));
            request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
            request.setRawHeader("Authorization", "Bearer " + token);
            const QJsonObject body{
                {u"args"_s, QJsonArray{QJsonObject{{u"text"_s, u"@nova note %1"_s.arg(i)}}}}};
            replies.append(network().post(request, QJsonDocument(body).toJson()));
        }
        for (QNetworkReply* reply : replies)
            QCOMPARE(await(reply).status, 200);
        const auto room = blockingWait(Calls::kest::kestChat());
        QSet<QString> texts;
        for (const auto& message : room.messages)
            texts.insert(message.text);
        for (int i = 0; i < 50; ++i)
            QVERIFY2(texts.contains(u"@nova note %1"_s.arg(i)), qPrintable(QString::number(i)));
    }
};

QTEST_GUILESS_MAIN(DevServiceTest)
#include "tst_devservice.moc"
