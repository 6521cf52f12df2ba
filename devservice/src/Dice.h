#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace devservice {

// Choices made from a seed (splitmix64): the same seed makes the same plan,
// the same answer and the same history on every machine, which is what lets
// a demo, and the tests, play the same way twice.
class Dice {
public:
    explicit Dice(uint64_t seed) : m_state(seed) {}

    uint64_t next()
    {
        uint64_t z = (m_state += 0x9e3779b97f4a7c15ull);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ull;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebull;
        return z ^ (z >> 31);
    }
    // 0 <= n < count.
    size_t below(size_t count) { return count == 0 ? 0 : size_t(next() % count); }
    // from <= n <= to.
    int between(int from, int to) { return from + int(below(size_t(to - from + 1))); }
    bool oneIn(size_t count) { return below(count) == 0; }
    template <typename T, size_t N> const T& pick(const T (&items)[N]) { return items[below(N)]; }
    template <typename T> const T& pick(const std::vector<T>& items) { return items[below(items.size())]; }
    std::string oneOf(std::initializer_list<std::string> items) { return items.begin()[below(items.size())]; }
    // An id the shape of newId()'s, made from the dice.
    std::string id(const std::string& prefix)
    {
        static const char hex[] = "0123456789abcdef";
        std::string out = prefix + "_";
        uint64_t bits = next();
        for (int i = 0; i < 10; ++i, bits >>= 4)
            out += hex[bits & 15];
        return out;
    }

private:
    uint64_t m_state;
};

} // namespace devservice
