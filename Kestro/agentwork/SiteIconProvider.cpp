#include "SiteIconProvider.h"

#include "service/Client.h"
#include "service/ServiceError.h"

#include <QCoreApplication>
#include <QCoroTask>
#include <QHash>
#include <QImage>
#include <QMutex>
#include <QPointer>
#include <QQuickTextureFactory>
#include <QRegularExpression>

namespace Kestro {

namespace {

class SiteIconResponse;

// Lives on the GUI thread, where the client is.
struct IconCache {
    // A host's icon, or a null image when it could not be had.
    QHash<QString, QImage> known;
    QHash<QString, QList<QPointer<SiteIconResponse>>> waiting;
};
IconCache& cache()
{
    static IconCache instance;
    return instance;
}

class SiteIconResponse final : public QQuickImageResponse {
public:
    SiteIconResponse(QString host, QSize requestedSize) : m_host(std::move(host)), m_size(requestedSize)
    {
        // Queued on the GUI thread even from there, so `finished` never
        // fires before the image loader has connected to it.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self = QPointer<SiteIconResponse>(this)] {
                if (self)
                    self->ask();
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

    void settle(const QImage& image)
    {
        QImage sized = image;
        if (!sized.isNull() && m_size.isValid() && !m_size.isEmpty())
            sized = sized.scaled(m_size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        {
            QMutexLocker lock(&m_mutex);
            m_image = sized;
            m_error =
                image.isNull() ? QStringLiteral("The icon of %1 could not be had.").arg(m_host) : QString();
        }
        emit finished();
    }

private:
    void ask()
    {
        IconCache& icons = cache();
        if (!SiteIconProvider::isHost(m_host))
            return settle({});
        if (const auto known = icons.known.constFind(m_host); known != icons.known.constEnd())
            return settle(*known);
        auto& waiters = icons.waiting[m_host];
        waiters.append(QPointer<SiteIconResponse>(this));
        if (waiters.size() == 1)
            fetch(m_host);
    }

    static QCoro::Task<> fetch(QString host)
    {
        QImage image;
        try {
            const QByteArray bytes = co_await Client::shared().download(QStringLiteral("/api/icons/") + host);
            image = QImage::fromData(bytes);
        } catch (const std::exception&) {
            // Kept as a failure: the placeholder shows for the rest of the run.
        }
        IconCache& icons = cache();
        icons.known.insert(host, image);
        const auto waiters = icons.waiting.take(host);
        for (const auto& waiter : waiters)
            if (waiter)
                waiter->settle(image);
    }

    QString m_host;
    QSize m_size;
    mutable QMutex m_mutex;
    QImage m_image;
    QString m_error;
};

} // namespace

QQuickImageResponse* SiteIconProvider::requestImageResponse(const QString& id, const QSize& requestedSize)
{
    return new SiteIconResponse(id.toLower(), requestedSize);
}

bool SiteIconProvider::isHost(const QString& host)
{
    static const QRegularExpression name(QStringLiteral(
        "^(?=.{1,253}$)[a-z0-9](?:[a-z0-9-]{0,61}[a-z0-9])?(?:\\.[a-z0-9](?:[a-z0-9-]{0,61}[a-z0-9])?)+$"));
    return name.match(host).hasMatch();
}

} // namespace Kestro
