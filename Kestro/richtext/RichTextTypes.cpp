#include "RichTextTypes.h"

#include "OwnImageProvider.h"

#include <QQmlEngine>
#include <QtQml/qqmlextensionplugin.h>

// The modules are static libraries: whatever shows rich text adds its image
// providers here, which links in the views' plugin and the shared controls'.
Q_IMPORT_QML_PLUGIN(Kestro_RichTextPlugin)
Q_IMPORT_QML_PLUGIN(Kestro_ControlsPlugin)

namespace Kestro {

void addRichTextImageProviders(QQmlEngine& engine)
{
    engine.addImageProvider(QStringLiteral("own"), new OwnImageProvider);
}

} // namespace Kestro
