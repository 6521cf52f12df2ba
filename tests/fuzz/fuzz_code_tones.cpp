// libFuzzer target: the tone tokenizer and the line diff must take any text,
// and tone spans must lie inside their line without overlapping.

#include "richtext/CodeTones.h"
#include "richtext/Diff.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        qsizetype end = 0;
        for (const Kestro::CodeTones::Span& span : Kestro::CodeTones::tones(line)) {
            if (span.start < end || span.length <= 0 || span.start + span.length > line.size())
                __builtin_trap();
            end = span.start + span.length;
        }
    }
    const qsizetype half = text.size() / 2;
    const auto lines = Kestro::Diff::compare(text.left(half), text.mid(half));
    (void)lines;
    return 0;
}
