// libFuzzer target: the line a later launch hands to the running app. Any
// bytes must read without a crash, and whatever is taken must be an empty
// "come forward" or a "kestro:" address.

#include "shell/HandOffLine.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray line(reinterpret_cast<const char*>(data), qsizetype(size));
    if (const std::optional<QUrl> url = Kestro::readHandOffLine(line)) {
        if (!url->isEmpty() && url->scheme() != QLatin1String("kestro"))
            __builtin_trap();
        if (url->isEmpty() && !line.trimmed().isEmpty())
            __builtin_trap();
    }
    return 0;
}
