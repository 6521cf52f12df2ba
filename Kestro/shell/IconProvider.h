#pragma once

#include <QQuickImageProvider>

namespace Kestro {

// "image://icon/<name>?color=<colour>": a Lucide outline icon from the
// bundled assets, drawn in the given colour (the SVGs draw in currentColor).
class IconProvider : public QQuickImageProvider {
public:
    IconProvider();
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace Kestro
