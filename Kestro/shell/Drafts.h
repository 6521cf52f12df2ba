#pragma once

#include <QObject>
#include <QString>

namespace Kestro {

// What a composer holds at one place ("kest", "kest/thread/<id>",
// "chat/<handle>/<thread>"): the words typed and not sent, and how the last
// send from there went.
struct Draft {
    QString text;
    // What a good send led to ("Ada is on it.").
    QString note;
    // Why the last send failed, or why nothing was sent.
    QString error;
    bool pending = false;

    bool operator==(const Draft&) const = default;
};

// Every place's draft, in memory for the run. A page that is left and
// rebuilt, or a thread closed and opened again, gives the words back; a send
// that ends after the user moved on leaves its outcome at the place it came
// from, not at the one on screen. Nothing reaches the disk.
class Drafts : public QObject {
    Q_OBJECT

public:
    static Drafts& instance();

    static Draft of(const QString& place);
    // The user typed: the last send's sentence has had its say.
    static void keepText(const QString& place, const QString& text);
    static void setOutcome(const QString& place, QString note, QString error, bool pending);
    // Forgets every place: another workspace or user must not see the words.
    static void clear();
    // Counts the clears: a send that began before one must leave nothing in
    // the places after it.
    static quint64 generation();

signals:
    void changed(const QString& place);

private:
    Drafts() = default;
    static void put(const QString& place, Draft draft);
};

} // namespace Kestro
