#pragma once

#include "shell/KeyedListModel.h"
#include "shell/PageModel.h"

#include "calls/home.h"
#include "calls/shell.h"

#include <QtQml/qqmlregistration.h>

namespace Kestro {

// What Home and Needs you show, loaded together: Home leads with what waits
// for the user, so both views read the same answer and switching between
// them ("?view=you") shows at once.
struct ActivityAnswer {
    Calls::home::HomeResult home;
    Calls::shell::ActivityResult activity;
    Calls::shell::WaitingResult waiting;
};

// Home ("/activity") and Needs you ("/activity?view=you"): a greeting, what
// waits for the user, the teammates at work, and the kest's day.
class ActivityPage : public Kestro::PageModel {
    Q_OBJECT
    QML_NAMED_ELEMENT(ActivityModel)
    Q_PROPERTY(bool needsYou READ needsYou NOTIFY routeChanged)
    Q_PROPERTY(QString greeting READ greeting NOTIFY answered)
    Q_PROPERTY(QString summary READ summary NOTIFY answered)
    Q_PROPERTY(QString waitingLine READ waitingLine NOTIFY answered)
    Q_PROPERTY(int inbox READ inbox NOTIFY answered)
    Q_PROPERTY(Kestro::KeyedListModel* waiting READ waiting CONSTANT)
    Q_PROPERTY(Kestro::KeyedListModel* running READ running CONSTANT)
    Q_PROPERTY(Kestro::KeyedListModel* today READ today CONSTANT)
    Q_PROPERTY(Kestro::KeyedListModel* kest READ kest CONSTANT)
    Q_PROPERTY(Kestro::KeyedListModel* routines READ routines CONSTANT)

public:
    explicit ActivityPage(QObject* parent = nullptr, Timers& timers = Timers::system());

    static QCoro::Task<QVariant> fetch(Route route);

    bool needsYou() const;
    QString greeting() const { return m_greeting; }
    QString summary() const { return m_summary; }
    QString waitingLine() const { return m_waitingLine; }
    int inbox() const { return m_inbox; }
    KeyedListModel* waiting() const { return m_waiting; }
    KeyedListModel* running() const { return m_running; }
    KeyedListModel* today() const { return m_today; }
    KeyedListModel* kest() const { return m_kest; }
    KeyedListModel* routines() const { return m_routines; }

    // "Good morning, Maya." by the hour of the day.
    static QString greetingFor(const QString& first, int hour);
    // "3 done, 1 working now" and the like, from the day's counts.
    static QString summaryOf(const ActivityAnswer& answer);
    // "Every weekday at 08:30" and the like.
    static QString scheduleOf(const Calls::home::HomeResultRoutine& routine);

signals:
    void answered();

protected:
    void apply(const QVariant& value) override;
    std::optional<double> every(const QVariant& value) const override;
    bool loadsFor(const Route&, const Route&) const override { return false; }

private:
    KeyedList<Calls::shell::WaitingResultItem>* m_waiting;
    KeyedList<Calls::shell::ActivityResultRunning>* m_running;
    KeyedList<Calls::shell::ActivityResultItem>* m_today;
    KeyedList<Calls::home::HomeResultKest>* m_kest;
    KeyedList<Calls::home::HomeResultRoutine>* m_routines;
    QString m_greeting;
    QString m_summary;
    QString m_waitingLine;
    int m_inbox = 0;
};

} // namespace Kestro

Q_DECLARE_METATYPE(Kestro::ActivityAnswer)
