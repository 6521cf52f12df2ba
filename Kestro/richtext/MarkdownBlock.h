#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace Kestro {

struct MarkdownItem;

// One block of a Markdown text, as the renderer lays it out. The payload
// members that a kind does not use stay empty.
struct MarkdownBlock {
    enum class Kind { Heading, Paragraph, Code, Quote, List, Table, Rule };

    Kind kind = Kind::Paragraph;
    int level = 0;                     // heading: 1..6
    QString text;                      // heading, paragraph (raw inline Markdown), code
    std::optional<QString> lang;       // code: the info string's first word
    std::vector<MarkdownBlock> blocks; // quote
    bool ordered = false;              // list
    int start = 1;                     // list
    std::vector<MarkdownItem> items;   // list
    QStringList head;                  // table
    QList<QStringList> rows;           // table: each exactly as wide as head

    bool operator==(const MarkdownBlock& other) const;
};

// One list item: its task box (absent, unchecked, checked) and its blocks.
struct MarkdownItem {
    std::optional<bool> task;
    std::vector<MarkdownBlock> blocks;

    bool operator==(const MarkdownItem& other) const = default;
};

inline bool MarkdownBlock::operator==(const MarkdownBlock& other) const
{
    return kind == other.kind && level == other.level && text == other.text && lang == other.lang &&
           blocks == other.blocks && ordered == other.ordered && start == other.start &&
           items == other.items && head == other.head && rows == other.rows;
}

} // namespace Kestro
