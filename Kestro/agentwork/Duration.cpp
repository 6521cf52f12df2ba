#include "Duration.h"

#include <cmath>

namespace Kestro {

QString durationText(double seconds)
{
    const qint64 s = std::max<qint64>(1, std::isfinite(seconds) ? qint64(std::llround(seconds)) : 1);
    if (s < 60)
        return QStringLiteral("%1 s").arg(s);
    if (s < 3600)
        return s % 60 == 0 ? QStringLiteral("%1 min").arg(s / 60)
                           : QStringLiteral("%1 min %2 s").arg(s / 60).arg(s % 60);
    // Past an hour the seconds no longer matter.
    const qint64 minutes = (s % 3600) / 60;
    return minutes == 0 ? QStringLiteral("%1 h").arg(s / 3600)
                        : QStringLiteral("%1 h %2 min").arg(s / 3600).arg(minutes);
}

} // namespace Kestro
