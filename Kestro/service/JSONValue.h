#pragma once

#include <QJsonValue>
#include <QString>

#include <concepts>
#include <cstddef>
#include <map>
#include <variant>
#include <vector>

namespace Kestro {

// A JSON value as the service sends and receives it: the argument list of
// every action and the free-form members of answers. Written from literals:
//   JSONValue n = 3;  JSONValue s = "text";  JSONValue none = nullptr;
//   JSONValue list = JSONValue::Array{1, "two", true};
//   JSONValue obj = JSONValue::Object{{"title", "Launch"}, {"count", 2}};
// Arrays and objects are spelled with their own types on purpose: a bare
// brace list would make JSONValue{5} an array, the classic trap.
class JSONValue {
public:
    // The cases in their fixed order; decoding tries them as listed in decode().
    enum class Kind { Bool, Number, String, Array, Object, Null };
    using Array = std::vector<JSONValue>;
    using Object = std::map<QString, JSONValue>;

    JSONValue() noexcept : m_value(nullptr) {}
    JSONValue(std::nullptr_t) noexcept : m_value(nullptr) {}
    JSONValue(bool b) noexcept : m_value(b) {}
    template <typename N>
    requires(std::integral<N> && !std::same_as<N, bool>) JSONValue(N n)
    noexcept : m_value(static_cast<double>(n)) {}
    template <std::floating_point N> JSONValue(N n) noexcept : m_value(static_cast<double>(n)) {}
    JSONValue(const char* text) : m_value(QString::fromUtf8(text)) {}
    JSONValue(QString text) : m_value(std::move(text)) {}
    JSONValue(QLatin1StringView text) : m_value(QString(text)) {}
    JSONValue(Array items) : m_value(std::move(items)) {}
    JSONValue(Object members) : m_value(std::move(members)) {}

    // The marker for an optional positional argument that is not given.
    static JSONValue absent();

    Kind kind() const { return static_cast<Kind>(m_value.index()); }
    bool isNull() const { return kind() == Kind::Null; }

    bool toBool() const;
    double toNumber() const;
    QString toString() const;
    const Array& toArray() const;
    const Object& toObject() const;
    // A member of an object; null for a missing member or a value that is not an object.
    const JSONValue& operator[](const QString& key) const;

    QJsonValue toQJsonValue() const;
    static JSONValue fromQJsonValue(const QJsonValue& value);

    bool operator==(const JSONValue& other) const = default;

private:
    std::variant<bool, double, QString, Array, Object, std::nullptr_t> m_value;
};

size_t qHash(const JSONValue& value, size_t seed = 0) noexcept;

} // namespace Kestro
