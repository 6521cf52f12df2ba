#pragma once

#include "Route.h"

#include <QList>
#include <QObject>
#include <QUrl>

#include <functional>

namespace Kestro {

// The one navigation authority: every page, link, web page, notification
// and deep link opens a path through open(). It keeps the current route and
// the Back and Forward histories, and sends web-only and foreign addresses
// to the system browser. GUI thread only.
class Router : public QObject {
    Q_OBJECT
    Q_PROPERTY(Kestro::Route route READ route NOTIFY routeChanged)
    Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY routeChanged)
    Q_PROPERTY(bool canGoForward READ canGoForward NOTIFY routeChanged)
    Q_PROPERTY(int tick READ tick WRITE setTick NOTIFY tickChanged)

public:
    using BrowserOpener = std::function<void(const QUrl&)>;

    // `origin` is the service's base address; `openInBrowser` hands an
    // address to the system browser (QDesktopServices in the app).
    Router(QUrl origin, Route start, BrowserOpener openInBrowser, QObject* parent = nullptr);

    const Route& route() const { return m_route; }
    const QList<Route>& back() const { return m_back; }
    const QList<Route>& forward() const { return m_forward; }
    bool canGoBack() const { return !m_back.isEmpty(); }
    bool canGoForward() const { return !m_forward.isEmpty(); }
    int tick() const { return m_tick; }
    void setTick(int tick);

    Q_INVOKABLE void open(const QString& target, bool replace = false);
    Q_INVOKABLE void goBack();
    Q_INVOKABLE void goForward();
    // A "kestro:" URL from the system. False for one that is not a route
    // (another scheme, or the sign-in's "kestro://oauth/...").
    Q_INVOKABLE bool openDeepLink(const QUrl& url);
    // A link in rich text: "app:/path" opens here and is handled (true);
    // anything else is left to the caller.
    Q_INVOKABLE bool openTextLink(const QString& target);
    // Forgets Back and Forward and shows `start` (a workspace switch).
    void reset(const Route& start);

signals:
    void routeChanged();
    void tickChanged();

private:
    void show(const Route& route);

    QUrl m_origin;
    BrowserOpener m_openInBrowser;
    Route m_route;
    QList<Route> m_back;
    QList<Route> m_forward;
    int m_tick = 0;
};

} // namespace Kestro
