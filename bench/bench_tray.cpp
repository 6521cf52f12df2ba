// What the tray icon costs in memory: the process's resident size once a
// window is up, then again after the tray icon registered with a panel (a
// stand-in StatusNotifier watcher on the session bus, answering from its
// own thread as a panel answers from its process) and drew its count.
// Run inside a session bus and a display, e.g.
//   xvfb-run -a scripts/headless-session build/default/bench/bench_tray

#include "shell/ResidentMemory.h"
#include "shell/TrayIcon.h"

#include <QDBusConnection>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QQuickWindow>
#include <QSvgRenderer>
#include <QTextStream>
#include <QThread>
#include <QTimer>

#include <atomic>

class Watcher : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ host)
public:
    std::atomic<int> registered = 0;
    bool host() const { return true; }
public slots:
    void RegisterStatusNotifierItem(const QString&) { ++registered; }
};

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    QQuickWindow window;
    window.resize(400, 300);
    window.show();
    // The app has drawn text and its SVG icons long before a tray shows:
    // the font database and the SVG renderer are the baseline's too.
    {
        QImage page(200, 50, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&page);
        painter.drawText(page.rect(), QStringLiteral("Kestro 12"));
        QSvgRenderer(QStringLiteral(":/Kestro/assets/icons/bell.svg")).render(&painter);
    }

    QThread panelThread;
    panelThread.start();
    Watcher watcher;
    watcher.moveToThread(&panelThread);
    QDBusConnection panel =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("panel"));
    panel.registerObject(QStringLiteral("/StatusNotifierWatcher"), &watcher,
                         QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties);
    if (!panel.registerService(QStringLiteral("org.kde.StatusNotifierWatcher"))) {
        QTextStream(stderr)
            << "No session bus to register a panel on: run inside scripts/headless-session.\n";
        return 1;
    }

    QTextStream out(stdout);
    std::unique_ptr<Kestro::TrayIcon> tray;
    QTimer::singleShot(1000, [&] {
        out << "window only:    " << Kestro::residentKilobytes() << " kB\n";
        tray = std::make_unique<Kestro::TrayIcon>(Kestro::TrayIcon::Hooks{[] {}, [] {}, [] {}, [] {}});
        tray->setCount(7);
    });
    QTimer::singleShot(3000, [&] {
        out << "with the tray:  " << Kestro::residentKilobytes()
            << " kB (registered: " << (watcher.registered > 0 ? "yes" : "no") << ")\n";
        out.flush();
        panelThread.quit();
        panelThread.wait();
        QCoreApplication::quit();
    });
    return app.exec();
}

#include "bench_tray.moc"
