#include "SchemeGuard.h"

namespace Kestro {

void SchemeGuard::interceptRequest(QWebEngineUrlRequestInfo& info)
{
    if (info.requestUrl().scheme() == QLatin1String("kestro") &&
        info.resourceType() != QWebEngineUrlRequestInfo::ResourceTypeMainFrame)
        info.block(true);
}

} // namespace Kestro
