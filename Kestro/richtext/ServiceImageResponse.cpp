#include "ServiceImageResponse.h"

#include <QCoreApplication>
#include <QPointer>

namespace Kestro {

ServiceImageResponse::ServiceImageResponse(QSize requestedSize) : m_size(requestedSize)
{
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [self = QPointer<ServiceImageResponse>(this)] {
            if (self)
                self->start();
        },
        Qt::QueuedConnection);
}

QQuickTextureFactory* ServiceImageResponse::textureFactory() const
{
    QMutexLocker lock(&m_mutex);
    return QQuickTextureFactory::textureFactoryForImage(m_image);
}

QString ServiceImageResponse::errorString() const
{
    QMutexLocker lock(&m_mutex);
    return m_error;
}

void ServiceImageResponse::settle(QImage image, const QString& error)
{
    if (m_size.isValid() && !m_size.isEmpty() && !image.isNull())
        image = image.scaled(m_size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    {
        QMutexLocker lock(&m_mutex);
        m_image = std::move(image);
        m_error = error;
    }
    emit finished();
}

} // namespace Kestro
