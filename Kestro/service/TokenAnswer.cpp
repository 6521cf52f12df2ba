#include "TokenAnswer.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace Kestro {

TokenAnswer TokenAnswer::read(const QByteArray& bytes)
{
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (!document.isObject())
        return {};
    const QJsonObject object = document.object();
    TokenAnswer body;
    bool wellFormed = true;
    auto text = [&](const char* key, std::optional<QString>& out) {
        const QJsonValue value = object.value(QLatin1StringView(key));
        if (value.isString())
            out = value.toString();
        else if (!value.isUndefined() && !value.isNull())
            wellFormed = false;
    };
    text("access_token", body.accessToken);
    text("refresh_token", body.refreshToken);
    text("error_description", body.errorDescription);
    text("error", body.error);
    const QJsonValue expiresIn = object.value(QLatin1StringView("expires_in"));
    if (expiresIn.isDouble())
        body.expiresIn = expiresIn.toDouble();
    else if (!expiresIn.isUndefined() && !expiresIn.isNull())
        wellFormed = false;
    return wellFormed ? body : TokenAnswer{};
}

bool usableToken(const QString& token)
{
    if (token.isEmpty())
        return false;
    for (const QChar c : token)
        if (c.unicode() < 0x21 || c.unicode() > 0x7e)
            return false;
    return true;
}

qint64 lifetimeMs(std::optional<double> expiresIn, int defaultSeconds)
{
    constexpr double tenYears = 10.0 * 365 * 24 * 3600;
    double seconds = expiresIn.value_or(double(defaultSeconds));
    if (std::isnan(seconds))
        seconds = defaultSeconds;
    return qint64(std::clamp(seconds, 0.0, tenYears) * 1000.0);
}

} // namespace Kestro
