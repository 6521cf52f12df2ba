#include "WebAuthSession.h"

#include "service/Auth.h"

#include <QCoroSignal>
#include <QDesktopServices>
#include <QPointer>

namespace Kestro {

WebAuthSession::WebAuthSession(QObject* parent) : QObject(parent) {}

QCoro::Task<std::optional<QUrl>> WebAuthSession::authenticate(QUrl authorize)
{
    if (isOpen())
        end({}); // a sign-in left open gives way to the new one
    QPointer<WebAuthSession> self(this);
    m_address = authorize;
    m_inBrowser = false;
    emit stateChanged();
    const QUrl callback = co_await qCoro(this, &WebAuthSession::ended);
    if (!self || callback.isEmpty())
        co_return std::nullopt;
    co_return std::optional<QUrl>(callback);
}

bool WebAuthSession::navigated(const QUrl& url)
{
    if (url.scheme() != Auth::callbackScheme)
        return false;
    if (isOpen() && url.host() == QLatin1String("oauth"))
        end(url);
    return true;
}

void WebAuthSession::useBrowser()
{
    if (!isOpen() || m_inBrowser)
        return;
    m_inBrowser = true;
    emit stateChanged();
    QDesktopServices::openUrl(m_address);
}

void WebAuthSession::cancel()
{
    if (isOpen())
        end({});
}

void WebAuthSession::deliver(const QUrl& callback)
{
    // Only a sign-in that is waiting takes it; a stray callback is dropped.
    if (isOpen())
        end(callback);
}

void WebAuthSession::end(const QUrl& callback)
{
    m_address.clear();
    m_inBrowser = false;
    emit stateChanged();
    emit ended(callback);
}

} // namespace Kestro
