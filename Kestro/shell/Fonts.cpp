#include "Fonts.h"

#include <QDir>
#include <QFontDatabase>

namespace Kestro {

bool loadBundledFonts()
{
    bool all = true;
    const QDir folder(QStringLiteral(":/Kestro/assets/fonts"));
    for (const QString& name : folder.entryList({QStringLiteral("*.ttf")})) {
        if (QFontDatabase::addApplicationFont(folder.filePath(name)) < 0) {
            qWarning("The bundled font %s could not be loaded.", qPrintable(name));
            all = false;
        }
    }
    return all;
}

} // namespace Kestro
