#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace devservice {

using json = nlohmann::json;

// Seconds since 1970 now, and as the ISO text the service writes
// ("2026-11-21T18:00:00.000Z").
double now();
std::string iso(double seconds);
inline std::string isoNow()
{
    return iso(now());
}
// The UTC date of now, "2026-11-21": the day Home shows.
inline std::string today()
{
    return isoNow().substr(0, 10);
}

// The wire's tagged forms, so clients meet them in real answers.
inline json dateTag(const std::string& text)
{
    return json{{"$date", text}};
}
inline json undefinedTag()
{
    return json{{"$undefined", true}};
}

// A short random id with a prefix: "m_3f9a1c2b".
std::string newId(const std::string& prefix);
// A random text of url-safe characters, for codes and tokens.
std::string randomToken(int length);

// Deterministic small numbers from a text, for demo data.
unsigned stableHash(const std::string& text);

} // namespace devservice
