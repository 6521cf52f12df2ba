#pragma once

#include "shell/KeyedListModel.h"
#include "shell/PageModel.h"

#include "calls/kest.h"

#include <QtQml/qqmlregistration.h>

namespace Kestro {

// One call of a run's rounds, keyed by its place ("r1c2"): rounds and their
// calls only accumulate, so a call the user opened stays open through the
// reloads while the run works. A round's first row carries its heading; a
// round without calls is a heading alone.
struct RunCallRow {
    int round = 0;
    int call = -1;
    Model::RunViewRound of;
    bool operator==(const RunCallRow&) const = default;
};

// A teammate's run ("/kest/<handle>/runs/<id>"): what it answered, what it
// cited and drafted, its rounds and their calls (with the approvals they
// wait for), and its trace. It reloads every 2 s while the run works.
class RunPage : public Kestro::PageModel {
    Q_OBJECT
    QML_NAMED_ELEMENT(RunModel)
    Q_PROPERTY(QString title READ title NOTIFY answered)
    Q_PROPERTY(QString agentName READ agentName NOTIFY answered)
    Q_PROPERTY(QString handle READ handle NOTIFY answered)
    Q_PROPERTY(QString agentTitle READ agentTitle NOTIFY answered)
    Q_PROPERTY(QString status READ status NOTIFY answered)
    Q_PROPERTY(bool inProgress READ inProgress NOTIFY answered)
    Q_PROPERTY(QString started READ started NOTIFY answered)
    Q_PROPERTY(QString reply READ reply NOTIFY answered)
    Q_PROPERTY(QVariantList cites READ cites NOTIFY answered)
    Q_PROPERTY(QString draftTitle READ draftTitle NOTIFY answered)
    Q_PROPERTY(QString draftText READ draftText NOTIFY answered)
    Q_PROPERTY(int waiting READ waiting NOTIFY answered)
    Q_PROPERTY(QVariant trace READ trace NOTIFY answered)
    Q_PROPERTY(int roundCount READ roundCount NOTIFY answered)
    Q_PROPERTY(Kestro::KeyedListModel* calls READ calls CONSTANT)

public:
    explicit RunPage(QObject* parent = nullptr, Timers& timers = Timers::system());

    static QCoro::Task<QVariant> fetch(Route route);

    QString title() const;
    QString agentName() const { return m_result.agent.name; }
    QString handle() const { return m_result.agent.handle; }
    QString agentTitle() const { return m_result.agent.title; }
    QString status() const { return m_result.run.status; }
    bool inProgress() const;
    QString started() const { return m_result.run.startedAt; }
    QString reply() const { return m_result.run.reply.value_or(QString()); }
    QVariantList cites() const;
    QString draftTitle() const;
    QString draftText() const;
    // Calls waiting for the user's approval.
    int waiting() const;
    QVariant trace() const { return QVariant::fromValue(m_result.trace); }
    int roundCount() const { return int(m_result.run.rounds.size()); }
    KeyedListModel* calls() const;

    // A call's input as its row shows it: pretty JSON for objects and
    // arrays, the text itself for a string, nothing when absent.
    static QString inputText(const JSONValue& input);

signals:
    void answered();

protected:
    void apply(const QVariant& value) override;
    std::optional<double> every(const QVariant& value) const override;
    bool loadsFor(const Route&, const Route&) const override { return false; }

private:
    Calls::kest::RunResult m_result;
    bool m_loaded = false;
    KeyedList<RunCallRow>* m_calls;
};

} // namespace Kestro

Q_DECLARE_METATYPE(Kestro::Calls::kest::RunResult)
