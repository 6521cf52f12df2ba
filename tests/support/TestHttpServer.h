#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QTcpServer>
#include <QUrl>

#include <functional>

class QTcpSocket;

namespace KestroTest {

// A plain HTTP/1.1 server on 127.0.0.1 for tests: real sockets, keep-alive,
// Content-Length bodies. Each request goes to the handler, which answers it
// at once, after a delay, or by dropping the connection.
class TestHttpServer : public QObject {
    Q_OBJECT
public:
    struct Request {
        QByteArray method;
        QByteArray target;                     // path and query as sent
        QHash<QByteArray, QByteArray> headers; // names in lower case
        QByteArray body;
        QByteArray path() const
        {
            return target.left(target.indexOf('?') < 0 ? target.size() : target.indexOf('?'));
        }
        QByteArray header(const QByteArray& name) const { return headers.value(name.toLower()); }
    };
    struct Response {
        int status = 200;
        QByteArray body;
        QByteArray contentType = "application/json";
        QList<QPair<QByteArray, QByteArray>> headers;
        int delayMs = 0;
        bool drop = false; // close the connection without answering
        int trickleMs = 0; // send the body a byte at a time, this far apart
    };
    using Handler = std::function<Response(const Request&)>;

    explicit TestHttpServer(QObject* parent = nullptr);
    ~TestHttpServer() override;

    bool listen(quint16 port = 0);
    void close();
    quint16 port() const { return m_server.serverPort(); }
    QUrl origin() const;

    void setHandler(Handler handler) { m_handler = std::move(handler); }
    const QList<Request>& requests() const { return m_requests; }
    void clearRequests() { m_requests.clear(); }

private:
    void onConnection();
    void onReadable(QTcpSocket* socket);
    void answer(QTcpSocket* socket, const Response& response);

    QTcpServer m_server;
    Handler m_handler;
    QList<Request> m_requests;
    QHash<QTcpSocket*, QByteArray> m_buffers;
};

} // namespace KestroTest
