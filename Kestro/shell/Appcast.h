#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace Kestro {

// One release in an update feed: an RSS item with the "sparkle:" fields.
struct AppcastRelease {
    QString title;
    QString version;      // the build's version, compared with ours
    QString shortVersion; // what people are shown; the version when absent
    QUrl downloadPage;    // the item's link, else its enclosure
    QUrl releaseNotes;    // sparkle:releaseNotesLink, when given
    QString minimumSystemVersion;
    QString description; // the item's text, tags removed

    QString displayVersion() const { return shortVersion.isEmpty() ? version : shortVersion; }
};

// The releases of an appcast in feed order; nullopt when the text is not an
// RSS document. Items without a version or a download address are left out.
std::optional<QList<AppcastRelease>> parseAppcast(const QByteArray& xml);

// Orders versions the way release numbers read: numbers by value (1.10
// after 1.9), missing numbers as none (1.0 == 1), and a trailing word
// marks a pre-release (1.0b1 before 1.0, but 1.0.1 after 1.0). Negative,
// zero or positive like strcmp.
int compareVersions(const QString& a, const QString& b);

// The newest release newer than `current` that runs on `system` (a release
// that names a minimum system version above it is passed over; a system
// without a version number passes over none).
std::optional<AppcastRelease> newestUpdate(const QList<AppcastRelease>& releases, const QString& current,
                                           const QString& system);

} // namespace Kestro
