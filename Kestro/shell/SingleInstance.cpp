#include "SingleInstance.h"

#include "HandOffLine.h"

#include <QDir>
#include <QLocalSocket>
#include <QStandardPaths>

#if defined(Q_OS_LINUX)
#include <sys/socket.h>
#include <unistd.h>
#elif defined(Q_OS_MACOS)
#include <sys/types.h>
#include <unistd.h>
#endif

namespace Kestro {

namespace {

// Whether the process at the other end of `socket` runs as this user.
// Where the platform cannot tell, the socket's place (a directory only the
// user may enter, or a per-user pipe) is the check.
bool sameUser([[maybe_unused]] const QLocalSocket& socket)
{
#if defined(Q_OS_LINUX)
    ucred peer{};
    socklen_t size = sizeof peer;
    if (getsockopt(int(socket.socketDescriptor()), SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0)
        return false;
    return peer.uid == geteuid();
#elif defined(Q_OS_MACOS)
    uid_t uid = 0;
    gid_t gid = 0;
    if (getpeereid(int(socket.socketDescriptor()), &uid, &gid) != 0)
        return false;
    return uid == geteuid();
#else
    return true;
#endif
}

QString runtimeDirectory()
{
    QString dir = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (dir.isEmpty())
        dir = QDir::tempPath();
    return dir;
}

} // namespace

SingleInstance::SingleInstance(QString name, QObject* parent) : QObject(parent), m_name(std::move(name))
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = m_server.nextPendingConnection())
            serve(socket);
    });
}

SingleInstance::~SingleInstance() = default;

void SingleInstance::serve(QLocalSocket* socket)
{
    connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    if (!sameUser(*socket)) {
        socket->abort();
        return;
    }
    connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
        while (socket->canReadLine()) {
            const QByteArray line = socket->readLine(handOffLineLimit + 2);
            if (!line.endsWith('\n')) {
                socket->abort(); // longer than any address a launch hands over
                return;
            }
            if (line.trimmed() == paletteHandOffLine)
                emit paletteRequested();
            else if (const std::optional<QUrl> url = readHandOffLine(line))
                emit received(*url);
        }
        if (socket->bytesAvailable() > handOffLineLimit)
            socket->abort();
    });
}

QString SingleInstance::defaultName()
{
    return QStringLiteral("kestro");
}

QString SingleInstance::socketName() const
{
#if defined(Q_OS_WIN)
    // A pipe name: made per user by the user's name, and closed to others
    // by UserAccessOption.
    return m_name + QLatin1Char('-') + qEnvironmentVariable("USERNAME");
#else
    return runtimeDirectory() + QLatin1Char('/') + m_name + QStringLiteral(".socket");
#endif
}

bool SingleInstance::handOff(const QList<QUrl>& urls, bool palette)
{
    QLocalSocket socket;
    socket.connectToServer(socketName());
    if (!socket.waitForConnected(500))
        return false;
    QByteArray message;
    for (const QUrl& url : urls)
        message += url.toEncoded() + '\n';
    if (palette)
        message += QByteArray(paletteHandOffLine) + '\n';
    else if (urls.isEmpty())
        message = "\n";
    socket.write(message);
    socket.waitForBytesWritten(1000);
    socket.disconnectFromServer();
    return true;
}

bool SingleInstance::listen()
{
    // The lock decides who serves: a socket file left by a crashed
    // instance is taken over, one of a live instance never is.
    m_lock =
        std::make_unique<QLockFile>(runtimeDirectory() + QLatin1Char('/') + m_name + QStringLiteral(".lock"));
    m_lock->setStaleLockTime(0);
    if (!m_lock->tryLock(0)) {
        m_lock.reset();
        return false;
    }
    const QString name = socketName();
    if (m_server.listen(name))
        return true;
    QLocalServer::removeServer(name);
    return m_server.listen(name);
}

} // namespace Kestro
