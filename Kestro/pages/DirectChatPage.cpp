#include "DirectChatPage.h"

#include "KestWords.h"
#include "shell/RelativeTime.h"

#include "calls/app.h"
#include "service/ServiceError.h"

#include <QJsonObject>
#include <QPointer>
#include <QRegularExpression>

namespace Kestro {

using Model::MessageView;
using Model::ThreadSummary;

namespace {

bool writing(const QString& status)
{
    return status == QLatin1String("replying") || status == QLatin1String("working");
}

} // namespace

ChatData ChatData::of(const Calls::kest::ChatResult& result)
{
    return {result.agent, result.me,    result.threads,  result.total,
            std::nullopt, std::nullopt, result.canManage};
}

ChatData ChatData::of(const Calls::kest::ThreadResult& result)
{
    return {result.agent,  result.me,    result.threads,  result.total,
            result.thread, result.trace, result.canManage};
}

DirectChatPage::DirectChatPage(QObject* parent, Timers& timers)
    : PageModel(&DirectChatPage::fetch, parent, timers),
      m_threads(new KeyedList<ThreadSummary>(
          [](const ThreadSummary& t) { return t.id; },
          {{"title", [](const ThreadSummary& t) { return QVariant(t.title); }},
           {"repliesText",
            [](const ThreadSummary& t) { return QVariant(KestWords::replies(qint64(t.replies))); }},
           {"lastReply",
            [](const ThreadSummary& t) {
                return QVariant(QStringLiteral("last reply ") + relativeTime(t.updatedAt));
            },
            true},
           {"via",
            [](const ThreadSummary& t) {
                return QVariant(t.telegram ? QStringLiteral("via Telegram")
                                : t.call   ? QStringLiteral("on a call")
                                           : QString());
            }},
           {"working", [](const ThreadSummary& t) { return QVariant(writing(t.status)); }},
           {"doing", [](const ThreadSummary& t) { return QVariant(t.doing.value_or(QString())); }},
           {"failed", [](const ThreadSummary& t) { return QVariant(t.status == QLatin1String("failed")); }},
           {"href",
            [](const ThreadSummary& t) {
                return QVariant(QStringLiteral("/kest/%1/chat/%2").arg(t.agent, t.id));
            }}},
          this)),
      m_messages(new KeyedList<MessageView>(
          [](const MessageView& m) { return m.id; },
          // The roles of a room message, so the one timeline shows both.
          {{"agent", [](const MessageView& m) { return QVariant(m.role == QLatin1String("agent")); }},
           {"name",
            [this](const MessageView& m) {
                return QVariant(m.role == QLatin1String("agent") ? m_data.agent.name : QStringLiteral("You"));
            }},
           {"handle",
            [this](const MessageView& m) {
                return QVariant(m.role == QLatin1String("agent") ? m_data.agent.handle : QString());
            }},
           {"when", [](const MessageView& m) { return QVariant(relativeTime(m.at)); }, true},
           {"at", [](const MessageView& m) { return QVariant(m.at); }},
           {"text", [](const MessageView& m) { return QVariant(m.text); }},
           {"failed", [](const MessageView& m) { return QVariant(m.failed.value_or(false)); }},
           {"cites",
            [](const MessageView& m) {
                QVariantList cites;
                for (const auto& cite : m.cites.value_or(QList<Model::Cite>()))
                    cites.append(QVariantMap{{QStringLiteral("title"), cite.title},
                                             {QStringLiteral("kind"), cite.kind}});
                return QVariant(cites);
            }},
           {"taskKey", [](const MessageView&) { return QVariant(QString()); }},
           {"taskTitle", [](const MessageView&) { return QVariant(QString()); }},
           {"taskStatus", [](const MessageView&) { return QVariant(QString()); }},
           {"reactions", [](const MessageView&) { return QVariant(QVariantList()); }},
           {"replies", [](const MessageView&) { return QVariant(0); }},
           {"repliesText", [](const MessageView&) { return QVariant(QString()); }},
           {"lastReply", [](const MessageView&) { return QVariant(QString()); }},
           {"repliedBy", [](const MessageView&) { return QVariant(QVariantList()); }},
           {"answeringLine", [](const MessageView&) { return QVariant(QString()); }},
           {"approvals", [](const MessageView&) { return QVariant(QString()); }},
           {"runHref",
            [this](const MessageView& m) {
                return QVariant(m.role == QLatin1String("agent") && m.runId
                                    ? QStringLiteral("/kest/%1/runs/%2").arg(m_data.agent.handle, *m.runId)
                                    : QString());
            }},
           {"threadOf", [](const MessageView&) { return QVariant(QString()); }}},
          this))
{
    connect(&m_compose, &ComposerPlace::textChanged, this, &DirectChatPage::textChanged);
    connect(&m_compose, &ComposerPlace::stateChanged, this, &DirectChatPage::sendChanged);
    connect(this, &PageModel::routeChanged, this, &DirectChatPage::followPlace);
}

QCoro::Task<QVariant> DirectChatPage::fetch(Route route)
{
    // "/kest/<handle>/chat" or "/kest/<handle>/chat/<id>"
    Arg handle{JSONValue(route.segments.value(1))};
    if (route.segments.size() > 3) {
        Arg thread{JSONValue(route.segments.value(3))};
        auto result = co_await Calls::kest::thread(std::move(handle), std::move(thread));
        co_return QVariant::fromValue(ChatData::of(result));
    }
    auto result = co_await Calls::kest::chat(std::move(handle));
    co_return QVariant::fromValue(ChatData::of(result));
}

std::optional<double> DirectChatPage::cadence(const ChatData& data)
{
    if (data.thread && data.thread->status == QLatin1String("replying"))
        return 2.0;
    if (!data.thread || data.thread->status != QLatin1String("replying"))
        for (const ThreadSummary& thread : data.threads)
            if (thread.status == QLatin1String("replying"))
                return 2.0;
    return std::nullopt;
}

std::optional<double> DirectChatPage::every(const QVariant& value) const
{
    return cadence(value.value<ChatData>());
}

bool DirectChatPage::loadsFor(const Route& from, const Route& to) const
{
    // Another thread of the same chat: the page stays, its answer changes.
    return from.segments != to.segments;
}

void DirectChatPage::apply(const QVariant& value)
{
    ChatData data = value.value<ChatData>();
    m_threads->apply(data.threads);
    QList<MessageView> newestFirst;
    if (data.thread)
        newestFirst = QList<MessageView>(data.thread->messages.crbegin(), data.thread->messages.crend());
    if (m_loaded && data == m_data)
        return;
    m_loaded = true;
    m_data = std::move(data);
    m_messages->apply(std::move(newestFirst));
    emit answered();
}

KeyedListModel* DirectChatPage::threads() const
{
    return m_threads;
}

KeyedListModel* DirectChatPage::messages() const
{
    return m_messages;
}

QString DirectChatPage::threadsNote() const
{
    if (m_data.total > m_data.threads.size())
        return QStringLiteral("Showing the latest %1 threads").arg(m_data.threads.size());
    return {};
}

QString DirectChatPage::threadFrom() const
{
    return m_data.thread && m_data.thread->telegram ? QStringLiteral("From Telegram") : QString();
}

QString DirectChatPage::threadFailure() const
{
    if (!m_data.thread || m_data.thread->status != QLatin1String("failed"))
        return {};
    const auto& messages = m_data.thread->messages;
    // What the teammate had written is kept; say so, and why it stopped.
    if (!messages.isEmpty() && messages.last().role == QLatin1String("agent"))
        return QStringLiteral("Saved before the reply stopped");
    // A sentence that says what went wrong and what to do next.
    QString why = m_data.thread->error.value_or(QString()).trimmed();
    static const QRegularExpression ended(QStringLiteral("[.!?]$"));
    if (!why.isEmpty() && !ended.match(why).hasMatch())
        why += QLatin1Char('.');
    return QStringLiteral("%1's reply failed%2 Send your message again to have another go.")
        .arg(m_data.agent.name, why.isEmpty() ? QStringLiteral(".") : QStringLiteral(": ") + why);
}

bool DirectChatPage::working() const
{
    return m_data.thread && writing(m_data.thread->status);
}

QString DirectChatPage::workingLine() const
{
    if (!working())
        return {};
    const QString doing = m_data.thread->doing.value_or(QString());
    const bool started = m_data.trace && !m_data.trace->rounds.isEmpty();
    if (doing.isEmpty() || !started)
        return m_data.agent.name + QStringLiteral(" is getting to work");
    return m_data.agent.name + QStringLiteral(" is working on ") + doing;
}

QString DirectChatPage::workingSince() const
{
    return m_data.trace ? m_data.trace->startedAt : QString();
}

QString DirectChatPage::runHref() const
{
    if (!m_data.thread || !m_data.thread->runId)
        return {};
    return QStringLiteral("/kest/%1/runs/%2").arg(m_data.agent.handle, *m_data.thread->runId);
}

QVariant DirectChatPage::trace() const
{
    return m_data.trace ? QVariant::fromValue(*m_data.trace) : QVariant();
}

QString DirectChatPage::label() const
{
    return m_data.thread ? QStringLiteral("Reply in thread")
                         : QStringLiteral("Message %1 (new thread)...").arg(m_data.agent.name);
}

QString DirectChatPage::placeholder() const
{
    if (working())
        return QStringLiteral("Add to what %1 is working on...").arg(m_data.agent.name);
    return m_data.thread ? QStringLiteral("Reply in thread...")
                         : QStringLiteral("Message %1 (new thread)...").arg(m_data.agent.name);
}

QString DirectChatPage::hint() const
{
    return QStringLiteral("Goes to %1, or @ someone else").arg(m_data.agent.name);
}

QString DirectChatPage::place() const
{
    return QStringLiteral("chat/%1/%2").arg(route().segments.value(1), threadId());
}

void DirectChatPage::followPlace()
{
    // Each thread, and the new-thread composer, keeps its own words and the
    // outcome of its last send.
    m_compose.setPlace(place());
}

QString DirectChatPage::threadId() const
{
    return route().segments.size() > 3 ? route().segments.value(3) : QString();
}

void DirectChatPage::send()
{
    // The thread is the route's: the last answer may still be the thread
    // the user just left.
    const QString thread = threadId();
    const bool handing = working() && m_data.thread && m_data.thread->id == thread;
    if (const std::optional<ComposerPlace::Sending> sending = m_compose.begin())
        post(*sending, thread, route().segments.value(1), handing);
}

QCoro::Task<> DirectChatPage::post(ComposerPlace::Sending sending, QString threadId, QString handle,
                                   bool handing)
{
    const QString text = sending.text;
    QPointer<DirectChatPage> self(this);
    const Route sentAt = route();
    QString failure;
    QString opened;
    try {
        if (threadId.isEmpty()) {
            Arg input{JSONValue::fromQJsonValue(
                QJsonObject{{QStringLiteral("handle"), handle}, {QStringLiteral("text"), text}})};
            const auto result = co_await Calls::app::startThreadAction(std::move(input));
            failure = result.error.value_or(QString());
            opened = result.id.value_or(QString());
        } else {
            Arg input{JSONValue::fromQJsonValue(
                QJsonObject{{QStringLiteral("threadId"), threadId}, {QStringLiteral("text"), text}})};
            const auto result = co_await Calls::app::sendMessageAction(std::move(input));
            failure = result.error.value_or(QString());
        }
    } catch (const std::exception& error) {
        failure = describeError(error);
    }
    // What was sent leaves the place it was sent from, and the sentence
    // under the composer belongs there too, even if the page is gone.
    ComposerPlace::finish(sending, failure,
                          handing ? QStringLiteral("Handed to the reply in progress.") : QString());
    if (!failure.isEmpty() || !self || self->route() != sentAt)
        co_return;
    // A new thread opens; a reply shows with the next load, now.
    if (!opened.isEmpty())
        open(QStringLiteral("/kest/%1/chat/%2").arg(handle, opened));
    else
        reloadAfterAction();
}

void DirectChatPage::closeThread()
{
    if (!m_data.agent.handle.isEmpty())
        open(QStringLiteral("/kest/%1/chat").arg(m_data.agent.handle));
}

} // namespace Kestro
