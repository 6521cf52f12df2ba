#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QHashFunctions>
#include <QList>
#include <QString>

#include <cmath>
#include <variant>

namespace Kestro {

// An instant as the service's dates carry it: seconds since
// 1970-01-01T00:00:00Z with sub-millisecond precision, so that writing it
// rounds exactly as the wire form prescribes.
struct WireDate {
    double secondsSince1970 = 0;

    static WireDate fromDateTime(const QDateTime& time) { return {time.toMSecsSinceEpoch() / 1000.0}; }
    QDateTime toDateTime() const
    {
        return QDateTime::fromMSecsSinceEpoch(qint64(std::llround(secondsSince1970 * 1000.0)), Qt::UTC);
    }
    bool operator==(const WireDate&) const = default;
};

inline size_t qHash(const WireDate& date, size_t seed = 0) noexcept
{
    return ::qHash(date.secondsSince1970, seed);
}

// A file sent to the service; on the wire {"$file": {"name", "type", "data"}}.
struct WireFile {
    QString name;
    QString type;
    QByteArray data;
    bool operator==(const WireFile&) const = default;
};

inline size_t qHash(const WireFile& file, size_t seed = 0) noexcept
{
    return qHashMulti(seed, file.name, file.type, file.data);
}

// Form data, the equivalent of a multipart form; on the wire
// {"$form": [[name, value], ...]}. Names may repeat and order is kept.
struct WireForm {
    using Value = std::variant<QString, WireFile>;
    struct Entry {
        QString name;
        Value value;
        bool operator==(const Entry&) const = default;
    };
    QList<Entry> entries;

    void append(const QString& name, Value value) { entries.append({name, std::move(value)}); }
    bool operator==(const WireForm&) const = default;
};

inline size_t qHash(const WireForm& form, size_t seed = 0) noexcept
{
    for (const WireForm::Entry& entry : form.entries) {
        seed = qHashMulti(seed, entry.name, entry.value.index());
        if (const QString* text = std::get_if<QString>(&entry.value))
            seed = ::qHash(*text, seed);
        else
            seed = qHash(std::get<WireFile>(entry.value), seed);
    }
    return seed;
}

} // namespace Kestro
