#include "SiteIconProvider.h"

#include "analytics/AnalyticsFormat.h"
#include "richtext/ServiceImageResponse.h"
#include "service/Client.h"

#include <QCoroTask>
#include <QHash>
#include <QImage>
#include <QPointer>
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

class SiteIconResponse final : public ServiceImageResponse {
public:
    SiteIconResponse(QString host, QSize requestedSize)
        : ServiceImageResponse(requestedSize), m_host(std::move(host))
    {
    }

    void settle(const QImage& image)
    {
        ServiceImageResponse::settle(
            image,
            image.isNull() ? QStringLiteral("The icon of %1 could not be had.").arg(m_host) : QString());
    }

private:
    void start() override
    {
        IconCache& icons = cache();
        if (SiteIconProvider::pathOf(m_host).isEmpty())
            return settle(QImage());
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
            const QString path = SiteIconProvider::pathOf(host);
            const QByteArray bytes = co_await Client::shared().download(path);
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
};

} // namespace

QQuickImageResponse* SiteIconProvider::requestImageResponse(const QString& id, const QSize& requestedSize)
{
    return new SiteIconResponse(id.toLower(), requestedSize);
}

QString SiteIconProvider::pathOf(const QString& id)
{
    static const QRegularExpression country(QStringLiteral("^flag:[a-z]{2}$"));
    if (country.match(id).hasMatch())
        return QLatin1Char('/') + AnalyticsFormat::flagPath(id.mid(5).toUpper());
    return isHost(id) ? QLatin1Char('/') + AnalyticsFormat::iconPath(id) : QString();
}

bool SiteIconProvider::isHost(const QString& host)
{
    static const QRegularExpression name(QStringLiteral(
        "^(?=.{1,253}$)[a-z0-9](?:[a-z0-9-]{0,61}[a-z0-9])?(?:\\.[a-z0-9](?:[a-z0-9-]{0,61}[a-z0-9])?)+$"));
    return name.match(host).hasMatch();
}

} // namespace Kestro
