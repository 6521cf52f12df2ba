#pragma once

#include <QCoroTask>
#include <QNetworkCookie>
#include <QUrl>

#include <functional>

namespace Kestro {

class Auth;

// The web pages' sign-in: a cookie that carries the current access token
// to the service's own origin, and nowhere else.
class WebSession {
public:
    using Writer = std::function<void(const QNetworkCookie& cookie, const QUrl& origin)>;

    WebSession(QUrl origin, Auth& auth, Writer write);

    // The cookie for `token`: host-only, path "/", HttpOnly, SameSite Lax,
    // secure over https, and a session cookie (no expiry), so the web
    // profile never writes the token to its cookie database.
    static QNetworkCookie cookieFor(const QUrl& origin, const QString& token);

    // Writes the cookie from the token held now; nothing when signed out.
    void write() const;
    // A page landed on the sign-in page: asks for a current token (which
    // refreshes one that is due) and writes it. Refused when there is none
    // any more because the service refused the refresh: the session is
    // over. Unreachable when the refresh could not be asked (offline, the
    // service down): nothing is written, and the session is not over.
    enum class Renewal { Renewed, Refused, Unreachable };
    QCoro::Task<Renewal> renew() const;

private:
    QUrl m_origin;
    Auth& m_auth;
    Writer m_write;
};

} // namespace Kestro
