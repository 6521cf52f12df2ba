#include "ActivityPage.h"

#include "shell/RelativeTime.h"

#include <QTime>

namespace Kestro {

using Calls::home::HomeResultKest;
using Calls::home::HomeResultRoutine;
using Calls::shell::ActivityResultItem;
using Calls::shell::ActivityResultRunning;
using Calls::shell::WaitingResultItem;

namespace {

QString plural(qint64 n, const char* one, const char* many)
{
    return n == 1 ? QStringLiteral("1 %1").arg(QLatin1String(one))
                  : QStringLiteral("%1 %2").arg(n).arg(QLatin1String(many));
}

// How each kind of row is named and drawn; an unknown kind reads as the
// neutral last row of its table.
struct KindLook {
    const char* kind;
    const char* label;
    const char* icon;
};
const KindLook waitingKinds[] = {{"approval", "Approval", "key-round"},
                                 {"ask", "Question", "hand"},
                                 {"draft", "Draft", "file-text"},
                                 {"review", "Review", "check-check"},
                                 {nullptr, "For you", "hand"}};
const KindLook activityKinds[] = {{"failed", nullptr, "circle-x"},
                                  {"task", nullptr, "list-checks"},
                                  {"message", nullptr, "messages-square"},
                                  {nullptr, nullptr, "check"}};

template <size_t N> const KindLook& lookOf(const KindLook (&table)[N], const QString& kind)
{
    for (const KindLook& look : table)
        if (!look.kind || kind == QLatin1String(look.kind))
            return look;
    return table[N - 1];
}

QString waitingKindLabel(const QString& kind)
{
    return QString::fromLatin1(lookOf(waitingKinds, kind).label);
}
QString waitingIcon(const QString& kind)
{
    return QString::fromLatin1(lookOf(waitingKinds, kind).icon);
}
QString activityIcon(const QString& kind)
{
    return QString::fromLatin1(lookOf(activityKinds, kind).icon);
}

} // namespace

ActivityPage::ActivityPage(QObject* parent, Timers& timers)
    : PageModel(&ActivityPage::fetch, parent, timers),
      m_waiting(new KeyedList<WaitingResultItem>(
          [](const WaitingResultItem& r) { return r.id; },
          {{"kind", [](const WaitingResultItem& r) { return QVariant(r.kind); }},
           {"kindLabel", [](const WaitingResultItem& r) { return QVariant(waitingKindLabel(r.kind)); }},
           {"icon", [](const WaitingResultItem& r) { return QVariant(waitingIcon(r.kind)); }},
           {"title", [](const WaitingResultItem& r) { return QVariant(r.title); }},
           {"text", [](const WaitingResultItem& r) { return QVariant(r.text); }},
           {"byName", [](const WaitingResultItem& r) { return QVariant(r.by.name); }},
           {"byAgent",
            [](const WaitingResultItem& r) { return QVariant(r.by.type == QLatin1String("agent")); }},
           {"taskKey", [](const WaitingResultItem& r) { return QVariant(r.task ? r.task->key : QString()); }},
           {"href", [](const WaitingResultItem& r) { return QVariant(r.href); }},
           {"when", [](const WaitingResultItem& r) { return QVariant(relativeTime(r.at)); }, true}},
          this)),
      m_running(new KeyedList<ActivityResultRunning>(
          [](const ActivityResultRunning& r) { return r.id; },
          {{"name", [](const ActivityResultRunning& r) { return QVariant(r.agent.name); }},
           {"handle",
            [](const ActivityResultRunning& r) { return QVariant(r.agent.handle.value_or(QString())); }},
           {"title", [](const ActivityResultRunning& r) { return QVariant(r.title); }},
           {"doing", [](const ActivityResultRunning& r) { return QVariant(r.doing.value_or(QString())); }},
           {"href", [](const ActivityResultRunning& r) { return QVariant(r.href); }},
           {"startedAt", [](const ActivityResultRunning& r) { return QVariant(r.startedAt); }}},
          this)),
      m_today(new KeyedList<ActivityResultItem>(
          [](const ActivityResultItem& r) { return r.id; },
          {{"kind", [](const ActivityResultItem& r) { return QVariant(r.kind); }},
           {"icon", [](const ActivityResultItem& r) { return QVariant(activityIcon(r.kind)); }},
           {"name", [](const ActivityResultItem& r) { return QVariant(r.actor.name); }},
           {"agent",
            [](const ActivityResultItem& r) { return QVariant(r.actor.type == QLatin1String("agent")); }},
           {"verb", [](const ActivityResultItem& r) { return QVariant(r.verb); }},
           {"title", [](const ActivityResultItem& r) { return QVariant(r.title); }},
           {"text", [](const ActivityResultItem& r) { return QVariant(r.text.value_or(QString())); }},
           {"href", [](const ActivityResultItem& r) { return QVariant(r.href); }},
           {"when", [](const ActivityResultItem& r) { return QVariant(relativeTime(r.at)); }, true}},
          this)),
      m_kest(new KeyedList<HomeResultKest>(
          [](const HomeResultKest& r) { return r.handle; },
          {{"name", [](const HomeResultKest& r) { return QVariant(r.name); }},
           {"title", [](const HomeResultKest& r) { return QVariant(r.title); }},
           {"status", [](const HomeResultKest& r) { return QVariant(r.status); }},
           {"href", [](const HomeResultKest& r) { return QVariant(QStringLiteral("/kest/") + r.handle); }}},
          this)),
      m_routines(new KeyedList<HomeResultRoutine>(
          [](const HomeResultRoutine& r) { return r.id; },
          {{"name", [](const HomeResultRoutine& r) { return QVariant(r.name); }},
           {"agent", [](const HomeResultRoutine& r) { return QVariant(r.agent); }},
           {"schedule", [](const HomeResultRoutine& r) { return QVariant(scheduleOf(r)); }},
           {"paused", [](const HomeResultRoutine& r) { return QVariant(r.paused); }},
           {"href",
            [](const HomeResultRoutine& r) { return QVariant(QStringLiteral("/routines/") + r.id); }}},
          this))
{
}

QCoro::Task<QVariant> ActivityPage::fetch(Route)
{
    ActivityAnswer answer;
    answer.home = co_await Calls::home::home();
    answer.activity = co_await Calls::shell::activity();
    answer.waiting = co_await Calls::shell::waiting();
    co_return QVariant::fromValue(answer);
}

bool ActivityPage::needsYou() const
{
    return route().query.value(QStringLiteral("view")) == QLatin1String("you");
}

void ActivityPage::apply(const QVariant& value)
{
    const auto answer = value.value<ActivityAnswer>();
    m_waiting->apply(answer.waiting.items);
    m_running->apply(answer.activity.running);
    m_today->apply(answer.activity.items);
    m_kest->apply(answer.home.kest);
    m_routines->apply(answer.home.routines);

    QString greeting = greetingFor(answer.home.first, QTime::currentTime().hour());
    QString summary = summaryOf(answer);
    const qsizetype waiting = answer.waiting.items.size();
    QString waitingLine = waiting == 0
                              ? QStringLiteral("Nothing waits for you.")
                              : plural(waiting, "thing waits", "things wait") + QStringLiteral(" for you.");
    const int inbox = int(answer.home.inbox.count);
    if (greeting == m_greeting && summary == m_summary && waitingLine == m_waitingLine && inbox == m_inbox)
        return;
    m_greeting = std::move(greeting);
    m_summary = std::move(summary);
    m_waitingLine = std::move(waitingLine);
    m_inbox = inbox;
    emit answered();
}

std::optional<double> ActivityPage::every(const QVariant& value) const
{
    // Quicker while a teammate works, so its finish shows soon.
    return value.value<ActivityAnswer>().activity.running.isEmpty() ? 30.0 : 5.0;
}

QString ActivityPage::greetingFor(const QString& first, int hour)
{
    const char* part = hour >= 5 && hour < 12    ? "Good morning"
                       : hour >= 12 && hour < 18 ? "Good afternoon"
                                                 : "Good evening";
    return first.isEmpty() ? QStringLiteral("%1.").arg(QLatin1String(part))
                           : QStringLiteral("%1, %2.").arg(QLatin1String(part), first);
}

QString ActivityPage::summaryOf(const ActivityAnswer& answer)
{
    const auto& day = answer.activity;
    QStringList parts;
    if (day.done > 0)
        parts.append(plural(qint64(day.done), "run done", "runs done"));
    if (!day.running.isEmpty())
        parts.append(plural(day.running.size(), "teammate working now", "teammates working now"));
    if (day.failed > 0)
        parts.append(plural(qint64(day.failed), "run that did not finish", "runs that did not finish"));
    if (parts.isEmpty())
        return QStringLiteral("The kest has nothing on yet today.");
    QString line = QStringLiteral("Today: ");
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (i > 0)
            line += i == parts.size() - 1 ? QStringLiteral(" and ") : QStringLiteral(", ");
        line += parts[i];
    }
    return line + QLatin1Char('.');
}

QString ActivityPage::scheduleOf(const HomeResultRoutine& routine)
{
    const QString time = QStringLiteral("%1:%2")
                             .arg(int(routine.hour), 2, 10, QLatin1Char('0'))
                             .arg(int(routine.minute), 2, 10, QLatin1Char('0'));
    if (routine.cron)
        return QStringLiteral("On its own schedule");
    if (routine.every && *routine.every > 0)
        return QStringLiteral("Every %1 h").arg(*routine.every);
    QList<int> days;
    for (double day : routine.days)
        days.append(int(day));
    std::sort(days.begin(), days.end());
    QString when;
    if (days == QList<int>{1, 2, 3, 4, 5})
        when = QStringLiteral("Every weekday");
    else if (days.size() == 7 || days.isEmpty())
        when = QStringLiteral("Every day");
    else {
        QStringList names;
        for (int day : days)
            names.append(QLocale::c().dayName(day == 0 ? 7 : day, QLocale::ShortFormat));
        when = QStringLiteral("Every ") + names.join(QStringLiteral(", "));
    }
    return when + QStringLiteral(" at ") + time;
}

} // namespace Kestro
