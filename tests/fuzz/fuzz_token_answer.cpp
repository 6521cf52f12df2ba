// libFuzzer target: the token endpoint's answer. Any bytes must read without
// a crash; a token judged usable never holds a byte a header cannot carry,
// and no lifetime, however absurd, ends before now or past ten years.

#include "service/TokenAnswer.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const Kestro::TokenAnswer answer = Kestro::TokenAnswer::read(bytes);
    for (const auto& token : {answer.accessToken, answer.refreshToken}) {
        if (!token || !Kestro::usableToken(*token))
            continue;
        for (const QChar c : *token)
            if (c == QLatin1Char('\r') || c == QLatin1Char('\n') || c.unicode() > 0x7e || c.unicode() < 0x21)
                __builtin_trap();
    }
    const qint64 ms = Kestro::lifetimeMs(answer.expiresIn, 3600);
    if (ms < 0 || ms > 10LL * 365 * 24 * 3600 * 1000)
        __builtin_trap();
    return 0;
}
