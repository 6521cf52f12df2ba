#include "OAuth.h"

#include "Html.h"

#include <httplib.h>
#include <openssl/sha.h>

namespace devservice {

namespace {

constexpr const char* clientId = "kestro-mac";
constexpr const char* redirectUri = "kestro://oauth/callback";

std::string base64url(const unsigned char* data, size_t size)
{
    static const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    std::string out;
    for (size_t i = 0; i < size; i += 3) {
        const unsigned n = (unsigned(data[i]) << 16) | (i + 1 < size ? unsigned(data[i + 1]) << 8 : 0) |
                           (i + 2 < size ? unsigned(data[i + 2]) : 0);
        out += alphabet[(n >> 18) & 63];
        out += alphabet[(n >> 12) & 63];
        if (i + 1 < size)
            out += alphabet[(n >> 6) & 63];
        if (i + 2 < size)
            out += alphabet[n & 63];
    }
    return out;
}

void oauthError(httplib::Response& response, const std::string& error, const std::string& description)
{
    response.status = 400;
    response.set_content(json{{"error", error}, {"error_description", description}}.dump(),
                         "application/json");
}

std::string callbackUrl(const std::string& query)
{
    return std::string(redirectUri) + "?" + query;
}

// Checks an authorization request; answers the sentence that says what is
// wrong, or nothing when it is sound.
std::string checkAuthorize(const httplib::Request& r)
{
    if (r.get_param_value("client_id") != clientId)
        return "This sign-in is for an app Kestro does not know.";
    if (r.get_param_value("redirect_uri") != redirectUri)
        return "This sign-in would send you to an address Kestro does not allow.";
    if (r.get_param_value("response_type") != "code")
        return "This sign-in asks for a response Kestro does not give.";
    if (r.get_param_value("code_challenge_method") != "S256" ||
        r.get_param_value("code_challenge").size() != 43)
        return "This sign-in lacks its proof key, so Kestro cannot finish it safely.";
    if (r.get_param_value("state").empty())
        return "This sign-in lacks its state, so Kestro cannot finish it safely.";
    return {};
}

std::string issueCode(Service& service, const std::string& user, const std::string& challenge)
{
    const std::string code = randomToken(32);
    service.store.put("code", code, "",
                      {{"user", user},
                       {"challenge", challenge},
                       {"expires", now() + service.options.codeTtl},
                       {"used", false}});
    return code;
}

// Tokens of one sign-in form a family: the code's, carried along each
// refresh. A code or refresh token used twice means someone else holds a
// copy, so the whole family is revoked.
json issueTokens(Service& service, const std::string& user, const std::string& family)
{
    const std::string access = "at_" + randomToken(40);
    const std::string refresh = "rt_" + randomToken(40);
    service.store.put("access", access, "",
                      {{"token", access},
                       {"user", user},
                       {"family", family},
                       {"expires", now() + service.options.tokenTtl}});
    service.store.put("refresh", refresh, "",
                      {{"token", refresh}, {"user", user}, {"access", access}, {"family", family}});
    return {{"access_token", access},
            {"refresh_token", refresh},
            {"token_type", "Bearer"},
            {"expires_in", service.options.tokenTtl}};
}

void revokeFamily(Service& service, const std::string& family)
{
    for (const char* kind : {"access", "refresh"})
        for (json token : service.store.list(kind))
            if (token.value("family", "") == family && token.contains("token")) {
                token["revoked"] = true;
                service.store.put(kind, token["token"].get<std::string>(), "", token);
            }
}

std::string consentPage(const httplib::Request& r, Service& service)
{
    const json user = service.person("u1");
    std::string hidden;
    for (const char* name :
         {"client_id", "redirect_uri", "response_type", "code_challenge", "code_challenge_method", "state"})
        hidden += "<input type=\"hidden\" name=\"" + std::string(name) + "\" value=\"" +
                  escapeHtml(r.get_param_value(name)) + "\">";
    const std::string body =
        "<main class=\"card\"><h1>Allow Kestro desktop?</h1>"
        "<p>Kestro desktop wants to use your workspaces as <strong>" +
        escapeHtml(user["name"].get<std::string>()) + "</strong> (" +
        escapeHtml(user["email"].get<std::string>()) +
        ").</p><form method=\"post\" action=\"/oauth/consent\">" + hidden +
        "<button name=\"decision\" value=\"allow\" class=\"primary\" autofocus>Allow</button> "
        "<button name=\"decision\" value=\"deny\">Deny</button></form></main>";
    return page("Allow Kestro desktop", body);
}

} // namespace

std::string challengeOf(const std::string& verifier)
{
    unsigned char digest[SHA256_DIGEST_LENGTH];
    SHA256(reinterpret_cast<const unsigned char*>(verifier.data()), verifier.size(), digest);
    return base64url(digest, sizeof digest);
}

std::optional<std::string> userForAccessToken(Service& service, const std::string& token)
{
    if (token.empty())
        return std::nullopt;
    const auto found = service.store.get("access", token);
    if (!found || found->value("revoked", false) || (*found)["expires"].get<double>() <= now())
        return std::nullopt;
    return (*found)["user"].get<std::string>();
}

std::optional<std::string> userForRequest(Service& service, const httplib::Request& request)
{
    const std::string header = request.get_header_value("Authorization");
    if (header.rfind("Bearer ", 0) != 0)
        return std::nullopt;
    return userForAccessToken(service, header.substr(7));
}

std::optional<std::string> userForSessionCookie(Service& service, const httplib::Request& request)
{
    // "__Host-kestro_app_token" over https, "kestro_app_token" over http.
    const std::string cookies = request.get_header_value("Cookie");
    for (const char* name : {"kestro_app_token=", "__Host-kestro_app_token="}) {
        size_t at = 0;
        while ((at = cookies.find(name, at)) != std::string::npos) {
            if (at == 0 || cookies[at - 1] == ' ' || cookies[at - 1] == ';') {
                const size_t start = at + std::strlen(name);
                const size_t end = cookies.find(';', start);
                if (auto user = userForAccessToken(service, cookies.substr(start, end - start)))
                    return user;
            }
            at += 1;
        }
    }
    return std::nullopt;
}

void installOAuth(httplib::Server& server, Service& service)
{
    server.Get("/oauth/authorize", [&service](const httplib::Request& r, httplib::Response& response) {
        if (const std::string problem = checkAuthorize(r); !problem.empty()) {
            response.status = 400;
            response.set_content(
                page("Sign-in problem", "<main class=\"card\"><h1>Kestro cannot sign you in</h1><p>" +
                                            escapeHtml(problem) + "</p></main>"),
                "text/html; charset=utf-8");
            return;
        }
        if (service.options.autoApprove) {
            const std::string code = issueCode(service, "u1", r.get_param_value("code_challenge"));
            response.set_redirect(callbackUrl("code=" + code + "&state=" + r.get_param_value("state")));
            return;
        }
        response.set_content(consentPage(r, service), "text/html; charset=utf-8");
    });

    server.Post("/oauth/consent", [&service](const httplib::Request& r, httplib::Response& response) {
        if (const std::string problem = checkAuthorize(r); !problem.empty()) {
            response.status = 400;
            response.set_content(
                page("Sign-in problem", "<main class=\"card\"><p>" + escapeHtml(problem) + "</p></main>"),
                "text/html; charset=utf-8");
            return;
        }
        const std::string state = httplib::detail::encode_query_param(r.get_param_value("state"));
        if (r.get_param_value("decision") != "allow") {
            response.set_redirect(
                callbackUrl("error=access_denied&error_description=" +
                            httplib::detail::encode_query_param("You did not allow Kestro desktop.") +
                            "&state=" + state));
            return;
        }
        const std::string code = issueCode(service, "u1", r.get_param_value("code_challenge"));
        response.set_redirect(callbackUrl("code=" + code + "&state=" + state));
    });

    server.Post("/api/oauth/token", [&service](const httplib::Request& r, httplib::Response& response) {
        // An outage hits sign-in and refresh too: the app must tell it from
        // a refusal and keep the user signed in.
        if (service.failsOnPurpose()) {
            response.status = 503;
            response.set_content(json{{"error", "temporarily_unavailable"}}.dump(), "application/json");
            return;
        }
        if (r.get_param_value("client_id") != clientId)
            return oauthError(response, "invalid_client", "Kestro does not know this app.");
        const std::string grant = r.get_param_value("grant_type");
        json answer;
        std::string refusal;
        service.store.transaction([&] {
            if (grant == "authorization_code") {
                const std::string code = r.get_param_value("code");
                const auto found = service.store.get("code", code);
                if (!found || (*found)["used"].get<bool>()) {
                    if (found)
                        revokeFamily(service, code);
                    refusal = "This sign-in code was already used or never issued. Sign in again.";
                    return;
                }
                json spent = *found;
                spent["used"] = true; // single use, whatever happens next
                service.store.put("code", code, "", spent);
                if ((*found)["expires"].get<double>() <= now())
                    refusal = "This sign-in code expired. Sign in again.";
                else if (r.get_param_value("redirect_uri") != redirectUri)
                    refusal = "This sign-in was started for another address.";
                else if (challengeOf(r.get_param_value("code_verifier")) !=
                         (*found)["challenge"].get<std::string>())
                    refusal = "This sign-in's proof key does not match. Sign in again.";
                else
                    answer = issueTokens(service, (*found)["user"].get<std::string>(), code);
            } else if (grant == "refresh_token") {
                const std::string refresh = r.get_param_value("refresh_token");
                const auto found = service.store.get("refresh", refresh);
                if (!found || found->value("used", false) || found->value("revoked", false)) {
                    if (found && found->value("used", false))
                        revokeFamily(service, found->value("family", ""));
                    refusal = "Your session ended. Sign in again.";
                    return;
                }
                json rotated = *found;
                rotated["used"] = true; // the old refresh token stops working
                service.store.put("refresh", refresh, "", rotated);
                answer = issueTokens(service, (*found)["user"].get<std::string>(),
                                     found->value("family", refresh));
            } else {
                refusal = "Kestro does not give tokens for \"" + grant + "\".";
            }
        });
        if (!refusal.empty())
            return oauthError(response,
                              grant == "authorization_code" || grant == "refresh_token"
                                  ? "invalid_grant"
                                  : "unsupported_grant_type",
                              refusal);
        response.set_content(answer.dump(), "application/json");
    });

    server.Post("/api/oauth/revoke", [&service](const httplib::Request& r, httplib::Response& response) {
        const std::string token = r.get_param_value("token");
        service.store.transaction([&] {
            if (auto refresh = service.store.get("refresh", token)) {
                json revoked = *refresh;
                revoked["revoked"] = true;
                service.store.put("refresh", token, "", revoked);
                if (auto access = service.store.get("access", (*refresh)["access"].get<std::string>())) {
                    (*access)["revoked"] = true;
                    service.store.put("access", (*refresh)["access"].get<std::string>(), "", *access);
                }
            } else if (auto access = service.store.get("access", token)) {
                (*access)["revoked"] = true;
                service.store.put("access", token, "", *access);
            }
        });
        response.set_content("{}", "application/json");
    });
}

} // namespace devservice
