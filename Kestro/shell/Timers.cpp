#include "Timers.h"

namespace Kestro {

namespace {

class SystemTimer final : public Timers::Timer {
public:
    SystemTimer(int milliseconds, std::function<void()> fire)
    {
        m_timer.setSingleShot(true);
        QObject::connect(&m_timer, &QTimer::timeout, [fire = std::move(fire)] { fire(); });
        m_timer.start(milliseconds);
    }

private:
    QTimer m_timer;
};

class SystemTimers final : public Timers {
public:
    std::unique_ptr<Timer> start(int milliseconds, std::function<void()> fire) override
    {
        return std::make_unique<SystemTimer>(milliseconds, std::move(fire));
    }
};

} // namespace

Timers& Timers::system()
{
    static SystemTimers timers;
    return timers;
}

} // namespace Kestro
