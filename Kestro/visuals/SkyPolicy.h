#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace Kestro {

// How often the sky may move on this machine. A graphics card draws it at
// the display's rate for next to nothing. A software renderer (llvmpipe
// under a virtual display, or a machine without drivers) repaints the whole
// window for every frame of the sky: at 1440x900 that is about 40 ms of
// processor time a frame, so even 4 frames a second took 16% of a core.
// There the sky is calm: its clouds stand, and it moves only while the
// theme blends from light to dark or back (a second or so). KESTRO_SKY_FPS
// sets the rate by hand ("0": the display's rate, "still", or frames a
// second), for measuring and for screenshots.
class SkyPolicy : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool software READ software CONSTANT)
    Q_PROPERTY(bool still READ still CONSTANT)
    Q_PROPERTY(bool calm READ calm CONSTANT)
    Q_PROPERTY(int framesPerSecond READ framesPerSecond CONSTANT)

public:
    explicit SkyPolicy(QObject* parent = nullptr);

    bool software() const { return m_software; }
    bool still() const { return m_still; }
    bool calm() const { return m_calm; }
    int framesPerSecond() const { return m_framesPerSecond; }

    // Whether an OpenGL renderer's name is one that draws on the processor.
    static bool isSoftwareRenderer(const QByteArray& name);

private:
    bool m_software = false;
    bool m_still = false;
    bool m_calm = false;
    int m_framesPerSecond = 0;
};

} // namespace Kestro
