#include "StoredSignIn.h"

#include "service/Auth.h"
#include "service/BlockingWait.h"
#include "service/KeychainStore.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkReply>

namespace KestroTest {

using namespace Kestro;

void storeSignIn(const QUrl& origin)
{
    KeychainStore keychain{QString(Auth::keychainService)};
    Auth auth(origin, keychain);
    const Authorization authorization = auth.begin(QString(Auth::redirectUri));
    QNetworkAccessManager network;
    QNetworkRequest request(authorization.url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    QNetworkReply* reply = network.get(request);
    while (!reply->isFinished())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    const QUrl callback(QString::fromUtf8(reply->rawHeader("Location")));
    reply->deleteLater();
    blockingWait(auth.finish(callback, authorization));
}

} // namespace KestroTest
