#pragma once

#include "ComposerPlace.h"
#include "shell/KeyedListModel.h"
#include "shell/PageModel.h"

#include "calls/kest.h"

#include <QCoroTask>
#include <QtQml/qqmlregistration.h>

namespace Kestro {

// What the one-to-one chat shows, from either of its two answers: the chat
// alone ("/kest/<handle>/chat") or with a thread open
// ("/kest/<handle>/chat/<id>").
struct ChatData {
    Model::AgentView agent;
    QString me;
    QList<Model::ThreadSummary> threads;
    double total = 0;
    std::optional<Model::ThreadView> thread;
    std::optional<Model::RunTrace> trace;
    bool canManage = false;

    static ChatData of(const Calls::kest::ChatResult& result);
    static ChatData of(const Calls::kest::ThreadResult& result);
    bool operator==(const ChatData&) const = default;
};

// A private chat with one teammate, as a list of threads: every message
// sent without a thread open starts one; inside a thread a message goes to
// it, and while the teammate still writes it joins the answer in progress.
// Nothing reloads on a timer unless something is being written.
class DirectChatPage : public Kestro::PageModel {
    Q_OBJECT
    QML_NAMED_ELEMENT(DirectChatModel)
    Q_PROPERTY(QString name READ name NOTIFY answered)
    Q_PROPERTY(QString handle READ handle NOTIFY answered)
    Q_PROPERTY(QString agentTitle READ agentTitle NOTIFY answered)
    Q_PROPERTY(QString agentStatus READ agentStatus NOTIFY answered)
    Q_PROPERTY(Kestro::KeyedListModel* threads READ threads CONSTANT)
    Q_PROPERTY(QString threadsNote READ threadsNote NOTIFY answered)
    Q_PROPERTY(bool threadOpen READ threadOpen NOTIFY answered)
    Q_PROPERTY(QString threadTitle READ threadTitle NOTIFY answered)
    Q_PROPERTY(QString threadFrom READ threadFrom NOTIFY answered)
    Q_PROPERTY(QString threadFailure READ threadFailure NOTIFY answered)
    Q_PROPERTY(bool working READ working NOTIFY answered)
    Q_PROPERTY(QString workingLine READ workingLine NOTIFY answered)
    Q_PROPERTY(QString workingSince READ workingSince NOTIFY answered)
    Q_PROPERTY(QString runHref READ runHref NOTIFY answered)
    Q_PROPERTY(QVariant trace READ trace NOTIFY answered)
    Q_PROPERTY(Kestro::KeyedListModel* messages READ messages CONSTANT)
    Q_PROPERTY(QString label READ label NOTIFY answered)
    Q_PROPERTY(QString placeholder READ placeholder NOTIFY answered)
    Q_PROPERTY(QString hint READ hint NOTIFY answered)
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(QString note READ note NOTIFY sendChanged)
    Q_PROPERTY(QString error READ error NOTIFY sendChanged)
    Q_PROPERTY(bool pending READ pending NOTIFY sendChanged)

public:
    explicit DirectChatPage(QObject* parent = nullptr, Timers& timers = Timers::system());

    static QCoro::Task<QVariant> fetch(Route route);
    // Seconds to the next load: only while the open thread, or with none
    // open any thread, is being written.
    static std::optional<double> cadence(const ChatData& data);

    QString name() const { return m_data.agent.name; }
    QString handle() const { return m_data.agent.handle; }
    QString agentTitle() const { return m_data.agent.title; }
    QString agentStatus() const { return m_data.agent.status; }
    KeyedListModel* threads() const;
    QString threadsNote() const;
    bool threadOpen() const { return m_data.thread.has_value(); }
    QString threadTitle() const { return m_data.thread ? m_data.thread->title : QString(); }
    QString threadFrom() const;
    QString threadFailure() const;
    bool working() const;
    QString workingLine() const;
    QString workingSince() const;
    QString runHref() const;
    QVariant trace() const;
    KeyedListModel* messages() const;
    QString label() const;
    QString placeholder() const;
    QString hint() const;
    QString text() const { return m_compose.text(); }
    void setText(const QString& text) { m_compose.setText(text); }
    QString note() const { return m_compose.note(); }
    QString error() const { return m_compose.error(); }
    bool pending() const { return m_compose.pending(); }

    Q_INVOKABLE void send();
    Q_INVOKABLE void closeThread();

signals:
    void answered();
    void textChanged();
    void sendChanged();

protected:
    void apply(const QVariant& value) override;
    std::optional<double> every(const QVariant& value) const override;
    bool loadsFor(const Route& from, const Route& to) const override;

private:
    QCoro::Task<> post(ComposerPlace::Sending sending, QString threadId, QString handle, bool handing);
    QString threadId() const;
    QString place() const;
    void followPlace();

    ChatData m_data;
    bool m_loaded = false;
    KeyedList<Model::ThreadSummary>* m_threads;
    KeyedList<Model::MessageView>* m_messages;
    ComposerPlace m_compose;
};

} // namespace Kestro

Q_DECLARE_METATYPE(Kestro::ChatData)
