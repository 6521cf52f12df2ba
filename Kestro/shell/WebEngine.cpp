#include "WebEngine.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>
#include <QQuickWindow>
#include <QStandardPaths>

namespace Kestro {

void WebEngine::prepare()
{
    // The engine draws through a context shared with the window's. Linked
    // in, it would say so itself before the application object; loaded
    // later, the app has to.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
}

void WebEngine::removeOldSiteData()
{
    // The engine's own layout for a profile named "Kestro": its storage
    // under the app's data folder, its cache under the app's cache folder.
    for (const auto location : {QStandardPaths::AppDataLocation, QStandardPaths::CacheLocation}) {
        const QString base = QStandardPaths::writableLocation(location);
        if (base.isEmpty())
            continue;
        QDir old(base + QStringLiteral("/QtWebEngine/Kestro"));
        if (old.exists() && !old.removeRecursively())
            qWarning("Kestro could not remove the old web site data in %s.", qPrintable(old.path()));
    }
}

std::unique_ptr<WebEngine> WebEngine::load(Hooks hooks, QString* error)
{
    // Beside the executable in the build tree, in lib/kestro when
    // installed, and where this build put it (for tests run from elsewhere).
    const QString dir = QCoreApplication::applicationDirPath();
    const QStringList candidates = {dir + QStringLiteral("/kestro_webengine"),
                                    dir + QStringLiteral("/../lib/kestro/kestro_webengine"),
                                    QStringLiteral(KESTRO_WEBENGINE_BUILT)};
    QStringList reasons;
    for (const QString& candidate : candidates) {
        QLibrary library(candidate);
        // Views and the profile made by it live until the app quits.
        library.setLoadHints(QLibrary::PreventUnloadHint);
        if (!library.load()) {
            reasons.append(library.errorString());
            continue;
        }
        const auto make = reinterpret_cast<MakeWebEngine>(library.resolve(makeWebEngineSymbol));
        if (!make) {
            reasons.append(library.errorString());
            continue;
        }
        return std::unique_ptr<WebEngine>(make(&hooks));
    }
    if (error)
        *error = QStringLiteral("Kestro couldn't load its web engine library (%1). Reinstall Kestro.")
                     .arg(reasons.join(QStringLiteral("; ")));
    return nullptr;
}

} // namespace Kestro
