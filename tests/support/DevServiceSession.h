#pragma once

#include "service/Auth.h"
#include "service/BlockingWait.h"
#include "service/Client.h"
#include "service/MemorySecretStore.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>

#include <memory>

namespace KestroTest {

// The process's client, signed in at a kestro-devservice started with
// --auto-approve (its consent page sends the callback at once), tokens in
// memory.
struct DevServiceSession {
    Kestro::MemorySecretStore store;
    std::unique_ptr<Kestro::Auth> auth;
    std::unique_ptr<Kestro::Client> client;

    explicit DevServiceSession(const QUrl& origin)
    {
        auth = std::make_unique<Kestro::Auth>(origin, store);
        const Kestro::Authorization authorization = auth->begin(QString(Kestro::Auth::redirectUri));
        QNetworkAccessManager network;
        QNetworkRequest request(authorization.url);
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
        QNetworkReply* reply = network.get(request);
        QEventLoop loop;
        QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
        loop.exec();
        const QByteArray location = reply->rawHeader("Location");
        delete reply;
        if (!location.startsWith("kestro://oauth/callback"))
            qFatal("The sign-in at the local service did not come back.");
        Kestro::blockingWait(auth->finish(QUrl(QString::fromUtf8(location)), authorization));
        client = std::make_unique<Kestro::Client>(origin, *auth);
        Kestro::Client::setShared(client.get());
    }
    ~DevServiceSession() { Kestro::Client::setShared(nullptr); }
};

} // namespace KestroTest
