#pragma once

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

namespace Kestro {

// Starts one-shot timers. The loader takes it as a parameter so tests can
// move time by hand instead of waiting for it.
class Timers {
public:
    class Timer {
    public:
        virtual ~Timer() = default; // destroying a timer cancels it
    };
    virtual ~Timers() = default;
    virtual std::unique_ptr<Timer> start(int milliseconds, std::function<void()> fire) = 0;

    // Real time, through QTimer.
    static Timers& system();
};

} // namespace Kestro
