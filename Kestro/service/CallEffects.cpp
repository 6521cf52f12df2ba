#include "CallEffects.h"

namespace Kestro {

using namespace Qt::Literals::StringLiterals;

CallEffects::Revalidate CallEffects::Revalidate::decode(const QJsonValue& json, CodingPath& path)
{
    const QJsonObject object = recordObject(json, path);
    return {field<QString>(object, "path"_L1, path), optionalField<QString>(object, "type"_L1, path)};
}

QJsonValue CallEffects::Revalidate::encode() const
{
    QJsonObject object;
    putField(object, "path"_L1, path);
    putField(object, "type"_L1, type);
    return object;
}

CallEffects::Cookie CallEffects::Cookie::decode(const QJsonValue& json, CodingPath& path)
{
    const QJsonObject object = recordObject(json, path);
    return {field<QString>(object, "name"_L1, path), field<QString>(object, "value"_L1, path),
            optionalField<JSONValue>(object, "options"_L1, path)};
}

QJsonValue CallEffects::Cookie::encode() const
{
    QJsonObject object;
    putField(object, "name"_L1, name);
    putField(object, "value"_L1, value);
    putField(object, "options"_L1, options);
    return object;
}

CallEffects CallEffects::decode(const QJsonValue& json, CodingPath& path)
{
    const QJsonObject object = recordObject(json, path);
    CallEffects effects;
    effects.revalidate = optionalField<QList<Revalidate>>(object, "revalidate"_L1, path);
    effects.cookies = optionalField<QList<Cookie>>(object, "cookies"_L1, path);
    effects.redirect = optionalField<QString>(object, "redirect"_L1, path);
    effects.notFound = optionalField<bool>(object, "notFound"_L1, path);
    return effects;
}

QJsonValue CallEffects::encode() const
{
    QJsonObject object;
    putField(object, "revalidate"_L1, revalidate);
    putField(object, "cookies"_L1, cookies);
    putField(object, "redirect"_L1, redirect);
    putField(object, "notFound"_L1, notFound);
    return object;
}

bool CallEffects::redirectsToSignIn() const
{
    if (!redirect)
        return false;
    const QString& path = *redirect;
    return path == "/login"_L1 || path == "/signup"_L1 || path.startsWith("/login?"_L1) ||
           path.startsWith("/signup?"_L1);
}

} // namespace Kestro
