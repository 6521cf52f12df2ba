#pragma once

#include "DecodingError.h"
#include "Indirect.h"
#include "JSONValue.h"
#include "Wire.h"
#include "WireValues.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QMap>

#include <concepts>
#include <optional>

// How each wire type reads from and writes to a parsed, unwired answer.
// Generated records implement
//   static Record decode(const QJsonValue&, Kestro::CodingPath&);
//   QJsonValue encode() const;
// with field() and optionalField() below, and Codec<Record> picks them up.
//
// Decoding reads answers as the service sends them: every value is taken
// through Wire::unwrapMarker() where it is read (field, optionalField, list
// items, the top), so {"$date": ...} and {"$undefined": true} read as the
// unwired answer would, without rebuilding the tree first.
namespace Kestro {

template <typename T> struct Codec;

// Throws unless the value is of the expected kind: null means the value is
// not there ("has no"), anything else is the wrong type ("is not").
inline void expectKind(bool matches, const QJsonValue& json, const CodingPath& path, QLatin1StringView type)
{
    if (matches)
        return;
    if (json.isNull())
        throw DecodingError::valueNotFound(path, type);
    throw DecodingError::typeMismatch(path, type);
}

template <typename T>
concept Record = requires(const QJsonValue& json, CodingPath& path, const T& record)
{
    {
        T::decode(json, path)
        } -> std::same_as<T>;
    {
        record.encode()
        } -> std::same_as<QJsonValue>;
};

template <Record T> struct Codec<T> {
    static T decode(const QJsonValue& json, CodingPath& path) { return T::decode(json, path); }
    static QJsonValue encode(const T& value) { return value.encode(); }
};

template <> struct Codec<double> {
    static double decode(const QJsonValue& json, CodingPath& path)
    {
        expectKind(json.isDouble(), json, path, TypeName::Double);
        return json.toDouble();
    }
    static QJsonValue encode(double value) { return value; }
};

template <> struct Codec<bool> {
    static bool decode(const QJsonValue& json, CodingPath& path)
    {
        expectKind(json.isBool(), json, path, TypeName::Bool);
        return json.toBool();
    }
    static QJsonValue encode(bool value) { return value; }
};

template <> struct Codec<QString> {
    static QString decode(const QJsonValue& json, CodingPath& path)
    {
        expectKind(json.isString(), json, path, TypeName::String);
        return json.toString();
    }
    static QJsonValue encode(const QString& value) { return value; }
};

template <> struct Codec<JSONValue> {
    // Every well-formed JSON value is one of the cases, null included.
    // Free-form values are unwired whole, markers nested anywhere included.
    static JSONValue decode(const QJsonValue& json, CodingPath&)
    {
        return JSONValue::fromQJsonValue(Wire::unwire(json));
    }
    static QJsonValue encode(const JSONValue& value) { return value.toQJsonValue(); }
};

template <> struct Codec<WireDate> {
    static WireDate decode(const QJsonValue& json, CodingPath& path);
    static QJsonValue encode(const WireDate& value) { return Wire::writeDate(value); }
};

template <> struct Codec<WireFile> {
    static WireFile decode(const QJsonValue& json, CodingPath& path);
    static QJsonValue encode(const WireFile& value);
};

template <> struct Codec<WireForm> {
    static WireForm decode(const QJsonValue& json, CodingPath& path);
    static QJsonValue encode(const WireForm& value);
};

template <typename T> struct Codec<QList<T>> {
    static QList<T> decode(const QJsonValue& json, CodingPath& path)
    {
        expectKind(json.isArray(), json, path, TypeName::Array);
        const QJsonArray items = json.toArray();
        QList<T> out;
        out.reserve(items.size());
        for (qsizetype i = 0, n = items.size(); i < n; ++i) {
            path.pushIndex(i);
            out.append(Codec<T>::decode(Wire::unwrapMarker(items.at(i)), path));
            path.pop();
        }
        return out;
    }
    static QJsonValue encode(const QList<T>& values)
    {
        QJsonArray out;
        for (const T& value : values)
            out.append(Codec<T>::encode(value));
        return out;
    }
};

template <typename T> struct Codec<QMap<QString, T>> {
    static QMap<QString, T> decode(const QJsonValue& json, CodingPath& path)
    {
        expectKind(json.isObject(), json, path, TypeName::Dictionary);
        const QJsonObject members = json.toObject();
        QMap<QString, T> out;
        for (auto it = members.constBegin(); it != members.constEnd(); ++it) {
            path.pushKey(it.key());
            out.insert(it.key(), Codec<T>::decode(Wire::unwrapMarker(it.value()), path));
            path.pop();
        }
        return out;
    }
    static QJsonValue encode(const QMap<QString, T>& values)
    {
        QJsonObject out;
        for (auto it = values.constBegin(); it != values.constEnd(); ++it)
            out.insert(it.key(), Codec<T>::encode(it.value()));
        return out;
    }
};

template <typename T> struct Codec<std::optional<T>> {
    // null reads as absent, like a member that is not there at all.
    static std::optional<T> decode(const QJsonValue& json, CodingPath& path)
    {
        if (json.isNull() || json.isUndefined())
            return std::nullopt;
        return Codec<T>::decode(json, path);
    }
    static QJsonValue encode(const std::optional<T>& value)
    {
        return value ? Codec<T>::encode(*value) : QJsonValue(QJsonValue::Null);
    }
};

template <typename T> struct Codec<Indirect<T>> {
    static Indirect<T> decode(const QJsonValue& json, CodingPath& path)
    {
        return Codec<T>::decode(json, path);
    }
    static QJsonValue encode(const Indirect<T>& value) { return Codec<T>::encode(value.value()); }
};

// The object a record reads its members from.
inline QJsonObject recordObject(const QJsonValue& json, CodingPath& path)
{
    expectKind(json.isObject(), json, path, TypeName::Dictionary);
    return json.toObject();
}

// A member the record cannot do without: missing fails with "missing <path>".
template <typename T> T field(const QJsonObject& object, QLatin1StringView key, CodingPath& path)
{
    path.pushKey(key);
    const auto it = object.constFind(key);
    if (it == object.constEnd())
        throw DecodingError::keyNotFound(path);
    T value = Codec<T>::decode(Wire::unwrapMarker(*it), path);
    path.pop();
    return value;
}

// A member the service may leave out or send as null.
template <typename T>
std::optional<T> optionalField(const QJsonObject& object, QLatin1StringView key, CodingPath& path)
{
    const auto it = object.constFind(key);
    if (it == object.constEnd())
        return std::nullopt;
    path.pushKey(key);
    std::optional<T> value = Codec<std::optional<T>>::decode(Wire::unwrapMarker(*it), path);
    path.pop();
    return value;
}

// Writes a member; an absent optional is left out rather than sent as null.
template <typename T> void putField(QJsonObject& object, QLatin1StringView key, const T& value)
{
    object.insert(key, Codec<T>::encode(value));
}

template <typename T> void putField(QJsonObject& object, QLatin1StringView key, const std::optional<T>& value)
{
    if (value)
        object.insert(key, Codec<T>::encode(*value));
}

// Decodes a whole value from the top, with an empty path.
template <typename T> T decodeValue(const QJsonValue& json)
{
    CodingPath path;
    return Codec<T>::decode(json, path);
}

// The shared encoder for any wire type.
template <typename T> QByteArray encode(const T& value)
{
    return Wire::write(Codec<T>::encode(value));
}

} // namespace Kestro
