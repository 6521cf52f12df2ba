#pragma once

#include <QObject>
#include <QPointer>
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
//
// The renderer is asked once, of the window's own context on its render
// thread the first time a sky draws (asking a context of our own took 9 ms
// of the start-up on llvmpipe). Until it answers the sky is calm.
class SkyPolicy : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool still READ still CONSTANT)
    Q_PROPERTY(bool calm READ calm NOTIFY calmChanged)
    Q_PROPERTY(int framesPerSecond READ framesPerSecond CONSTANT)

public:
    explicit SkyPolicy(QObject* parent = nullptr);

    bool still() const { return m_still; }
    bool calm() const { return m_calm; }
    int framesPerSecond() const { return m_framesPerSecond; }

    // Whether an OpenGL renderer's name is one that draws on the processor.
    static bool isSoftwareRenderer(const QByteArray& name);

    // Asks the window's renderer, once for the app (a sky calls it as it
    // appears).
    Q_INVOKABLE void learnFrom(QObject* window);

signals:
    void calmChanged();

private:
    void setCalm(bool calm);

    bool m_asked = false;
    bool m_chosen = false; // by KESTRO_SKY_FPS
    bool m_still = false;
    bool m_calm = true;
    int m_framesPerSecond = 0;
};

} // namespace Kestro
