// kestro-gallery: renders views to PNG files in light and dark, so they can
// be looked at.
//   kestro-gallery richtext OUTDIR [--repeat N]
//     every rich-text construct; --repeat lays the sample out N times over,
//     as a long document
//   kestro-gallery composer OUTDIR
//     the prompt bar in each of its states, one sheet per theme
// Exits 1 when a view logged a QML warning or a file could not be written.

#include "richtext/RichTextTypes.h"
#include "shell/Fonts.h"
#include "shell/IconProvider.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickItemGrabResult>
#include <QQuickWindow>
#include <QTextStream>
#include <QThread>
#include <QtQml/qqmlextensionplugin.h>

#include <cstdio>

using namespace Qt::StringLiterals;

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

#ifdef KESTRO_GALLERY_COMPOSER
Q_IMPORT_QML_PLUGIN(Kestro_PagesPlugin)
Q_IMPORT_QML_PLUGIN(Kestro_ComposerPlugin)

// Draws the prompt bar in each state into one sheet per theme.
int composerSheets(QQmlEngine& engine, const QString& outDir)
{
    const QStringList states = {u"empty"_s,    u"text"_s,    u"mention"_s,  u"document"_s, u"skill"_s,
                                u"caller"_s,   u"pending"_s, u"disabled"_s, u"stacked"_s,  u"quiet"_s,
                                u"approver"_s, u"guest"_s,   u"viewer"_s};
    QQmlComponent component(&engine, QUrl(u"qrc:/gallery/ComposerGallery.qml"_s));
    if (component.isError()) {
        QTextStream(stderr) << component.errorString();
        return 1;
    }
    for (const bool dark : {false, true}) {
        QList<QImage> shots;
        for (const QString& state : states) {
            QQuickWindow window;
            QScopedPointer<QQuickItem> page(qobject_cast<QQuickItem*>(
                component.createWithInitialProperties({{u"dark"_s, dark}, {u"state"_s, state}})));
            if (!page) {
                QTextStream(stderr) << component.errorString();
                return 1;
            }
            window.resize(int(page->width()), int(page->height()));
            page->setParentItem(window.contentItem());
            window.show();
            window.requestActivate();
            QMetaObject::invokeMethod(page.data(), "prepare");
            // Let the menu open and the skills and documents settle into
            // their loading headings.
            for (int i = 0; i < 20; ++i) {
                QCoreApplication::processEvents();
                QThread::msleep(10);
            }
            shots.append(window.grabWindow());
        }
        QImage sheet(shots.first().width(), shots.first().height() * int(shots.size()), QImage::Format_RGB32);
        QPainter painter(&sheet);
        for (int i = 0; i < shots.size(); ++i)
            painter.drawImage(0, i * shots.first().height(), shots[i]);
        painter.end();
        const QString file = QDir(outDir).filePath(dark ? u"composer-dark.png"_s : u"composer-light.png"_s);
        if (!sheet.save(file)) {
            QTextStream(stderr) << "Could not write " << file << ".\n";
            return 1;
        }
        QTextStream(stdout) << "Wrote " << file << ".\n";
    }
    return 0;
}
#endif

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
#ifdef KESTRO_GALLERY_COMPOSER
    if (args.size() == 3 && args[1] == QLatin1String("composer")) {
        previous = qInstallMessageHandler(countWarnings);
        Kestro::loadBundledFonts();
        QQmlEngine engine;
        engine.addImportPath(QStringLiteral("qrc:/"));
        engine.addImageProvider(QStringLiteral("icon"), new Kestro::IconProvider);
        QDir().mkpath(args[2]);
        const int status = composerSheets(engine, args[2]);
        if (status == 0 && warnings > 0) {
            QTextStream(stderr) << warnings << " warnings were logged while drawing the views.\n";
            return 1;
        }
        return status;
    }
#endif
    const int repeat = args.size() == 5 && args[3] == QLatin1String("--repeat") ? args[4].toInt() : 1;
    if ((args.size() != 3 && args.size() != 5) || args[1] != QLatin1String("richtext") || repeat < 1) {
        QTextStream(stderr) << "Usage: kestro-gallery richtext OUTDIR [--repeat N]\n"
                               "       kestro-gallery composer OUTDIR\n";
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
        // A theme change rebuilds the views' blocks and deletes the old ones
        // later; without an event loop running, they are deleted here, while
        // the application still exists.
        page.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    if (warnings > 0) {
        QTextStream(stderr) << warnings << " warnings were logged while drawing the views.\n";
        return 1;
    }
    return 0;
}
