#include "SkyView.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cmath>

namespace Kestro {

SkyView::SkyView(QObject* parent) : QObject(parent)
{
    auto timer = std::make_shared<QElapsedTimer>();
    timer->start();
    m_clock = [timer] { return double(timer->nsecsElapsed()) / 1e9; };
}

QSize SkyView::drawableSize(QSizeF viewSize)
{
    return {std::max(1, int(std::lround(viewSize.width() * drawScale))),
            std::max(1, int(std::lround(viewSize.height() * drawScale)))};
}

void SkyView::componentComplete()
{
    m_complete = true;
    apply();
}

void SkyView::setDark(bool dark)
{
    if (m_dark == dark)
        return;
    m_dark = dark;
    emit inputsChanged();
    scheduleApply();
}

void SkyView::setSky(const QColor& sky)
{
    if (m_sky == sky)
        return;
    m_sky = sky;
    emit inputsChanged();
    scheduleApply();
}

void SkyView::setCloud(const QColor& cloud)
{
    if (m_cloud == cloud)
        return;
    m_cloud = cloud;
    emit inputsChanged();
    scheduleApply();
}

void SkyView::setStill(bool still)
{
    if (m_still == still)
        return;
    const bool wasPaused = paused();
    m_still = still;
    emit inputsChanged();
    setPaused(wasPaused);
    scheduleApply();
}

void SkyView::setStopped(bool stopped)
{
    if (m_stopped == stopped)
        return;
    const bool wasPaused = paused();
    m_stopped = stopped;
    emit inputsChanged();
    setPaused(wasPaused);
}

void SkyView::setPaused(bool wasPaused)
{
    if (paused() == wasPaused)
        return;
    m_last.reset();
    emit pausedChanged();
}

void SkyView::setViewSize(QSizeF size)
{
    if (m_viewSize == size)
        return;
    m_viewSize = size;
    const QSize res = drawableSize(size);
    if (res == m_res)
        return;
    m_res = res;
    emit resChanged();
}

void SkyView::scheduleApply()
{
    // A theme change arrives as several inputs, one by one and in no set
    // order: the new sky colour can come before `dark` does, and taken at
    // once it would land in the other theme's slot. They are taken together,
    // once the change is through.
    if (!m_complete || m_applyPending)
        return;
    m_applyPending = true;
    QMetaObject::invokeMethod(this, &SkyView::apply, Qt::QueuedConnection);
}

void SkyView::apply()
{
    m_applyPending = false;
    if (!m_complete)
        return;
    // Each theme's colours stay while the other shows, so a blend has both
    // of its ends.
    if (m_dark) {
        m_skyD = m_sky;
        m_target = 1;
    } else {
        m_skyL = m_sky;
        m_cloudL = m_cloud;
        m_target = 0;
    }
    // The sky appears in its theme, without a blend from the other.
    if (!m_started) {
        m_theme = m_target;
        m_started = true;
    }
    // A still sky is drawn once, now; a moving one at its next frame.
    if (m_still)
        frame();
    else
        emit frameChanged();
}

void SkyView::frame()
{
    if (m_still) {
        m_theme = m_target;
        m_time = stillTime;
    } else {
        const double now = m_clock();
        const double dt = m_last ? now - *m_last : 0.0;
        m_last = now;
        m_elapsed += std::min(dt, longestStep);
        // Closes 8% of the gap per 60th of a second, whatever the frame rate.
        m_theme += (m_target - m_theme) * (1.0 - std::pow(0.92, dt * 60.0));
        m_time = m_elapsed;
    }
    emit frameChanged();
}

} // namespace Kestro
