#pragma once

#include "WebSession.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <QVariantMap>

#include <memory>

class QQuickItem;

namespace Kestro {

class AppModel;
class Appearance;
class Auth;
class WebEngine;

// The owner of every embedded web page: the profile (cookies, local storage,
// in memory only, one per signed-in session), the user scripts, the session cookie written from the
// access token, theme pushes into open pages, the script messages of the
// "kestro" channel and the navigation policy. GUI thread only.
//
// No spare view is kept warm: an idle web engine costs CPU and memory, and a
// page opens quickly enough once the profile is up.
class WebViews : public QObject {
    Q_OBJECT
    // Read once by each view as it is made. Sign-out puts a new profile in
    // place while the signed-out window's views are on their way out: they
    // must not move to it, so the property does not notify.
    Q_PROPERTY(QObject* profile READ profileObject CONSTANT)
    Q_PROPERTY(QString storageScript READ storageScript NOTIFY scriptsChanged)
    Q_PROPERTY(QString bridgeScript READ bridgeScript CONSTANT)
    Q_PROPERTY(QString relayScript READ relayScript CONSTANT)
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)

public:
    // WebPolicy::Decision, for QML.
    enum class Decision { Allow, Cancel, Route, Browser };
    Q_ENUM(Decision)

    WebViews(QUrl origin, Auth& auth, AppModel& app, Appearance& appearance, QObject* parent = nullptr);
    ~WebViews() override;

    // The web engine's profile (a QQuickWebEngineProfile), started on first
    // use; null when the engine cannot load.
    QObject* profileObject();
    // Starts the engine ahead of its first view: it must know the "kestro"
    // scheme before any view exists. False when it cannot load.
    Q_INVOKABLE bool start() { return engine() != nullptr; }
    QString storageScript() const;
    QString bridgeScript() const { return m_bridge; }
    QString relayScript();
    QString title() const { return m_title; }

    // The address a service path loads from.
    Q_INVOKABLE QUrl addressOf(const QString& path) const;
    // Registers a view so theme changes reach it; it leaves when destroyed.
    Q_INVOKABLE void attach(QQuickItem* view);
    // The navigation policy; `newWindow` for a page's request of one.
    Q_INVOKABLE int decide(const QUrl& url, bool mainFrame, bool linkClicked, bool newWindow = false) const;
    // The policy for a page's request of a new window.
    Q_INVOKABLE int decideWindow(const QUrl& url, bool userInitiated) const;
    // Carries out a Route or Browser decision: http and https through the
    // router, mailto to the desktop, nothing else.
    Q_INVOKABLE void follow(const QUrl& url);
    // A page finished loading at `url`: true when it should load its path
    // again (it landed on the sign-in page for the first time), which it
    // does at sessionRenewed, once the cookie holds a current token.
    Q_INVOKABLE bool landed(const QUrl& url, bool alreadyRetried);
    // A message from a page's bridge, as its JSON text, and the address of
    // the page that sent it.
    Q_INVOKABLE void receive(const QString& json, const QUrl& sender);
    // Writes the session cookie from the current access token now.
    Q_INVOKABLE void writeSessionCookie();
    // Sign-out: drops the session cookie at once and all other site data
    // with the profile that held it.
    void clearSession();
    void applyTheme();

signals:
    // A "kestro:" address a page was sent to (sign-in callback or deep link).
    void schemeAddress(const QUrl& url);
    void scriptsChanged();
    void titleChanged();
    // A web page's theme script, for views to run (and QML tests to see).
    void themePushed(const QString& script);
    // The session cookie was written again after a page landed on sign-in.
    void sessionRenewed();
    // ...or could not be, for now: the page says so and offers a retry.
    void sessionUnreachable(const QString& sentence);

private:
    QCoro::Task<> renewSession();
    void releaseRetired();
    QUrl m_origin;
    Auth& m_auth;
    AppModel& m_app;
    Appearance& m_appearance;
    WebEngine* engine();
    std::unique_ptr<WebEngine> m_engine;
    bool m_engineFailed = false;
    QList<QPointer<QQuickItem>> m_live;
    QString m_bridge;
    QString m_relay;
    QString m_title;
    QTimer m_refresher;
    WebSession m_session;
};

// The object a page's relay script calls, one per view, registered in the
// view's web channel as "kestro". It is declared inside its view, whose
// address tells who sent a message: the page can call post() and nothing
// else, so it cannot claim another address.
class WebBridge : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;
    static void setViews(WebViews* views);
    Q_INVOKABLE void post(const QString& json);
};

} // namespace Kestro
