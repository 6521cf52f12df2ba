#pragma once

namespace Kestro {

// Makes the rich-text types known to QML under "import Kestro".
void registerRichTextTypes();

} // namespace Kestro
