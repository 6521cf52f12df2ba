#include "HttpExchange.h"

#include "ServiceError.h"

#include <QCoroNetworkReply>
#include <QLocale>
#include <QNetworkReply>
#include <QTimer>

#include <memory>
#include <optional>

namespace Kestro {

namespace {

struct LaterDelete {
    void operator()(QObject* object) const { object->deleteLater(); }
};

TransportError transportError(const QNetworkReply& reply)
{
    switch (reply.error()) {
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::HostNotFoundError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::UnknownNetworkError:
    case QNetworkReply::ProxyConnectionRefusedError:
    case QNetworkReply::ProxyNotFoundError:
        return {TransportError::Kind::Unreachable, reply.errorString()};
    case QNetworkReply::TimeoutError:
    case QNetworkReply::OperationCanceledError: // what a transfer time-out ends in
    case QNetworkReply::ProxyTimeoutError:
        return {TransportError::Kind::TimedOut, reply.errorString()};
    case QNetworkReply::RemoteHostClosedError:
        return {TransportError::Kind::Dropped, reply.errorString()};
    default:
        break;
    }
    return {TransportError::Kind::Other, reply.errorString()};
}

} // namespace

QCoro::Task<HttpAnswer> exchange(QNetworkReply* rawReply, HttpLimits limits)
{
    const std::unique_ptr<QNetworkReply, LaterDelete> reply(rawReply);
    // Why the reply was cut off, when it was.
    auto cut = std::make_shared<std::optional<TransportError::Kind>>();
    QNetworkReply* watched = reply.get();
    QTimer deadline;
    deadline.setSingleShot(true);
    QObject::connect(&deadline, &QTimer::timeout, watched, [watched, cut] {
        *cut = TransportError::Kind::TimedOut;
        watched->abort();
    });
    QObject::connect(watched, &QNetworkReply::downloadProgress, watched,
                     [watched, cut, limits](qint64 received, qint64 total) {
                         if (received > limits.maxBytes || total > limits.maxBytes) {
                             *cut = TransportError::Kind::TooLarge;
                             watched->abort();
                         }
                     });
    if (!reply->isFinished()) {
        deadline.start(limits.deadlineMs);
        co_await qCoro(reply.get()).waitForFinished();
    }
    if (*cut) {
        const QString detail = **cut == TransportError::Kind::TooLarge
                                   ? QLocale::c().formattedDataSize(limits.maxBytes, 0)
                                   : reply->errorString();
        throw TransportError(**cut, detail);
    }
    const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    const QNetworkReply::NetworkError error = reply->error();
    // Errors 1..99 are below HTTP: even with a status line, the answer is
    // incomplete. Errors from 100 up carry a status the caller judges.
    const bool belowHttp = error != QNetworkReply::NoError && int(error) < 100;
    if (!status.isValid() || belowHttp) {
        if (error != QNetworkReply::NoError)
            throw transportError(*reply);
        co_return HttpAnswer{0, reply->readAll()};
    }
    co_return HttpAnswer{status.toInt(), reply->readAll()};
}

} // namespace Kestro
