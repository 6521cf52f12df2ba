// The Markdown block grammar, table-driven: each row is a text and a compact
// dump of the blocks it must give.

#include "richtext/MarkdownParser.h"

#include <QTest>

using namespace Kestro;
using namespace Qt::Literals::StringLiterals;

namespace {

QString quoted(const QString& text)
{
    QString out = text;
    out.replace(QLatin1Char('\n'), QLatin1String("\\n"));
    return u"\""_s + out + u"\""_s;
}

// h2"text"  p"text"  code(lang)"text"  quote[...]  ol3[...] / ul[...]  item[...] task+/task-
// table("a"|"b"; "1"|"2")  rule
QString dump(const std::vector<MarkdownBlock>& blocks);

QString dump(const MarkdownBlock& block)
{
    switch (block.kind) {
    case MarkdownBlock::Kind::Heading:
        return u"h%1"_s.arg(block.level) + quoted(block.text);
    case MarkdownBlock::Kind::Paragraph:
        return u"p"_s + quoted(block.text);
    case MarkdownBlock::Kind::Code:
        return u"code("_s + block.lang.value_or(QString()) + u")"_s + quoted(block.text);
    case MarkdownBlock::Kind::Quote:
        return u"quote["_s + dump(block.blocks) + u"]"_s;
    case MarkdownBlock::Kind::List: {
        QStringList items;
        for (const MarkdownItem& item : block.items)
            items.append((item.task ? (*item.task ? u"task+"_s : u"task-"_s) : u"item"_s) + u"["_s +
                         dump(item.blocks) + u"]"_s);
        return (block.ordered ? u"ol%1"_s.arg(block.start) : u"ul"_s) + u"["_s + items.join(u" "_s) + u"]"_s;
    }
    case MarkdownBlock::Kind::Table: {
        QStringList rows;
        for (const QStringList& row : QList<QStringList>{block.head} + block.rows) {
            QStringList cells;
            for (const QString& cell : row)
                cells.append(quoted(cell));
            rows.append(cells.join(u"|"_s));
        }
        return u"table("_s + rows.join(u"; "_s) + u")"_s;
    }
    case MarkdownBlock::Kind::Rule:
        return u"rule"_s;
    }
    return {};
}

QString dump(const std::vector<MarkdownBlock>& blocks)
{
    QStringList parts;
    for (const MarkdownBlock& block : blocks)
        parts.append(dump(block));
    return parts.join(u" "_s);
}

} // namespace

