// kestro-gallery: renders the rich-text views with a sample of every
// construct, in light and dark, to PNG files, so they can be looked at.
//   kestro-gallery richtext OUTDIR [--repeat N]
// --repeat lays the sample out N times over, as a long document.
// Exits 1 when a view logged a QML warning or a file could not be written.

#include "richtext/RichTextTypes.h"
#include "shell/Fonts.h"
#include "shell/IconProvider.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickItemGrabResult>
#include <QQuickWindow>
#include <QTextStream>

#include <cstdio>

namespace {
int warnings = 0;
QtMessageHandler previous = nullptr;

void countWarnings(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type == QtWarningMsg || type == QtCriticalMsg)
        ++warnings;
    previous(type, context, message);
}
} // namespace

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int repeat = args.size() == 5 && args[3] == QLatin1String("--repeat") ? args[4].toInt() : 1;
    if ((args.size() != 3 && args.size() != 5) || args[1] != QLatin1String("richtext") || repeat < 1) {
        QTextStream(stderr) << "Usage: kestro-gallery richtext OUTDIR [--repeat N]\n";
        return 2;
    }
    previous = qInstallMessageHandler(countWarnings);
    Kestro::loadBundledFonts();

    QQmlEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/"));
    engine.addImageProvider(QStringLiteral("icon"), new Kestro::IconProvider);
    Kestro::addRichTextImageProviders(engine);
    QFile sample(QStringLiteral(":/gallery/sample.md"));
    sample.open(QIODevice::ReadOnly);
    QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/gallery/Gallery.qml")));
    if (component.isError()) {
        QTextStream(stderr) << component.errorString();
        return 1;
    }
    QDir().mkpath(args[2]);

    for (const bool dark : {false, true}) {
        const QString text = QString::fromUtf8(sample.readAll());
        QStringList copies;
        for (int i = 0; i < repeat; ++i)
            copies.append(text);
        QScopedPointer<QQuickItem> page(qobject_cast<QQuickItem*>(component.createWithInitialProperties(
            {{QStringLiteral("dark"), dark}, {QStringLiteral("sample"), copies.join(QLatin1Char('\n'))}})));
        sample.seek(0);
        if (!page) {
            QTextStream(stderr) << component.errorString();
            return 1;
        }
        QQuickWindow window;
        window.resize(int(page->width()), int(page->height()));
        page->setParentItem(window.contentItem());
        window.show();
        // Lay out, then draw the whole page into an image.
        QCoreApplication::processEvents();
        window.resize(int(page->width()), int(page->height()));
        const QSharedPointer<QQuickItemGrabResult> grab = page->grabToImage();
        if (!grab) {
            QTextStream(stderr) << "The page could not be drawn.\n";
            return 1;
        }
        bool done = false;
        QObject::connect(grab.data(), &QQuickItemGrabResult::ready, [&] { done = true; });
        while (!done)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        const QString file = QDir(args[2]).filePath(dark ? QStringLiteral("richtext-dark.png")
                                                         : QStringLiteral("richtext-light.png"));
        if (!grab->image().save(file)) {
            QTextStream(stderr) << "Could not write " << file << ".\n";
            return 1;
        }
        QTextStream(stdout) << "Wrote " << file << " (" << grab->image().width() << "x"
                            << grab->image().height() << ").\n";
    }
    if (warnings > 0) {
        QTextStream(stderr) << warnings << " warnings were logged while drawing the views.\n";
        return 1;
    }
    return 0;
}
