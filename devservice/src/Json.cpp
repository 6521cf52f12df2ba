#include "Json.h"

#include <chrono>
#include <cmath>
#include <ctime>
#include <mutex>
#include <random>

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

namespace {
std::mt19937_64& engine()
{
    static std::mt19937_64 e{std::random_device{}()};
    return e;
}
std::mutex engineMutex;
} // namespace

std::string randomToken(int length)
{
    static const char alphabet[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_";
    std::lock_guard lock(engineMutex);
    std::uniform_int_distribution<int> pick(0, 63);
    std::string out(size_t(length), ' ');
    for (char& c : out)
        c = alphabet[pick(engine())];
    return out;
}

std::string newId(const std::string& prefix)
{
    static const char hex[] = "0123456789abcdef";
    std::lock_guard lock(engineMutex);
    std::uniform_int_distribution<int> pick(0, 15);
    std::string out = prefix + "_";
    for (int i = 0; i < 10; ++i)
        out += hex[pick(engine())];
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
