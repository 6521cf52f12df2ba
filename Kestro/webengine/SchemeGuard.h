#pragma once

#include <QWebEngineUrlRequestInterceptor>

namespace Kestro {

// Lets a "kestro:" address reach the app only as a main-frame navigation
// (the sign-in's redirect to its callback). An image, a frame, a fetch or a
// script of a page that asks for one is blocked before the scheme handler
// sees it, so no page can move the app by embedding such an address.
class SchemeGuard : public QWebEngineUrlRequestInterceptor {
    Q_OBJECT
public:
    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;
    void interceptRequest(QWebEngineUrlRequestInfo& info) override;
};

} // namespace Kestro
