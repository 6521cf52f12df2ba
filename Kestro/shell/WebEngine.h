#pragma once

#include <QByteArray>
#include <QNetworkCookie>
#include <QString>
#include <QUrl>

#include <functional>
#include <memory>

class QObject;

namespace Kestro {

// The few things the app asks of the web engine itself: its profile, the cookie store and clearing it. They
// live in a library of their own (Kestro/webengine), loaded the first time a web page or the sign-in sheet
// needs them: the engine's libraries cost some 20 MB and part of the start just by being linked, and most
// sessions show only native pages.
//
// Only plain C++ and Qt types cross this line, never the app's own classes:
// the library has its own copy of nothing from the app.
class WebEngine {
public:
    struct Hooks {
        // Appended to the engine's own user agent.
        QString userAgentSuffix;
        // A "kestro:" address a page was sent to (sign-in callback, deep link).
        std::function<void(const QUrl&)> schemeAddress;
        // A cookie the site or the engine dropped, by name.
        std::function<void(const QByteArray&)> cookieRemoved;
        // A new profile was made (the first, or the next session's).
        std::function<void()> profileMade;
    };

    virtual ~WebEngine() = default;

    // The QQuickWebEngineProfile every new view and the sign-in sheet use.
    virtual QObject* profile() = 0;
    virtual void setCookie(const QNetworkCookie& cookie, const QUrl& origin) = 0;
    // Sign-out: drops every cookie and the HTTP cache at once, and puts a
    // fresh, empty profile in the old one's place for the views to come.
    virtual void clear() = 0;
    // Frees the profiles clear() replaced; only once no view shows them.
    virtual void releaseRetired() = 0;

    // Loads the library and starts the engine's profile; null when the
    // library is missing or broken, with the reason in `error`.
    static std::unique_ptr<WebEngine> load(Hooks hooks, QString* error);

    // Called before the application object: what the engine needs of the
    // window system when it is loaded later.
    static void prepare();
    // Earlier versions kept the web profile on the disk, session cookie
    // (and so the access token) included. Removes what they left, once per
    // start; nothing of this version's lives there.
    static void removeOldSiteData();
};

// The library's one entry point, looked up by this name.
using MakeWebEngine = WebEngine* (*)(WebEngine::Hooks* hooks);
inline constexpr char makeWebEngineSymbol[] = "kestro_make_web_engine";

} // namespace Kestro
