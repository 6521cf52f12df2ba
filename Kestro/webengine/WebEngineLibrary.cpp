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
    explicit LoadedWebEngine(Hooks hooks) : m_hooks(std::move(hooks))
    {
        // One persistent profile: the service's pages keep their local
        // storage and the sign-in sheet shares the user's session with them.
        m_profile = new QQuickWebEngineProfile;
        m_profile->setStorageName(QStringLiteral("Kestro"));
        // NoPersistentCookies would keep the session cookie (it holds the
        // access token) off the disk, but on Qt 6.4 it corrupts the heap
        // once pages load (the fault campaign aborted in malloc three runs
        // in three). The session cookie carries no expiry, so the profile
        // keeps it only for crash recovery.
        m_profile->setPersistentCookiesPolicy(QQuickWebEngineProfile::AllowPersistentCookies);
        m_profile->setHttpUserAgent(m_profile->httpUserAgent() + QLatin1Char(' ') + m_hooks.userAgentSuffix);
        m_profile->setUrlRequestInterceptor(new SchemeGuard(m_profile));
        auto* scheme = new CallbackSchemeHandler(m_profile);
        m_profile->installUrlSchemeHandler(QByteArrayLiteral("kestro"), scheme);
        QObject::connect(scheme, &CallbackSchemeHandler::received, m_profile, [this](const QUrl& url) {
            if (m_hooks.schemeAddress)
                m_hooks.schemeAddress(url);
        });
        QObject::connect(m_profile->cookieStore(), &QWebEngineCookieStore::cookieRemoved, m_profile,
                         [this](const QNetworkCookie& cookie) {
                             if (m_hooks.cookieRemoved)
                                 m_hooks.cookieRemoved(cookie.name());
                         });
    }
    ~LoadedWebEngine() override { delete m_profile; }

    QObject* profile() override { return m_profile; }
    void setCookie(const QNetworkCookie& cookie, const QUrl& origin) override
    {
        m_profile->cookieStore()->setCookie(cookie, origin);
    }
    void clear() override
    {
        m_profile->cookieStore()->deleteAllCookies();
        m_profile->clearHttpCache();
    }

private:
    Hooks m_hooks;
    QQuickWebEngineProfile* m_profile = nullptr;
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
