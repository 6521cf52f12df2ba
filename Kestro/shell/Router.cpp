#include "Router.h"

#include "MainThread.h"

namespace Kestro {

Router::Router(QUrl origin, Route start, BrowserOpener openInBrowser, QObject* parent)
    : QObject(parent), m_origin(std::move(origin)), m_openInBrowser(std::move(openInBrowser)),
      m_route(std::move(start))
{
}

void Router::setTick(int tick)
{
    if (tick == m_tick)
        return;
    m_tick = tick;
    emit tickChanged();
}

void Router::open(const QString& target, bool replace)
{
    requireMainThread("Router::open");
    const QUrl absolute(target, QUrl::StrictMode);
    if (absolute.isValid() && !absolute.isRelative() &&
        (absolute.scheme() == QLatin1String("http") || absolute.scheme() == QLatin1String("https"))) {
        const bool sameHost = absolute.host(QUrl::FullyEncoded) == m_origin.host(QUrl::FullyEncoded);
        const QString path = absolute.path(QUrl::FullyEncoded);
        if (sameHost && isInAppPath(path.isEmpty() ? QStringLiteral("/") : path)) {
            open(absolute.hasQuery() ? path + QLatin1Char('?') + absolute.query(QUrl::FullyEncoded) : path,
                 replace);
            return;
        }
        m_openInBrowser(absolute);
        return;
    }
    const Route candidate = Route::parse(target);
    if (!isInAppPath(candidate.canonicalPath())) {
        // The web site's own page, on the service's host.
        QUrl page = m_origin;
        QString base = page.path();
        if (base.endsWith(QLatin1Char('/')))
            base.chop(1);
        page.setPath(base + candidate.path, QUrl::TolerantMode);
        if (!candidate.query.isEmpty())
            page.setQuery(QUrl(candidate.text()).query(QUrl::FullyEncoded), QUrl::TolerantMode);
        m_openInBrowser(page);
        return;
    }
    if (candidate == m_route)
        return;
    if (!replace)
        m_back.append(m_route);
    m_forward.clear();
    show(candidate);
}

void Router::goBack()
{
    requireMainThread("Router::goBack");
    if (m_back.isEmpty())
        return;
    const Route previous = m_back.takeLast();
    m_forward.append(m_route);
    show(previous);
}

void Router::goForward()
{
    requireMainThread("Router::goForward");
    if (m_forward.isEmpty())
        return;
    const Route next = m_forward.takeLast();
    m_back.append(m_route);
    show(next);
}

bool Router::openDeepLink(const QUrl& url)
{
    if (url.scheme() != QLatin1String("kestro") || url.host() == QLatin1String("oauth") ||
        url.host().isEmpty())
        return false;
    QString path = QLatin1Char('/') + url.host(QUrl::FullyEncoded) + url.path(QUrl::FullyEncoded);
    if (url.hasQuery())
        path += QLatin1Char('?') + url.query(QUrl::FullyEncoded);
    open(path);
    return true;
}

bool Router::openTextLink(const QString& target)
{
    if (!target.startsWith(QLatin1String("app:")))
        return false;
    open(target.mid(4));
    return true;
}

void Router::reset(const Route& start)
{
    m_back.clear();
    m_forward.clear();
    show(start);
}

void Router::show(const Route& route)
{
    m_route = route;
    emit routeChanged();
}

} // namespace Kestro
