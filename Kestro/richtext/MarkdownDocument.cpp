#include "MarkdownDocument.h"

#include "Inline.h"
#include "MarkdownParser.h"

#include <QUrl>

#include <algorithm>

namespace Kestro {

namespace {

// One styled run as Qt rich text, styled here rather than by the view so a
// text item shows it as it comes: code spans in the mono face, links in the
// theme's link colour and underlined.
QString runHtml(const Inline::Run& run, bool images, const QString& linkColor)
{
    QString text = run.text.toHtmlEscaped();
    text.replace(QLatin1Char('\n'), QLatin1String("<br>"));
    if (run.image) {
        // Only images the caller allows are shown; otherwise their description.
        if (images && Inline::isOwnImage(*run.image))
            return QStringLiteral("<img src=\"image://own%1\" alt=\"%2\" width=\"480\">")
                .arg(run.image->toHtmlEscaped(), text);
        text = QStringLiteral("[%1]").arg(text);
    }
    switch (run.face) {
    case Inline::Run::Face::Code:
        text = QStringLiteral("<span style=\"font-family:'Geist Mono'\">%1</span>").arg(text);
        break;
    case Inline::Run::Face::Strong:
        text = QStringLiteral("<span style=\"font-weight:600\">%1</span>").arg(text);
        break;
    case Inline::Run::Face::Emphasis:
        text = QStringLiteral("<i>%1</i>").arg(text);
        break;
    case Inline::Run::Face::StrongEmphasis:
        text = QStringLiteral("<i><span style=\"font-weight:600\">%1</span></i>").arg(text);
        break;
    case Inline::Run::Face::Plain:
        break;
    }
    if (run.strike)
        text = QStringLiteral("<s>%1</s>").arg(text);
    if (run.link)
        text = QStringLiteral("<a style=\"color:%1;text-decoration:underline\" href=\"%2\">%3</a>")
                   .arg(linkColor, run.link->toHtmlEscaped(), text);
    return text;
}

struct Options {
    int citations = 0;
    bool images = false;
    bool embeds = false;
    double size = 14;
    bool document = false;
    QString linkColor;
};

QString inlineHtml(const QString& markdown, const Options& options, bool citations = true)
{
    QString html;
    for (const Inline::Run& run : Inline::style(markdown, citations ? options.citations : 0))
        html += runHtml(run, options.images, options.linkColor);
    return html;
}

// The posts on X a paragraph links to, each once, by canonical address.
QVariantList postsOf(const QString& text)
{
    QVariantList posts;
    QStringList seen;
    for (const Inline::Run& run : Inline::style(text)) {
        if (!run.link)
            continue;
        const std::optional<QString> post = Inline::postLink(*run.link);
        if (!post || seen.contains(*post))
            continue;
        seen.append(*post);
        const QStringList parts = QUrl(*post).path().split(QLatin1Char('/'), Qt::SkipEmptyParts);
        posts.append(QVariantMap{{QStringLiteral("address"), *post},
                                 {QStringLiteral("user"), parts.value(0)},
                                 {QStringLiteral("id"), parts.value(2)}});
    }
    return posts;
}

QVariantList blockList(const std::vector<MarkdownBlock>& blocks, const Options& options);

// The html of blocks that are one run of flowing text, else empty: a quote
// or a list item holding only text is drawn as one text item, with no
// stack of block views inside it.
QString soleFlow(const QVariantList& blocks)
{
    if (blocks.size() != 1)
        return {};
    const QVariantMap block = blocks.front().toMap();
    return block.value(QStringLiteral("kind")) == QLatin1String("flow")
               ? block.value(QStringLiteral("html")).toString()
               : QString();
}

QVariantMap blockMap(const MarkdownBlock& block, const Options& options)
{
    static const char* const kinds[] = {"heading", "paragraph", "code", "quote", "list", "table", "rule"};
    QVariantMap map{{QStringLiteral("kind"), QString::fromLatin1(kinds[int(block.kind)])}};
    switch (block.kind) {
    case MarkdownBlock::Kind::Heading:
        map.insert(QStringLiteral("level"), block.level);
        map.insert(QStringLiteral("html"), inlineHtml(block.text, options, false));
        break;
    case MarkdownBlock::Kind::Paragraph:
        map.insert(QStringLiteral("html"), inlineHtml(block.text, options));
        if (options.embeds)
            map.insert(QStringLiteral("posts"), postsOf(block.text));
        break;
    case MarkdownBlock::Kind::Code:
        map.insert(QStringLiteral("code"), block.text);
        map.insert(QStringLiteral("lang"), block.lang.value_or(QString()));
        break;
    case MarkdownBlock::Kind::Quote: {
        const QVariantList inner = blockList(block.blocks, options);
        map.insert(QStringLiteral("blocks"), inner);
        map.insert(QStringLiteral("html"), soleFlow(inner));
        break;
    }
    case MarkdownBlock::Kind::List: {
        QVariantList items;
        for (const MarkdownItem& item : block.items) {
            const QVariantList inner = blockList(item.blocks, options);
            items.append(QVariantMap{{QStringLiteral("task"), item.task ? QVariant(*item.task) : QVariant()},
                                     {QStringLiteral("blocks"), inner},
                                     {QStringLiteral("html"), soleFlow(inner)}});
        }
        map.insert(QStringLiteral("ordered"), block.ordered);
        map.insert(QStringLiteral("start"), block.start);
        map.insert(QStringLiteral("items"), items);
        break;
    }
    case MarkdownBlock::Kind::Table: {
        QVariantList head, rows;
        for (const QString& cell : block.head)
            head.append(inlineHtml(cell, options, false));
        for (const QStringList& row : block.rows) {
            QVariantList cells;
            for (const QString& cell : row)
                cells.append(inlineHtml(cell, options, false));
            rows.append(QVariant(cells));
        }
        map.insert(QStringLiteral("head"), head);
        map.insert(QStringLiteral("rows"), rows);
        break;
    }
    case MarkdownBlock::Kind::Rule:
        break;
    }
    return map;
}

// Headings, paragraphs and plain lists read as one run of text, so they are
// laid out as one rich text ("flow") rather than an item each: a typical
// answer becomes a single text item, which is most of what a long chat
// costs to show. Code, tables, quotes (with their bar), rules, task lists,
// lists that count from elsewhere than 1, and paragraphs with embedded
// posts keep their own views.
bool flows(const MarkdownBlock& block, const Options& options);

bool itemFlows(const MarkdownItem& item, const Options& options)
{
    if (item.task || item.blocks.empty() || item.blocks.front().kind != MarkdownBlock::Kind::Paragraph ||
        !flows(item.blocks.front(), options))
        return false;
    return std::all_of(item.blocks.begin() + 1, item.blocks.end(), [&](const MarkdownBlock& b) {
        return b.kind == MarkdownBlock::Kind::List && flows(b, options);
    });
}

bool flows(const MarkdownBlock& block, const Options& options)
{
    switch (block.kind) {
    case MarkdownBlock::Kind::Heading:
        return true;
    case MarkdownBlock::Kind::Paragraph:
        return !options.embeds || postsOf(block.text).isEmpty();
    case MarkdownBlock::Kind::List:
        // Qt's rich text counts every ordered list from 1.
        return (!block.ordered || block.start == 1) &&
               std::all_of(block.items.begin(), block.items.end(),
                           [&](const MarkdownItem& item) { return itemFlows(item, options); });
    default:
        return false;
    }
}

// Block spacing as the stacked views have it: the gap between blocks, 4 px
// between list items, a little more above headings.
QString flowListHtml(const MarkdownBlock& list, const Options& options, int gap)
{
    QString html = QStringLiteral("<%1 style=\"margin-top:%2px;margin-bottom:0px\">")
                       .arg(list.ordered ? QStringLiteral("ol") : QStringLiteral("ul"))
                       .arg(gap);
    bool first = true;
    for (const MarkdownItem& item : list.items) {
        html += QStringLiteral("<li style=\"margin-top:%1px\">").arg(first ? 0 : 4);
        first = false;
        html += inlineHtml(item.blocks.front().text, options);
        for (auto it = item.blocks.begin() + 1; it != item.blocks.end(); ++it)
            html += flowListHtml(*it, options, 4);
        html += QStringLiteral("</li>");
    }
    return html + QStringLiteral("</%1>").arg(list.ordered ? QStringLiteral("ol") : QStringLiteral("ul"));
}

QString flowHtml(const MarkdownBlock& block, const Options& options, int gap)
{
    static const double headingSizes[] = {1.75, 1.45, 1.25, 1.1, 1.0, 0.95};
    switch (block.kind) {
    case MarkdownBlock::Kind::Heading: {
        const int level = std::clamp(block.level, 1, 6);
        return QStringLiteral("<p style=\"margin-top:%1px;margin-bottom:0px;font-family:'%2';"
                              "font-size:%3px;font-weight:600\">%4</p>")
            .arg(gap + (options.document ? 6 : 2))
            .arg(level <= 2 ? QStringLiteral("Plus Jakarta Sans") : QStringLiteral("Geist"))
            .arg(qRound(options.size * headingSizes[level - 1]))
            .arg(inlineHtml(block.text, options, false));
    }
    case MarkdownBlock::Kind::List:
        return flowListHtml(block, options, gap);
    default:
        return QStringLiteral("<p style=\"margin-top:%1px;margin-bottom:0px\">%2</p>")
            .arg(gap)
            .arg(inlineHtml(block.text, options));
    }
}

QVariantList blockList(const std::vector<MarkdownBlock>& blocks, const Options& options)
{
    const int gap = options.document ? 14 : 10;
    QVariantList out;
    QString flow;
    auto flush = [&] {
        if (flow.isEmpty())
            return;
        out.append(
            QVariantMap{{QStringLiteral("kind"), QStringLiteral("flow")}, {QStringLiteral("html"), flow}});
        flow.clear();
    };
    for (const MarkdownBlock& block : blocks) {
        if (flows(block, options)) {
            flow += flowHtml(block, options, flow.isEmpty() ? 0 : gap);
            continue;
        }
        flush();
        out.append(blockMap(block, options));
    }
    flush();
    return out;
}

} // namespace

QString MarkdownDocument::linkTarget(const QString& address) const
{
    switch (Inline::targetOf(address)) {
    case Inline::Target::Anchor:
        return QStringLiteral("anchor");
    case Inline::Target::AppPath:
        return QStringLiteral("app");
    case Inline::Target::System:
        break;
    }
    return QStringLiteral("system");
}

QString MarkdownDocument::appPath(const QString& address) const
{
    return Inline::appPathOf(address);
}

void MarkdownDocument::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    rebuild();
}

