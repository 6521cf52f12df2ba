// A fault campaign: the app, signed in, is walked through its places for
// some minutes while the local service answers slowly, fails three calls in
// ten, hands out tokens that last five seconds and now and then dies and
// comes back. It counts what the user would have met: sign-outs (the
// refresh token stays good all along, so any is a fault), failures shown
// and whether each is a full sentence. A crash ends the run with the
// process. Exit status 1 when anything went wrong.

#include "service/Auth.h"
#include "service/BlockingWait.h"
#include "service/ServiceOrigin.h"
#include "shell/AppModel.h"
#include "shell/KestroApp.h"
#include "shell/Router.h"

#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QMap>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

#include <csignal>
#include <sys/prctl.h>

using namespace Kestro;

namespace {

QTextStream out(stdout);

class Service {
public:
    Service()
    {
        QTcpServer probe;
        probe.listen(QHostAddress::LocalHost, 0);
        m_port = probe.serverPort();
    }
    QUrl origin() const { return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(m_port)); }
    void start()
    {
        m_process.setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGKILL); });
        m_process.start(QStringLiteral(KESTRO_DEVSERVICE),
                        {QStringLiteral("--port"), QString::number(m_port), QStringLiteral("--data"),
                         m_data.path(), QStringLiteral("--auto-approve"), QStringLiteral("--token-ttl"),
                         QStringLiteral("5"), QStringLiteral("--fail-rate"), QStringLiteral("0.3"),
                         QStringLiteral("--latency"), QStringLiteral("2000"), QStringLiteral("--time-scale"),
                         QStringLiteral("20")});
        if (!m_process.waitForReadyRead(15'000))
            qFatal("kestro-devservice did not start: %s", m_process.readAllStandardError().constData());
    }
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished(5000);
    }

private:
    QTemporaryDir m_data;
    QProcess m_process;
    quint16 m_port = 0;
};

// Signs in as the browser would, through the service's auto-approving
// consent page, and keeps the tokens where the app reads them.
bool signIn()
{
    Auth& auth = Auth::shared();
    QNetworkAccessManager network;
    for (int attempt = 0; attempt < 20; ++attempt) {
        const Authorization authorization = auth.begin(QString(Auth::redirectUri));
        QNetworkRequest request(authorization.url);
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
        QNetworkReply* reply = network.get(request);
        QDeadlineTimer deadline(10'000);
        while (!reply->isFinished() && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        const QUrl callback(QString::fromUtf8(reply->rawHeader("Location")));
        reply->deleteLater();
        if (callback.scheme() != QLatin1String("kestro"))
            continue;
        try {
            blockingWait(auth.finish(callback, authorization));
            return true;
        } catch (const std::exception&) {
        }
    }
    return false;
}

bool isSentence(const QString& text)
{
    static const QRegularExpression sentence(QStringLiteral("^[A-Z\"“].*[.!?)]$"),
                                             QRegularExpression::DotMatchesEverythingOption);
    return sentence.match(text.trimmed()).hasMatch();
}

} // namespace

int main(int argc, char** argv)
{
    KestroApp::prepare();
    // The user's own settings stay out of it.
    QStandardPaths::setTestModeEnabled(true);
    QGuiApplication application(argc, argv);
    const int minutes = argc > 1 ? QString::fromLatin1(argv[1]).toInt() : 10;
    Service service;
    service.start();
    ServiceOrigin::setOverride(service.origin());
    if (!signIn()) {
        out << "The campaign could not sign in.\n";
        return 1;
    }

    KestroApp app;
    if (!app.show())
        return 1;

    int signOuts = 0, navigations = 0, restarts = 0;
    QMap<QString, int> shown; // each failure text the user saw, and how often
    QObject::connect(&app.app(), &AppModel::phaseChanged, &app, [&] {
        if (app.app().phase() != AppModel::Phase::SignedOut)
            return;
        ++signOuts;
        out << "Signed out at " << QTime::currentTime().toString() << "; signing in again.\n";
        out.flush();
        if (signIn())
            app.app().reload();
    });

    const QStringList places{QStringLiteral("/activity"),      QStringLiteral("/activity?view=you"),
                             QStringLiteral("/kest"),          QStringLiteral("/kest/quill/chat"),
                             QStringLiteral("/tasks"),         QStringLiteral("/analytics"),
                             QStringLiteral("/crm/customers"), QStringLiteral("/settings")};
    QTimer walk;
    QObject::connect(&walk, &QTimer::timeout, &app, [&] {
        if (app.app().phase() == AppModel::Phase::Launching && !app.app().frameError().isEmpty()) {
            app.app().reload(); // what the user does on the failure page
            return;
        }
        app.router().open(places.at(QRandomGenerator::global()->bounded(places.size())));
        ++navigations;
    });
    walk.start(3000);

    // What the window shows that went wrong, read as a screen reader would.
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &app, [&] {
        QQuickWindow* window = app.window();
        if (!window)
            return;
        for (QQuickItem* failure : window->findChildren<QQuickItem*>(QStringLiteral("pageFailure")))
            if (failure->isVisible())
                ++shown[failure->property("message").toString()];
        if (!app.app().frameError().isEmpty())
            ++shown[app.app().frameError()];
    });
    look.start(1000);

    QTimer outage;
    QObject::connect(&outage, &QTimer::timeout, &app, [&] {
        service.kill();
        ++restarts;
        QTimer::singleShot(5000, &app, [&] { service.start(); });
    });
    outage.start(90'000);

    QTimer::singleShot(minutes * 60'000, &application, &QCoreApplication::quit);
    application.exec();

    int notSentences = 0;
    out << "\nFault campaign: " << minutes << " min, " << navigations << " navigations, " << restarts
        << " service outages, " << signOuts << " sign-outs.\nFailures shown (seconds on screen, text):\n";
    for (auto it = shown.cbegin(); it != shown.cend(); ++it) {
        const bool sentence = isSentence(it.key());
        notSentences += sentence ? 0 : 1;
        out << "  " << it.value() << (sentence ? "  " : "  NOT A SENTENCE: ") << it.key() << '\n';
    }
    out << (signOuts == 0 && notSentences == 0 ? "Clean.\n" : "Faults found.\n");
    return signOuts == 0 && notSentences == 0 ? 0 : 1;
}
