// Images stored with the service's documents come through the signed-in
// client: the provider fetches them with the token, and refuses others.

#include "SignedInClient.h"

#include "richtext/OwnImageProvider.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QImage>
#include <QQuickTextureFactory>
#include <QSignalSpy>
#include <QTest>

using namespace Kestro;
using namespace KestroTest;
using namespace Qt::Literals::StringLiterals;

namespace {

QByteArray png(QSize size)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

} // namespace

class OwnImageTest : public QObject {
    Q_OBJECT
private slots:
    void fetchesThroughTheClient()
    {
        SignedInClient rig;
        Client::setShared(rig.client.get());
        rig.service.setFileHandler([](auto&&) {
            return TestHttpServer::Response{200, png({40, 20}), "image/png"};
        });
        OwnImageProvider provider;
        const QString path = u"api/docs/brand/images/0123abcd-0123-4567-89ab-0123456789ab.png"_s;
        std::unique_ptr<QQuickImageResponse> response(provider.requestImageResponse(path, QSize()));
        QSignalSpy finished(response.get(), &QQuickImageResponse::finished);
        QVERIFY(finished.wait(5000));
        QVERIFY2(response->errorString().isEmpty(), qPrintable(response->errorString()));
        std::unique_ptr<QQuickTextureFactory> texture(response->textureFactory());
        QCOMPARE(texture->image().size(), QSize(40, 20));
        QCOMPARE(rig.service.server.requests().last().path(), ("/" + path).toUtf8());

        // Not one of the workspace's own images: refused without a request.
        const qsizetype before = rig.service.server.requests().size();
        std::unique_ptr<QQuickImageResponse> other(provider.requestImageResponse(u"etc/passwd"_s, QSize()));
        QSignalSpy refused(other.get(), &QQuickImageResponse::finished);
        QVERIFY(refused.wait(5000));
        QCOMPARE(other->errorString(), u"This image is not one of the workspace's own."_s);
        QCOMPARE(rig.service.server.requests().size(), before);
        Client::setShared(nullptr);
    }
};

QTEST_MAIN(OwnImageTest)
#include "tst_own_image.moc"
