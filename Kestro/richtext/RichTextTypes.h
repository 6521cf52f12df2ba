#pragma once

class QQmlEngine;

namespace Kestro {

// Makes the rich-text types known to QML under "import Kestro".
void registerRichTextTypes();
// Adds "image://own/...", the workspace's own images through the client.
void addRichTextImageProviders(QQmlEngine& engine);

} // namespace Kestro
