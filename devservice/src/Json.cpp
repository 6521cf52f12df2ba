#include "Json.h"

#include <chrono>
#include <cmath>
#include <ctime>
#include <openssl/rand.h>
#include <stdexcept>

namespace devservice {

double now()
{
    using namespace std::chrono;
    return duration<double>(system_clock::now().time_since_epoch()).count();
}

std::string iso(double seconds)
{
    const auto whole = static_cast<std::time_t>(std::floor(seconds));
    const int millis = int(std::lround((seconds - double(whole)) * 1000)) % 1000;
    std::tm utc{};
    gmtime_r(&whole, &utc);
    char text[96];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900,
                  utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, millis);
    return text;
}

std::string randomToken(int length)
{
    // Codes and tokens are secrets: drawn from the system's cryptographic
    // source, each byte's low six bits picking one of 64 letters evenly.
    static const char alphabet[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_";
    std::string bytes(size_t(length), '\0');
    if (RAND_bytes(reinterpret_cast<unsigned char*>(bytes.data()), length) != 1)
        throw std::runtime_error("The system's random source failed.");
    for (char& c : bytes)
        c = alphabet[static_cast<unsigned char>(c) & 63];
    return bytes;
}

std::string newId(const std::string& prefix)
{
    static const char hex[] = "0123456789abcdef";
    unsigned char bytes[5];
    if (RAND_bytes(bytes, sizeof bytes) != 1)
        throw std::runtime_error("The system's random source failed.");
    std::string out = prefix + "_";
    for (const unsigned char b : bytes) {
        out += hex[b >> 4];
        out += hex[b & 15];
    }
    return out;
}

unsigned stableHash(const std::string& text)
{
    unsigned h = 2166136261u;
    for (unsigned char c : text)
        h = (h ^ c) * 16777619u;
    return h;
}

} // namespace devservice
