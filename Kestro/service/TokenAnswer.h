#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace Kestro {

// The token endpoint's answer; a body that does not have this shape counts
// as one with every member absent.
struct TokenAnswer {
    std::optional<QString> accessToken, refreshToken, errorDescription, error;
    std::optional<double> expiresIn;

    static TokenAnswer read(const QByteArray& bytes);
};

// A token goes on every request in a header (the access token) or in a
// form (the refresh token): only visible ASCII may travel there. A CR or LF
// would let the answer add headers of its choosing to each call.
bool usableToken(const QString& token);

// How long tokens last, in milliseconds: "expires_in" seconds, or the
// default when absent, and never past ten years nor before now, whatever
// the number (1e300 must not wrap into an expiry in the past).
qint64 lifetimeMs(std::optional<double> expiresIn, int defaultSeconds);

} // namespace Kestro
