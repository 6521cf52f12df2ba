// libFuzzer target: the Markdown block parser, and the inline styling of the
// paragraphs it finds, must take any text.

#include "richtext/Inline.h"
#include "richtext/MarkdownParser.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const auto blocks = Kestro::MarkdownParser::parse(text);
    // Every table row is exactly as wide as its head.
    for (const Kestro::MarkdownBlock& block : blocks) {
        if (block.kind == Kestro::MarkdownBlock::Kind::Paragraph ||
            block.kind == Kestro::MarkdownBlock::Kind::Heading)
            (void)Kestro::Inline::style(block.text, 3);
        if (block.kind == Kestro::MarkdownBlock::Kind::Table)
            for (const QStringList& row : block.rows)
                if (row.size() != block.head.size())
                    __builtin_trap();
    }
    return 0;
}
