#pragma once

#include "Timers.h"

#include <QCoroTask>
#include <QObject>
#include <QVariant>

#include <functional>
#include <optional>

namespace Kestro {

class Visibility;

// The page loader: runs the page's load, shows bones until the first value,
// the content afterwards, and the failure view when a load fails with no
// value yet. After every load it asks the page how long to wait before the
// next one; timed reloads wait while the page is paused or the app cannot be
// seen, and a reload that fell due meanwhile runs as soon as both clear.
// A loader is made per route; destroying it drops a load in flight.
class Loaded : public QObject {
    Q_OBJECT
    Q_PROPERTY(State state READ state NOTIFY stateChanged)
    Q_PROPERTY(QVariant value READ value NOTIFY valueChanged)
    Q_PROPERTY(QString error READ error NOTIFY errorChanged)
    Q_PROPERTY(bool loading READ isLoading NOTIFY loadingChanged)
    Q_PROPERTY(int loads READ loads NOTIFY valueChanged)
    Q_PROPERTY(bool paused READ isPaused WRITE setPaused NOTIFY pausedChanged)

public:
    enum class State { Bones, Content, Failed };
    Q_ENUM(State)

    using Load = std::function<QCoro::Task<QVariant>()>;
    // Seconds until the next reload, or none for no timed reload.
    using Every = std::function<std::optional<double>(const QVariant& value)>;

    Loaded(Load load, Every every, Visibility& visibility, Timers& timers = Timers::system(),
           QObject* parent = nullptr);

    State state() const { return m_state; }
    QVariant value() const { return m_value; }
    QString error() const { return m_error; }
    bool isLoading() const { return m_loading; }
    int loads() const { return m_loads; }
    bool isPaused() const { return m_paused; }
    void setPaused(bool paused);

    // Starts the first load (a page calls it when it appears).
    Q_INVOKABLE void start();
    // Loads again now, as the retry control and the user's own changes do.
    Q_INVOKABLE void reload();

signals:
    void stateChanged();
    void valueChanged();
    void errorChanged();
    void loadingChanged();
    void pausedChanged();

private:
    QCoro::Task<> run(quint64 generation);
    void schedule();
    void fire();
    void resumeIfDue();
    bool blocked() const;

    Load m_load;
    Every m_every;
    Visibility& m_visibility;
    Timers& m_timers;
    std::unique_ptr<Timers::Timer> m_timer;

    State m_state = State::Bones;
    QVariant m_value;
    QString m_error;
    bool m_loading = false;
    bool m_paused = false;
    bool m_due = false; // a timed reload fell due while blocked
    int m_loads = 0;
    quint64 m_generation = 0;
};

} // namespace Kestro
