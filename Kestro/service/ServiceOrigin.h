#pragma once

#include <QSettings>
#include <QString>
#include <QUrl>

#include <optional>

namespace Kestro {

// Which service this process talks to. First hit wins: an override given on
// the command line for this run only, the user's "KestroOrigin" setting, the
// address compiled into the build, the hosted service's built-in address.
namespace ServiceOrigin {

inline constexpr QLatin1StringView settingsKey{"KestroOrigin"};

// The address for this process, resolved once on first use. A value that is
// not an absolute http(s) address stops the program with a message naming
// where it came from and what it was.
QUrl current();

// For `--origin URL`: replaces the settings for this run without writing
// them. Must come before the first current().
void setOverride(const QUrl& origin);

// Parses a candidate address; absent when it is not an absolute http(s) URL.
std::optional<QUrl> parse(const QString& text);

// The resolution itself, apart from the process-wide cache, for tests.
QUrl resolve(const QSettings& settings, const QString& buildSetting, const QString& builtIn);

// The build's compiled-in address (may be empty) and the hosted service's.
QString buildSetting();
QString builtIn();

} // namespace ServiceOrigin

// Appends a relative path to a base address with exactly one "/" between.
QUrl appendPath(const QUrl& base, const QString& path);

} // namespace Kestro
