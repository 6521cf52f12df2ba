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
// the address ("?q=" words in the title, "?mine=1" only the user's). It
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
    Q_PROPERTY(bool creating READ creating NOTIFY creatingChanged)
    Q_PROPERTY(QString createError READ createError NOTIFY creatingChanged)

public:
    explicit TaskListPage(QObject* parent = nullptr, Timers& timers = Timers::system());

    static QCoro::Task<QVariant> fetch(Route route);
    // The rows for an answer: each group's heading, then (unless folded)
    // its tasks in their manual order. Empty groups show no heading.
    static QList<TaskRow> rowsOf(const QList<Model::TaskSummaryView>& tasks, const QStringList& folded);

    KeyedListModel* rows() const { return m_rows; }
    int shown() const { return int(m_result.tasks.size()); }
    bool canManage() const { return m_result.canManage; }
    QString query() const;
    bool mine() const;
    QString emptyLine() const;
    QVariantList assignees() const;
    bool creating() const { return m_creating; }
    QString createError() const { return m_createError; }

    // The filters, as a new address: typed words replace the current one,
    // "Only mine" is a place in the history of its own.
    Q_INVOKABLE void search(const QString& words);
    Q_INVOKABLE void setMine(bool mine);
    Q_INVOKABLE void toggleFolded(int group);
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

protected:
    void apply(const QVariant& value) override;
    std::optional<double> every(const QVariant& value) const override;

private:
    QCoro::Task<> runCreate(QJsonObject input);
    void openWith(const QString& words, bool mine, bool inPlace) const;
    QString leadName() const;

    KeyedList<TaskRow>* m_rows;
    Calls::tasks::TasksResult m_result;
    QString m_savedAddress;
    bool m_creating = false;
    QString m_createError;
};

} // namespace Kestro

Q_DECLARE_METATYPE(Kestro::Calls::tasks::TasksResult)
