#pragma once

class QQmlEngine;

namespace Kestro {

// Adds "image://own/...", the workspace's own images through the client.
void addRichTextImageProviders(QQmlEngine& engine);

} // namespace Kestro
