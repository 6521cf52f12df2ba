// kestroctl end to end: a real process signs in against the fake service on
// 127.0.0.1, keeps its tokens in the session's keyring, calls actions, and
// tells each kind of failure apart by its exit code.

#include "FakeService.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace KestroTest;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Run {
    int exit = -1;
    QString out;
    QString err;
};

// Runs kestroctl while this process's event loop keeps serving requests.
Run kestroctl(const QStringList& args, const QByteArray& input = {},
              const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment(),
              const std::function<QByteArray(const QString& firstLine)>& answer = {})
{
    QProcess process;
    process.setProcessEnvironment(env);
    QEventLoop loop;
    QObject::connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
    QByteArray out;
    bool answered = false;
    QObject::connect(&process, &QProcess::readyReadStandardOutput, [&] {
        out += process.readAllStandardOutput();
        if (answer && !answered && out.contains('\n')) {
            answered = true;
            process.write(answer(QString::fromUtf8(out.left(out.indexOf('\n')))));
            process.closeWriteChannel();
        }
    });
    process.start(QStringLiteral(KESTROCTL_PATH), args);
    if (!input.isEmpty() || !answer) {
        process.write(input);
        process.closeWriteChannel();
    }
    QTimer::singleShot(30'000, &loop, &QEventLoop::quit);
    loop.exec();
    out += process.readAllStandardOutput();
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2, QString::fromUtf8(out),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

class KestroctlTest : public QObject {
    Q_OBJECT
private slots:
    void signInCallAndSignOut()
    {
        if (qEnvironmentVariable("KESTRO_TEST_KEYRING") != u"1"_s)
            QSKIP("Needs a Secret Service: run through scripts/test or scripts/headless-session.");
        FakeService service;
        QVERIFY(service.start());
        const QString origin = service.origin().toString();
        service.setActionHandler([](const QByteArray&, const QByteArray& action, const QJsonValue& args,
                                    const TestHttpServer::Request&) -> TestHttpServer::Response {
            if (action == "missing")
                return {404, R"({"error":"no such action"})"};
            if (action == "gone")
                return jsonAnswer(1, {{u"notFound"_s, true}});
            if (action == "moved")
                return jsonAnswer(1, {{u"redirect"_s, u"/tasks"_s}});
            if (action == "broken")
                return {200, "<html>"};
            if (action == "shape")
                return {200, "[1]"};
            if (action == "notificationCountAction")
                return jsonAnswer(QJsonObject{{u"unread"_s, 3}, {u"fromANewerService"_s, true}});
            if (action == "kestChat")
                return jsonAnswer(QJsonObject{{u"me"_s, u"u1"_s}});
            return jsonAnswer(QJsonObject{{u"action"_s, QString::fromUtf8(action)}, {u"args"_s, args}});
        });

        const Run signIn = kestroctl({u"--origin"_s, origin, u"sign-in"_s, u"--no-browser"_s}, {},
                                     QProcessEnvironment::systemEnvironment(), [&](const QString& url) {
                                         return service.approve(QUrl(url)).toString().toUtf8() + '\n';
                                     });
        QCOMPARE(signIn.exit, 0);
        QCOMPARE(signIn.out.split('\n').value(1), u"Signed in to %1."_s.arg(origin));
        QVERIFY2(signIn.err.isEmpty() || !signIn.err.contains(u"this run only"_s), qPrintable(signIn.err));

        // The next process finds the sign-in in the keyring.
        const Run call = kestroctl({u"--origin"_s, origin, u"call"_s, u"kest"_s, u"computer"_s,
                                    uR"({"room":"general"})"_s, u"undefined"_s, u"3"_s});
        QCOMPARE(call.exit, 0);
        const QJsonObject printed = QJsonDocument::fromJson(call.out.toUtf8()).object();
        QCOMPARE(printed.value(u"action"_s).toString(), u"computer"_s);
        QCOMPARE(service.server.requests().last().body,
                 QByteArray(R"({"args":[{"room":"general"},{"$undefined":true},3]})"));

        // A declared action prints its record encoded again: what the record
        // does not declare is gone, and a mismatch fails with its path.
        const Run typed =
            kestroctl({u"--origin"_s, origin, u"call"_s, u"app"_s, u"notificationCountAction"_s});
        QCOMPARE(typed.exit, 0);
        QCOMPARE(QJsonDocument::fromJson(typed.out.toUtf8()).object(), (QJsonObject{{u"unread"_s, 3}}));
        const Run mismatch = kestroctl({u"--origin"_s, origin, u"call"_s, u"kest"_s, u"kestChat"_s});
        QCOMPARE(mismatch.exit, 3);
        QCOMPARE(mismatch.err.trimmed(),
                 u"The answer did not read: kest/kestChat: missing .value.messages."_s);

        auto exitOf = [&](const char* action) {
            return kestroctl({u"--origin"_s, origin, u"call"_s, u"m"_s, QString::fromLatin1(action)});
        };
        const Run http = exitOf("missing");
        QCOMPARE(http.exit, 2);
        QVERIFY(http.err.startsWith(u"The server answered 404."_s));
        QCOMPARE(exitOf("broken").exit, 3);
        const Run shape = exitOf("shape");
        QCOMPARE(shape.exit, 3);
        QCOMPARE(shape.err.trimmed(), u"The answer did not read: m/shape:  is not Dictionary."_s);
        QCOMPARE(exitOf("gone").exit, 4);
        const Run moved = exitOf("moved");
        QCOMPARE(moved.exit, 6);
        QCOMPARE(moved.err.trimmed(), u"Opened /tasks."_s);
        QCOMPARE(kestroctl({u"--origin"_s, origin, u"call"_s, u"m"_s, u"a"_s, u"{bad"_s}).exit, 1);

        service.server.close();
        const Run offline = exitOf("a");
        QCOMPARE(offline.exit, 7);
        QVERIFY(offline.err.contains(u"could not reach the service"_s));

        QCOMPARE(kestroctl({u"--origin"_s, origin, u"sign-out"_s}).exit, 0);
        const Run signedOut = exitOf("a");
        QCOMPARE(signedOut.exit, 5);
        QVERIFY(signedOut.err.startsWith(u"Sign in again."_s));
    }

    void refusesABadOriginSetting()
    {
        QTemporaryDir config;
        QVERIFY(QDir(config.path()).mkpath(u"Kestro"_s));
        QFile file(config.path() + u"/Kestro/Kestro.conf"_s);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[General]\nKestroOrigin=not a url\n");
        file.close();
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(u"XDG_CONFIG_HOME"_s, config.path());
        const Run run = kestroctl({u"call"_s, u"m"_s, u"a"_s}, {}, env);
        QCOMPARE(run.exit, 1);
        QVERIFY2(run.err.contains(u"\"KestroOrigin\""_s) && run.err.contains(u"\"not a url\""_s),
                 qPrintable(run.err));

        const Run flag = kestroctl({u"--origin"_s, u"nowhere"_s, u"call"_s, u"m"_s, u"a"_s});
        QCOMPARE(flag.exit, 1);
        QVERIFY(flag.err.contains(u"\"nowhere\""_s));
    }

    void saysWhenNoSecretStoreRuns()
    {
        FakeService service;
        QVERIFY(service.start());
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, u"unix:path=/nonexistent/kestro-test-bus"_s);
        const Run run =
            kestroctl({u"--origin"_s, service.origin().toString(), u"call"_s, u"m"_s, u"a"_s}, {}, env);
        QCOMPARE(run.exit, 5);
        QVERIFY2(
            run.err.contains(u"No secret store is running: install or unlock GNOME Keyring or KWallet."_s),
            qPrintable(run.err));
        QCOMPARE(service.server.requests().size(), 0);
    }
};

QTEST_GUILESS_MAIN(KestroctlTest)
#include "tst_kestroctl.moc"
