#pragma once

#include <QByteArray>
#include <QCoroTask>

class QNetworkReply;

namespace Kestro {

struct HttpAnswer {
    int status = 0; // 0 when the answer was not HTTP
    QByteArray body;
};

// What one answer may take. The request's transfer time-out ends a stalled
// answer; the deadline ends one that trickles, and the cap one that would
// grow without end.
struct HttpLimits {
    qint64 maxBytes = 64LL * 1024 * 1024;
    int deadlineMs = 180'000;
};

// Awaits a reply (taking ownership of it) and hands back its status and
// body. A failure below HTTP (no connection, time-out, dropped connection,
// an answer past the limits) is thrown as a TransportError; HTTP error
// statuses, redirects included, are answers, not errors.
QCoro::Task<HttpAnswer> exchange(QNetworkReply* reply, HttpLimits limits = {});

} // namespace Kestro
