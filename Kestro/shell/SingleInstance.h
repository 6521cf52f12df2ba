#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QUrl>

#include <memory>

namespace Kestro {

// One Kestro per user: a second launch hands the addresses it was given
// (deep links from the desktop's "kestro:" handler) to the running one over
// a local socket and exits. The socket lives in the user's runtime
// directory (only the user may enter it), a lock file decides which
// instance serves, and the server takes only short "kestro:" lines from
// processes of the same user.
class SingleInstance : public QObject {
    Q_OBJECT
public:
    // `name` tells instances apart within the user's runtime directory.
    explicit SingleInstance(QString name, QObject* parent = nullptr);
    ~SingleInstance() override;

    // True when another instance took `urls`, and with `palette` the wish
    // for its command palette (this process should exit).
    bool handOff(const QList<QUrl>& urls, bool palette = false);
    // Takes the lock and starts answering later launches; false when
    // another instance holds it or the socket could not be made (the app
    // then runs on its own).
    bool listen();

    // One per user, whatever service each launch names: the browser's
    // sign-in callback arrives in a launch without --origin, and must reach
    // the app that waits for it.
    static QString defaultName();
    // Where a listening instance answers (the socket's path).
    QString address() const { return m_server.fullServerName(); }

signals:
    // A later launch's address; an empty URL means "just come to the front".
    void received(const QUrl& url);
    // A later launch asked for the command palette (`kestro --palette`).
    void paletteRequested();

private:
    QString socketName() const;
    void serve(class QLocalSocket* socket);

    QString m_name;
    std::unique_ptr<QLockFile> m_lock;
    QLocalServer m_server;
};

} // namespace Kestro
