#include "CodeTones.h"

#include <QRegularExpression>
#include <QSet>

namespace Kestro::CodeTones {

namespace {

const QRegularExpression& tokenPattern()
{
    // Strings (double and single quoted with escapes, backticks without),
    // a line comment, a number, an identifier. Unicode-aware \b \d \w.
    static const QRegularExpression re = [] {
        QRegularExpression p(
            QString::fromUtf8(
                R"re(("(?:\\.|[^"\\])*"|'(?:\\.|[^'\\])*'|`[^`]*`|//.*$|\b\d+(?:\.\d+)?\b|\b[A-Za-z_$][\w$]*\b))re"),
            QRegularExpression::UseUnicodePropertiesOption);
        if (!p.isValid())
            qFatal("The code tone pattern does not compile: %s", qPrintable(p.errorString()));
        return p;
    }();
    return re;
}

bool isKeyword(QStringView token)
{
    static const QSet<QString> keywords = [] {
        QSet<QString> set;
        for (const char* word : {"import", "from", "export", "default",   "async",  "function",  "const",
                                 "let",    "var",  "await",  "return",    "if",     "else",      "for",
                                 "while",  "new",  "throw",  "try",       "catch",  "class",     "extends",
                                 "null",   "true", "false",  "undefined", "typeof", "interface", "type"})
            set.insert(QString::fromLatin1(word));
        return set;
    }();
    return keywords.contains(token.toString());
}

} // namespace

bool isTinted(const QString& lang)
{
    static const QSet<QString> tinted{
        QStringLiteral("js"),         QStringLiteral("jsx"),        QStringLiteral("ts"),
        QStringLiteral("tsx"),        QStringLiteral("mjs"),        QStringLiteral("cjs"),
        QStringLiteral("javascript"), QStringLiteral("typescript"), QStringLiteral("json")};
    return tinted.contains(lang.toLower());
}

std::optional<Tone> toneOf(QStringView token, QStringView rest)
{
    if (token.isEmpty())
        return std::nullopt;
    const QChar first = token[0];
    if (first == QLatin1Char('"') || first == QLatin1Char('\'') || first == QLatin1Char('`'))
        return Tone::String;
    if (token.startsWith(QLatin1String("//")))
        return Tone::Comment;
    if (first.isNumber())
        return Tone::Number;
    if (isKeyword(token))
        return Tone::Keyword;
    if (rest.trimmed().startsWith(QLatin1Char('(')))
        return Tone::Call;
    return std::nullopt;
}

QList<Span> tones(QStringView line)
{
    QList<Span> spans;
    if (line.size() > maximumLineLength)
        return spans;
    auto it = tokenPattern().globalMatch(line);
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        const qsizetype start = match.capturedStart(0);
        const qsizetype length = match.capturedLength(0);
        if (const auto tone = toneOf(line.mid(start, length), line.mid(start + length)))
            spans.append({start, length, *tone});
    }
    return spans;
}

LineTint lineTint(QStringView line, int number, std::optional<int> mark, bool bare,
                  const std::optional<QString>& lang)
{
    if (!bare && mark && *mark == number)
        return LineTint::Marked;
    if (lang && *lang == QLatin1String("diff")) {
        if (line.startsWith(QLatin1Char('+')))
            return LineTint::Added;
        if (line.startsWith(QLatin1Char('-')))
            return LineTint::Removed;
    }
    return LineTint::None;
}

} // namespace Kestro::CodeTones
