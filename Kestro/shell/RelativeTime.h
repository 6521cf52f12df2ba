#pragma once

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QTimer>

namespace Kestro {

// How long ago an ISO-8601 time was, the way lists say it: "just now",
// "4 min ago", "2 h ago", "yesterday", "3 days ago", then the date. A time
// that does not read gives an empty text.
QString relativeTime(const QString& iso, const QDateTime& now = QDateTime::currentDateTimeUtc());

// Ticks once a minute, so texts made by relativeTime() can be read again:
// "just now" becomes "1 min ago" without a reload. One for the app.
class MinuteClock : public QObject {
    Q_OBJECT

public:
    static MinuteClock& instance();

signals:
    void moved();

private:
    MinuteClock();
    QTimer m_timer;
};

} // namespace Kestro
