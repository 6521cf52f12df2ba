#include "MarkdownParser.h"

#include <QRegularExpression>

namespace Kestro::MarkdownParser {

namespace {

// The grammar's patterns, compiled once on first use. A pattern that does not
// compile is a programming error.
QRegularExpression compiled(const char* pattern)
{
    QRegularExpression re(QString::fromUtf8(pattern), QRegularExpression::UseUnicodePropertiesOption);
    if (!re.isValid())
        qFatal("The Markdown pattern %s does not compile: %s", pattern, qPrintable(re.errorString()));
    return re;
}

// The grammar's patterns, compiled together the first time a text is parsed.
struct Patterns {
    const QRegularExpression openingFence = compiled("^( {0,3})(`{3,}|~{3,})([^`]*)$");
    const QRegularExpression closingFence = compiled("^ {0,3}(`{3,}|~{3,})\\s*$");
    const QRegularExpression atxHeading = compiled("^ {0,3}(#{1,6})(?:[ \\t]+(.*?))?[ \\t]*$");
    const QRegularExpression closingHashes = compiled("(^|\\s+)#+\\s*$");
    const QRegularExpression setextUnderline = compiled("^ {0,3}(=+|-+)[ \\t]*$");
    const QRegularExpression thematicBreak =
        compiled("^ {0,3}(?:(?:\\*[ \\t]*){3,}|(?:-[ \\t]*){3,}|(?:_[ \\t]*){3,})$");
    const QRegularExpression quoteLine = compiled("^ {0,3}> ?(.*)$");
    const QRegularExpression listItem = compiled("^( {0,3})([-*+]|\\d{1,9}[.)])(?:( +)(.*))?$");
    const QRegularExpression taskBox = compiled("^\\[([ xX])\\][ \\t]+(.*)$");
    const QRegularExpression tableDelimiter =
        compiled("^ {0,3}\\|?\\s*:?-+:?\\s*(\\|\\s*:?-+:?\\s*)*\\|?\\s*$");
};

const Patterns& patterns()
{
    static const Patterns compiledOnce;
    return compiledOnce;
}

bool isBlank(const QString& line)
{
    for (QChar c : line)
        if (c != QLatin1Char(' '))
            return false;
    return true;
}

qsizetype leadingSpaces(const QString& line)
{
    qsizetype n = 0;
    while (n < line.size() && line[n] == QLatin1Char(' '))
        ++n;
    return n;
}

// The first character after up to three spaces of indent: every block
// pattern but the table's is anchored there, so most lines are ruled out
// without running a pattern at all.
QChar lead(const QString& line)
{
    for (qsizetype i = 0; i < line.size() && i < 4; ++i)
        if (line[i] != QLatin1Char(' '))
            return line[i];
    return QChar();
}

bool mayBeFence(QChar c)
{
    return c == QLatin1Char('`') || c == QLatin1Char('~');
}
bool mayBeBreak(QChar c)
{
    return c == QLatin1Char('*') || c == QLatin1Char('-') || c == QLatin1Char('_');
}
bool mayBeMarker(QChar c)
{
    return c == QLatin1Char('-') || c == QLatin1Char('*') || c == QLatin1Char('+') || c.isDigit();
}

// Removes trailing white space (the pattern "\s+$", written out).
QString withoutTrailingSpace(const QString& line)
{
    qsizetype end = line.size();
    while (end > 0 && line[end - 1].isSpace())
        --end;
    return line.left(end);
}

bool mayInterrupt(const Marker& marker)
{
    return !marker.rest.trimmed().isEmpty() && (!marker.ordered || marker.number == 1);
}

QString joinParagraph(const QStringList& lines)
{
    QString out;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString& line = lines[i];
        QString trimmed = withoutTrailingSpace(line);
        if (i + 1 == lines.size()) {
            out += trimmed;
        } else if (line.endsWith(QLatin1String("  "))) {
            out += trimmed + QLatin1Char('\n');
        } else if (trimmed.endsWith(QLatin1Char('\\'))) {
            trimmed.chop(1);
            out += trimmed + QLatin1Char('\n');
        } else {
            out += trimmed + QLatin1Char(' ');
        }
    }
    return out;
}

// Quotes and list items parse their content recursively. Past this depth a
// hostile text would exhaust the stack, so deeper content stays as text.
constexpr int maximumDepth = 64;

std::vector<MarkdownBlock> parseNested(const QStringList& lines, int depth);

struct Loop {
    const QStringList& lines;
    int depth;
    std::vector<MarkdownBlock> out;
    QStringList pending;

    void flush()
    {
        if (pending.isEmpty())
            return;
        MarkdownBlock paragraph;
        paragraph.kind = MarkdownBlock::Kind::Paragraph;
        paragraph.text = joinParagraph(pending);
        out.push_back(std::move(paragraph));
        pending.clear();
    }

