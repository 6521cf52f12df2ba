#pragma once

#include <QHashFunctions>

#include <memory>

namespace Kestro {

// A box for a record that holds records of its own type (a tree of steps,
// a thread of replies), so the value type has a finite size. It is invisible
// on the wire: it encodes and decodes as the boxed value, and compares and
// hashes by it. The boxed value is shared between copies and never changed
// in place, so copying is cheap and copies stay independent.
template <typename T> class Indirect {
public:
    Indirect() : m_box(std::make_shared<const T>()) {}
    Indirect(T value) : m_box(std::make_shared<const T>(std::move(value))) {}

    const T& value() const { return *m_box; }
    const T& operator*() const { return *m_box; }
    const T* operator->() const { return m_box.get(); }

    bool operator==(const Indirect& other) const { return m_box == other.m_box || *m_box == *other.m_box; }

private:
    std::shared_ptr<const T> m_box;
};

template <typename T> size_t qHash(const Indirect<T>& box, size_t seed = 0)
{
    return qHash(box.value(), seed);
}

} // namespace Kestro
