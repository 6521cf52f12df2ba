#pragma once

#include <QImage>
#include <QQuickImageProvider>
#include <QString>

namespace Kestro {

// Every teammate's face: a small robot drawn from its handle alone, so the
// same teammate looks the same everywhere and on every machine, and two
// teammates rarely look alike. The parts (head, eyes, mouth, antenna) and
// the hue are picked from a hash of the handle; the shapes are bold enough
// to read at 16 px.
struct RobotFace {
    int hue = 0;     // degrees
    int head = 0;    // 0 rounded square, 1 round, 2 wide screen, 3 dome
    int eyes = 0;    // 0 dots, 1 squares, 2 visor, 3 one big eye, 4 tall ovals
    int mouth = 0;   // 0 none, 1 line, 2 grille, 3 smile
    int antenna = 0; // 0 none, 1 one with a ball, 2 bolts at the sides

    static RobotFace of(const QString& handle);
    QImage draw(int size, bool dark) const;
    bool operator==(const RobotFace&) const = default;
};

// "image://robot/<handle>" and "image://robot/<handle>?dark".
class RobotFaceProvider : public QQuickImageProvider {
public:
    RobotFaceProvider();
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace Kestro
