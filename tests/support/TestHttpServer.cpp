#include "TestHttpServer.h"

#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

#include <memory>

namespace KestroTest {

TestHttpServer::TestHttpServer(QObject* parent) : QObject(parent)
{
    connect(&m_server, &QTcpServer::newConnection, this, &TestHttpServer::onConnection);
}

TestHttpServer::~TestHttpServer()
{
    close();
}

bool TestHttpServer::listen(quint16 port)
{
    return m_server.listen(QHostAddress::LocalHost, port);
}

void TestHttpServer::close()
{
    m_server.close();
    for (QTcpSocket* socket : m_buffers.keys())
        socket->abort();
}

QUrl TestHttpServer::origin() const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(port()));
}

void TestHttpServer::onConnection()
{
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        m_buffers.insert(socket, {});
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { onReadable(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            m_buffers.remove(socket);
            socket->deleteLater();
        });
    }
}

void TestHttpServer::onReadable(QTcpSocket* socket)
{
    QByteArray& buffer = m_buffers[socket];
    buffer += socket->readAll();
    for (;;) {
        const qsizetype headerEnd = buffer.indexOf("\r\n\r\n");
        if (headerEnd < 0)
            return;
        const QList<QByteArray> lines = buffer.left(headerEnd).split('\n');
        Request request;
        const QList<QByteArray> requestLine = lines.value(0).trimmed().split(' ');
        request.method = requestLine.value(0);
        request.target = requestLine.value(1);
        for (qsizetype i = 1; i < lines.size(); ++i) {
            const qsizetype colon = lines[i].indexOf(':');
            if (colon > 0)
                request.headers.insert(lines[i].left(colon).trimmed().toLower(),
                                       lines[i].mid(colon + 1).trimmed());
        }
        const qsizetype length = request.headers.value("content-length", "0").toLongLong();
        if (buffer.size() < headerEnd + 4 + length)
            return;
        request.body = buffer.mid(headerEnd + 4, length);
        buffer.remove(0, headerEnd + 4 + length);
        m_requests.append(request);
        const Response response = m_handler ? m_handler(request) : Response{404, "{}"};
        if (response.delayMs > 0) {
            QPointer<QTcpSocket> guarded(socket);
            QTimer::singleShot(response.delayMs, this, [this, guarded, response] {
                if (guarded)
                    answer(guarded, response);
            });
        } else {
            answer(socket, response);
        }
    }
}

void TestHttpServer::answer(QTcpSocket* socket, const Response& response)
{
    if (response.drop) {
        socket->abort();
        return;
    }
    QByteArray head = "HTTP/1.1 " + QByteArray::number(response.status) + " Status\r\n";
    head += "Content-Length: " + QByteArray::number(response.body.size()) + "\r\n";
    if (!response.contentType.isEmpty())
        head += "Content-Type: " + response.contentType + "\r\n";
    for (const auto& [name, value] : response.headers)
        head += name + ": " + value + "\r\n";
    head += "\r\n";
    if (response.trickleMs <= 0) {
        socket->write(head + response.body);
        return;
    }
    socket->write(head);
    // One byte now and then: the connection never stalls, the answer never ends.
    auto* timer = new QTimer(socket);
    auto sent = std::make_shared<qsizetype>(0);
    connect(timer, &QTimer::timeout, socket, [socket, timer, sent, body = response.body] {
        if (*sent >= body.size()) {
            timer->stop();
            return;
        }
        socket->write(body.mid((*sent)++, 1));
    });
    timer->start(response.trickleMs);
}

} // namespace KestroTest