    qsizetype fence(qsizetype i, const QRegularExpressionMatch& open)
    {
        flush();
        const qsizetype indent = open.capturedLength(1);
        const QString run = open.captured(2);
        const QString info = open.captured(3).trimmed();
        QStringList content;
        qsizetype j = i + 1;
        for (; j < lines.size(); ++j) {
            if (!mayBeFence(lead(lines[j]))) {
                content.append(lines[j].mid(std::min(leadingSpaces(lines[j]), indent)));
                continue;
            }
            const QRegularExpressionMatch close = patterns().closingFence.match(lines[j]);
            if (close.hasMatch() && close.captured(1)[0] == run[0] && close.capturedLength(1) >= run.size())
                break;
            content.append(lines[j].mid(std::min(leadingSpaces(lines[j]), indent)));
        }
        MarkdownBlock code;
        code.kind = MarkdownBlock::Kind::Code;
        if (!info.isEmpty())
            code.lang = info.section(QLatin1Char(' '), 0, 0);
        code.text = content.join(QLatin1Char('\n'));
        out.push_back(std::move(code));
        return j + 1; // past the closing line (or the end)
    }

    qsizetype quote(qsizetype i)
    {
        flush();
        QStringList content{patterns().quoteLine.match(lines[i]).captured(1)};
        qsizetype j = i + 1;
        for (; j < lines.size(); ++j) {
            const QRegularExpressionMatch more = lead(lines[j]) == QLatin1Char('>')
                                                     ? patterns().quoteLine.match(lines[j])
                                                     : QRegularExpressionMatch();
            if (more.hasMatch()) {
                content.append(more.captured(1));
                continue;
            }
            if (isBlank(lines[j]) || startsBlock(lines[j]) || isBlank(content.last()))
                break;
            content.append(lines[j]); // a lazy continuation, added whole
        }
        MarkdownBlock block;
        block.kind = MarkdownBlock::Kind::Quote;
        block.blocks = parseNested(content, depth + 1);
        out.push_back(std::move(block));
        return j;
    }

    qsizetype list(qsizetype i, const Marker& first)
    {
        MarkdownBlock block;
        block.kind = MarkdownBlock::Kind::List;
        block.ordered = first.ordered;
        block.start = first.number;
        qsizetype j = i;
        while (j < lines.size()) {
            const std::optional<Marker> marker = parseMarker(lines[j]);
            if (!marker || marker->ordered != first.ordered || marker->symbol != first.symbol)
                break;
            QStringList itemLines{marker->rest};
            bool afterBlank = false;
            ++j;
            for (; j < lines.size(); ++j) {
                const QString& line = lines[j];
                if (isBlank(line)) {
                    itemLines.append(QString());
                    afterBlank = true;
                    continue;
                }
                const qsizetype lead = leadingSpaces(line);
                if (lead >= marker->width) {
                    itemLines.append(line.mid(std::min<qsizetype>(lead, marker->width)));
                    afterBlank = false;
                    continue;
                }
                if (afterBlank || parseMarker(line) || startsBlock(line))
                    break;
                itemLines.append(line.mid(lead)); // lazy continuation
            }
            while (itemLines.size() > 1 && isBlank(itemLines.last()))
                itemLines.removeLast();
            MarkdownItem item;
            const QRegularExpressionMatch box = patterns().taskBox.match(itemLines.first());
            if (box.hasMatch()) {
                item.task = box.captured(1) != QLatin1String(" ");
                itemLines.first() = box.captured(2);
            }
            item.blocks = parseNested(itemLines, depth + 1);
            block.items.push_back(std::move(item));
        }
        out.push_back(std::move(block));
        return j;
    }

    std::optional<qsizetype> table(qsizetype i)
    {
        if (!lines[i].contains(QLatin1Char('|')) || i + 1 >= lines.size())
            return std::nullopt;
        const QString& delimiter = lines[i + 1];
        if (!delimiter.contains(QLatin1Char('|')) || !patterns().tableDelimiter.match(delimiter).hasMatch())
            return std::nullopt;
        const QStringList head = splitTableRow(lines[i]);
        if (splitTableRow(delimiter).size() != head.size())
            return std::nullopt;
        flush();
        MarkdownBlock block;
        block.kind = MarkdownBlock::Kind::Table;
        block.head = head;
        qsizetype j = i + 2;
        for (; j < lines.size() && !isBlank(lines[j]) && !startsBlock(lines[j]); ++j) {
            QStringList row = splitTableRow(lines[j]);
            row.resize(head.size()); // surplus dropped, missing filled with ""
            block.rows.append(row);
        }
        out.push_back(std::move(block));
        return j;
    }

