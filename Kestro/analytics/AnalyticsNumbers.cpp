#include "AnalyticsNumbers.h"

#include "agentwork/Duration.h"

#include <QLocale>

#include <cmath>

namespace Kestro::AnalyticsNumbers {

namespace {

// One decimal, dropped when it is 0: "12k", "12.3k".
QString scaled(double value, double unit, QChar suffix)
{
    const double tenths = std::round(value / unit * 10) / 10;
    const bool whole = std::fmod(tenths, 1.0) == 0.0;
    return QString::number(tenths, 'f', whole ? 0 : 1) + suffix;
}

} // namespace

QString count(double value)
{
    if (!std::isfinite(value))
        return QStringLiteral("0");
    const double magnitude = std::abs(value);
    if (magnitude >= 999'950)
        return scaled(value, 1e6, QLatin1Char('M'));
    if (magnitude >= 10'000)
        return scaled(value, 1e3, QLatin1Char('k'));
    // Thousands apart with a comma, as the service's own pages write them.
    QLocale english(QLocale::English, QLocale::UnitedStates);
    return english.toString(qint64(std::llround(value)));
}

QString duration(double seconds)
{
    // The app's one wording of a length of time; a site with no visits
    // has none at all.
    if (!std::isfinite(seconds) || seconds <= 0)
        return QStringLiteral("0 s");
    return durationText(seconds);
}

QString percent(double ratio)
{
    if (!std::isfinite(ratio) || ratio <= 0)
        return QStringLiteral("0%");
    if (ratio < 0.005)
        return QStringLiteral("<1%");
    return QStringLiteral("%1%").arg(std::lround(ratio * 100));
}

Change change(double now, double before)
{
    if (!std::isfinite(now) || !std::isfinite(before) || before <= 0)
        return {};
    const long points = std::lround((now - before) / before * 100);
    if (points == 0)
        return {QStringLiteral("\u00b10%"), 0};
    if (points > 0)
        return {QStringLiteral("+%1%").arg(points), 1};
    return {QStringLiteral("\u2212%1%").arg(-points), -1};
}

Change pointsChange(double now, double before)
{
    if (!std::isfinite(now) || !std::isfinite(before))
        return {};
    const long points = std::lround((now - before) * 100);
    if (points == 0)
        return {QStringLiteral("\u00b10 pts"), 0};
    if (points > 0)
        return {QStringLiteral("+%1 pts").arg(points), 1};
    return {QStringLiteral("\u2212%1 pts").arg(-points), -1};
}

} // namespace Kestro::AnalyticsNumbers
