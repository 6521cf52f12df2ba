#include "KestRoomPage.h"

#include "KestComposer.h"
#include "KestWords.h"
#include "shell/RelativeTime.h"

#include "calls/app.h"
#include "service/ServiceError.h"

#include <QPointer>
#include <QSettings>

namespace Kestro {

using Calls::kest::KestChatResult;
using Calls::kest::KestChatResultKest;
using Model::KestRoomMessage;

namespace {

// A thread's message as a room row (no summary of its own).
KestRoomMessage rowOf(const Model::KestMessageView& m)
{
    KestRoomMessage row;
    row.id = m.id;
    row.threadId = m.threadId;
    row.from = m.from;
    row.by = m.by;
    row.agent = m.agent;
    row.avatar = m.avatar;
    row.text = m.text;
    row.to = m.to;
    row.reads = m.reads;
    row.runId = m.runId;
    row.failed = m.failed;
    row.task = m.task;
    row.approvalIds = m.approvalIds;
    row.reactions = m.reactions;
    row.cites = m.cites;
    row.at = m.at;
    return row;
}

QString handleOf(const KestRoomMessage& m)
{
    if (m.agent && !m.agent->isEmpty())
        return *m.agent;
    return m.from == QLatin1String("agent") ? m.by.id : QString();
}

} // namespace

KestRoomPage::KestRoomPage(QObject* parent, Timers& timers)
    : PageModel(&KestRoomPage::fetch, parent, timers),
      m_kest(new KeyedList<KestChatResultKest>(
          [](const KestChatResultKest& r) { return r.handle; },
          {{"name", [](const KestChatResultKest& r) { return QVariant(r.name); }},
           {"title", [](const KestChatResultKest& r) { return QVariant(r.title); }},
           {"status", [](const KestChatResultKest& r) { return QVariant(r.status); }},
           {"lead", [](const KestChatResultKest& r) { return QVariant(r.lead); }},
           {"needsYou", [](const KestChatResultKest& r) { return QVariant(r.needsYou); }}},
          this)),
      m_messages(new KeyedList<KestRoomMessage>([](const KestRoomMessage& r) { return r.id; }, messageRoles(),
                                                this)),
      m_thread(new KeyedList<KestRoomMessage>([](const KestRoomMessage& r) { return r.id; }, messageRoles(),
                                              this)),
      m_answering(new KeyedList<KestAnswerRow>([](const KestAnswerRow& r) { return r.answer.runId; },
                                               answerRoles(), this)),
      m_threadAnswering(new KeyedList<KestAnswerRow>([](const KestAnswerRow& r) { return r.answer.runId; },
                                                     answerRoles(), this)),
      m_composer(new KestComposer(this, false)), m_threadComposer(new KestComposer(this, true))
{
    // Each thread keeps what the user had half typed in it: closing the
    // panel, opening another thread or going Back loses no words.
    connect(this, &PageModel::routeChanged, this, [this] {
        if (threadId() == m_shownThread)
            return;
        m_shownThread = threadId();
        m_threadComposer->follow();
    });
}

// The room's answering rows and a thread's read alike.
QList<KeyedList<KestAnswerRow>::Role> KestRoomPage::answerRoles()
{
    using A = KestAnswerRow;
    return {{"name", [this](const A& r) { return QVariant(nameOf(r.answer.agent)); }},
            {"handle", [](const A& r) { return QVariant(r.answer.agent); }},
            {"doing", [](const A& r) { return QVariant(r.answer.doing.value_or(QString())); }},
            {"href",
             [](const A& r) {
                 return QVariant(QStringLiteral("/kest/%1/runs/%2").arg(r.answer.agent, r.answer.runId));
             }},
            {"trace", [](const A& r) { return r.trace ? QVariant::fromValue(*r.trace) : QVariant(); }}};
}

QList<KeyedList<KestRoomMessage>::Role> KestRoomPage::messageRoles()
{
    using M = KestRoomMessage;
    return {
        {"agent", [](const M& m) { return QVariant(m.from == QLatin1String("agent")); }},
        {"name", [](const M& m) { return QVariant(m.by.name); }},
        {"handle", [](const M& m) { return QVariant(handleOf(m)); }},
        {"when", [](const M& m) { return QVariant(relativeTime(m.at)); }, true},
        {"at", [](const M& m) { return QVariant(m.at); }},
        {"text", [](const M& m) { return QVariant(m.text); }},
        {"failed", [](const M& m) { return QVariant(m.failed); }},
        {"cites",
         [](const M& m) {
             QVariantList cites;
             for (const auto& cite : m.cites)
                 cites.append(QVariantMap{{QStringLiteral("title"), cite.title},
                                          {QStringLiteral("kind"), cite.kind},
                                          {QStringLiteral("type"), cite.type},
                                          {QStringLiteral("id"), cite.id}});
             return QVariant(cites);
         }},
        {"taskKey", [](const M& m) { return QVariant(m.task ? m.task->key : QString()); }},
        {"taskTitle", [](const M& m) { return QVariant(m.task ? m.task->title : QString()); }},
        {"taskStatus", [](const M& m) { return QVariant(m.task ? m.task->status : QString()); }},
        {"reactions",
         [this](const M& m) {
             const auto* local = reactionsOf(m.id);
             return QVariant(reactionChips(local ? *local : m.reactions));
         }},
        {"replies", [](const M& m) { return QVariant(int(m.replies)); }},
        {"repliesText",
         [](const M& m) {
             return QVariant(m.replies > 0 ? KestWords::replies(qint64(m.replies)) : QString());
         }},
        {"lastReply",
         [](const M& m) {
             return QVariant(m.lastReplyAt ? QStringLiteral("last reply ") + relativeTime(*m.lastReplyAt)
                                           : QString());
         },
         true},
        {"repliedBy",
         [](const M& m) {
             QVariantList faces;
             for (const auto& face : m.repliedBy)
                 faces.append(QVariantMap{{QStringLiteral("name"), face.name},
                                          {QStringLiteral("handle"), face.agent.value_or(QString())}});
             return QVariant(faces);
         }},
        {"answeringLine", [this](const M& m) { return QVariant(answeringLine(m.answering)); }},
        {"approvals", [](const M& m) { return QVariant(KestWords::approvals(m.approvalIds.size())); }},
        {"runHref",
         [](const M& m) {
             const QString handle = handleOf(m);
             return QVariant(m.from == QLatin1String("agent") && m.runId && !handle.isEmpty()
                                 ? QStringLiteral("/kest/%1/runs/%2").arg(handle, *m.runId)
                                 : QString());
         }},
        // The thread a reply goes to: a room message is its own thread's head.
        {"threadOf", [](const M& m) { return QVariant(m.threadId.value_or(m.id)); }},
    };
}

QCoro::Task<QVariant> KestRoomPage::fetch(Route route)
{
    // Named, not a temporary of a conditional: GCC 12 destroys those twice
    // inside a coroutine.
    const QString thread = route.query.value(QStringLiteral("thread"));
    Arg which = Arg::absent();
    if (!thread.isEmpty())
        which = Arg(JSONValue(thread));
    auto result = co_await Calls::kest::kestChat(std::move(which));
    co_return QVariant::fromValue(std::move(result));
}

KeyedListModel* KestRoomPage::kest() const
{
    return m_kest;
}
KeyedListModel* KestRoomPage::messages() const
{
    return m_messages;
}
KeyedListModel* KestRoomPage::answering() const
{
    return m_answering;
}
KeyedListModel* KestRoomPage::thread() const
{
    return m_thread;
}
KeyedListModel* KestRoomPage::threadAnswering() const
{
    return m_threadAnswering;
}

QString KestRoomPage::threadId() const
{
    return route().query.value(QStringLiteral("thread"));
}

void KestRoomPage::apply(const QVariant& value)
{
    m_result = value.value<KestChatResult>();
    // Reactions the service has taken show from its answer now.
    QStringList settled;
    for (auto it = m_overlay.begin(); it != m_overlay.end();) {
        if (it->settled) {
            settled.append(it.key());
            it = m_overlay.erase(it);
        } else {
            ++it;
        }
    }

    m_names.clear();
    for (const auto& mate : m_result.kest)
        m_names.insert(mate.handle, mate.name);
    auto learn = [this](const Model::KestMessageViewBy& by) {
        if (!by.id.isEmpty() && !m_names.contains(by.id))
            m_names.insert(by.id, by.name);
    };
    for (const auto& m : m_result.messages)
        learn(m.by);
    if (m_result.thread) {
        learn(m_result.thread->message.by);
        for (const auto& m : m_result.thread->replies)
            learn(m.by);
    }
    show();
    for (const QString& id : settled)
        announceReactions(id);
}

void KestRoomPage::announceReactions(const QString& messageId)
{
    m_messages->announce(messageId, QByteArrayLiteral("reactions"));
    m_thread->announce(messageId, QByteArrayLiteral("reactions"));
}

void KestRoomPage::show()
{
    m_kest->apply(m_result.kest);
    QList<KestRoomMessage> newestFirst(m_result.messages.crbegin(), m_result.messages.crend());
    m_messages->apply(std::move(newestFirst));
    m_answering->apply(answerRows(m_result.answering));

    QList<KestRoomMessage> threadRows;
    QString threadNote;
    if (const auto& thread = m_result.thread) {
        for (auto it = thread->replies.crbegin(); it != thread->replies.crend(); ++it)
            threadRows.append(rowOf(*it));
        threadRows.append(rowOf(thread->message));
        if (thread->total > thread->replies.size())
            threadNote = QStringLiteral("Showing the latest %1 replies.").arg(thread->replies.size());
        m_threadAnswering->apply(answerRows(thread->answering));
    } else {
        m_threadAnswering->apply({});
    }
    m_thread->apply(std::move(threadRows));

    QString everyone = KestWords::everyoneLine(m_result.kest);
    QStringList needsYou;
    QVariantList mentions;
    for (const auto& mate : m_result.kest) {
        if (mate.needsYou)
            needsYou.append(mate.name + QStringLiteral(" needs you"));
        mentions.append(QVariantMap{{QStringLiteral("handle"), mate.handle},
                                    {QStringLiteral("name"), mate.name},
                                    {QStringLiteral("avatar"), mate.avatar}});
    }
    if (!m_result.kest.isEmpty())
        mentions.append(QVariantMap{{QStringLiteral("handle"), QStringLiteral("all")},
                                    {QStringLiteral("name"), QStringLiteral("Everyone")}});
    QString empty = KestWords::emptyText(m_result.kest);
    if (everyone == m_everyoneLine && needsYou == m_needsYou && empty == m_emptyText &&
        mentions == m_mentions && threadNote == m_threadNote &&
        m_result.thread.has_value() == m_threadShownBefore)
        return;
    m_everyoneLine = std::move(everyone);
    m_needsYou = std::move(needsYou);
    m_emptyText = std::move(empty);
    m_mentions = std::move(mentions);
    m_threadNote = std::move(threadNote);
    m_threadShownBefore = m_result.thread.has_value();
    emit answered();
    emit m_composer->hintChanged();
}

QList<KestAnswerRow> KestRoomPage::answerRows(const QList<Model::KestAnswer>& answering) const
{
    QList<KestAnswerRow> rows;
    for (const auto& answer : answering) {
        KestAnswerRow row{answer, std::nullopt};
        if (const auto it = m_result.traces.constFind(answer.runId); it != m_result.traces.constEnd())
            row.trace = *it;
        rows.append(std::move(row));
    }
    return rows;
}

std::optional<double> KestRoomPage::every(const QVariant& value) const
{
    return cadence(value.value<KestChatResult>());
}

double KestRoomPage::cadence(const KestChatResult& result)
{
    return result.answering.isEmpty() ? 10.0 : 2.0;
}

QString KestRoomPage::nameOf(const QString& id) const
{
    return m_names.value(id, id);
}

QString KestRoomPage::answeringLine(const QList<Model::KestAnswer>& answering) const
{
    QStringList lines;
    for (const auto& answer : answering) {
        const QString line = nameOf(answer.agent) + QStringLiteral(" is answering");
        if (!lines.contains(line))
            lines.append(line);
    }
    return lines.join(QStringLiteral(" · "));
}

QVariantList KestRoomPage::reactionChips(const QList<Model::ReactionView>& reactions) const
{
    QVariantList chips;
    for (const auto& reaction : reactions) {
        if (reaction.by.isEmpty())
            continue;
        QStringList who;
        bool mine = false;
        int unnamed = 0;
        for (const QString& id : reaction.by) {
            if (id == m_result.me) {
                mine = true;
                who.prepend(QStringLiteral("You"));
            } else if (const QString name = m_names.value(id); !name.isEmpty()) {
                who.append(name);
            } else {
                // Someone the page knows no name for: counted, not shown as an id.
                ++unnamed;
            }
        }
        if (unnamed > 0)
            who.append(unnamed == 1 ? QStringLiteral("1 other") : QStringLiteral("%1 others").arg(unnamed));
        chips.append(QVariantMap{{QStringLiteral("emoji"), reaction.emoji},
                                 {QStringLiteral("count"), int(reaction.by.size())},
                                 {QStringLiteral("mine"), mine},
                                 {QStringLiteral("who"), who.join(QStringLiteral(", "))}});
    }
    return chips;
}

const QList<Model::ReactionView>* KestRoomPage::reactionsOf(const QString& messageId) const
{
    const auto it = m_overlay.constFind(messageId);
    return it == m_overlay.constEnd() ? nullptr : &it->reactions;
}

QList<Model::ReactionView> KestRoomPage::toggled(QList<Model::ReactionView> reactions, const QString& emoji,
                                                 const QString& me)
{
    for (qsizetype i = 0; i < reactions.size(); ++i) {
        if (reactions[i].emoji != emoji)
            continue;
        auto& by = reactions[i].by;
        if (by.contains(me))
            by.removeAll(me);
        else
            by.append(me);
        if (by.isEmpty())
            reactions.removeAt(i);
        return reactions;
    }
    reactions.append({emoji, {me}});
    return reactions;
}

void KestRoomPage::react(const QString& messageId, const QString& emoji)
{
    if (messageId.isEmpty() || emoji.isEmpty())
        return;
    const QList<Model::ReactionView>* current = reactionsOf(messageId);
    QList<Model::ReactionView> shown;
    if (current) {
        shown = *current;
    } else {
        const KestRoomMessage* row = m_messages->find(messageId);
        if (!row)
            row = m_thread->find(messageId);
        if (!row)
            return;
        shown = row->reactions;
    }
    m_overlay.insert(messageId, {toggled(shown, emoji, m_result.me), false});
    dismissReactionError();
    announceReactions(messageId);
    sendReaction(messageId, emoji);
}

QCoro::Task<> KestRoomPage::sendReaction(QString messageId, QString emoji)
{
    QPointer<KestRoomPage> self(this);
    QString failure;
    try {
        Arg message{JSONValue(messageId)};
        Arg reaction{JSONValue(emoji)};
        const Model::ActionOutcome outcome =
            co_await Calls::app::reactInKestAction(std::move(message), std::move(reaction));
        if (outcome.error && !outcome.error->isEmpty())
            failure = *outcome.error;
    } catch (const std::exception& error) {
        failure = describeError(error);
    }
    if (!self)
        co_return;
    auto it = m_overlay.find(messageId);
    if (!failure.isEmpty()) {
        // The chips go back to what the service holds.
        if (it != m_overlay.end())
            m_overlay.erase(it);
        announceReactions(messageId);
        m_reactionError = QStringLiteral("That reaction didn't go: ") + failure;
        emit reactionErrorChanged();
        co_return;
    }
    if (it != m_overlay.end())
        it->settled = true;
    reloadAfterAction();
}

namespace {
const QString threadWidthKey = QStringLiteral("kestro:thread-width");
}

int KestRoomPage::threadWidth() const
{
    return QSettings().value(threadWidthKey, 420).toInt();
}

void KestRoomPage::setThreadWidth(int width)
{
    width = std::clamp(width, 320, 900);
    if (width == threadWidth())
        return;
    QSettings().setValue(threadWidthKey, width);
    emit threadWidthChanged();
}

void KestRoomPage::dismissReactionError()
{
    if (m_reactionError.isEmpty())
        return;
    m_reactionError.clear();
    emit reactionErrorChanged();
}

void KestRoomPage::closeThread()
{
    open(QStringLiteral("/kest"));
}

} // namespace Kestro
