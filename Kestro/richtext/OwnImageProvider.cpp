#include "OwnImageProvider.h"

#include "Inline.h"
#include "service/Client.h"
#include "service/ServiceError.h"

#include <QCoreApplication>
#include <QCoroTask>
#include <QImage>
#include <QMutex>
#include <QPointer>
#include <QQuickTextureFactory>

namespace Kestro {

namespace {

class OwnImageResponse final : public QQuickImageResponse {
public:
    OwnImageResponse(QString path, QSize requestedSize) : m_path(std::move(path)), m_size(requestedSize)
    {
        // The client lives on the GUI thread; the image loader may not. Queued
        // also on the GUI thread, so `finished` never fires before the caller
        // has connected to it.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self = QPointer<OwnImageResponse>(this)] {
                if (self)
                    self->fetch();
            },
            Qt::QueuedConnection);
    }

    QQuickTextureFactory* textureFactory() const override
    {
        QMutexLocker lock(&m_mutex);
        return QQuickTextureFactory::textureFactoryForImage(m_image);
    }
    QString errorString() const override
    {
        QMutexLocker lock(&m_mutex);
        return m_error;
    }

private:
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
        if (!self)
            co_return;
        if (m_size.isValid() && !m_size.isEmpty() && !image.isNull())
            image = image.scaled(m_size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        {
            QMutexLocker lock(&m_mutex);
            m_image = image;
            m_error = error;
        }
        emit finished();
    }

    QString m_path;
    QSize m_size;
    mutable QMutex m_mutex;
    QImage m_image;
    QString m_error;
};

} // namespace

QQuickImageResponse* OwnImageProvider::requestImageResponse(const QString& id, const QSize& requestedSize)
{
    const QString path = id.startsWith(QLatin1Char('/')) ? id : QLatin1Char('/') + id;
    return new OwnImageResponse(path, requestedSize);
}

} // namespace Kestro
