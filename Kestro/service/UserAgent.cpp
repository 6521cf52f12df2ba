#include "UserAgent.h"

#include <QCoreApplication>
#include <QSysInfo>

namespace Kestro {

QByteArray clientUserAgent()
{
    const QString version = QCoreApplication::applicationVersion();
    return "KestroMac/" + (version.isEmpty() ? QByteArray("0") : version.toUtf8());
}

QByteArray authUserAgent()
{
    const QString name = QSysInfo::machineHostName();
    if (name.isEmpty())
        return clientUserAgent();
    return clientUserAgent() + " (" + name.toUtf8() + ")";
}

} // namespace Kestro
