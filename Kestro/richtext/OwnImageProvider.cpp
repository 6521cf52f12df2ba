#include "OwnImageProvider.h"

#include "ServiceImageResponse.h"

#include "Inline.h"
#include "service/Client.h"
#include "service/ServiceError.h"

#include <QCoroTask>
#include <QImage>
#include <QPointer>

namespace Kestro {

namespace {

class OwnImageResponse final : public ServiceImageResponse {
public:
    OwnImageResponse(QString path, QSize requestedSize)
        : ServiceImageResponse(requestedSize), m_path(std::move(path))
    {
    }

private:
    void start() override { fetch(); }

    QCoro::Task<> fetch()
    {
        QPointer<OwnImageResponse> self(this);
        QImage image;
        QString error;
        if (!Inline::isOwnImage(m_path)) {
            error = QStringLiteral("This image is not one of the workspace's own.");
        } else {
            try {
                const QByteArray bytes = co_await Client::shared().download(m_path);
                image = QImage::fromData(bytes);
                if (image.isNull())
                    error = QStringLiteral("The image could not be read.");
            } catch (const ServiceError& failure) {
                error = failure.description();
            }
        }
        if (self)
            settle(std::move(image), error);
    }

    QString m_path;
};

} // namespace

QQuickImageResponse* OwnImageProvider::requestImageResponse(const QString& id, const QSize& requestedSize)
{
    const QString path = id.startsWith(QLatin1Char('/')) ? id : QLatin1Char('/') + id;
    return new OwnImageResponse(path, requestedSize);
}

} // namespace Kestro
