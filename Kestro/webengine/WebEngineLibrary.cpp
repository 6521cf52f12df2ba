// The web engine's side of Kestro::WebEngine, built as a library of its own
// that the app loads the first time it shows a web page.

#include "CallbackSchemeHandler.h"
#include "SchemeGuard.h"
#include "shell/WebEngine.h"

#include <QNetworkCookie>
#include <QQuickWebEngineProfile>
#include <QWebEngineCookieStore>
#include <QWebEngineUrlScheme>

namespace Kestro {
namespace {

class LoadedWebEngine final : public WebEngine {
public:
    explicit LoadedWebEngine(Hooks hooks) : m_hooks(std::move(hooks)) {}
    ~LoadedWebEngine() override
    {
        qDeleteAll(m_retired);
        delete m_profile;
    }

    QObject* profile() override { return current(); }
    void setCookie(const QNetworkCookie& cookie, const QUrl& origin) override
    {
        current()->cookieStore()->setCookie(cookie, origin);
    }
    void clear() override
    {
        if (!m_profile)
            return;
        // The cookie goes at once: a view still on screen must not act for
        // the user any longer. The rest of the session's data (local
        // storage, IndexedDB, caches) goes with its profile.
        m_profile->cookieStore()->deleteAllCookies();
        m_profile->clearHttpCache();
        m_retired.append(std::exchange(m_profile, nullptr));
    }
    void releaseRetired() override { qDeleteAll(std::exchange(m_retired, {})); }

private:
    QQuickWebEngineProfile* makeProfile()
    {
        // Off the record: cookies, local storage, IndexedDB and the cache
        // live in memory only. The session cookie carries the access token,
        // and a profile on the disk keeps even a session cookie there for
        // crash recovery; the token's one place on the disk is the secret
        // store.
        auto* profile = new QQuickWebEngineProfile;
        profile->setOffTheRecord(true);
        profile->setHttpUserAgent(profile->httpUserAgent() + QLatin1Char(' ') + m_hooks.userAgentSuffix);
        profile->setUrlRequestInterceptor(new SchemeGuard(profile));
        auto* scheme = new CallbackSchemeHandler(profile);
        profile->installUrlSchemeHandler(QByteArrayLiteral("kestro"), scheme);
        QObject::connect(scheme, &CallbackSchemeHandler::received, profile, [this](const QUrl& url) {
            if (m_hooks.schemeAddress)
                m_hooks.schemeAddress(url);
        });
        QObject::connect(profile->cookieStore(), &QWebEngineCookieStore::cookieRemoved, profile,
                         [this, profile](const QNetworkCookie& cookie) {
                             if (profile == m_profile && m_hooks.cookieRemoved)
                                 m_hooks.cookieRemoved(cookie.name());
                         });
        return profile;
    }

    Hooks m_hooks;
    // Made when the next session first needs it: by then the last
    // session's views, and so mostly its profile, are gone.
    QQuickWebEngineProfile* current()
    {
        if (!m_profile) {
            m_profile = makeProfile();
            if (m_hooks.profileMade)
                m_hooks.profileMade();
        }
        return m_profile;
    }

    QQuickWebEngineProfile* m_profile = nullptr;
    QList<QQuickWebEngineProfile*> m_retired; // signed-out sessions', until no view shows them
};

} // namespace
} // namespace Kestro

extern "C" Q_DECL_EXPORT Kestro::WebEngine* kestro_make_web_engine(Kestro::WebEngine::Hooks* hooks)
{
    // The engine follows a redirect to a scheme only when it knows the
    // scheme; it must hear of it before its first profile.
    QWebEngineUrlScheme scheme(QByteArrayLiteral("kestro"));
    scheme.setSyntax(QWebEngineUrlScheme::Syntax::Host);
    // No CORS: no page has any business fetching a "kestro:" address.
    scheme.setFlags(QWebEngineUrlScheme::SecureScheme);
    QWebEngineUrlScheme::registerScheme(scheme);
    return new Kestro::LoadedWebEngine(std::move(*hooks));
}
