#include "WebSession.h"

#include "WebScripts.h"

#include "service/Auth.h"

namespace Kestro {

WebSession::WebSession(QUrl origin, Auth& auth, Writer write)
    : m_origin(std::move(origin)), m_auth(auth), m_write(std::move(write))
{
}

QNetworkCookie WebSession::cookieFor(const QUrl& origin, const QString& token)
{
    QNetworkCookie cookie(WebScripts::sessionCookieName(origin).toLatin1(), token.toUtf8());
    // "__Host-" requires no domain, the path "/" and, over https, the
    // secure flag. No expiry: the token lives in the secret store only.
    cookie.setPath(QStringLiteral("/"));
    cookie.setSecure(origin.scheme() == QLatin1String("https"));
    cookie.setHttpOnly(true);
    cookie.setSameSitePolicy(QNetworkCookie::SameSite::Lax);
    return cookie;
}

void WebSession::write() const
{
    const auto tokens = m_auth.tokens();
    if (!tokens)
        return;
    QUrl at = m_origin;
    at.setPath(QStringLiteral("/"));
    at.setQuery(QString());
    at.setFragment(QString());
    m_write(cookieFor(m_origin, tokens->access), at);
}

QCoro::Task<WebSession::Renewal> WebSession::renew() const
{
    try {
        if (!co_await m_auth.accessToken())
            co_return Renewal::Refused;
    } catch (const std::exception&) {
        co_return Renewal::Unreachable;
    }
    write();
    co_return Renewal::Renewed;
}

} // namespace Kestro
