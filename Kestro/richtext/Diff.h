#pragma once

#include <QList>
#include <QString>

namespace Kestro::Diff {

// One row of a comparison of a file's text with a proposed new text.
struct Line {
    enum class Kind { Kept, Added, Removed };
    Kind kind = Kind::Kept;
    QString text;
    int oldNumber = 0; // 1-based; 0 where the line is not in the old text
    int newNumber = 0; // 1-based; 0 where the line is not in the new text
    bool operator==(const Line&) const = default;
};

// Above this product of line counts no table is built: everything old is
// removed, then everything new added.
inline constexpr qint64 maximumTableCells = 4'000'000;

// The lines of both texts by a longest common subsequence; at each change
// the removed old lines come before the added new ones.
QList<Line> compare(const QString& oldText, const QString& newText);

// Shown instead of rows when the texts are the same.
QString noChangeText();

} // namespace Kestro::Diff