class MarkdownBlocksTest : public QObject {
    Q_OBJECT
private slots:
    void grammar_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("blocks");
        auto row = [](const char* name, const char* text, const char* blocks) {
            QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(blocks);
        };
        row("empty", "", "");
        row("blank lines", "\n  \n\n", "");
        // Paragraphs and breaks.
        row("lines join with a space", "one\ntwo", "p\"one two\"");
        row("two trailing spaces break", "one  \ntwo", "p\"one\\ntwo\"");
        row("backslash breaks", "one\\\ntwo", "p\"one\\ntwo\"");
        row("last line keeps its backslash", "one\\", "p\"one\\\"");
        row("last line's spaces go", "one  ", "p\"one\"");
        row("leading spaces go", "   one\n      two", "p\"one two\"");
        row("CRLF", "one\r\ntwo\r\n\r\nthree", "p\"one two\" p\"three\"");
        // Headings.
        row("atx", "# Title", "h1\"Title\"");
        row("atx closing hashes", "### Title ###", "h3\"Title\"");
        row("atx hash glued to text", "Title #5", "p\"Title #5\"");
        row("hash then letter", "#hashtag", "p\"#hashtag\"");
        row("seven hashes", "####### no", "p\"####### no\"");
        row("empty atx", "##", "h2\"\"");
        row("setext 1", "Title\n=====", "h1\"Title\"");
        row("setext 2, never a rule", "Title\n---", "h2\"Title\"");
        row("setext joins lines", "a\nb\n--", "h2\"a b\"");
        row("rule alone", "---", "rule");
        row("rule of stars with spaces", " * * *", "rule");
        row("text then blank then rule", "a\n\n___", "p\"a\" rule");
        // Fences.
        row("fence", "```js extra words\nlet a = 1;\n```", "code(js)\"let a = 1;\"");
        row("bare fence", "```\nx\n```", "code()\"x\"");
        row("short run does not close", "````\n```\nstill\n````", "code()\"```\\nstill\"");
        row("tilde does not close backticks", "```\n~~~\n```", "code()\"~~~\"");
        row("unclosed fence takes the rest", "```py\na\n\nb", "code(py)\"a\\n\\nb\"");
        row("fence indent removed from content", "  ```\n    x\n y\n  ```", "code()\"  x\\ny\"");
        row("fence interrupts a paragraph", "a\n```\nb\n```", "p\"a\" code()\"b\"");
        // Quotes.
        row("quote", "> a\n> b", "quote[p\"a b\"]");
        row("lazy continuation", "> a\nb", "quote[p\"a b\"]");
        row("blank ends a quote", "> a\n\nb", "quote[p\"a\"] p\"b\"");
        row("nested quote", "> > deep", "quote[quote[p\"deep\"]]");
        row("quote keeps one space off", ">  code?", "quote[p\"code?\"]");
        // Lists.
        row("bullets", "- a\n- b", "ul[item[p\"a\"] item[p\"b\"]]");
        row("ordered start", "3. a\n4. b", "ol3[item[p\"a\"] item[p\"b\"]]");
        row("2 does not interrupt a paragraph", "text\n2. two", "p\"text 2. two\"");
        row("1 interrupts a paragraph", "text\n1. one", "p\"text\" ol1[item[p\"one\"]]");
        row("bullet with text interrupts", "text\n- item", "p\"text\" ul[item[p\"item\"]]");
        row("empty bullet does not interrupt", "text\n*", "p\"text *\"");
        row("a lone hyphen under text is a setext line", "text\n-", "h2\"text\"");
        row("another bullet symbol starts a list", "- a\n* b", "ul[item[p\"a\"]] ul[item[p\"b\"]]");
        row("another delimiter starts a list", "1. a\n2) b", "ol1[item[p\"a\"]] ol2[item[p\"b\"]]");
        row("blank between items keeps the list", "- a\n\n- b", "ul[item[p\"a\"] item[p\"b\"]]");
        row("blank then unindented text ends it", "- a\n\nb", "ul[item[p\"a\"]] p\"b\"");
        row("lazy item line", "- a\nb", "ul[item[p\"a b\"]]");
        row("nested list", "- a\n  - b\n- c", "ul[item[p\"a\" ul[item[p\"b\"]]] item[p\"c\"]]");
        row("item with two paragraphs", "1. a\n\n   b", "ol1[item[p\"a\" p\"b\"]]");
        row("tasks", "- [x] done\n- [ ] open\n- [X] also",
            "ul[task+[p\"done\"] task-[p\"open\"] task+[p\"also\"]]");
        row("box without space is text", "- [x]done", "ul[item[p\"[x]done\"]]");
        row("wide gap keeps its spaces", "-      code", "ul[item[p\"code\"]]");
        row("bullet alone", "-", "ul[item[]]");
        row("tab counts as four spaces", "- a\n\tb", "ul[item[p\"a b\"]]");
        // Tables.
        row("table", "| a | b |\n|---|:-:|\n| 1 | 2 |", "table(\"a\"|\"b\"; \"1\"|\"2\")");
        row("table without outer pipes", "a | b\n--|--\n1 | 2", "table(\"a\"|\"b\"; \"1\"|\"2\")");
        row("rows fitted to the head", "|a|b|\n|-|-|\n|1|2|3|\n|1|",
            "table(\"a\"|\"b\"; \"1\"|\"2\"; \"1\"|\"\")");
        row("delimiter count differs: text", "|a|b|\n|-|\n|1|2|", "p\"|a|b| |-| |1|2|\"");
        row("escaped pipe stays in the cell", "|a|b|\n|-|-|\n|x \\| y|z|",
            "table(\"a\"|\"b\"; \"x \\| y\"|\"z\")");
        row("a row without pipes", "|a|b|\n|-|-|\nplain", "table(\"a\"|\"b\"; \"plain\"|\"\")");
        row("blank ends the table", "|a|\n|-|\n|1|\n\nafter", "table(\"a\"; \"1\") p\"after\"");
        row("a heading ends the table", "|a|\n|-|\n# h", "table(\"a\") h1\"h\"");
        row("table interrupts a paragraph", "text\n|a|\n|-|", "p\"text\" table(\"a\")");
        // A mixed document.
        row("document", "# Plan\n\nIntro *text*.\n\n- [ ] one\n- two\n\n> note\n\n```sh\nls\n```\n\n---",
            "h1\"Plan\" p\"Intro *text*.\" ul[task-[p\"one\"] item[p\"two\"]] quote[p\"note\"] "
            "code(sh)\"ls\" rule");
    }
    void grammar()
    {
        QFETCH(QString, text);
        QFETCH(QString, blocks);
        QCOMPARE(dump(MarkdownParser::parse(text)), blocks);
    }

    void markers()
    {
        using MarkdownParser::parseMarker;
        QVERIFY(!parseMarker(u"-no space"_s));
        QVERIFY(!parseMarker(u"    - too deep"_s));
        QVERIFY(!parseMarker(u"1234567890. ten digits"_s));
        const auto ordered = parseMarker(u"  12) twelve"_s);
        QVERIFY(ordered && ordered->ordered);
        QCOMPARE(ordered->symbol, QLatin1Char(')'));
        QCOMPARE(ordered->number, 12);
        QCOMPARE(ordered->width, 2 + 3 + 1);
        QCOMPARE(ordered->rest, u"twelve"_s);
        const auto wide = parseMarker(u"*      x"_s); // six spaces: spacing 1, five put back
        QCOMPARE(wide->width, 2);
        QCOMPARE(wide->rest, u"     x"_s);
        const auto bare = parseMarker(u"+"_s);
        QCOMPARE(bare->rest, u""_s);
        QCOMPARE(bare->number, 1);
    }

    void tableRows()
    {
        using MarkdownParser::splitTableRow;
        QCOMPARE(splitTableRow(u"| a | b |"_s), (QStringList{u"a"_s, u"b"_s}));
        QCOMPARE(splitTableRow(u"a|"_s), (QStringList{u"a"_s}));
        QCOMPARE(splitTableRow(u"| a \\|"_s), (QStringList{u"a \\|"_s}));
        QCOMPARE(splitTableRow(u"|a\\\\|b|"_s), (QStringList{u"a\\\\"_s, u"b"_s}));
        QCOMPARE(splitTableRow(u"||"_s), (QStringList{u""_s}));
    }

    void deepNestingDoesNotExhaustTheStack()
    {
        // Quotes and lists recurse; a hostile text must still parse.
        const QString deep = QString(u"> "_s).repeated(100'000) + u"bottom"_s;
        const auto blocks = MarkdownParser::parse(deep);
        QCOMPARE(blocks.size(), size_t(1));
        const MarkdownBlock* level = &blocks[0];
        int depth = 0;
        while (level->kind == MarkdownBlock::Kind::Quote) {
            level = &level->blocks[0];
            ++depth;
        }
        QCOMPARE(depth, 64); // past that the rest stays as text
        QVERIFY(level->text.endsWith(u"> bottom"_s));
        const QString list = QString(u"- "_s).repeated(5'000) + u"x"_s;
        QCOMPARE(MarkdownParser::parse(list).size(), size_t(1));
    }
};

QTEST_GUILESS_MAIN(MarkdownBlocksTest)
#include "tst_markdown_blocks.moc"
