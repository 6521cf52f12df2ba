#pragma once

#include <QLocalServer>
#include <QObject>
#include <QUrl>

namespace Kestro {

// One Kestro per user: a second launch hands the addresses it was given
// (deep links from the desktop's "kestro:" handler) to the running one over
// a local socket and exits.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    // `name` tells instances apart: per user, and per service address so a
    // run against the local service does not talk to the user's own app.
    explicit SingleInstance(QString name, QObject* parent = nullptr);

    // True when another instance took `urls` (this process should exit).
    bool handOff(const QList<QUrl>& urls);
    // Starts answering later launches; false when the name could not be
    // taken (the app then runs on its own).
    bool listen();

    static QString nameFor(const QUrl& origin);

signals:
    // A later launch's address; an empty URL means "just come to the front".
    void received(const QUrl& url);

private:
    QString m_name;
    QLocalServer m_server;
};

} // namespace Kestro
