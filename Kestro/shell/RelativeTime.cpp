#include "RelativeTime.h"

#include <QLocale>

namespace Kestro {

QString relativeTime(const QString& iso, const QDateTime& now)
{
    const QDateTime at = QDateTime::fromString(iso, Qt::ISODateWithMs);
    if (!at.isValid())
        return {};
    // A clock a little ahead of ours is still "just now".
    const qint64 seconds = std::max<qint64>(0, at.secsTo(now));
    if (seconds < 60)
        return QStringLiteral("just now");
    if (seconds < 3600)
        return QStringLiteral("%1 min ago").arg(seconds / 60);
    if (seconds < 24 * 3600)
        return QStringLiteral("%1 h ago").arg(seconds / 3600);
    const qint64 days = at.toLocalTime().date().daysTo(now.toLocalTime().date());
    if (days <= 1)
        return QStringLiteral("yesterday");
    if (days < 7)
        return QStringLiteral("%1 days ago").arg(days);
    return QLocale::system().toString(at.toLocalTime().date(), QLocale::ShortFormat);
}

MinuteClock::MinuteClock()
{
    m_timer.setInterval(60 * 1000);
    m_timer.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_timer, &QTimer::timeout, this, &MinuteClock::moved);
    m_timer.start();
}

MinuteClock& MinuteClock::instance()
{
    static MinuteClock clock;
    return clock;
}

} // namespace Kestro
