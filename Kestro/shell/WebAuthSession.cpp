#include "WebAuthSession.h"

#include "service/Auth.h"

#include <QCoroSignal>
#include <QPointer>
#include <QUrlQuery>

namespace Kestro {

namespace {

QString stateOf(const QUrl& url)
{
    return QUrlQuery(url).queryItemValue(QStringLiteral("state"), QUrl::FullyDecoded);
}

bool sameOrigin(const QUrl& a, const QUrl& b)
{
    return a.scheme() == b.scheme() && a.host() == b.host() && a.port() == b.port();
}

} // namespace

WebAuthSession::WebAuthSession(std::function<bool(const QUrl&)> openBrowser, std::function<bool()> sheetReady,
                               QObject* parent)
    : QObject(parent), m_openBrowser(std::move(openBrowser)), m_sheetReady(std::move(sheetReady))
{
}

QCoro::Task<std::optional<QUrl>> WebAuthSession::authenticate(QUrl authorize)
{
    if (isOpen())
        end({}); // a sign-in left open gives way to the new one
    QPointer<WebAuthSession> self(this);
    m_address = authorize;
    m_state = stateOf(authorize);
    // The browser first: the user signs in where their passwords and
    // sessions are, and the app never sees the password page.
    m_inBrowser = m_openBrowser && m_openBrowser(authorize);
    if (!m_inBrowser && !(m_sheetReady && m_sheetReady())) {
        end({});
        throw NoSignInWindow();
    }
    emit stateChanged();
    const QUrl callback = co_await qCoro(this, &WebAuthSession::ended);
    if (!self || callback.isEmpty())
        co_return std::nullopt;
    co_return std::optional<QUrl>(callback);
}

bool WebAuthSession::isOurs(const QUrl& callback) const
{
    return isOpen() && callback.scheme() == Auth::callbackScheme &&
           callback.host() == QLatin1String("oauth") && !m_state.isEmpty() && stateOf(callback) == m_state;
}

bool WebAuthSession::navigated(const QUrl& url)
{
    if (url.scheme() == Auth::callbackScheme) {
        if (isOurs(url))
            end(url);
        return true;
    }
    // The sheet shows the service's pages only; a link elsewhere (help,
    // a provider's page) opens in the browser.
    if (isOpen() && !sameOrigin(url, m_address) &&
        (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"))) {
        if (m_openBrowser)
            m_openBrowser(url);
        return true;
    }
    return false;
}

void WebAuthSession::useBrowser()
{
    if (!isOpen() || m_inBrowser)
        return;
    if (!m_openBrowser || !m_openBrowser(m_address))
        return;
    m_inBrowser = true;
    emit stateChanged();
}

void WebAuthSession::useSheet()
{
    if (!isOpen() || !m_inBrowser || !m_sheetReady || !m_sheetReady())
        return;
    m_inBrowser = false;
    emit stateChanged();
}

void WebAuthSession::cancel()
{
    if (isOpen())
        end({});
}

void WebAuthSession::deliver(const QUrl& callback)
{
    // A callback of no sign-in, or of another one, is dropped and leaves a
    // sign-in in progress waiting.
    if (isOurs(callback))
        end(callback);
}

void WebAuthSession::end(const QUrl& callback)
{
    m_address.clear();
    m_state.clear();
    m_inBrowser = false;
    emit stateChanged();
    emit ended(callback);
}

} // namespace Kestro
