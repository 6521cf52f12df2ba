#pragma once

#include <QUrl>
#include <QWebEngineUrlSchemeHandler>

namespace Kestro {

// Catches every "kestro:" address a web view is sent to (the sign-in's
// callback, deep links on the service's pages). The engine will only follow
// a redirect to a scheme that has a handler, so the callback that ends the
// sign-in arrives here, never as a page; the request itself is dropped.
class CallbackSchemeHandler : public QWebEngineUrlSchemeHandler {
    Q_OBJECT
public:
    using QWebEngineUrlSchemeHandler::QWebEngineUrlSchemeHandler;
    void requestStarted(QWebEngineUrlRequestJob* job) override;

signals:
    void received(const QUrl& url);
};

} // namespace Kestro
