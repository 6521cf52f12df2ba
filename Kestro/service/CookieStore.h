#pragma once

#include <QNetworkCookie>
#include <QNetworkCookieJar>

namespace Kestro {

// The client's own in-memory cookie store. It starts empty every launch and
// goes with every later request to the service.
class CookieStore final : public QNetworkCookieJar {
public:
    using QNetworkCookieJar::QNetworkCookieJar;

    // Sets a cookie, replacing one of the same name, domain and path.
    void put(const QNetworkCookie& cookie)
    {
        if (!updateCookie(cookie))
            insertCookie(cookie);
    }
    // Deletes every cookie with this name, whatever its domain or path.
    void removeNamed(const QString& name)
    {
        QList<QNetworkCookie> kept = allCookies();
        kept.removeIf([&](const QNetworkCookie& cookie) { return cookie.name() == name.toUtf8(); });
        setAllCookies(kept);
    }
    QList<QNetworkCookie> all() const { return allCookies(); }
};

} // namespace Kestro
