#pragma once

#include <QString>
#include <QUrl>

namespace Kestro::WebScripts {

// The one-line script that stores the app's appearance in the page's local
// storage before the site's own scripts read it.
QString storage(const QString& mode, const QString& darkShade, const QString& lightShade);

// The storage script plus the statements that switch a page that is already
// open to the given scheme and shades.
QString theme(bool dark, const QString& mode, const QString& darkShade, const QString& lightShade);

// Runs in the page's own world: hides the site's theme switch, reports the
// title, in-site link clicks, history pushes and "kestro:changed" events.
// It posts each message as a JSON string in a "kestro:post" DOM event, so
// the page's scripts never touch the app's channel.
QString bridge();

// Runs in an isolated world of the main frame: forwards those events to the
// app's "kestro" channel object (qwebchannel.js comes before it).
QString relay();

// The session cookie's name for a service address.
QString sessionCookieName(const QUrl& origin);

// A page title without the trailing " · Kestro" (or " | Kestro", " - Kestro").
QString pageTitle(const QString& title);

} // namespace Kestro::WebScripts
