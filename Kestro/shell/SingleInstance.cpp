#include "SingleInstance.h"

#include <QCryptographicHash>
#include <QLocalSocket>

#include <unistd.h>

namespace Kestro {

SingleInstance::SingleInstance(QString name, QObject* parent) : QObject(parent), m_name(std::move(name))
{
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* socket = m_server.nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
                while (socket->canReadLine()) {
                    const QByteArray line = socket->readLine().trimmed();
                    emit received(line.isEmpty() ? QUrl() : QUrl(QString::fromUtf8(line)));
                }
            });
        }
    });
}

QString SingleInstance::nameFor(const QUrl& origin)
{
    const QByteArray hash =
        QCryptographicHash::hash(origin.toString().toUtf8(), QCryptographicHash::Sha256).toHex().left(12);
    return QStringLiteral("kestro-%1-%2").arg(getuid()).arg(QString::fromLatin1(hash));
}

bool SingleInstance::handOff(const QList<QUrl>& urls)
{
    QLocalSocket socket;
    socket.connectToServer(m_name);
    if (!socket.waitForConnected(500))
        return false;
    QByteArray message;
    for (const QUrl& url : urls)
        message += url.toEncoded() + '\n';
    if (urls.isEmpty())
        message = "\n";
    socket.write(message);
    socket.waitForBytesWritten(1000);
    socket.disconnectFromServer();
    return true;
}

bool SingleInstance::listen()
{
    if (m_server.listen(m_name))
        return true;
    // A name left behind by a crashed instance: nobody answered handOff().
    QLocalServer::removeServer(m_name);
    return m_server.listen(m_name);
}

} // namespace Kestro
