#pragma once

#include <QColor>
#include <QObject>
#include <QQmlParserStatus>
#include <QSize>
#include <QtQml/qqmlregistration.h>

#include <cmath>
#include <functional>
#include <optional>

namespace Kestro {

// What the sky's shader is given each frame, and when: the colours of both
// themes, the blend between them, and the seconds of animation. The view
// (SkySurface.qml) sets the inputs and calls frame() once per frame while
// `paused` is false; between frames nothing changes, so nothing redraws.
class SkyView : public QObject, public QQmlParserStatus {
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    // Inputs.
    Q_PROPERTY(bool dark READ dark WRITE setDark NOTIFY inputsChanged)
    Q_PROPERTY(QColor sky READ sky WRITE setSky NOTIFY inputsChanged)
    Q_PROPERTY(QColor cloud READ cloud WRITE setCloud NOTIFY inputsChanged)
    Q_PROPERTY(bool still READ still WRITE setStill NOTIFY inputsChanged)
    Q_PROPERTY(bool stopped READ stopped WRITE setStopped NOTIFY inputsChanged)
    Q_PROPERTY(QSizeF viewSize READ viewSize WRITE setViewSize NOTIFY resChanged)
    // What the shader and the view read.
    // The drawable, for the layer; the same as the shader's `res`.
    Q_PROPERTY(QSize drawable READ res NOTIFY resChanged)
    Q_PROPERTY(QSizeF res READ resF NOTIFY resChanged)
    Q_PROPERTY(double time READ time NOTIFY frameChanged)
    Q_PROPERTY(double theme READ theme NOTIFY frameChanged)
    Q_PROPERTY(QColor skyL READ skyL NOTIFY frameChanged)
    Q_PROPERTY(QColor cloudL READ cloudL NOTIFY frameChanged)
    Q_PROPERTY(QColor skyD READ skyD NOTIFY frameChanged)
    Q_PROPERTY(bool paused READ paused NOTIFY pausedChanged)
    // The theme is still on its way from one end to the other.
    Q_PROPERTY(bool blending READ blending NOTIFY frameChanged)

public:
    // The drawable is this share of the view in each direction.
    static constexpr double drawScale = 0.36;
    // A still sky shows this moment of the clouds.
    static constexpr double stillTime = 12.0;
    // A longer gap between frames (sleep, a stall) moves the clouds this far.
    static constexpr double longestStep = 0.05;

    // Seconds on a monotonic clock.
    using Clock = std::function<double()>;

    explicit SkyView(QObject* parent = nullptr);

    // The drawable for a view of this size: the scaled size, rounded, at
    // least one pixel each way.
    static QSize drawableSize(QSizeF viewSize);

    bool dark() const { return m_dark; }
    QColor sky() const { return m_sky; }
    QColor cloud() const { return m_cloud; }
    bool still() const { return m_still; }
    bool stopped() const { return m_stopped; }
    QSizeF viewSize() const { return m_viewSize; }
    void setDark(bool dark);
    void setSky(const QColor& sky);
    void setCloud(const QColor& cloud);
    void setStill(bool still);
    void setStopped(bool stopped);
    void setViewSize(QSizeF size);

    QSize res() const { return m_res; }
    QSizeF resF() const { return QSizeF(m_res); }
    double time() const { return m_time; }
    double theme() const { return m_theme; }
    QColor skyL() const { return m_skyL; }
    QColor cloudL() const { return m_cloudL; }
    QColor skyD() const { return m_skyD; }
    bool paused() const { return m_still || m_stopped; }
    bool blending() const { return std::abs(m_theme - m_target) > 0.002; }

    // Advances the animation to now (or, when still, shows the still moment).
    Q_INVOKABLE void frame();

    void setClock(Clock clock) { m_clock = std::move(clock); }

    void classBegin() override {}
    void componentComplete() override;

signals:
    void inputsChanged();
    void resChanged();
    void frameChanged();
    void pausedChanged();

private:
    // Takes the inputs as they now stand, once all of them are set.
    void apply();
    void scheduleApply();
    void setPaused(bool wasPaused);

    Clock m_clock;
    bool m_complete = false;
    bool m_applyPending = false;

    bool m_dark = false;
    QColor m_sky{Qt::white};
    QColor m_cloud{Qt::white};
    bool m_still = false;
    bool m_stopped = false;
    QSizeF m_viewSize;

    QSize m_res{1, 1};
    double m_time = 0;
    double m_theme = 0;
    double m_target = 0;
    QColor m_skyL{Qt::white};
    QColor m_cloudL{Qt::white};
    QColor m_skyD{Qt::black};
    bool m_started = false;
    double m_elapsed = 0;
    // The previous frame's time; none after a pause, so the first frame
    // after it does not jump.
    std::optional<double> m_last;
};

} // namespace Kestro
