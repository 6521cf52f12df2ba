#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

#include <optional>

namespace Kestro {

// The sign-in's tokens as they are kept in the secret store:
// {"access": ..., "refresh": ..., "expiresAt": <seconds since 2001-01-01T00:00:00Z>}.
// The odd epoch is the one the other desktop clients write, so an item
// written by any of them reads back here.
struct Tokens {
    QString access;
    QString refresh;
    QDateTime expiresAt;

    QByteArray toJson() const;
    // Absent for anything that is not such an object.
    static std::optional<Tokens> fromJson(const QByteArray& json);

    bool operator==(const Tokens& other) const
    {
        return access == other.access && refresh == other.refresh &&
               expiresAt.toMSecsSinceEpoch() == other.expiresAt.toMSecsSinceEpoch();
    }
};

} // namespace Kestro
