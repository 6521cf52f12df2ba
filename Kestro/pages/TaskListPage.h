#pragma once

#include "shell/KeyedListModel.h"
#include "shell/PageModel.h"

#include "calls/tasks.h"

#include <QtQml/qqmlregistration.h>

namespace Kestro {

// One row of the task list: a group's heading (with its count, folded or
// not) or a task in it.
struct TaskRow {
    int group = -1;
    bool header = false;
    int count = 0;
    bool folded = false;
    Model::TaskSummaryView task;
    bool operator==(const TaskRow&) const = default;
};

// "/tasks": the workspace's tasks grouped by status, in the groups' order,
// each group foldable (remembered under "kestro:list-folded"), filtered by
// the address ("?q=" words in the title, "?mine=1" only the user's), as a
// list or ("?layout=board") a board with a column per group, where a card
// is moved to another column or place by drag or by keys. A move shows at
// once and is sent with the version the board knew; a refused move goes
// back where it was, with the service's sentence. It
// reloads every 5 s while a teammate works on a listed task or one waits
// for a teammate in To do, else every 30 s. Writers get the new-task rows
// and the dialog; read-only roles get neither.
class TaskListPage : public Kestro::PageModel {
    Q_OBJECT
    QML_NAMED_ELEMENT(TaskListModel)
    Q_PROPERTY(Kestro::KeyedListModel* rows READ rows CONSTANT)
    Q_PROPERTY(int shown READ shown NOTIFY answered)
    Q_PROPERTY(bool canManage READ canManage NOTIFY answered)
    Q_PROPERTY(QString query READ query NOTIFY routeChanged)
    Q_PROPERTY(bool mine READ mine NOTIFY routeChanged)
    // What an empty result says, and the filter that can be removed.
    Q_PROPERTY(QString emptyLine READ emptyLine NOTIFY answered)
    // Who a new task can go to: [{kind, id, name, label}], the lead first.
    Q_PROPERTY(QVariantList assignees READ assignees NOTIFY answered)
    Q_PROPERTY(bool board READ board NOTIFY routeChanged)
    // The board's columns: [{group, title, addStatus, tasks (a list model)}].
    Q_PROPERTY(QVariantList columns READ columns CONSTANT)
    // While a card is dragged, reloads wait (the columns must hold still).
    Q_PROPERTY(bool dragging READ dragging WRITE setDragging NOTIFY draggingChanged)
    Q_PROPERTY(QString moveError READ moveError NOTIFY moveChanged)
    // A move is on its way to the service (its answer is still to come).
    Q_PROPERTY(bool moving READ moving NOTIFY moveChanged)
    // The refused move can be made anyway, letting the teammate's questions go.
    Q_PROPERTY(bool canMoveAnyway READ canMoveAnyway NOTIFY moveChanged)
    Q_PROPERTY(bool creating READ creating NOTIFY creatingChanged)
    Q_PROPERTY(QString createError READ createError NOTIFY creatingChanged)

public:
    explicit TaskListPage(QObject* parent = nullptr, Timers& timers = Timers::system());

    static QCoro::Task<QVariant> fetch(Route route);
    // The rows for an answer: each group's heading, then (unless folded)
    // its tasks in their manual order. Empty groups show no heading.
    static QList<TaskRow> rowsOf(const QList<Model::TaskSummaryView>& tasks, const QStringList& folded);
    // The tasks of each status group, in their manual order.
    static QList<QList<Model::TaskSummaryView>> grouped(const QList<Model::TaskSummaryView>& tasks);
    // The manual order that puts a task at `index` of `column` (which does
    // not hold it): between its new neighbours, or one past the end.
    static double orderAt(const QList<Model::TaskSummaryView>& column, int index);

    KeyedListModel* rows() const { return m_rows; }
    int shown() const { return int(m_result.tasks.size()); }
    bool canManage() const { return m_result.canManage; }
    QString query() const;
    bool mine() const;
    QString emptyLine() const;
    QVariantList assignees() const;
    bool creating() const { return m_creating; }
    QString createError() const { return m_createError; }
    bool board() const;
    QVariantList columns() const;
    bool dragging() const { return m_dragging; }
    void setDragging(bool dragging);
    QString moveError() const { return m_moveError; }
    bool moving() const { return !m_chains.isEmpty(); }
    bool canMoveAnyway() const { return m_retry.has_value(); }

    // The filters, as a new address: typed words replace the current one,
    // "Only mine" is a place in the history of its own.
    Q_INVOKABLE void search(const QString& words);
    Q_INVOKABLE void setMine(bool mine);
    Q_INVOKABLE void toggleFolded(int group);
    Q_INVOKABLE void setBoard(bool board);
    // Moves a task to place `index` of group `group`'s column, shown from
    // the next turn of the event loop; false when it would stay where it
    // is (or this user may not move tasks).
    Q_INVOKABLE bool moveTask(const QString& id, int group, int index);
    // A card's neighbour column (-1 left, +1 right) or place (up, down),
    // for the keyboard.
    Q_INVOKABLE bool moveBy(const QString& id, int columns, int places);
    Q_INVOKABLE void moveAnyway();
    Q_INVOKABLE void clearMoveError();
    // "/tasks" with no filters opens with the last ones the user had.
    Q_INVOKABLE void restoreAddress();
    Q_INVOKABLE void clearCreateError();
    // The status a task added in a group gets, and the button's words.
    Q_INVOKABLE QString addStatus(int group) const;
    Q_INVOKABLE QString addLabel(int group) const;
    // The sentence under the dialog's fields.
    Q_INVOKABLE QString hint(const QString& status, const QString& assigneeKind,
                             const QString& assigneeName) const;
    // Creates the task and opens it; false (with `createError`) when the
    // title is empty.
    Q_INVOKABLE bool create(const QString& title, const QString& brief, const QString& status,
                            const QString& assigneeKind, const QString& assigneeId);

signals:
    void answered();
    void creatingChanged();
    void draggingChanged();
    void moveChanged();
    // A card is shown in its new place, or back in its old one after a
    // refusal (the keyboard goes there).
    void cardMoved(const QString& id);

protected:
    void apply(const QVariant& value) override;
    std::optional<double> every(const QVariant& value) const override;

private:
    struct Move {
        QString id;
        QString status;
        double sortOrder = 0;
        double version = 0; // the task's, when moved
        bool withdrawAsks = false;
    };

    QCoro::Task<> runCreate(QJsonObject input);
    struct Chain {
        QList<Move> waiting;
        bool running = false;
    };

    void send(Move move);
    QCoro::Task<> runChain(QString id);
    QCoro::Task<QString> sendOne(Move move);
    void openWith(const QString& words, bool mine, bool board, bool inPlace) const;
    QString leadName() const;
    // The answer's tasks with the moves not yet confirmed applied.
    QList<Model::TaskSummaryView> shownTasks() const;
    void show();

    KeyedList<TaskRow>* m_rows;
    QList<KeyedList<TaskRow>*> m_columns;
    Calls::tasks::TasksResult m_result;
    QHash<QString, Move> m_moves;   // shown before the service confirms them
    QHash<QString, Chain> m_chains; // moves on their way, per task
    std::optional<Move> m_retry;
    QString m_moveError;
    bool m_dragging = false;
    bool m_showHeld = false;              // a change waits for the drop to be shown
    std::optional<QVariant> m_heldAnswer; // came while a card was dragged
    QString m_savedAddress;
    bool m_creating = false;
    QString m_createError;
};

} // namespace Kestro

Q_DECLARE_METATYPE(Kestro::Calls::tasks::TasksResult)