void MarkdownDocument::setCitations(int citations)
{
    if (citations == m_citations)
        return;
    m_citations = citations;
    rebuild();
}

void MarkdownDocument::setImages(bool images)
{
    if (images == m_images)
        return;
    m_images = images;
    rebuild();
}

void MarkdownDocument::setEmbeds(bool embeds)
{
    if (embeds == m_embeds)
        return;
    m_embeds = embeds;
    rebuild();
}

void MarkdownDocument::setSize(double size)
{
    if (qFuzzyCompare(size, m_size))
        return;
    m_size = size;
    rebuild();
}

void MarkdownDocument::setLinkColor(const QColor& color)
{
    if (color == m_linkColor)
        return;
    m_linkColor = color;
    rebuild();
}

void MarkdownDocument::setDocument(bool document)
{
    if (document == m_document)
        return;
    m_document = document;
    rebuild();
}

QVariantList MarkdownDocument::blocks() const
{
    // Parsed when first read after a change, so setting the text and its
    // options together parses once.
    if (m_dirty) {
        m_blocks = blockList(MarkdownParser::parse(m_text), Options{m_citations, m_images, m_embeds, m_size,
                                                                    m_document, m_linkColor.name()});
        m_dirty = false;
    }
    return m_blocks;
}

QString MarkdownDocument::soleHtml() const
{
    return soleFlow(blocks());
}

void MarkdownDocument::rebuild()
{
    m_dirty = true;
    emit changed();
}

} // namespace Kestro
