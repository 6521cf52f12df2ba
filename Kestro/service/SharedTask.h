#pragma once

#include <QCoroSignal>
#include <QCoroTask>
#include <QObject>

#include <exception>
#include <memory>
#include <optional>

namespace Kestro {

// Says "done" once; the awaiters of a SharedTask wait for it.
class Completion : public QObject {
    Q_OBJECT
public:
    bool isDone() const { return m_done; }
    void finish()
    {
        m_done = true;
        emit finished();
    }
signals:
    void finished();

private:
    bool m_done = false;
};

// One piece of asynchronous work whose outcome any number of callers await:
// the first caller starts it, later callers get the same value or the same
// error. QCoro tasks have exactly one awaiter, hence this.
// Copies share the same state. Create it, keep it where later callers will
// find it, then run() it, so that work finishing without suspending still
// sees itself registered.
template <typename T> class SharedTask {
public:
    SharedTask() : m_state(std::make_shared<State>()) {}

    void run(QCoro::Task<T> work) const { fill(m_state, std::move(work)); }
    bool isDone() const { return m_state->completion.isDone(); }
    bool isSameAs(const SharedTask& other) const { return m_state == other.m_state; }

    QCoro::Task<T> result() const
    {
        const std::shared_ptr<State> state = m_state;
        if (!state->completion.isDone())
            co_await qCoro(&state->completion, &Completion::finished);
        if (state->error)
            std::rethrow_exception(state->error);
        // A copy: every awaiter gets the value, and QCoro 0.8 moves from an
        // lvalue given to co_return.
        co_return T(*state->value);
    }

private:
    struct State {
        Completion completion;
        std::optional<T> value;
        std::exception_ptr error;
    };

    static QCoro::Task<> fill(std::shared_ptr<State> state, QCoro::Task<T> work)
    {
        try {
            state->value.emplace(co_await std::move(work));
        } catch (...) {
            state->error = std::current_exception();
        }
        state->completion.finish();
    }

    std::shared_ptr<State> m_state;
};

} // namespace Kestro
