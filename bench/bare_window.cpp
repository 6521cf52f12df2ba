// The baseline of bench_startup: a bare Qt Quick window with one rectangle.
// Prints "ready <resident kB>" after its first frame and quits.
#include <QFile>
#include <QGuiApplication>
#include <QQuickView>
#include <QTextStream>

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    QQuickView view;
    view.setSource(QUrl(QStringLiteral("data:text/plain,")));
    view.setColor(Qt::white);
    view.resize(1240, 800);
    QObject::connect(
        &view, &QQuickWindow::frameSwapped, &app,
        [] {
            QFile status(QStringLiteral("/proc/self/status"));
            status.open(QIODevice::ReadOnly);
            const QByteArray text = status.readAll();
            const int at = text.indexOf("VmRSS:");
            const QByteArray rss = text.mid(at + 6, text.indexOf('\n', at) - at - 6).trimmed();
            QTextStream(stdout) << "ready " << rss.split(' ').first() << Qt::endl;
            QCoreApplication::quit();
        },
        Qt::SingleShotConnection);
    view.show();
    return app.exec();
}
