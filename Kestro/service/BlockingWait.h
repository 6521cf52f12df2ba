#pragma once

#include <QCoroTask>
#include <QEventLoop>

#include <exception>
#include <optional>

namespace Kestro {

// Runs an event loop until the task ends and returns its value or rethrows
// its error. For command-line tools and tests only: the app never blocks.
// (QCoro's own waitFor() loses a thrown error and never returns.)
template <typename T> T blockingWait(QCoro::Task<T> task)
{
    QEventLoop loop;
    std::optional<T> value;
    std::exception_ptr error;
    bool done = false;
    auto runner = [&]() -> QCoro::Task<> {
        try {
            value.emplace(co_await std::move(task));
        } catch (...) {
            error = std::current_exception();
        }
        done = true;
        loop.quit();
    };
    auto running = runner();
    if (!done)
        loop.exec();
    if (error)
        std::rethrow_exception(error);
    return std::move(*value);
}

inline void blockingWait(QCoro::Task<> task)
{
    blockingWait([](QCoro::Task<> work) -> QCoro::Task<bool> {
        co_await std::move(work);
        co_return true;
    }(std::move(task)));
}

} // namespace Kestro