    void run()
    {
        qsizetype i = 0;
        while (i < lines.size()) {
            const QString& line = lines[i];
            if (isBlank(line)) {
                flush();
                ++i;
                continue;
            }
            const QChar first = lead(line);
            if (const QRegularExpressionMatch open =
                    mayBeFence(first) ? patterns().openingFence.match(line) : QRegularExpressionMatch();
                open.hasMatch()) {
                i = fence(i, open);
                continue;
            }
            if (const QRegularExpressionMatch atx =
                    first == QLatin1Char('#') ? patterns().atxHeading.match(line) : QRegularExpressionMatch();
                atx.hasMatch()) {
                flush();
                MarkdownBlock heading;
                heading.kind = MarkdownBlock::Kind::Heading;
                heading.level = int(atx.capturedLength(1));
                heading.text = atx.captured(2).remove(patterns().closingHashes);
                out.push_back(std::move(heading));
                ++i;
                continue;
            }
            if (!pending.isEmpty() && (first == QLatin1Char('=') || first == QLatin1Char('-'))) {
                if (const QRegularExpressionMatch setext = patterns().setextUnderline.match(line);
                    setext.hasMatch()) {
                    MarkdownBlock heading;
                    heading.kind = MarkdownBlock::Kind::Heading;
                    heading.level = setext.captured(1).startsWith(QLatin1Char('=')) ? 1 : 2;
                    heading.text = joinParagraph(pending);
                    pending.clear();
                    out.push_back(std::move(heading));
                    ++i;
                    continue;
                }
            }
            if (mayBeBreak(first) && patterns().thematicBreak.match(line).hasMatch()) {
                flush();
                out.push_back(MarkdownBlock{MarkdownBlock::Kind::Rule});
                ++i;
                continue;
            }
            const bool nests = depth < maximumDepth;
            if (nests && first == QLatin1Char('>') && patterns().quoteLine.match(line).hasMatch()) {
                i = quote(i);
                continue;
            }
            if (const std::optional<Marker> marker = mayBeMarker(first) ? parseMarker(line) : std::nullopt;
                nests && marker && (pending.isEmpty() || mayInterrupt(*marker))) {
                flush();
                i = list(i, *marker);
                continue;
            }
            if (const std::optional<qsizetype> next = table(i)) {
                i = *next;
                continue;
            }
            pending.append(line.mid(leadingSpaces(line)));
            ++i;
        }
        flush();
    }
};

} // namespace

std::vector<MarkdownBlock> parse(const QString& text)
{
    QString normalised = text;
    normalised.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    normalised.replace(QLatin1Char('\t'), QLatin1String("    "));
    return parseLines(normalised.split(QLatin1Char('\n')));
}

std::vector<MarkdownBlock> parseLines(const QStringList& lines)
{
    return parseNested(lines, 0);
}

namespace {
std::vector<MarkdownBlock> parseNested(const QStringList& lines, int depth)
{
    Loop loop{lines, depth, {}, {}};
    loop.run();
    return std::move(loop.out);
}
} // namespace

std::optional<Marker> parseMarker(const QString& line)
{
    const QRegularExpressionMatch match = patterns().listItem.match(line);
    if (!match.hasMatch())
        return std::nullopt;
    const QString marker = match.captured(2);
    Marker out;
    out.ordered = marker[0].isDigit();
    out.symbol = marker.back();
    if (out.ordered) {
        bool ok = false;
        const int number = marker.chopped(1).toInt(&ok);
        out.number = ok ? number : 1;
    }
    const bool spaced = match.hasCaptured(3);
    const qsizetype gap = spaced ? match.capturedLength(3) : 0;
    const qsizetype spacing = gap >= 1 && gap <= 4 ? gap : 1;
    out.width = int(match.capturedLength(1) + marker.size() + spacing);
    out.rest = QString(spaced ? gap - spacing : 0, QLatin1Char(' ')) + match.captured(4);
    return out;
}

bool startsBlock(const QString& line)
{
    const QChar first = lead(line);
    if ((mayBeFence(first) && patterns().openingFence.match(line).hasMatch()) ||
        (first == QLatin1Char('#') && patterns().atxHeading.match(line).hasMatch()) ||
        (mayBeBreak(first) && patterns().thematicBreak.match(line).hasMatch()) ||
        (first == QLatin1Char('>') && patterns().quoteLine.match(line).hasMatch()))
        return true;
    if (!mayBeMarker(first))
        return false;
    const std::optional<Marker> marker = parseMarker(line);
    return marker && mayInterrupt(*marker);
}

QStringList splitTableRow(const QString& line)
{
    QString text = line.trimmed();
    if (text.startsWith(QLatin1Char('|')))
        text.remove(0, 1);
    if (text.endsWith(QLatin1Char('|')) && !text.endsWith(QLatin1String("\\|")))
        text.chop(1);
    QStringList cells;
    QString cell;
    bool escaped = false;
    for (QChar c : text) {
        if (c == QLatin1Char('\\')) {
            escaped = !escaped;
            cell += c;
        } else if (c == QLatin1Char('|') && !escaped) {
            cells.append(cell.trimmed());
            cell.clear();
        } else {
            cell += c;
            escaped = false;
        }
    }
    cells.append(cell.trimmed());
    return cells;
}

} // namespace Kestro::MarkdownParser
