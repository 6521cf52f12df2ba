#include "TaskListPage.h"

#include "agentwork/TaskRules.h"
#include "service/ServiceError.h"

#include "calls/app.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QLocale>
#include <QPointer>
#include <QSettings>
#include <QTimer>
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

// What a row or a card shows, the same in the list and on the board.
QList<KeyedList<TaskRow>::Role> taskRoles()
{
    return {{"header", [](const TaskRow& r) { return QVariant(r.header); }},
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
            {"href", [](const TaskRow& r) { return QVariant(QStringLiteral("/tasks/") + r.task.key); }}};
}

QString rowKey(const TaskRow& r)
{
    return r.header ? QStringLiteral("group:%1").arg(r.group) : r.task.id;
}

} // namespace

TaskListPage::TaskListPage(QObject* parent, Timers& timers)
    : PageModel(&TaskListPage::fetch, parent, timers),
      m_rows(new KeyedList<TaskRow>(rowKey, taskRoles(), this))
{
    for (qsizetype g = 0; g < TaskRules::statusGroups().size(); ++g)
        m_columns.append(new KeyedList<TaskRow>(rowKey, taskRoles(), this));
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

QList<QList<TaskSummaryView>> TaskListPage::grouped(const QList<TaskSummaryView>& tasks)
{
    const auto& groups = TaskRules::statusGroups();
    QList<QList<TaskSummaryView>> columns(groups.size());
    for (const TaskSummaryView& task : tasks) {
        const int group = TaskRules::groupOf(task.status);
        // A status from a newer service waits in To do's company rather
        // than vanishing.
        columns[group >= 0 ? group : TaskRules::groupOf(QStringLiteral("todo"))].append(task);
    }
    for (auto& column : columns)
        std::stable_sort(
            column.begin(), column.end(), [](const TaskSummaryView& a, const TaskSummaryView& b) {
                return a.sortOrder != b.sortOrder ? a.sortOrder < b.sortOrder : a.number < b.number;
            });
    return columns;
}

QList<TaskRow> TaskListPage::rowsOf(const QList<TaskSummaryView>& tasks, const QStringList& folded)
{
    const auto& groups = TaskRules::statusGroups();
    const QList<QList<TaskSummaryView>> columns = grouped(tasks);
    QList<TaskRow> rows;
    for (int g = 0; g < groups.size(); ++g) {
        const auto& list = columns[g];
        if (list.isEmpty())
            continue;
        const bool isFolded = folded.contains(groups[g].title);
        rows.append(TaskRow{g, true, int(list.size()), isFolded, {}});
        if (isFolded)
            continue;
        for (const TaskSummaryView& task : list)
            rows.append(TaskRow{g, false, 0, false, task});
    }
    return rows;
}

double TaskListPage::orderAt(const QList<TaskSummaryView>& column, int index)
{
    if (column.isEmpty())
        return 0;
    index = std::clamp(index, 0, int(column.size()));
    if (index == 0)
        return column.first().sortOrder - 1;
    if (index == column.size())
        return column.last().sortOrder + 1;
    return (column[index - 1].sortOrder + column[index].sortOrder) / 2;
}

QList<TaskSummaryView> TaskListPage::shownTasks() const
{
    QList<TaskSummaryView> tasks = m_result.tasks;
    for (TaskSummaryView& task : tasks) {
        const auto move = m_moves.constFind(task.id);
        if (move == m_moves.cend())
            continue;
        task.status = move->status;
        task.sortOrder = move->sortOrder;
    }
    return tasks;
}

void TaskListPage::show()
{
    // Never under a dragged card: remaking its column would take the card
    // (and the drag) away. Shown once it is dropped.
    if (m_dragging) {
        m_showHeld = true;
        return;
    }
    m_showHeld = false;
    const QList<TaskSummaryView> tasks = shownTasks();
    m_rows->apply(rowsOf(tasks, foldedGroups()));
    const QList<QList<TaskSummaryView>> columns = grouped(tasks);
    for (qsizetype g = 0; g < m_columns.size(); ++g) {
        QList<TaskRow> cards;
        for (const TaskSummaryView& task : columns.value(g))
            cards.append(TaskRow{int(g), false, 0, false, task});
        m_columns[g]->apply(cards);
    }
}

void TaskListPage::apply(const QVariant& value)
{
    if (m_dragging) {
        m_heldAnswer = value;
        return;
    }
    m_result = value.value<Calls::tasks::TasksResult>();
    // A move the answer already shows (the task's version went past the
    // one moved) needs no stand-in any more.
    for (const TaskSummaryView& task : std::as_const(m_result.tasks)) {
        const auto move = m_moves.constFind(task.id);
        if (move != m_moves.cend() && task.version > move->version && !m_chains.contains(task.id))
            m_moves.erase(move);
    }
    show();
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

void TaskListPage::openWith(const QString& words, bool onlyMine, bool asBoard, bool inPlace) const
{
    QUrlQuery query;
    if (!words.trimmed().isEmpty())
        query.addQueryItem(QStringLiteral("q"), words.trimmed());
    if (onlyMine)
        query.addQueryItem(QStringLiteral("mine"), QStringLiteral("1"));
    if (asBoard)
        query.addQueryItem(QStringLiteral("layout"), QStringLiteral("board"));
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
    if (last.segments != route().segments || last.query.isEmpty())
        return;
    // Not while the page is being made: the host binds its route to the
    // router's, and a change from inside that binding would loop.
    QTimer::singleShot(0, this, [this, last] {
        if (route().query.isEmpty())
            openInPlace(last.text());
    });
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
        openWith(words, mine(), board(), true);
}

void TaskListPage::setMine(bool onlyMine)
{
    if (onlyMine != mine())
        openWith(query(), onlyMine, board(), false);
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
    m_rows->apply(rowsOf(shownTasks(), folded));
}

bool TaskListPage::board() const
{
    return route().query.value(QStringLiteral("layout")) == QLatin1String("board");
}

void TaskListPage::setBoard(bool asBoard)
{
    if (asBoard != board())
        openWith(query(), mine(), asBoard, false);
}

QVariantList TaskListPage::columns() const
{
    QVariantList list;
    const auto& groups = TaskRules::statusGroups();
    for (qsizetype g = 0; g < m_columns.size(); ++g)
        list.append(
            QVariantMap{{QStringLiteral("group"), int(g)},
                        {QStringLiteral("title"), groups[g].title},
                        {QStringLiteral("addStatus"), groups[g].addStatus},
                        {QStringLiteral("markShape"), TaskRules::markOf(groups[g].addStatus, false).shape},
                        {QStringLiteral("markTone"), TaskRules::markOf(groups[g].addStatus, false).tone},
                        {QStringLiteral("tasks"), QVariant::fromValue<QObject*>(m_columns[g])}});
    return list;
}

void TaskListPage::setDragging(bool dragging)
{
    if (dragging == m_dragging)
        return;
    m_dragging = dragging;
    emit draggingChanged();
    // What was held back shows once the drop is done with.
    if (!m_dragging && (m_heldAnswer || m_showHeld))
        QTimer::singleShot(0, this, [this] {
            if (m_dragging)
                return;
            if (m_heldAnswer)
                apply(*std::exchange(m_heldAnswer, std::nullopt));
            else if (m_showHeld)
                show();
        });
}

bool TaskListPage::moveTask(const QString& id, int group, int index)
{
    const auto& groups = TaskRules::statusGroups();
    if (!m_result.canManage || group < 0 || group >= groups.size())
        return false;
    const QList<TaskSummaryView> tasks = shownTasks();
    const auto task = std::find_if(tasks.cbegin(), tasks.cend(), [&](const auto& t) { return t.id == id; });
    if (task == tasks.cend())
        return false;
    // A task keeps its status within its own group ("In review" stays so
    // when it moves within Needs you); elsewhere it takes the group's.
    const bool sameGroup = TaskRules::groupOf(task->status) == group;
    QList<TaskSummaryView> column = grouped(tasks).value(group);
    index = std::clamp(index, 0, int(column.size()));
    const qsizetype was =
        sameGroup ? std::distance(column.cbegin(), std::find_if(column.cbegin(), column.cend(),
                                                                [&](const auto& t) { return t.id == id; }))
                  : -1;
    if (sameGroup && (index == was || index == was + 1))
        return false;
    if (was >= 0) {
        column.removeAt(was);
        if (index > was)
            --index;
    }
    // Behind a move not yet seen in an answer, the version is the one that
    // move leaves (each accepted change adds one).
    const auto shown = m_moves.constFind(id);
    const double version =
        shown != m_moves.cend() ? std::max(task->version, shown->version + 1) : task->version;
    Move move{id, sameGroup ? task->status : groups[group].addStatus, orderAt(column, index), version, false};
    // Shown after the event that asked for it: a drop or a key press comes
    // from the card that is about to be made again elsewhere.
    QTimer::singleShot(0, this, [this, move] {
        m_moves.insert(move.id, move);
        m_retry.reset();
        m_moveError.clear();
        emit moveChanged();
        show();
        emit cardMoved(move.id);
        send(move);
    });
    return true;
}

bool TaskListPage::moveBy(const QString& id, int columnStep, int placeStep)
{
    const QList<QList<TaskSummaryView>> columns = grouped(shownTasks());
    for (int g = 0; g < columns.size(); ++g) {
        const auto& column = columns[g];
        for (int at = 0; at < column.size(); ++at) {
            if (column[at].id != id)
                continue;
            if (columnStep != 0) {
                const int to = g + columnStep;
                return to >= 0 && to < columns.size() && moveTask(id, to, int(columns[to].size()));
            }
            // Down one place is before the card after next.
            return placeStep != 0 && moveTask(id, g, placeStep > 0 ? at + 2 : at - 1);
        }
    }
    return false;
}

void TaskListPage::moveAnyway()
{
    if (!m_retry)
        return;
    Move move = *std::exchange(m_retry, std::nullopt);
    move.withdrawAsks = true;
    m_moveError.clear();
    emit moveChanged();
    m_moves.insert(move.id, move);
    show();
    // The button that asked goes with the sentence: the keyboard goes to the card.
    emit cardMoved(move.id);
    send(std::move(move));
}

void TaskListPage::clearMoveError()
{
    if (m_moveError.isEmpty() && !m_retry)
        return;
    m_moveError.clear();
    m_retry.reset();
    emit moveChanged();
}

void TaskListPage::send(Move move)
{
    // One task's moves go one after another, each with the version the
    // one before it leaves: sent together, the later could arrive first,
    // or carry a version the earlier has already spent.
    const bool wasMoving = moving();
    Chain& chain = m_chains[move.id];
    chain.waiting.append(std::move(move));
    if (!chain.running)
        runChain(chain.waiting.first().id);
    if (!wasMoving)
        emit moveChanged();
}

QCoro::Task<> TaskListPage::runChain(QString id)
{
    QPointer<TaskListPage> self(this);
    m_chains[id].running = true;
    while (!m_chains[id].waiting.isEmpty()) {
        const Move move = m_chains[id].waiting.takeFirst();
        const QString failure = co_await sendOne(move);
        if (!self)
            co_return;
        if (failure.isEmpty())
            continue;
        // Refused: the card goes back where the service has it, and the
        // moves that followed it are moot.
        m_chains.remove(id);
        m_moves.remove(id);
        show();
        emit cardMoved(id); // back in its place, with the keyboard on it
        m_moveError = failure;
        // "Move anyway" only where the board was up to date and a teammate
        // waits for answers: the refusal was about its questions.
        const auto task = std::find_if(m_result.tasks.cbegin(), m_result.tasks.cend(),
                                       [&](const auto& t) { return t.id == move.id; });
        if (task != m_result.tasks.cend() && task->waiting > 0 && task->version == move.version &&
            !move.withdrawAsks)
            m_retry = move;
        emit moveChanged();
        // What the service has now, so the next move starts from it.
        reloadAfterAction();
        co_return;
    }
    m_chains.remove(id);
    emit moveChanged();
    reloadAfterAction();
}

QCoro::Task<QString> TaskListPage::sendOne(Move move)
{
    QJsonObject changes{{QStringLiteral("status"), move.status},
                        {QStringLiteral("sortOrder"), move.sortOrder},
                        {QStringLiteral("version"), move.version}};
    if (move.withdrawAsks)
        changes.insert(QStringLiteral("withdrawAsks"), true);
    QString failure;
    try {
        Arg ids{JSONValue::fromQJsonValue(QJsonArray{move.id})};
        Arg given{JSONValue::fromQJsonValue(changes)};
        const Model::ActionOutcome outcome =
            co_await Calls::app::updateTasksAction(std::move(ids), std::move(given));
        if (outcome.error && !outcome.error->isEmpty())
            failure = *outcome.error;
    } catch (const std::exception& error) {
        failure = describeError(error);
    }
    co_return failure;
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
