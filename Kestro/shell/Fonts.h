#pragma once

namespace Kestro {

// Adds the bundled Geist, Geist Mono and Plus Jakarta Sans faces; answers
// false (after a warning) when one does not load.
bool loadBundledFonts();

} // namespace Kestro
