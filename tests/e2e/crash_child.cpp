// The app as tst_crash_leaves_no_token needs it: signed in through the
// local service's consent page, a service page shown (so the session cookie
// is in the web profile), then a burst of throw-away persistent cookies that
// would make a cookie database on the disk write at once. It prints
// "ready <access token>" and waits to be killed.

#include "service/Auth.h"
#include "service/ServiceOrigin.h"
#include "shell/AppModel.h"
#include "shell/KestroApp.h"
#include "shell/Router.h"
#include "shell/WebAuthSession.h"
#include "shell/WebViews.h"

#include <QDateTime>
#include <QGuiApplication>
#include <QNetworkCookie>
#include <QQuickItem>
#include <QQuickWebEngineProfile>
#include <QQuickWindow>
#include <QTextStream>
#include <QTimer>
#include <QWebEngineCookieStore>

using namespace Kestro;

int main(int argc, char** argv)
{
    KestroApp::prepare();
    QGuiApplication application(argc, argv);
    if (argc < 2)
        qFatal("usage: crash_child ORIGIN");
    const QUrl origin(QString::fromLatin1(argv[1]));
    ServiceOrigin::setOverride(origin);
    KestroApp app;
    if (!app.show())
        return 1;

    QTimer step;
    int stage = 0;
    QObject::connect(&step, &QTimer::timeout, &app, [&] {
        switch (stage) {
        case 0:
            if (app.app().phase() == AppModel::Phase::SignedOut) {
                app.app().signIn(); // the service approves on its own
                // In the window's own sheet: the test gives it no browser.
                app.authSession().useSheet();
                stage = 1;
            }
            break;
        case 1:
            if (app.app().phase() == AppModel::Phase::SignedIn) {
                app.router().open(QStringLiteral("/settings"));
                stage = 2;
            }
            break;
        case 2: {
            QQuickItem* page = app.window()->findChild<QQuickItem*>(QStringLiteral("webPage"));
            if (!page || page->property("loading").toBool())
                break;
            auto* profile = qobject_cast<QQuickWebEngineProfile*>(app.webViews().profileObject());
            if (!profile)
                qFatal("no web profile");
            // A cookie database on the disk is written in batches, at once
            // past some five hundred changes: a session cookie the profile
            // kept there would go to the disk with these.
            for (int i = 0; i < 600; ++i) {
                QNetworkCookie probe(QByteArray("kestro_probe_") + QByteArray::number(i), "kept");
                probe.setPath(QStringLiteral("/"));
                probe.setExpirationDate(QDateTime::currentDateTimeUtc().addDays(1));
                profile->cookieStore()->setCookie(probe, origin);
            }
            stage = 3;
            step.setInterval(3000);
            break;
        }
        case 3: {
            const auto tokens = Auth::shared().tokens();
            QTextStream(stdout) << "ready " << (tokens ? tokens->access : QString()) << Qt::endl;
            step.stop();
            break;
        }
        }
    });
    step.start(100);
    return application.exec();
}
