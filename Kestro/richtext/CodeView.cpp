#include "CodeView.h"

#include "CodeTones.h"
#include "Diff.h"

#include <QClipboard>
#include <QGuiApplication>

namespace Kestro {

namespace {

// Escaped for rich text, spaces kept as they are (indentation matters).
QString codeText(QStringView text)
{
    return text.toString().toHtmlEscaped().replace(QLatin1Char(' '), QLatin1String("&nbsp;"));
}

QString tonedHtml(const QString& line, const QVariantMap& tones)
{
    static const char* const names[] = {"string", "comment", "number", "keyword", "call"};
    QString html;
    qsizetype at = 0;
    for (const CodeTones::Span& span : CodeTones::tones(line)) {
        html += codeText(QStringView(line).mid(at, span.start - at));
        const QString text = codeText(QStringView(line).mid(span.start, span.length));
        const QString colour = tones.value(QString::fromLatin1(names[int(span.tone)])).toString();
        if (span.tone == CodeTones::Tone::Call)
            html += QStringLiteral("<span style=\"color:%1;font-weight:500\">%2</span>").arg(colour, text);
        else
            html += QStringLiteral("<span style=\"color:%1\">%2</span>").arg(colour, text);
        at = span.start + span.length;
    }
    return html + codeText(QStringView(line).mid(at));
}

} // namespace

QVariantList CodeView::lines(const QString& code, const QString& lang, int start, int mark, bool bare,
                             const QVariantMap& tones)
{
    const bool tinted = CodeTones::isTinted(lang);
    const std::optional<QString> language = lang.isEmpty() ? std::nullopt : std::optional<QString>(lang);
    QVariantList out;
    const QStringList source = code.split(QLatin1Char('\n'));
    for (qsizetype i = 0; i < source.size(); ++i) {
        const int number = start + int(i);
        const QString& line = source[i];
        static const char* const tints[] = {"", "marked", "added", "removed"};
        const auto tint = CodeTones::lineTint(
            line, number, mark > 0 ? std::optional<int>(mark) : std::nullopt, bare, language);
        const QString html = tinted ? tonedHtml(line, tones) : codeText(line);
        out.append(QVariantMap{{QStringLiteral("number"), number},
                               {QStringLiteral("html"), html},
                               {QStringLiteral("tint"), QString::fromLatin1(tints[int(tint)])}});
    }
    return out;
}

QVariantList CodeView::diff(const QString& oldText, const QString& newText)
{
    static const char* const kinds[] = {"kept", "added", "removed"};
    QVariantList out;
    for (const Diff::Line& line : Diff::compare(oldText, newText))
        out.append(QVariantMap{{QStringLiteral("kind"), QString::fromLatin1(kinds[int(line.kind)])},
                               {QStringLiteral("text"), line.text},
                               {QStringLiteral("oldNumber"), line.oldNumber},
                               {QStringLiteral("newNumber"), line.newNumber}});
    return out;
}

QString CodeView::noChangeText()
{
    return Diff::noChangeText();
}

void CodeView::copy(const QString& text)
{
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->clear();
    clipboard->setText(text);
}

} // namespace Kestro
