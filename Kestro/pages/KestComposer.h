#pragma once

#include "calls/app.h"
#include "calls/kest.h"

#include <QCoroTask>
#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace Kestro {

class KestRoomPage;

// A composer of the kest room: the room's own, or the open thread's. It
// keeps the typed text through a failed post, says who took the message
// after a good one, and from the room opens the new message's thread.
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

    QString text() const { return m_text; }
    void setText(const QString& text);
    QString hint() const;
    QString note() const { return m_note; }
    QString error() const { return m_error; }
    bool pending() const { return m_pending; }
    QString label() const;
    QString placeholder() const;

    // Posts the text; refuses an empty one with a sentence that says why.
    Q_INVOKABLE void send();
    // A new thread opened in the panel: the last send's words go.
    void forget();
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
    QCoro::Task<> post(QString text, QString threadId, QString sentFrom);
    void setState(QString note, QString error, bool pending);

    KestRoomPage* m_page;
    bool m_inThread;
    QString m_text;
    QString m_note;
    QString m_error;
    bool m_pending = false;
};

} // namespace Kestro
