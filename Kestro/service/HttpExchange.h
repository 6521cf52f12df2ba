#pragma once

#include <QByteArray>
#include <QCoroTask>

class QNetworkReply;

namespace Kestro {

struct HttpAnswer {
    int status = 0; // 0 when the answer was not HTTP
    QByteArray body;
};

// Awaits a reply (taking ownership of it) and hands back its status and
// body. A failure below HTTP (no connection, time-out, dropped connection)
// is thrown as a TransportError; HTTP error statuses are answers, not errors.
QCoro::Task<HttpAnswer> exchange(QNetworkReply* reply);

} // namespace Kestro
