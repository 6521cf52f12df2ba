#pragma once

#include <QString>
#include <QUrl>

#include <optional>

namespace Kestro::WebPolicy {

// The same host, compared exactly in its encoded form (two absent hosts
// are the same).
bool sameHost(const QUrl& a, const QUrl& b);

// What to do with a navigation an embedded page starts.
enum class Decision { Allow, Cancel, Route, Browser };

// Pages of the service stay in the page, except links the user follows in
// the main frame, which go through the router; other sites' frames load,
// other sites' pages and windows open in the browser.
Decision decide(const QUrl& origin, const QUrl& url, bool mainFrame, bool linkClicked, bool newWindow);

// A new window a page asks for: refused unless the user asked for it (a
// click), then decided as a link followed in the main frame. There is no
// second window: the service's own pages open through the router.
Decision decideWindow(const QUrl& origin, const QUrl& url, bool userInitiated);

// Whether the desktop's opener may have this address: web pages and mail
// only. A page must not start programs through other schemes (file:, a
// desktop's own handlers...).
bool opensOutside(const QUrl& url);

// The page ended on the service's sign-in or sign-up page.
bool isSignInLanding(const QUrl& url);

// A message of the "kestro" channel, checked: from the service's own host,
// an object with a string "kind", and the fields its kind needs.
struct Message {
    enum class Kind { Title, Open, Changed };
    Kind kind;
    QString text; // the title, or the path to open
};
std::optional<Message> readMessage(const QString& json, const QUrl& sender, const QUrl& origin);

} // namespace Kestro::WebPolicy
