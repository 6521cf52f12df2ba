#pragma once

#include <QString>

namespace Kestro {

// How long something took or has been going, the one wording every elapsed
// time in the app uses: "12 s", "3 min", "3 min 5 s", "2 h", "2 h 4 min".
// Rounded to whole seconds, at least one.
QString durationText(double seconds);

} // namespace Kestro
