#include "StoredSignIn.h"

#include "service/Auth.h"
#include "service/BlockingWait.h"
#include "service/KeychainStore.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>

namespace KestroTest {

using namespace Kestro;

void signIn(Auth& auth)
{
    const Authorization authorization = auth.begin(QString(Auth::redirectUri));
    QNetworkAccessManager network;
    QNetworkRequest request(authorization.url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    request.setTransferTimeout(10'000);
    std::unique_ptr<QNetworkReply> reply(network.get(request));
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    const QByteArray location = reply->rawHeader("Location");
    if (!location.startsWith("kestro://oauth/callback"))
        qFatal("The sign-in at the local service did not come back.");
    blockingWait(auth.finish(QUrl(QString::fromUtf8(location)), authorization));
}

void storeSignIn(const QUrl& origin)
{
    KeychainStore keychain{QString(Auth::keychainService)};
    Auth auth(origin, keychain);
    signIn(auth);
}

} // namespace KestroTest
