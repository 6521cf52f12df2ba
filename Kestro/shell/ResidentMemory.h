#pragma once

#include <QByteArray>
#include <QFile>

namespace Kestro {

// This process's resident memory in kB as /proc tells it ("0" where it
// cannot be read); the start-up benchmark reads it from the app and from
// its bare baseline window alike.
inline QByteArray residentKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return "0";
    const QByteArray text = status.readAll();
    const int at = text.indexOf("VmRSS:");
    if (at < 0)
        return "0";
    return text.mid(at + 6, text.indexOf('\n', at) - at - 6).trimmed().split(' ').first();
}

} // namespace Kestro
