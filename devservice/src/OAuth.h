#pragma once

#include "Service.h"

#include <optional>
#include <string>

namespace httplib {
class Server;
struct Request;
} // namespace httplib

namespace devservice {

// The sign-in's server side: the consent page with PKCE (S256), codes that
// work once for 60 seconds, refresh tokens that rotate, revocation.
void installOAuth(httplib::Server& server, Service& service);

// The user a bearer token or the web session cookie belongs to, when it is
// valid (known, not expired, not revoked).
std::optional<std::string> userForAccessToken(Service& service, const std::string& token);
std::optional<std::string> userForRequest(Service& service, const httplib::Request& request);
std::optional<std::string> userForSessionCookie(Service& service, const httplib::Request& request);

// S256: base64url(SHA-256(verifier)) without padding.
std::string challengeOf(const std::string& verifier);

} // namespace devservice
