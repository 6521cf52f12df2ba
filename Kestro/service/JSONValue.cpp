#include "JSONValue.h"

#include <QHashFunctions>
#include <QJsonArray>
#include <QJsonObject>

namespace Kestro {

namespace {
const JSONValue::Array emptyArray;
const JSONValue::Object emptyObject;
const JSONValue nullValue;
} // namespace

JSONValue JSONValue::absent()
{
    return Object{{QStringLiteral("$undefined"), true}};
}

bool JSONValue::toBool() const
{
    const bool* b = std::get_if<bool>(&m_value);
    return b && *b;
}

double JSONValue::toNumber() const
{
    const double* n = std::get_if<double>(&m_value);
    return n ? *n : 0.0;
}

QString JSONValue::toString() const
{
    const QString* s = std::get_if<QString>(&m_value);
    return s ? *s : QString();
}

const JSONValue::Array& JSONValue::toArray() const
{
    const Array* a = std::get_if<Array>(&m_value);
    return a ? *a : emptyArray;
}

const JSONValue::Object& JSONValue::toObject() const
{
    const Object* o = std::get_if<Object>(&m_value);
    return o ? *o : emptyObject;
}

const JSONValue& JSONValue::operator[](const QString& key) const
{
    const Object& members = toObject();
    const auto it = members.find(key);
    return it == members.end() ? nullValue : it->second;
}

QJsonValue JSONValue::toQJsonValue() const
{
    switch (kind()) {
    case Kind::Bool:
        return std::get<bool>(m_value);
    case Kind::Number:
        return std::get<double>(m_value);
    case Kind::String:
        return std::get<QString>(m_value);
    case Kind::Array: {
        QJsonArray out;
        for (const JSONValue& item : std::get<Array>(m_value))
            out.append(item.toQJsonValue());
        return out;
    }
    case Kind::Object: {
        QJsonObject out;
        for (const auto& [key, member] : std::get<Object>(m_value))
            out.insert(key, member.toQJsonValue());
        return out;
    }
    case Kind::Null:
        break;
    }
    return QJsonValue::Null;
}

JSONValue JSONValue::fromQJsonValue(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Bool:
        return value.toBool();
    case QJsonValue::Double:
        return value.toDouble();
    case QJsonValue::String:
        return value.toString();
    case QJsonValue::Array: {
        const QJsonArray source = value.toArray();
        Array items;
        items.reserve(size_t(source.size()));
        for (const QJsonValue& item : source)
            items.push_back(fromQJsonValue(item));
        return items;
    }
    case QJsonValue::Object: {
        const QJsonObject source = value.toObject();
        Object members;
        for (auto it = source.begin(); it != source.end(); ++it)
            members.emplace(it.key(), fromQJsonValue(it.value()));
        return members;
    }
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        break;
    }
    return nullptr;
}

size_t qHash(const JSONValue& value, size_t seed) noexcept
{
    QtPrivate::QHashCombine combine;
    seed = combine(seed, int(value.kind()));
    switch (value.kind()) {
    case JSONValue::Kind::Bool:
        return combine(seed, value.toBool());
    case JSONValue::Kind::Number:
        return combine(seed, value.toNumber());
    case JSONValue::Kind::String:
        return combine(seed, value.toString());
    case JSONValue::Kind::Array:
        for (const JSONValue& item : value.toArray())
            seed = combine(seed, qHash(item, 0));
        return seed;
    case JSONValue::Kind::Object:
        for (const auto& [key, member] : value.toObject()) {
            seed = combine(seed, key);
            seed = combine(seed, qHash(member, 0));
        }
        return seed;
    case JSONValue::Kind::Null:
        break;
    }
    return seed;
}

} // namespace Kestro
