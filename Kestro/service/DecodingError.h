#pragma once

#include "ServiceError.h"

#include <QLatin1StringView>
#include <QString>

#include <vector>

namespace Kestro {

// Where a decoder stands in an answer: keys as ".name", indexes as "[n]",
// joined with nothing (".value.items[2].title"). Kept as a stack so that the
// text is only built when something fails.
class CodingPath {
public:
    void pushKey(QLatin1StringView key) { m_parts.push_back({key, {}, -1}); }
    void pushKey(const QString& key) { m_parts.push_back({{}, key, -1}); }
    void pushIndex(qsizetype index) { m_parts.push_back({{}, {}, index}); }
    void pop() { m_parts.pop_back(); }
    QString text() const;

private:
    struct Part {
        QLatin1StringView key;
        QString ownedKey;
        qsizetype index;
    };
    std::vector<Part> m_parts;
};

// An answer that does not have the declared shape. The descriptions are
// part of the contract: pages show them inside "The answer did not read: ...".
class DecodingError : public ServiceError {
public:
    enum class Kind { TypeMismatch, ValueNotFound, KeyNotFound, DataCorrupted };

    static DecodingError typeMismatch(const CodingPath& path, QLatin1StringView type)
    {
        return {Kind::TypeMismatch, path.text(), QString(type)};
    }
    static DecodingError valueNotFound(const CodingPath& path, QLatin1StringView type)
    {
        return {Kind::ValueNotFound, path.text(), QString(type)};
    }
    // The path includes the missing key.
    static DecodingError keyNotFound(const CodingPath& path) { return {Kind::KeyNotFound, path.text(), {}}; }
    static DecodingError dataCorrupted(const CodingPath& path, QString debugDescription)
    {
        return {Kind::DataCorrupted, path.text(), std::move(debugDescription)};
    }

    Kind kind() const { return m_kind; }
    QString path() const { return m_path; }
    QString description() const override;

private:
    DecodingError(Kind kind, QString path, QString detail)
        : m_kind(kind), m_path(std::move(path)), m_detail(std::move(detail))
    {
    }

    Kind m_kind;
    QString m_path;
    QString m_detail;
};

// The names of the expected types in decoding errors, fixed once.
namespace TypeName {
inline constexpr QLatin1StringView Double{"Double"};
inline constexpr QLatin1StringView String{"String"};
inline constexpr QLatin1StringView Bool{"Bool"};
inline constexpr QLatin1StringView Array{"Array"};
inline constexpr QLatin1StringView Dictionary{"Dictionary"};
inline constexpr QLatin1StringView Date{"Date"};
inline constexpr QLatin1StringView Data{"Data"};
inline constexpr QLatin1StringView JSONValue{"JSONValue"};
} // namespace TypeName

} // namespace Kestro
