#include "RobotFace.h"

#include <QPainter>
#include <QPainterPath>

namespace Kestro {

namespace {

// FNV-1a: stable across runs and machines, unlike qHash.
quint32 hashOf(const QString& text)
{
    quint32 h = 2166136261u;
    for (const QChar c : text) {
        h ^= c.unicode();
        h *= 16777619u;
    }
    return h;
}

} // namespace

RobotFace RobotFace::of(const QString& handle)
{
    quint32 h = hashOf(handle.toLower());
    RobotFace face;
    // Hues in steps of 24 degrees, so neighbours differ visibly.
    face.hue = int(h % 15) * 24;
    h /= 15;
    face.head = int(h % 4);
    h /= 4;
    face.eyes = int(h % 5);
    h /= 5;
    face.mouth = int(h % 4);
    h /= 4;
    face.antenna = int(h % 3);
    return face;
}

QImage RobotFace::draw(int size, bool dark) const
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    const qreal s = size;

    const QColor ground = QColor::fromHslF(hue / 360.0, 0.55, dark ? 0.42 : 0.60);
    const QColor shell =
        dark ? QColor::fromHslF(hue / 360.0, 0.25, 0.16) : QColor::fromHslF(hue / 360.0, 0.40, 0.96);
    const QColor ink =
        dark ? QColor::fromHslF(hue / 360.0, 0.85, 0.72) : QColor::fromHslF(hue / 360.0, 0.65, 0.24);

    p.setBrush(ground);
    p.drawEllipse(QRectF(0, 0, s, s));

    // The head sits a little low, leaving room for an antenna.
    QRectF box(s * 0.22, s * 0.30, s * 0.56, s * 0.50);
    if (antenna == 1) {
        p.setBrush(shell);
        p.drawRect(QRectF(s * 0.475, s * 0.14, s * 0.05, s * 0.18));
        p.drawEllipse(QPointF(s * 0.5, s * 0.14), s * 0.07, s * 0.07);
    } else if (antenna == 2) {
        p.setBrush(shell);
        p.drawRoundedRect(QRectF(s * 0.13, s * 0.45, s * 0.12, s * 0.18), s * 0.04, s * 0.04);
        p.drawRoundedRect(QRectF(s * 0.75, s * 0.45, s * 0.12, s * 0.18), s * 0.04, s * 0.04);
    }
    p.setBrush(shell);
    switch (head) {
    case 1:
        box = QRectF(s * 0.23, s * 0.27, s * 0.54, s * 0.54);
        p.drawEllipse(box);
        break;
    case 2:
        box = QRectF(s * 0.17, s * 0.33, s * 0.66, s * 0.44);
        p.drawRoundedRect(box, s * 0.08, s * 0.08);
        break;
    case 3: {
        QPainterPath dome;
        dome.moveTo(box.left(), box.bottom() - s * 0.06);
        dome.lineTo(box.left(), box.top() + box.width() / 2 - s * 0.02);
        dome.arcTo(QRectF(box.left(), box.top() - s * 0.02, box.width(), box.width()), 180, -180);
        dome.lineTo(box.right(), box.bottom() - s * 0.06);
        dome.quadTo(box.right(), box.bottom(), box.right() - s * 0.06, box.bottom());
        dome.lineTo(box.left() + s * 0.06, box.bottom());
        dome.quadTo(box.left(), box.bottom(), box.left(), box.bottom() - s * 0.06);
        p.drawPath(dome);
        break;
    }
    default:
        p.drawRoundedRect(box, s * 0.13, s * 0.13);
    }

    // The face: eyes in the upper half of the head, the mouth below.
    p.setBrush(ink);
    const qreal cx = box.center().x();
    const qreal eyeY = box.top() + box.height() * 0.42;
    const qreal gap = box.width() * 0.22;
    const qreal e = s * 0.075;
    switch (eyes) {
    case 1:
        p.drawRect(QRectF(cx - gap - e, eyeY - e, 2 * e, 2 * e));
        p.drawRect(QRectF(cx + gap - e, eyeY - e, 2 * e, 2 * e));
        break;
    case 2:
        p.drawRoundedRect(QRectF(cx - gap - e * 1.4, eyeY - e * 0.8, 2 * (gap + e * 1.4), e * 1.6), e * 0.8,
                          e * 0.8);
        break;
    case 3:
        p.drawEllipse(QPointF(cx, eyeY), e * 1.7, e * 1.7);
        p.setBrush(shell);
        p.drawEllipse(QPointF(cx + e * 0.45, eyeY - e * 0.45), e * 0.6, e * 0.6);
        p.setBrush(ink);
        break;
    case 4:
        p.drawEllipse(QRectF(cx - gap - e * 0.8, eyeY - e * 1.4, e * 1.6, e * 2.8));
        p.drawEllipse(QRectF(cx + gap - e * 0.8, eyeY - e * 1.4, e * 1.6, e * 2.8));
        break;
    default:
        p.drawEllipse(QPointF(cx - gap, eyeY), e, e);
        p.drawEllipse(QPointF(cx + gap, eyeY), e, e);
    }
    const qreal mouthY = box.top() + box.height() * 0.76;
    const qreal w = box.width() * 0.34;
    switch (mouth) {
    case 1:
        p.drawRoundedRect(QRectF(cx - w / 2, mouthY - s * 0.022, w, s * 0.045), s * 0.02, s * 0.02);
        break;
    case 2:
        for (int i = -1; i <= 1; ++i)
            p.drawRect(QRectF(cx + i * w * 0.36 - s * 0.022, mouthY - s * 0.04, s * 0.045, s * 0.08));
        break;
    case 3: {
        QPen pen(ink, s * 0.05, Qt::SolidLine, Qt::RoundCap);
        p.setPen(pen);
        p.setBrush(Qt::NoBrush);
        p.drawArc(QRectF(cx - w / 2, mouthY - w * 0.55, w, w * 0.6), 200 * 16, 140 * 16);
        break;
    }
    default:
        break;
    }
    return image;
}

RobotFaceProvider::RobotFaceProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

QImage RobotFaceProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize)
{
    const qsizetype query = id.indexOf(QLatin1Char('?'));
    const QString handle = query < 0 ? id : id.left(query);
    const bool dark =
        query >= 0 && id.mid(query + 1).split(QLatin1Char('&')).contains(QStringLiteral("dark"));
    const int side = std::clamp(
        requestedSize.isValid() ? std::max(requestedSize.width(), requestedSize.height()) : 64, 8, 512);
    if (size)
        *size = QSize(side, side);
    return RobotFace::of(handle).draw(side, dark);
}

} // namespace Kestro
