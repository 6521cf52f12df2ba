#pragma once

#include <QDateTime>
#include <QString>

namespace Kestro {

// How long ago an ISO-8601 time was, the way lists say it: "just now",
// "4 min ago", "2 h ago", "yesterday", "3 days ago", then the date. A time
// that does not read gives an empty text.
QString relativeTime(const QString& iso, const QDateTime& now = QDateTime::currentDateTimeUtc());

} // namespace Kestro
