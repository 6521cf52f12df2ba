#include "KestComposer.h"

#include "KestRoomPage.h"
#include "KestWords.h"
#include "service/ServiceError.h"

#include <QJsonObject>
#include <QPointer>

namespace Kestro {

KestComposer::KestComposer(KestRoomPage* page, bool inThread)
    : QObject(page), m_page(page), m_inThread(inThread)
{
    connect(&m_place, &ComposerPlace::textChanged, this, &KestComposer::textChanged);
    connect(&m_place, &ComposerPlace::textChanged, this, &KestComposer::hintChanged);
    connect(&m_place, &ComposerPlace::stateChanged, this, &KestComposer::stateChanged);
    follow();
}

void KestComposer::follow()
{
    m_place.setPlace(place());
}

QString KestComposer::hint() const
{
    return m_inThread ? QString() : KestWords::hintOf(m_place.text(), m_page->result().kest);
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
    if (const std::optional<ComposerPlace::Sending> sending = m_place.begin())
        post(*sending, m_inThread ? m_page->threadId() : QString());
}

QString KestComposer::place() const
{
    return m_inThread ? QStringLiteral("kest/thread/") + m_page->threadId() : QStringLiteral("kest");
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

QCoro::Task<> KestComposer::post(ComposerPlace::Sending sending, QString threadId)
{
    const QString text = sending.text;
    // Nothing of this composer is read after the wait: leaving the page
    // destroys it.
    QPointer<KestRoomPage> page(m_page);
    const bool inThread = m_inThread;
    const Route sentAt = m_page->route();
    const QList<Calls::kest::KestChatResultKest> kest = m_page->result().kest;
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
    if (failure.isEmpty() && result.error && !result.error->isEmpty())
        failure = *result.error;
    // The words and the sentence land at the place they were sent from,
    // whether or not the page is still there.
    const Outcome outcome =
        failure.isEmpty() ? outcomeOf(result, page ? page->result().kest : kest, inThread) : Outcome{};
    ComposerPlace::finish(sending, failure, outcome.note);
    // The room moves only if the user is still where they sent from: a new
    // thread opens beside it (which loads the page anew), else a load now
    // shows the message and the first answers.
    if (!failure.isEmpty() || !page || page->route() != sentAt)
        co_return;
    if (!outcome.open.isEmpty())
        page->open(outcome.open);
    else
        page->reloadNow();
}

} // namespace Kestro
