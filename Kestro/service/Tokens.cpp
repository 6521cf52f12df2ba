#include "Tokens.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace Kestro {

namespace {
constexpr qint64 referenceEpochMSecs = 978307200000; // 2001-01-01T00:00:00Z
}

QByteArray Tokens::toJson() const
{
    const double seconds = double(expiresAt.toMSecsSinceEpoch() - referenceEpochMSecs) / 1000.0;
    const QJsonObject object{{QStringLiteral("access"), access},
                             {QStringLiteral("refresh"), refresh},
                             {QStringLiteral("expiresAt"), seconds}};
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<Tokens> Tokens::fromJson(const QByteArray& json)
{
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject())
        return std::nullopt;
    const QJsonObject object = document.object();
    const QJsonValue access = object.value(QLatin1StringView("access"));
    const QJsonValue refresh = object.value(QLatin1StringView("refresh"));
    const QJsonValue expiresAt = object.value(QLatin1StringView("expiresAt"));
    if (!access.isString() || !refresh.isString() || !expiresAt.isDouble())
        return std::nullopt;
    const qint64 msecs = referenceEpochMSecs + qint64(std::llround(expiresAt.toDouble() * 1000.0));
    return Tokens{access.toString(), refresh.toString(), QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC)};
}

} // namespace Kestro
