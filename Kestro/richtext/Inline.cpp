#include "Inline.h"

#include <QRegularExpression>
#include <QUrl>

#include <cmark-gfm-core-extensions.h>
#include <cmark-gfm.h>

namespace Kestro::Inline {

namespace {

QRegularExpression compiled(const char* pattern)
{
    QRegularExpression re(QString::fromUtf8(pattern), QRegularExpression::UseUnicodePropertiesOption);
    if (!re.isValid())
        qFatal("The inline pattern %s does not compile: %s", pattern, qPrintable(re.errorString()));
    return re;
}

// cmark-gfm only parses whole documents. The text handed in is the inline
// content of one block, already cut out by the block parser, so it must
// never be read as blocks again: a line of it that cmark would take for a
// block start (a heading, quote, list item, fence, rule, setext line, HTML
// block or link reference definition) gets its first significant character
// backslash-escaped, which CommonMark always reads as that literal
// character. Lines are the text's start and whatever follows a "\n" (the
// block parser's hard breaks).
QString neutraliseBlockStarts(const QString& text)
{
    static const QRegularExpression blockStart = compiled(
        "^( {0,3})(?:#{1,6}(?:[ \\t]|$)|>|```|~~~|[-*+](?:[ \\t]|$)|\\d{1,9}[.)](?:[ \\t]|$)|"
        "(?:(?:\\*[ \\t]*){3,}|(?:-[ \\t]*){3,}|(?:_[ \\t]*){3,})$|=+[ \\t]*$|-+[ \\t]*$|"
        "\\[[^\\]]*\\]:|<(?![A-Za-z][A-Za-z0-9.+-]{1,31}:[^<> ]*>)(?![^<> @]+@[^<> ]+>)[A-Za-z/!?])");
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString& line : lines) {
        const QRegularExpressionMatch match = blockStart.match(line);
        if (!match.hasMatch())
            continue;
        const qsizetype at = match.capturedLength(1);
        // For an ordered marker the delimiter is what makes it a marker.
        qsizetype escapeAt = at;
        while (escapeAt < line.size() && line[escapeAt].isDigit())
            ++escapeAt;
        line.insert(escapeAt, QLatin1Char('\\'));
    }
    return lines.join(QLatin1Char('\n'));
}

struct Walker {
    QList<Run> runs;
    int strong = 0, emphasis = 0, strike = 0;
    std::optional<QString> link;

    Run::Face face() const
    {
        if (strong && emphasis)
            return Run::Face::StrongEmphasis;
        if (strong)
            return Run::Face::Strong;
        if (emphasis)
            return Run::Face::Emphasis;
        return Run::Face::Plain;
    }
    void add(const QString& text, Run::Face f)
    {
        if (text.isEmpty())
            return;
        Run run{text, f, strike > 0, link, std::nullopt};
        // cmark-gfm does not merge adjacent text nodes: merge alike runs here.
        if (!runs.isEmpty() && runs.last().face == run.face && runs.last().strike == run.strike &&
            runs.last().link == run.link && !runs.last().image) {
            runs.last().text += text;
            return;
        }
        runs.append(run);
    }
    static QString plainText(cmark_node* node)
    {
        QString out;
        for (cmark_node* child = cmark_node_first_child(node); child; child = cmark_node_next(child)) {
            if (const char* literal = cmark_node_get_literal(child))
                out += QString::fromUtf8(literal);
            out += plainText(child);
        }
        return out;
    }
    void walk(cmark_node* parent)
    {
        for (cmark_node* node = cmark_node_first_child(parent); node; node = cmark_node_next(node)) {
            const char* literal = cmark_node_get_literal(node);
            switch (cmark_node_get_type(node)) {
            case CMARK_NODE_TEXT:
            case CMARK_NODE_HTML_INLINE:
                add(QString::fromUtf8(literal ? literal : ""), face());
                break;
            case CMARK_NODE_CODE:
                add(QString::fromUtf8(literal ? literal : ""), Run::Face::Code);
                break;
            case CMARK_NODE_SOFTBREAK:
            case CMARK_NODE_LINEBREAK:
                add(QStringLiteral("\n"), face()); // whitespace is preserved
                break;
            case CMARK_NODE_STRONG:
                ++strong;
                walk(node);
                --strong;
                break;
            case CMARK_NODE_EMPH:
                ++emphasis;
                walk(node);
                --emphasis;
                break;
            case CMARK_NODE_LINK: {
                const QString url = QString::fromUtf8(cmark_node_get_url(node));
                const std::optional<QString> outer = link;
                if (isAllowedLink(url))
                    link = url;
                walk(node);
                link = outer;
                break;
            }
            case CMARK_NODE_IMAGE:
                runs.append(Run{plainText(node), face(), strike > 0, link,
                                QString::fromUtf8(cmark_node_get_url(node))});
                break;
            default:
                if (QLatin1String(cmark_node_get_type_string(node)) == QLatin1String("strikethrough")) {
                    ++strike;
                    walk(node);
                    --strike;
                } else {
                    walk(node); // paragraphs and anything unexpected: their inlines
                }
            }
        }
    }
};

// "[n]" in plain text becomes a link to the n-th source when there is one.
QList<Run> linkCitations(const QList<Run>& runs, int citations)
{
    static const QRegularExpression cite = compiled("\\[(\\d{1,2})\\]");
    QList<Run> out;
    for (const Run& run : runs) {
        if (run.link || run.image || run.face == Run::Face::Code || citations <= 0) {
            out.append(run);
            continue;
        }
        qsizetype from = 0;
        auto it = cite.globalMatch(run.text);
        while (it.hasNext()) {
            const QRegularExpressionMatch match = it.next();
            const int n = match.captured(1).toInt();
            if (n < 1 || n > citations)
                continue;
            Run before = run;
            before.text = run.text.mid(from, match.capturedStart(0) - from);
            if (!before.text.isEmpty())
                out.append(before);
            Run linked = run;
            linked.text = match.captured(0);
            linked.link = QStringLiteral("#source-%1").arg(n);
            out.append(linked);
            from = match.capturedEnd(0);
        }
        Run rest = run;
        rest.text = run.text.mid(from);
        if (!rest.text.isEmpty())
            out.append(rest);
    }
    return out;
}

} // namespace

