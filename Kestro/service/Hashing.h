#pragma once

#include <QHashFunctions>
#include <QList>
#include <QMap>

#include <optional>

namespace Kestro {

// Folds one member of a record into its hash. Overloaded for the wrappers
// Qt has no qHash for, so generated records hash every member alike.
template <typename T> size_t hashPart(size_t seed, const T& value)
{
    return QtPrivate::QHashCombine{}(seed, value);
}

template <typename T> size_t hashPart(size_t seed, const std::optional<T>& value)
{
    seed = QtPrivate::QHashCombine{}(seed, value.has_value());
    return value ? hashPart(seed, *value) : seed;
}

template <typename T> size_t hashPart(size_t seed, const QList<T>& values)
{
    seed = QtPrivate::QHashCombine{}(seed, values.size());
    for (const T& value : values)
        seed = hashPart(seed, value);
    return seed;
}

template <typename T> size_t hashPart(size_t seed, const QMap<QString, T>& values)
{
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        seed = hashPart(hashPart(seed, it.key()), it.value());
    return seed;
}

} // namespace Kestro
