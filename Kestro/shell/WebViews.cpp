#include "WebViews.h"

#include "AppModel.h"
#include "Appearance.h"
#include "Router.h"
#include "WebEngine.h"
#include "WebPolicy.h"
#include "WebScripts.h"

#include "service/Auth.h"
#include "service/ServiceOrigin.h"
#include "service/UserAgent.h"

#include <QDesktopServices>
#include <QDir>
#include <QNetworkCookie>
#include <QQuickItem>
#include <QStandardPaths>
#include <QTextStream>

namespace Kestro {

namespace {
WebViews* theViews = nullptr;
static_assert(int(WebViews::Decision::Browser) == int(WebPolicy::Decision::Browser) &&
              int(WebViews::Decision::Route) == int(WebPolicy::Decision::Route));
} // namespace

WebViews::WebViews(QUrl origin, Auth& auth, AppModel& app, Appearance& appearance, QObject* parent)
    : QObject(parent), m_origin(std::move(origin)), m_auth(auth), m_app(app), m_appearance(appearance),
      m_bridge(WebScripts::bridge()),
      m_session(m_origin, m_auth, [this](const QNetworkCookie& cookie, const QUrl& at) {
          if (m_engine)
              m_engine->setCookie(cookie, at);
      })
{
    // The session cookie follows the access token; a burst of changes (a
    // refresh, then the keychain write) rewrites it once.
    m_refresher.setSingleShot(true);
    m_refresher.setInterval(0);
    connect(&m_refresher, &QTimer::timeout, this, &WebViews::writeSessionCookie);
    connect(&m_auth, &Auth::tokensChanged, &m_refresher, qOverload<>(&QTimer::start));
    connect(&m_app, &AppModel::phaseChanged, &m_refresher, qOverload<>(&QTimer::start));
    connect(&m_appearance, &Appearance::changed, this, &WebViews::applyTheme);
    connect(m_app.router(), &Router::routeChanged, this, [this] {
        if (!m_title.isEmpty()) {
            m_title.clear();
            emit titleChanged();
        }
    });
    WebBridge::setViews(this);
}

WebEngine* WebViews::engine()
{
    // Made on first use: starting the web engine costs a good part of a
    // second and much memory, and a signed-out window or a native page
    // does not need it.
    if (m_engine || m_engineFailed)
        return m_engine.get();
    WebEngine::Hooks hooks;
    hooks.userAgentSuffix = QString::fromLatin1(clientUserAgent());
    hooks.schemeAddress = [this](const QUrl& url) { emit schemeAddress(url); };
    // A fresh profile (the next session's) gets the session cookie before
    // its first view loads a page.
    hooks.profileMade = [this] { writeSessionCookie(); };
    // A session cookie the site or the engine dropped is written again.
    hooks.cookieRemoved = [this](const QByteArray& name) {
        if (QString::fromLatin1(name) == WebScripts::sessionCookieName(m_origin) && m_auth.tokens())
            m_refresher.start();
    };
    QString error;
    m_engine = WebEngine::load(std::move(hooks), &error);
    if (!m_engine) {
        m_engineFailed = true;
        QTextStream(stderr) << error << '\n';
        return nullptr;
    }
    // The session cookie is written as the profile is made (profileMade).
    return m_engine.get();
}

WebViews::~WebViews()
{
    WebBridge::setViews(nullptr);
}

QObject* WebViews::profileObject()
{
    WebEngine* web = engine();
    return web ? web->profile() : nullptr;
}

QString WebViews::relayScript()
{
    // It carries the web channel's own script, a resource of the web
    // channel library, which is there only once the engine is.
    if (m_relay.isEmpty() && engine())
        m_relay = WebScripts::relay();
    return m_relay;
}

QString WebViews::storageScript() const
{
    return WebScripts::storage(m_appearance.mode(), m_appearance.darkShade(), m_appearance.lightShade());
}

QUrl WebViews::addressOf(const QString& path) const
{
    const int query = path.indexOf(QLatin1Char('?'));
    QUrl url = appendPath(m_origin, query < 0 ? path.mid(1) : path.mid(1, query - 1));
    if (query >= 0)
        url.setQuery(path.mid(query + 1));
    return url;
}

void WebViews::attach(QQuickItem* view)
{
    m_live.removeAll(nullptr);
    if (view && !m_live.contains(view)) {
        m_live.append(view);
        // A signed-out session's profile goes with its last view; queued,
        // so the view is wholly gone first.
        connect(view, &QObject::destroyed, this, &WebViews::releaseRetired, Qt::QueuedConnection);
    }
}

int WebViews::decide(const QUrl& url, bool mainFrame, bool linkClicked, bool newWindow) const
{
    return int(WebPolicy::decide(m_origin, url, mainFrame, linkClicked, newWindow));
}

int WebViews::decideWindow(const QUrl& url, bool userInitiated) const
{
    return int(WebPolicy::decideWindow(m_origin, url, userInitiated));
}

void WebViews::follow(const QUrl& url)
{
    if (!WebPolicy::opensOutside(url))
        return; // no other scheme leaves a web page
    // The router knows the service's own addresses from the rest.
    if (url.scheme() == QLatin1String("mailto"))
        QDesktopServices::openUrl(url);
    else
        m_app.router()->open(url.toString(QUrl::FullyEncoded));
}

bool WebViews::landed(const QUrl& url, bool alreadyRetried)
{
    // A setup step that moved on by itself (the service's redirect, a
    // form's answer) ends the setup as a link out of it would.
    if (m_app.phase() != AppModel::Phase::SignedIn && !m_app.setupPath().isEmpty() &&
        WebPolicy::sameHost(url, m_origin) && !url.path().startsWith(QLatin1String("/setup")) &&
        !WebPolicy::isSignInLanding(url)) {
        m_app.router()->open(url.toString(QUrl::FullyEncoded));
        return false;
    }
    if (!WebPolicy::sameHost(url, m_origin) || !WebPolicy::isSignInLanding(url))
        return false;
    if (!alreadyRetried) {
        renewSession();
        return true;
    }
    // The fresh cookie did not help either: the session is over.
    m_app.signOut();
    return false;
}

QCoro::Task<> WebViews::renewSession()
{
    // The token held may have expired while its refresh token is good:
    // Auth refreshes it first, and only a refused refresh ends the session.
    QPointer<WebViews> self(this);
    const WebSession::Renewal renewal = co_await m_session.renew();
    if (!self)
        co_return;
    switch (renewal) {
    case WebSession::Renewal::Renewed:
        emit sessionRenewed();
        break;
    case WebSession::Renewal::Refused:
        m_app.signOut();
        break;
    case WebSession::Renewal::Unreachable:
        emit sessionUnreachable(QStringLiteral("Kestro could not renew your session with the service. Check "
                                               "your connection, then try again."));
        break;
    }
}

void WebViews::receive(const QString& json, const QUrl& sender)
{
    const auto message = WebPolicy::readMessage(json, sender, m_origin);
    if (!message)
        return; // another site's frame, or not a message of ours
    switch (message->kind) {
    case WebPolicy::Message::Kind::Title:
        if (message->text != m_title) {
            m_title = message->text;
            emit titleChanged();
        }
        break;
    case WebPolicy::Message::Kind::Open:
        m_app.router()->open(message->text);
        break;
    case WebPolicy::Message::Kind::Changed:
        m_app.dataChanged();
        break;
    }
}

void WebViews::writeSessionCookie()
{
    // Signing out clears the cookie before the tokens go: it must not come
    // back in between. An engine started later writes it then.
    if (m_app.phase() != AppModel::Phase::SignedOut)
        m_session.write();
}

void WebViews::clearSession()
{
    // An engine that never started holds nothing: its profile lives in
    // memory only.
    if (m_engine) {
        m_engine->clear();
        releaseRetired(); // at once when no view shows it, else after the last
    }
    if (!m_title.isEmpty()) {
        m_title.clear();
        emit titleChanged();
    }
}

void WebViews::releaseRetired()
{
    m_live.removeAll(nullptr);
    if (!m_live.isEmpty())
        return;
    if (m_engine)
        m_engine->releaseRetired();
}

void WebViews::applyTheme()
{
    const bool dark = m_appearance.isDark();
    const QString script =
        WebScripts::theme(dark, m_appearance.mode(), m_appearance.darkShade(), m_appearance.lightShade());
    m_live.removeAll(nullptr);
    for (const QPointer<QQuickItem>& view : std::as_const(m_live))
        QMetaObject::invokeMethod(view.data(), "runJavaScript", Q_ARG(QString, script));
    emit themePushed(script);
    // Later navigations start in the new theme.
    emit scriptsChanged();
}

void WebBridge::setViews(WebViews* views)
{
    theViews = views;
}

void WebBridge::post(const QString& json)
{
    // The view's own address, never one the page states.
    if (theViews && parent())
        theViews->receive(json, parent()->property("url").toUrl());
}

} // namespace Kestro
