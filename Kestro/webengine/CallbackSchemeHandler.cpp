#include "CallbackSchemeHandler.h"

#include <QWebEngineUrlRequestJob>

namespace Kestro {

void CallbackSchemeHandler::requestStarted(QWebEngineUrlRequestJob* job)
{
    const QUrl url = job->requestUrl();
    job->fail(QWebEngineUrlRequestJob::RequestAborted);
    emit received(url);
}

} // namespace Kestro
