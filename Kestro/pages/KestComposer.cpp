#include "KestComposer.h"

#include "KestRoomPage.h"
#include "KestWords.h"
#include "service/ServiceError.h"
#include "shell/Drafts.h"

#include <QJsonObject>
#include <QPointer>

namespace Kestro {

KestComposer::KestComposer(KestRoomPage* page, bool inThread)
    : QObject(page), m_page(page), m_inThread(inThread)
{
    if (!inThread)
        m_text = Drafts::of(place());
    connect(this, &KestComposer::textChanged, this, &KestComposer::hintChanged);
}

void KestComposer::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    Drafts::keep(place(), text);
    emit textChanged();
}

QString KestComposer::hint() const
{
    return m_inThread ? QString() : KestWords::hintOf(m_text, m_page->result().kest);
}

QString KestComposer::label() const
{
    return m_inThread ? QStringLiteral("Reply in the thread") : QStringLiteral("Message the kest");
}

QString KestComposer::placeholder() const
{
    return m_inThread ? QStringLiteral("Reply in thread... @ calls on a teammate, / for a skill")
                      : QStringLiteral("Write to the kest... @ calls on a teammate, / for a skill");
}

void KestComposer::send()
{
    if (m_pending)
        return;
    if (m_text.trimmed().isEmpty()) {
        setState({}, QStringLiteral("Tell us what you need first, then press Send."), false);
        return;
    }
    post(m_text, m_inThread ? m_page->threadId() : QString(), place());
}

QString KestComposer::place() const
{
    return m_inThread ? QStringLiteral("kest/thread/") + m_page->threadId() : QStringLiteral("kest");
}

void KestComposer::forget()
{
    setState({}, {}, m_pending);
}

KestComposer::Outcome KestComposer::outcomeOf(const Calls::app::PostKestMessageActionResult& result,
                                              const QList<Calls::kest::KestChatResultKest>& kest,
                                              bool inThread)
{
    Outcome outcome{KestWords::noteOf(result, kest), {}};
    // From the room the new thread opens beside it; a reply stays put.
    if (!inThread && result.threadId && !result.threadId->isEmpty())
        outcome.open = QStringLiteral("/kest?thread=") + *result.threadId;
    return outcome;
}

QCoro::Task<> KestComposer::post(QString text, QString threadId, QString sentFrom)
{
    QPointer<KestComposer> self(this);
    setState({}, {}, true);
    QJsonObject input{{QStringLiteral("text"), text}};
    if (!threadId.isEmpty())
        input.insert(QStringLiteral("threadId"), threadId);
    Calls::app::PostKestMessageActionResult result;
    QString failure;
    try {
        Arg message{JSONValue::fromQJsonValue(input)};
        result = co_await Calls::app::postKestMessageAction(std::move(message));
    } catch (const std::exception& error) {
        failure = describeError(error);
    }
    if (!self)
        co_return;
    if (failure.isEmpty() && result.error && !result.error->isEmpty())
        failure = *result.error;
    // The sentence and the clearing belong to the place the text was sent
    // from: the user may have opened another thread meanwhile.
    const bool here = place() == sentFrom;
    if (!failure.isEmpty()) {
        // The text stays, so the user can send it again.
        setState({}, here ? failure : QString(), false);
        co_return;
    }
    const Outcome outcome = outcomeOf(result, m_page->result().kest, m_inThread);
    if (Drafts::of(sentFrom) == text)
        Drafts::keep(sentFrom, {});
    // Only what was sent goes: words typed meanwhile stay.
    if (here && m_text == text)
        setText({});
    setState(here ? outcome.note : QString(), {}, false);
    // Opening the thread loads the page anew; otherwise load it now, so the
    // message and the first answers show.
    if (!outcome.open.isEmpty())
        m_page->open(outcome.open);
    else
        m_page->reloadNow();
}

void KestComposer::setState(QString note, QString error, bool pending)
{
    if (note == m_note && error == m_error && pending == m_pending)
        return;
    m_note = std::move(note);
    m_error = std::move(error);
    m_pending = pending;
    emit stateChanged();
}

} // namespace Kestro
