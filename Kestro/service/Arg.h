#pragma once

#include "Codec.h"
#include "JSONValue.h"

#include <concepts>

namespace Kestro {

// One positional argument of an action call: any JSONValue (literals
// included), or a typed input record, which is sent as its encoded form (so
// its dates, files and forms take the $date, $file and $form shapes).
// An optional argument that is not given is sent as {"$undefined": true},
// so the arguments after it keep their places.
class Arg {
public:
    template <typename T>
    requires std::constructible_from<JSONValue, T> Arg(T&& value) : m_value(std::forward<T>(value)) {}
    // Encoding a record cannot fail here, so the absent marker that a failed
    // conversion would send never arises.
    template <Record R> Arg(const R& record) : m_value(JSONValue::fromQJsonValue(Codec<R>::encode(record))) {}

    static Arg absent() { return Arg(JSONValue::absent()); }
    const JSONValue& value() const { return m_value; }

private:
    JSONValue m_value;
};

} // namespace Kestro
