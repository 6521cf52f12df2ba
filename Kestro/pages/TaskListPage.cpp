#include "TaskListPage.h"

#include "agentwork/TaskRules.h"
#include "service/ServiceError.h"

#include "calls/app.h"

#include <QJsonObject>
#include <QLocale>
#include <QPointer>
#include <QSettings>
#include <QUrlQuery>

#include <algorithm>

namespace Kestro {

using Model::TaskSummaryView;

namespace {

const QString foldedKey = QStringLiteral("kestro:list-folded");
const QString addressKey = QStringLiteral("kestro:tasks-address");

QStringList foldedGroups()
{
    return QSettings().value(foldedKey).toStringList();
}

QString dueText(const TaskSummaryView& t)
{
    if (!t.dueAt)
        return {};
    const QDateTime due = QDateTime::fromString(*t.dueAt, Qt::ISODateWithMs);
    if (!due.isValid())
        return {};
    return TaskRules::dueWords(*t.dueAt, t.status) + QLatin1Char(' ') +
           QLocale(QLocale::English, QLocale::UnitedKingdom)
               .toString(due.toLocalTime().date(), QStringLiteral("d MMM"));
}

QString workingText(const TaskSummaryView& t)
{
    if (!t.working)
        return {};
    const QString who = t.assignee ? t.assignee->name : QStringLiteral("A teammate");
    const QString doing = t.working->doing.value_or(QString());
    return doing.isEmpty() ? who + QStringLiteral(" is working on it") : who + QStringLiteral(": ") + doing;
}

QString priorityWord(const QString& priority)
{
    if (priority == QLatin1String("urgent"))
        return QStringLiteral("Urgent");
    if (priority == QLatin1String("high"))
        return QStringLiteral("High");
    if (priority == QLatin1String("low"))
        return QStringLiteral("Low");
    if (priority == QLatin1String("medium"))
        return QStringLiteral("Medium");
    return {};
}

} // namespace

TaskListPage::TaskListPage(QObject* parent, Timers& timers)
    : PageModel(&TaskListPage::fetch, parent, timers),
      m_rows(new KeyedList<TaskRow>(
          [](const TaskRow& r) { return r.header ? QStringLiteral("group:%1").arg(r.group) : r.task.id; },
          {{"header", [](const TaskRow& r) { return QVariant(r.header); }},
           {"group", [](const TaskRow& r) { return QVariant(r.group); }},
           {"groupTitle",
            [](const TaskRow& r) { return QVariant(TaskRules::statusGroups().value(r.group).title); }},
           {"count", [](const TaskRow& r) { return QVariant(r.count); }},
           {"folded", [](const TaskRow& r) { return QVariant(r.folded); }},
           {"taskKey", [](const TaskRow& r) { return QVariant(r.header ? QString() : r.task.key); }},
           {"title", [](const TaskRow& r) { return QVariant(r.header ? QString() : r.task.title); }},
           {"markShape",
            [](const TaskRow& r) {
                const QString status =
                    r.header ? TaskRules::statusGroups().value(r.group).addStatus : r.task.status;
                return QVariant(TaskRules::markOf(status, !r.header && r.task.blocked).shape);
            }},
           {"markTone",
            [](const TaskRow& r) {
                const QString status =
                    r.header ? TaskRules::statusGroups().value(r.group).addStatus : r.task.status;
                return QVariant(TaskRules::markOf(status, !r.header && r.task.blocked).tone);
            }},
           {"status", [](const TaskRow& r) { return QVariant(r.task.status); }},
           {"priority", [](const TaskRow& r) { return QVariant(priorityWord(r.task.priority)); }},
           {"assignee",
            [](const TaskRow& r) {
                return QVariant(r.task.assignee ? r.task.assignee->name : QStringLiteral("Nobody yet"));
            }},
           {"assigneeIsTeammate",
            [](const TaskRow& r) {
                return QVariant(r.task.assignee && r.task.assignee->type == QLatin1String("agent"));
            }},
           {"labels", [](const TaskRow& r) { return QVariant(QStringList(r.task.labels)); }},
           {"project",
            [](const TaskRow& r) { return QVariant(r.task.project ? r.task.project->name : QString()); }},
           {"due", [](const TaskRow& r) { return QVariant(dueText(r.task)); }},
           {"pastDue",
            [](const TaskRow& r) {
                return QVariant(r.task.dueAt && TaskRules::dueWords(*r.task.dueAt, r.task.status) ==
                                                    QLatin1String("Past due"));
            }},
           {"progress",
            [](const TaskRow& r) {
                return QVariant(
                    r.task.progress.total > 0
                        ? QStringLiteral("%1/%2").arg(r.task.progress.done).arg(r.task.progress.total)
                        : QString());
            }},
           {"working", [](const TaskRow& r) { return QVariant(workingText(r.task)); }},
           {"parentLine",
            [](const TaskRow& r) {
                return QVariant(r.task.parent ? QStringLiteral("Sub-task of ") + r.task.parent->title
                                              : QString());
            }},
           {"href", [](const TaskRow& r) { return QVariant(QStringLiteral("/tasks/") + r.task.key); }}},
          this))
{
}

QCoro::Task<QVariant> TaskListPage::fetch(Route route)
{
    QJsonObject filters;
    const QString words = route.query.value(QStringLiteral("q")).trimmed();
    if (!words.isEmpty())
        filters.insert(QStringLiteral("q"), words);
    if (route.query.value(QStringLiteral("mine")) == QLatin1String("1"))
        filters.insert(QStringLiteral("mine"), true);
    filters.insert(QStringLiteral("sub"), true);
    Arg given{JSONValue::fromQJsonValue(filters)};
    Calls::tasks::TasksResult result = co_await Calls::tasks::tasks(std::move(given));
    co_return QVariant::fromValue(result);
}

QList<TaskRow> TaskListPage::rowsOf(const QList<TaskSummaryView>& tasks, const QStringList& folded)
{
    const auto& groups = TaskRules::statusGroups();
    QList<QList<TaskSummaryView>> grouped(groups.size());
    for (const TaskSummaryView& task : tasks) {
        const int group = TaskRules::groupOf(task.status);
        // A status from a newer service waits in To do's company rather
        // than vanishing.
        grouped[group >= 0 ? group : TaskRules::groupOf(QStringLiteral("todo"))].append(task);
    }
    QList<TaskRow> rows;
    for (int g = 0; g < groups.size(); ++g) {
        auto& list = grouped[g];
        if (list.isEmpty())
            continue;
        std::stable_sort(list.begin(), list.end(), [](const TaskSummaryView& a, const TaskSummaryView& b) {
            return a.sortOrder != b.sortOrder ? a.sortOrder < b.sortOrder : a.number < b.number;
        });
        const bool isFolded = folded.contains(groups[g].title);
        rows.append(TaskRow{g, true, int(list.size()), isFolded, {}});
        if (isFolded)
            continue;
        for (const TaskSummaryView& task : list)
            rows.append(TaskRow{g, false, 0, false, task});
    }
    return rows;
}

void TaskListPage::apply(const QVariant& value)
{
    m_result = value.value<Calls::tasks::TasksResult>();
    m_rows->apply(rowsOf(m_result.tasks, foldedGroups()));
    // The last filters, for the next time the list opens (written when
    // they change, not at every timed reload).
    if (route().text() != std::exchange(m_savedAddress, route().text()))
        QSettings().setValue(addressKey, m_savedAddress);
    emit answered();
}

std::optional<double> TaskListPage::every(const QVariant& value) const
{
    return TaskRules::listCadence(value.value<Calls::tasks::TasksResult>().tasks);
}

QString TaskListPage::query() const
{
    return route().query.value(QStringLiteral("q"));
}

bool TaskListPage::mine() const
{
    return route().query.value(QStringLiteral("mine")) == QLatin1String("1");
}

QString TaskListPage::emptyLine() const
{
    if (!m_result.tasks.isEmpty())
        return {};
    if (!query().trimmed().isEmpty() || mine())
        return QStringLiteral("No tasks") + QStringLiteral(" match.");
    return QStringLiteral("No tasks yet.");
}

QString TaskListPage::leadName() const
{
    for (const Model::TeammateView& mate : m_result.kest)
        if (mate.lead)
            return mate.name;
    return QStringLiteral("The lead");
}

QVariantList TaskListPage::assignees() const
{
    QVariantList list;
    QString leadHandle;
    for (const Model::TeammateView& mate : m_result.kest)
        if (mate.lead)
            leadHandle = mate.handle;
    auto entry = [](const QString& kind, const QString& id, const QString& name, const QString& label) {
        return QVariantMap{{QStringLiteral("kind"), kind},
                           {QStringLiteral("id"), id},
                           {QStringLiteral("name"), name},
                           {QStringLiteral("label"), label}};
    };
    if (!leadHandle.isEmpty())
        list.append(
            entry(QStringLiteral("lead"), leadHandle, leadName(), leadName() + QStringLiteral(" picks who")));
    list.append(entry(QStringLiteral("nobody"), {}, {}, QStringLiteral("Nobody yet")));
    for (const Model::PersonView& person : m_result.people)
        list.append(entry(QStringLiteral("person"), person.id, person.name, person.name));
    for (const Model::TeammateView& mate : m_result.kest)
        if (!mate.lead)
            list.append(entry(QStringLiteral("teammate"), mate.handle, mate.name,
                              mate.name + QStringLiteral(", ") + mate.title));
    return list;
}

void TaskListPage::openWith(const QString& words, bool onlyMine, bool inPlace) const
{
    QUrlQuery query;
    if (!words.trimmed().isEmpty())
        query.addQueryItem(QStringLiteral("q"), words.trimmed());
    if (onlyMine)
        query.addQueryItem(QStringLiteral("mine"), QStringLiteral("1"));
    const QString rest = query.toString(QUrl::FullyEncoded);
    const QString path = rest.isEmpty() ? QStringLiteral("/tasks") : QStringLiteral("/tasks?") + rest;
    if (inPlace)
        openInPlace(path);
    else
        open(path);
}

void TaskListPage::restoreAddress()
{
    if (!route().query.isEmpty())
        return;
    const Route last = Route::parse(QSettings().value(addressKey).toString());
    if (last.segments == route().segments && !last.query.isEmpty())
        openInPlace(last.text());
}

void TaskListPage::clearCreateError()
{
    if (m_createError.isEmpty())
        return;
    m_createError.clear();
    emit creatingChanged();
}

void TaskListPage::search(const QString& words)
{
    if (words.trimmed() != query().trimmed())
        openWith(words, mine(), true);
}

void TaskListPage::setMine(bool onlyMine)
{
    if (onlyMine != mine())
        openWith(query(), onlyMine, false);
}

void TaskListPage::toggleFolded(int group)
{
    const QString title = TaskRules::statusGroups().value(group).title;
    if (title.isEmpty())
        return;
    QStringList folded = foldedGroups();
    if (!folded.removeOne(title))
        folded.append(title);
    QSettings().setValue(foldedKey, folded);
    m_rows->apply(rowsOf(m_result.tasks, folded));
}

QString TaskListPage::addStatus(int group) const
{
    return TaskRules::statusGroups().value(group).addStatus;
}

QString TaskListPage::addLabel(int group) const
{
    const QString title = TaskRules::statusGroups().value(group).title;
    return title.isEmpty() ? QStringLiteral("New task")
                           : QStringLiteral("New task") + QStringLiteral(" in ") + title;
}

QString TaskListPage::hint(const QString& status, const QString& assigneeKind,
                           const QString& assigneeName) const
{
    using Assignee = TaskRules::NewTaskChoice::Assignee;
    TaskRules::NewTaskChoice choice;
    choice.status = status;
    choice.leadName = leadName();
    choice.assigneeName = assigneeName;
    choice.assignee = assigneeKind == QLatin1String("nobody")     ? Assignee::Nobody
                      : assigneeKind == QLatin1String("person")   ? Assignee::Person
                      : assigneeKind == QLatin1String("teammate") ? Assignee::Teammate
                                                                  : Assignee::Lead;
    return TaskRules::newTaskHint(choice);
}

bool TaskListPage::create(const QString& title, const QString& brief, const QString& status,
                          const QString& assigneeKind, const QString& assigneeId)
{
    if (m_creating)
        return false;
    if (title.trimmed().isEmpty()) {
        m_createError = QStringLiteral("Say what needs doing first: the task needs a title.");
        emit creatingChanged();
        return false;
    }
    QJsonObject input{{QStringLiteral("title"), title.trimmed()}, {QStringLiteral("status"), status}};
    if (!brief.trimmed().isEmpty())
        input.insert(QStringLiteral("description"), brief.trimmed());
    if (assigneeKind != QLatin1String("nobody") && !assigneeId.isEmpty())
        input.insert(QStringLiteral("assignee"), assigneeId);
    runCreate(std::move(input));
    return true;
}

QCoro::Task<> TaskListPage::runCreate(QJsonObject input)
{
    QPointer<TaskListPage> self(this);
    m_creating = true;
    m_createError.clear();
    emit creatingChanged();
    QString failure;
    QString key;
    try {
        Arg given{JSONValue::fromQJsonValue(input)};
        const Calls::app::CreateTaskActionResult result =
            co_await Calls::app::createTaskAction(std::move(given));
        if (result.error && !result.error->isEmpty())
            failure = *result.error;
        else
            key = result.key.value_or(QString());
    } catch (const std::exception& error) {
        failure = describeError(error);
    }
    if (!self)
        co_return;
    m_creating = false;
    m_createError = failure.isEmpty() ? QString() : QStringLiteral("The task was not created: ") + failure;
    emit creatingChanged();
    if (!failure.isEmpty())
        co_return;
    reloadAfterAction();
    if (!key.isEmpty())
        open(QStringLiteral("/tasks/") + key);
}

} // namespace Kestro
