#include "IconProvider.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <QUrlQuery>

namespace Kestro {

IconProvider::IconProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

QImage IconProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize)
{
    const QUrl url(id);
    const QString name = url.path();
    const QString colour = QUrlQuery(url).queryItemValue(QStringLiteral("color"), QUrl::FullyDecoded);
    QFile file(QStringLiteral(":/Kestro/assets/icons/%1.svg").arg(name));
    const QSize side = requestedSize.isValid() && !requestedSize.isEmpty() ? requestedSize : QSize(24, 24);
    QImage image(side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    if (file.open(QIODevice::ReadOnly)) {
        QByteArray svg = file.readAll();
        svg.replace("currentColor", (colour.isEmpty() ? QStringLiteral("#000000") : colour).toUtf8());
        QSvgRenderer renderer(svg);
        QPainter painter(&image);
        renderer.render(&painter);
    } else {
        qWarning("There is no icon called \"%s\".", qPrintable(name));
    }
    if (size)
        *size = side;
    return image;
}

} // namespace Kestro
