#pragma once

#include "shell/Drafts.h"

#include <QObject>

#include <optional>

namespace Kestro {

// One composer's hold on the draft of the place it writes at: the words,
// how the last send went, and a send's start and end. The room, its threads
// and the one-to-one chat share it, so sending behaves alike everywhere and
// a send that ends after its page is gone still lands at its place.
class ComposerPlace : public QObject {
    Q_OBJECT

public:
    explicit ComposerPlace(QObject* parent = nullptr);

    QString place() const { return m_place; }
    void setPlace(const QString& place);

    QString text() const { return m_shown.text; }
    void setText(const QString& text);
    QString note() const { return m_shown.note; }
    QString error() const { return m_shown.error; }
    bool pending() const { return m_shown.pending; }

    // A send under way: where from, what, and in which run of the drafts.
    struct Sending {
        QString place;
        QString text;
        quint64 generation = 0;
    };
    // Starts sending the words at this place and hands them back; blank
    // words are refused with the sentence that says why, and nothing starts
    // while a send from here is pending.
    std::optional<Sending> begin();
    // Ends a send. A failure keeps the words and says why; a good one
    // removes the words sent (not any typed since) and leaves the note. A
    // send that outlived a sign-out or a workspace switch leaves nothing.
    static void finish(const Sending& sending, const QString& failure, const QString& note);

signals:
    void textChanged();
    void stateChanged();

private:
    void refresh();

    QString m_place;
    Draft m_shown;
};

} // namespace Kestro
