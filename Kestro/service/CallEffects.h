#pragma once

#include "Codec.h"

namespace Kestro {

// The instructions for the app that travel beside an answer's value.
struct CallEffects {
    struct Revalidate {
        QString path;
        std::optional<QString> type;
        static Revalidate decode(const QJsonValue& json, CodingPath& path);
        QJsonValue encode() const;
        bool operator==(const Revalidate&) const = default;
    };
    struct Cookie {
        QString name;
        QString value;
        std::optional<JSONValue> options; // of which "maxAge" and "path" are read
        static Cookie decode(const QJsonValue& json, CodingPath& path);
        QJsonValue encode() const;
        bool operator==(const Cookie&) const = default;
    };

    std::optional<QList<Revalidate>> revalidate;
    std::optional<QList<Cookie>> cookies;
    std::optional<QString> redirect;
    std::optional<bool> notFound;

    static CallEffects decode(const QJsonValue& json, CodingPath& path);
    QJsonValue encode() const;
    bool operator==(const CallEffects&) const = default;

    // A redirect to the sign-in or sign-up page means the session expired.
    bool redirectsToSignIn() const;
};

// The answer envelope: the action's result under "value".
template <typename T> struct Answer {
    T value;
    static Answer decode(const QJsonValue& json, CodingPath& path)
    {
        const QJsonObject object = recordObject(json, path);
        return {field<T>(object, QLatin1StringView("value"), path)};
    }
    QJsonValue encode() const
    {
        QJsonObject object;
        putField(object, QLatin1StringView("value"), value);
        return object;
    }
};

} // namespace Kestro
