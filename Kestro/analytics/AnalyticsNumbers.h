#pragma once

#include <QString>

namespace Kestro::AnalyticsNumbers {

// A count as the headline and rows show it: "987", "1,234", "12.3k",
// "1.2M".
QString count(double value);

// A visit's length: "48 s", "1 min 35 s", "1 h 2 min".
QString duration(double seconds);

// A share between 0 and 1 as a whole percent: "42%"; below 1% but above
// none, "<1%".
QString percent(double ratio);

// How a figure moved against the range before: "+12%", "−8%", "±0%", or
// nothing when there was nothing before to compare with.
struct Change {
    QString text;
    int direction = 0; // 1 up, -1 down, 0 level or unknown
};
Change change(double now, double before);
// How a rate between 0 and 1 moved, in percentage points: "+5 pts"
// (40% to 45% is five points, not 13%).
Change pointsChange(double now, double before);

} // namespace Kestro::AnalyticsNumbers
