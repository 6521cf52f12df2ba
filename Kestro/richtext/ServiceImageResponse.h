#pragma once

#include <QImage>
#include <QMutex>
#include <QQuickImageResponse>
#include <QQuickTextureFactory>

namespace Kestro {

// An image the service hands out through the signed-in client. The client
// lives on the GUI thread and the image loader may not, so the work starts
// there, queued even from the GUI thread, so that `finished` never fires
// before the loader has connected to it. Subclasses fetch in start() and
// end with settle().
class ServiceImageResponse : public QQuickImageResponse {
public:
    explicit ServiceImageResponse(QSize requestedSize);

    QQuickTextureFactory* textureFactory() const override;
    QString errorString() const override;

    // The image, scaled to the size asked for; a null image with `error`.
    void settle(QImage image, const QString& error);

protected:
    virtual void start() = 0;

private:
    QSize m_size;
    mutable QMutex m_mutex;
    QImage m_image;
    QString m_error;
};

} // namespace Kestro
