// The page loader with time moved by hand: bones, content, failure, the
// page's cadence, pausing, hiding, and answers that arrive too late.

#include "shell/Loaded.h"
#include "shell/Visibility.h"

#include "service/CallError.h"

#include <QCoroSignal>
#include <QSignalSpy>
#include <QTest>

#include <map>

using namespace Kestro;
using namespace Qt::Literals::StringLiterals;

namespace {

// Timers that fire only when the test moves the clock.
class ManualTimers final : public Timers {
public:
    struct Pending {
        qint64 at;
        std::function<void()> fire;
    };
    class Handle final : public Timer {
    public:
        Handle(ManualTimers& owner, int id) : m_owner(owner), m_id(id) {}
        ~Handle() override { m_owner.m_pending.erase(m_id); }

    private:
        ManualTimers& m_owner;
        int m_id;
    };
    std::unique_ptr<Timer> start(int milliseconds, std::function<void()> fire) override
    {
        const int id = ++m_next;
        m_pending[id] = {m_now + milliseconds, std::move(fire)};
        return std::make_unique<Handle>(*this, id);
    }
    void advance(qint64 milliseconds)
    {
        m_now += milliseconds;
        for (bool fired = true; fired;) {
            fired = false;
            for (auto it = m_pending.begin(); it != m_pending.end(); ++it) {
                if (it->second.at <= m_now) {
                    auto fire = std::move(it->second.fire);
                    m_pending.erase(it);
                    fire();
                    fired = true;
                    break;
                }
            }
        }
    }
    size_t pending() const { return m_pending.size(); }

private:
    std::map<int, Pending> m_pending;
    qint64 m_now = 0;
    int m_next = 0;
};

// A load the test answers by hand: each call waits for answer() or fail().
class Source : public QObject {
    Q_OBJECT
public:
    int calls = 0;
    QVariant next;
    QString failure;
    void answer(QVariant value)
    {
        next = std::move(value);
        failure.clear();
        deliver();
    }
    void fail(QString text)
    {
        failure = std::move(text);
        deliver();
    }
    // QCoro resumes a coroutine that awaits a signal from the event loop,
    // so the answer lands once pending events have run.
    void deliver()
    {
        emit answered();
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }
    QCoro::Task<QVariant> load()
    {
        ++calls;
        co_await qCoro(this, &Source::answered);
        if (!failure.isEmpty())
            throw CallError::http(500, failure);
        co_return QVariant(next);
    }
signals:
    void answered();
};

struct Rig {
    Source source;
    ManualTimers timers;
    Visibility visibility;
    std::optional<double> delay = 10;
    std::unique_ptr<Loaded> loaded = std::make_unique<Loaded>(
        [this] { return source.load(); }, [this](const QVariant&) { return delay; }, visibility, timers);
};

} // namespace

class LoadedTest : public QObject {
    Q_OBJECT
private slots:
    void bonesContentAndCadence()
    {
        Rig rig;
        QCOMPARE(rig.loaded->state(), Loaded::State::Bones);
        rig.loaded->start();
        rig.loaded->start(); // a second appearance does not load twice
        QCOMPARE(rig.source.calls, 1);
        rig.source.answer(1);
        QCOMPARE(rig.loaded->state(), Loaded::State::Content);
        QCOMPARE(rig.loaded->value(), QVariant(1));
        rig.timers.advance(9'999);
        QCOMPARE(rig.source.calls, 1);
        rig.timers.advance(1);
        QCOMPARE(rig.source.calls, 2);
        QCOMPARE(rig.loaded->state(), Loaded::State::Content); // no bones while reloading
        rig.delay = std::nullopt;                              // the page says: no timed reload
        rig.source.answer(2);
        QCOMPARE(rig.loaded->loads(), 2);
        QCOMPARE(rig.timers.pending(), size_t(0));
        rig.timers.advance(3'600'000);
        QCOMPARE(rig.source.calls, 2);
        rig.loaded->reload(); // the user's own action still reloads
        QCOMPARE(rig.source.calls, 3);
    }

    void failures()
    {
        Rig rig;
        rig.loaded->start();
        rig.source.fail(u"down"_s);
        QCOMPARE(rig.loaded->state(), Loaded::State::Failed);
        QCOMPARE(rig.loaded->error(), u"The server answered 500."_s);
        QCOMPARE(rig.timers.pending(), size_t(0)); // nothing to ask the page yet
        rig.loaded->reload();                      // the retry control
        rig.source.answer(u"good"_s);
        QCOMPARE(rig.loaded->state(), Loaded::State::Content);
        QVERIFY(rig.loaded->error().isEmpty());
        rig.timers.advance(10'000);
        rig.source.fail(u"down again"_s);
        QCOMPARE(rig.loaded->state(), Loaded::State::Content); // the good value stays
        QCOMPARE(rig.loaded->value(), QVariant(u"good"_s));
        rig.timers.advance(10'000); // and the next timed reload still comes
        QCOMPARE(rig.source.calls, 4);
    }

    void pausedOrHiddenWaits()
    {
        Rig rig;
        rig.loaded->start();
        rig.source.answer(1);
        rig.visibility.setVisible(false);
        rig.timers.advance(60'000);
        QCOMPARE(rig.source.calls, 1); // hidden: no timed reload
        rig.loaded->setPaused(true);
        rig.visibility.setVisible(true);
        QCOMPARE(rig.source.calls, 1); // still paused
        rig.loaded->setPaused(false);
        QCOMPARE(rig.source.calls, 2); // the missed reload runs at once
        rig.source.answer(2);
        rig.visibility.setVisible(false);
        rig.visibility.setVisible(true);
        QCOMPARE(rig.source.calls, 2); // nothing was due: no extra load
        rig.timers.advance(10'000);
        QCOMPARE(rig.source.calls, 3);
    }

    void lateAnswersAreDropped()
    {
        Rig rig;
        rig.loaded->start();
        rig.loaded->reload(); // a newer load replaces the one in flight
        QCOMPARE(rig.source.calls, 2);
        rig.source.answer(7); // both awaiting loads see it; only the newer counts
        QCOMPARE(rig.loaded->loads(), 1);

        // The route changes: the loader goes while its load is in flight.
        rig.timers.advance(10'000);
        QCOMPARE(rig.source.calls, 3);
        QSignalSpy values(rig.loaded.get(), &Loaded::valueChanged);
        rig.loaded.reset();
        rig.source.answer(8); // arrives after: dropped without a crash
        QCOMPARE(values.size(), 0);
        QCOMPARE(rig.timers.pending(), size_t(0));
    }
};

QTEST_GUILESS_MAIN(LoadedTest)
#include "tst_loaded.moc"
