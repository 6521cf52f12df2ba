#include "Loaded.h"

#include "MainThread.h"
#include "Visibility.h"

#include "service/ServiceError.h"

#include <QPointer>

#include <cmath>

namespace Kestro {

Loaded::Loaded(Load load, Every every, Visibility& visibility, Timers& timers, QObject* parent)
    : QObject(parent), m_load(std::move(load)), m_every(std::move(every)), m_visibility(visibility),
      m_timers(timers)
{
    connect(&m_visibility, &Visibility::visibleChanged, this, &Loaded::resumeIfDue);
}

void Loaded::setPaused(bool paused)
{
    if (paused == m_paused)
        return;
    m_paused = paused;
    emit pausedChanged();
    resumeIfDue();
}

void Loaded::start()
{
    if (m_loads == 0 && !m_loading)
        reload();
}

void Loaded::reload()
{
    requireMainThread("Loaded::reload");
    m_timer.reset();
    m_due = false;
    run(++m_generation);
}

QCoro::Task<> Loaded::run(quint64 generation)
{
    // The loader may be gone, or a newer load started, when the answer comes:
    // then the answer is dropped.
    QPointer<Loaded> self(this);
    m_loading = true;
    emit loadingChanged();
    QVariant value;
    QString failure;
    bool ok = false;
    try {
        value = co_await m_load();
        ok = true;
    } catch (const std::exception& error) {
        failure = describeError(error);
    }
    if (!self || generation != m_generation)
        co_return;
    m_loading = false;
    emit loadingChanged();
    if (ok) {
        m_value = value;
        ++m_loads;
        if (!m_error.isEmpty()) {
            m_error.clear();
            emit errorChanged();
        }
        emit valueChanged();
        if (m_state != State::Content) {
            m_state = State::Content;
            emit stateChanged();
        }
    } else {
        m_error = failure;
        emit errorChanged();
        // With a value on screen a failed reload keeps it there.
        if (m_state == State::Bones) {
            m_state = State::Failed;
            emit stateChanged();
        }
    }
    schedule();
}

void Loaded::schedule()
{
    const std::optional<double> delay = m_every && m_loads > 0 ? m_every(m_value) : std::nullopt;
    if (!delay || !std::isfinite(*delay) || *delay < 0)
        return;
    // Measured from the end of the load just done.
    m_timer = m_timers.start(int(std::lround(*delay * 1000)), [this] { fire(); });
}

void Loaded::fire()
{
    m_timer.reset();
    if (blocked()) {
        m_due = true;
        return;
    }
    reload();
}

void Loaded::resumeIfDue()
{
    if (m_due && !blocked())
        reload();
}

bool Loaded::blocked() const
{
    return m_paused || !m_visibility.isVisible();
}

} // namespace Kestro
