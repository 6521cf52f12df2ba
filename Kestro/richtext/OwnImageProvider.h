#pragma once

#include <QQuickAsyncImageProvider>

namespace Kestro {

// "image://own/<path>": an image stored with a document of the service,
// fetched through the signed-in service client (so it carries the user's
// token and follows the same refresh rule), never through the open web.
class OwnImageProvider : public QQuickAsyncImageProvider {
public:
    QQuickImageResponse* requestImageResponse(const QString& id, const QSize& requestedSize) override;
};

} // namespace Kestro