QList<Run> style(const QString& text, int citations)
{
    cmark_gfm_core_extensions_ensure_registered();
    cmark_parser* parser = cmark_parser_new(CMARK_OPT_DEFAULT);
    for (const char* name : {"strikethrough", "autolink"})
        if (cmark_syntax_extension* extension = cmark_find_syntax_extension(name))
            cmark_parser_attach_syntax_extension(parser, extension);
    const QByteArray source = neutraliseBlockStarts(text).toUtf8();
    cmark_parser_feed(parser, source.constData(), size_t(source.size()));
    cmark_node* document = cmark_parser_finish(parser);
    Walker walker;
    if (document) {
        walker.walk(document);
        cmark_node_free(document);
    }
    cmark_parser_free(parser);
    if (walker.runs.isEmpty() && !text.trimmed().isEmpty())
        return {Run{text}}; // nothing came back: the text as it stands
    return linkCitations(walker.runs, citations);
}

bool isAllowedLink(const QString& address)
{
    const QUrl url(address);
    if (url.scheme().isEmpty())
        return true;
    static const QStringList allowed{
        QStringLiteral("http"), QStringLiteral("https"), QStringLiteral("mailto"), QStringLiteral("xmpp"),
        QStringLiteral("irc"),  QStringLiteral("ircs"),  QStringLiteral("app")};
    return allowed.contains(url.scheme().toLower());
}

Target targetOf(const QString& address)
{
    static const QRegularExpression appPath = compiled("^/(?![/\\\\])[^\\s\\\\]*$");
    if (address.startsWith(QLatin1Char('#')))
        return Target::Anchor;
    // Every "app:" link is the router's to open, whatever follows.
    if (address.startsWith(QLatin1String("app:")) || appPath.match(address).hasMatch())
        return Target::AppPath;
    return Target::System;
}

QString appPathOf(const QString& address)
{
    return address.startsWith(QLatin1String("app:")) ? address.mid(4) : address;
}

bool isOwnImage(const QString& path)
{
    static const QRegularExpression own =
        compiled("^/api/docs/[a-z0-9-]+/images/[0-9a-f-]{36}\\.(?:png|jpg|gif|webp)"
                 "(?:\\?(?:doc=[0-9a-f]{24}&share=|dashboard=[0-9a-f]{24}&token=)[\\w-]{43})?$");
    return own.match(path).hasMatch();
}

std::optional<QString> postLink(const QString& address)
{
    static const QRegularExpression post =
        compiled("^/(\\w{1,15})(?:/web)?/status(?:es)?/(\\d{1,20})(?:/(?:photo|video)/\\d)?/?$");
    const QUrl url(address);
    if (url.scheme() != QLatin1String("https"))
        return std::nullopt;
    static const QStringList hosts{QStringLiteral("x.com"),           QStringLiteral("www.x.com"),
                                   QStringLiteral("mobile.x.com"),    QStringLiteral("twitter.com"),
                                   QStringLiteral("www.twitter.com"), QStringLiteral("mobile.twitter.com")};
    if (!hosts.contains(url.host()))
        return std::nullopt;
    const QRegularExpressionMatch match = post.match(url.path());
    if (!match.hasMatch())
        return std::nullopt;
    return QStringLiteral("https://x.com/%1/status/%2").arg(match.captured(1), match.captured(2));
}

} // namespace Kestro::Inline
