#pragma once

#include <QByteArray>
#include <QString>

namespace Kestro {

// "KestroMac/<version>": the service knows its desktop clients by this name.
// The version is the application's; a build without one says "0".
QByteArray clientUserAgent();
// The sign-in's user agent adds the computer's name, so the user can tell
// their signed-in devices apart on the service: "KestroMac/0.1 (studio)".
QByteArray authUserAgent();

} // namespace Kestro
