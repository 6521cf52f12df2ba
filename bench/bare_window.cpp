// The baseline of bench_startup: a bare Qt Quick window, white, no content.
// Prints "ready <resident kB>" after its first frame and quits.
#include "shell/ResidentMemory.h"

#include <QGuiApplication>
#include <QQuickView>
#include <QTextStream>

int main(int argc, char** argv)
{
    QGuiApplication app(argc, argv);
    QQuickView view;
    view.setColor(Qt::white);
    view.resize(1240, 800);
    QObject::connect(
        &view, &QQuickWindow::frameSwapped, &app,
        [] {
            QTextStream(stdout) << "ready " << Kestro::residentKilobytes() << Qt::endl;
            QCoreApplication::quit();
        },
        Qt::SingleShotConnection);
    view.show();
    return app.exec();
}
