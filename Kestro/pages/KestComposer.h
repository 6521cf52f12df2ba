#pragma once

#include "ComposerPlace.h"
#include "calls/app.h"
#include "calls/kest.h"

#include <QCoroTask>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace Kestro {

class KestRoomPage;

// A composer of the kest room: the room's own, or the open thread's. It
// keeps the typed text through a failed post, says who took the message
// after a good one, and from the room opens the new message's thread while
// the user is still where they sent it from.
class KestComposer : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The kest room makes its composers.")
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(QString hint READ hint NOTIFY hintChanged)
    Q_PROPERTY(QString note READ note NOTIFY stateChanged)
    Q_PROPERTY(QString error READ error NOTIFY stateChanged)
    Q_PROPERTY(bool pending READ pending NOTIFY stateChanged)
    Q_PROPERTY(QString label READ label CONSTANT)
    Q_PROPERTY(QString placeholder READ placeholder CONSTANT)

public:
    KestComposer(KestRoomPage* page, bool inThread);

    QString text() const { return m_place.text(); }
    void setText(const QString& text) { m_place.setText(text); }
    QString hint() const;
    QString note() const { return m_place.note(); }
    QString error() const { return m_place.error(); }
    bool pending() const { return m_place.pending(); }
    QString label() const;
    QString placeholder() const;

    // Posts the text; refuses an empty one with a sentence that says why.
    Q_INVOKABLE void send();
    // The route moved: a thread composer turns to the open thread's words.
    void follow();
    // Where the typed text is kept while unsent: the room, or its thread.
    QString place() const;

    // What a good post leads to: the note, and the thread the room opens
    // (none from inside a thread).
    struct Outcome {
        QString note;
        QString open;
    };
    static Outcome outcomeOf(const Calls::app::PostKestMessageActionResult& result,
                             const QList<Calls::kest::KestChatResultKest>& kest, bool inThread);

signals:
    void textChanged();
    void hintChanged();
    void stateChanged();

private:
    QCoro::Task<> post(ComposerPlace::Sending sending, QString threadId);

    KestRoomPage* m_page;
    bool m_inThread;
    ComposerPlace m_place;
};

} // namespace Kestro
