#include "MarkdownDocument.h"

#include "Inline.h"
#include "MarkdownParser.h"

#include <QUrl>

namespace Kestro {

namespace {

QString runHtml(const Inline::Run& run, bool images)
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
        text = QStringLiteral("<code>%1</code>").arg(text);
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
        text = QStringLiteral("<a href=\"%1\">%2</a>").arg(run.link->toHtmlEscaped(), text);
    return text;
}

struct Options {
    int citations = 0;
    bool images = false;
    bool embeds = false;
};

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

QVariantMap blockMap(const MarkdownBlock& block, const Options& options)
{
    const int citations = options.citations;
    const bool images = options.images;
    static const char* const kinds[] = {"heading", "paragraph", "code", "quote", "list", "table", "rule"};
    QVariantMap map{{QStringLiteral("kind"), QString::fromLatin1(kinds[int(block.kind)])}};
    switch (block.kind) {
    case MarkdownBlock::Kind::Heading:
        map.insert(QStringLiteral("level"), block.level);
        map.insert(QStringLiteral("html"), MarkdownDocument::inlineHtml(block.text, 0, images));
        break;
    case MarkdownBlock::Kind::Paragraph:
        map.insert(QStringLiteral("html"), MarkdownDocument::inlineHtml(block.text, citations, images));
        if (options.embeds)
            map.insert(QStringLiteral("posts"), postsOf(block.text));
        break;
    case MarkdownBlock::Kind::Code:
        map.insert(QStringLiteral("code"), block.text);
        map.insert(QStringLiteral("lang"), block.lang.value_or(QString()));
        break;
    case MarkdownBlock::Kind::Quote:
        map.insert(QStringLiteral("blocks"), blockList(block.blocks, options));
        break;
    case MarkdownBlock::Kind::List: {
        QVariantList items;
        for (const MarkdownItem& item : block.items)
            items.append(QVariantMap{{QStringLiteral("task"), item.task ? QVariant(*item.task) : QVariant()},
                                     {QStringLiteral("blocks"), blockList(item.blocks, options)}});
        map.insert(QStringLiteral("ordered"), block.ordered);
        map.insert(QStringLiteral("start"), block.start);
        map.insert(QStringLiteral("items"), items);
        break;
    }
    case MarkdownBlock::Kind::Table: {
        QVariantList head, rows;
        for (const QString& cell : block.head)
            head.append(MarkdownDocument::inlineHtml(cell, 0, images));
        for (const QStringList& row : block.rows) {
            QVariantList cells;
            for (const QString& cell : row)
                cells.append(MarkdownDocument::inlineHtml(cell, 0, images));
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

QVariantList blockList(const std::vector<MarkdownBlock>& blocks, const Options& options)
{
    QVariantList out;
    for (const MarkdownBlock& block : blocks)
        out.append(blockMap(block, options));
    return out;
}

} // namespace

QString MarkdownDocument::inlineHtml(const QString& markdown, int citations, bool images)
{
    QString html;
    for (const Inline::Run& run : Inline::style(markdown, citations))
        html += runHtml(run, images);
    return html;
}

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

void MarkdownDocument::rebuild()
{
    m_blocks = blockList(MarkdownParser::parse(m_text), Options{m_citations, m_images, m_embeds});
    emit changed();
}

} // namespace Kestro
