#include "HandOffLine.h"

namespace Kestro {

std::optional<QUrl> readHandOffLine(const QByteArray& line)
{
    const QByteArray text = line.trimmed();
    if (text.isEmpty())
        return QUrl();
    if (text.size() > handOffLineLimit)
        return std::nullopt;
    const QUrl url = QUrl::fromEncoded(text, QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != QLatin1String("kestro"))
        return std::nullopt;
    return url;
}

} // namespace Kestro
