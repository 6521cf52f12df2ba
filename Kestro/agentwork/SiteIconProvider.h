#pragma once

#include <QQuickAsyncImageProvider>

namespace Kestro {

// "image://site/<host>": a web site's small icon, as the trace chips and
// traffic sources show it, from the service's "api/icons/<host>"
// ("image://site/flag:<country code>": a country's flag, from
// "api/flags/<code>"), through
// the signed-in client. Each host is asked for once per run: the answer,
// or the failure, is kept, and requests that come while one is on its way
// wait for it. A failed icon ends the request with an error, so the view
// shows its neutral placeholder.
class SiteIconProvider : public QQuickAsyncImageProvider {
public:
    QQuickImageResponse* requestImageResponse(const QString& id, const QSize& requestedSize) override;

    // A host name the provider asks for: letters, digits, hyphens and dots,
    // lower-cased, at least one dot. Anything else is refused unasked.
    static bool isHost(const QString& host);
    // The service path an id is fetched from; empty for an id it refuses.
    static QString pathOf(const QString& id);
};

} // namespace Kestro
