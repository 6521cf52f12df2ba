#include "Diff.h"

#include <QStringList>

#include <vector>

namespace Kestro::Diff {

namespace {
QStringList linesOf(const QString& text)
{
    return text.isEmpty() ? QStringList() : text.split(QLatin1Char('\n'));
}
} // namespace

QString noChangeText()
{
    return QStringLiteral("No change: the new text is the same as the file.");
}

QList<Line> compare(const QString& oldText, const QString& newText)
{
    const QStringList a = linesOf(oldText);
    const QStringList b = linesOf(newText);
    const qsizetype n = a.size(), m = b.size();
    QList<Line> out;
    qsizetype i = 0, j = 0;
    auto removed = [&] {
        out.append({Line::Kind::Removed, a[i], int(i + 1), 0});
        ++i;
    };
    auto added = [&] {
        out.append({Line::Kind::Added, b[j], 0, int(j + 1)});
        ++j;
    };
    if (qint64(n) * qint64(m) <= maximumTableCells) {
        // lcs[i][j]: the common subsequence of a[i..] and b[j..], filled from the ends.
        const qsizetype width = m + 1;
        std::vector<int> lcs(size_t((n + 1) * width), 0);
        for (qsizetype x = n - 1; x >= 0; --x)
            for (qsizetype y = m - 1; y >= 0; --y)
                lcs[size_t(x * width + y)] =
                    a[x] == b[y] ? lcs[size_t((x + 1) * width + y + 1)] + 1
                                 : std::max(lcs[size_t((x + 1) * width + y)], lcs[size_t(x * width + y + 1)]);
        while (i < n && j < m) {
            if (a[i] == b[j]) {
                out.append({Line::Kind::Kept, a[i], int(i + 1), int(j + 1)});
                ++i;
                ++j;
            } else if (lcs[size_t((i + 1) * width + j)] < lcs[size_t(i * width + j + 1)]) {
                added();
            } else {
                removed(); // also on a tie: removals first
            }
        }
    }
    while (i < n)
        removed();
    while (j < m)
        added();
    return out;
}

} // namespace Kestro::Diff
