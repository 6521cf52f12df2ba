#include "InlineMenu.h"

namespace Kestro::InlineMenu {

const QRegularExpression& skillPattern()
{
    static const QRegularExpression pattern(
        QStringLiteral(R"(^\s*(?:@[a-z0-9]+(?:-[a-z0-9]+)*[\s,:]+)*/([a-z0-9-]*)\z)"),
        QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

const QRegularExpression& documentPattern()
{
    static const QRegularExpression pattern(QStringLiteral(R"((?:^|\s)#([\p{L}\p{N}-]{0,40})\z)"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

const QRegularExpression& mentionPattern()
{
    static const QRegularExpression pattern(QStringLiteral(R"((?:^|\s)@([\p{L}\p{N}-]*)\z)"),
                                            QRegularExpression::UseUnicodePropertiesOption);
    return pattern;
}

std::optional<InlineHit> match(const QList<InlineSource>& sources, const QString& beforeCaret)
{
    for (int i = 0; i < sources.size(); ++i) {
        const QRegularExpressionMatch found = sources[i].pattern.match(beforeCaret);
        // A pattern without a query group, or one whose query does not come
        // right after the trigger character, cannot be picked safely.
        if (!found.hasMatch() || found.lastCapturedIndex() < 1 || found.capturedStart(1) < 1)
            continue;
        // The pick replaces the trigger character and the query, not the
        // space or the mentions before them.
        const int queryStart = int(found.capturedStart(1));
        return InlineHit{i, found.captured(1), queryStart - 1, int(beforeCaret.size())};
    }
    return std::nullopt;
}

Picked pick(const QString& text, const InlineHit& hit, const InlineOption& option, bool spaceAfter)
{
    QString insert = option.insert;
    const QString after = text.mid(hit.to);
    if (spaceAfter && !after.startsWith(QLatin1Char(' ')))
        insert += QLatin1Char(' ');
    const int caret =
        hit.from + int(insert.size()) + (spaceAfter && after.startsWith(QLatin1Char(' ')) ? 1 : 0);
    return {text.left(hit.from) + insert + after, caret};
}

QList<InlineOption> mentionOptions(const QList<Mention>& candidates, const QString& query)
{
    const QString typed = query.toLower();
    QList<InlineOption> out;
    for (const Mention& m : candidates) {
        if (!m.handle.startsWith(typed) && !m.name.toLower().contains(typed))
            continue;
        out.append({m.handle,
                    QLatin1Char('@') + m.handle,
                    false,
                    QLatin1Char('@') + m.handle,
                    {},
                    {},
                    m.avatar,
                    m.name});
        if (out.size() == maxMentions)
            break;
    }
    return out;
}

namespace {

// Matches that begin with the query first, then the rest, each in the
// order supplied.
template <typename T, typename Key>
QList<const T*> prefixFirst(const QList<T>& items, const QString& query, Key key)
{
    QList<const T*> starts, contains;
    for (const T& item : items) {
        const QString k = key(item);
        if (k.startsWith(query))
            starts.append(&item);
        else if (k.contains(query))
            contains.append(&item);
    }
    return starts + contains;
}

} // namespace

QString linkText(const QString& title)
{
    QString out;
    out.reserve(title.size());
    for (const QChar c : title) {
        if (c == QLatin1Char('[') || c == QLatin1Char(']') || c == QLatin1Char('\\'))
            out += QLatin1Char('\\');
        out += c;
    }
    return out;
}

QList<InlineOption> documentOptions(const QList<Document>& documents, const QString& query)
{
    QList<InlineOption> out;
    for (const Document* d :
         prefixFirst(documents, query.toLower(), [](const Document& d) { return d.title.toLower(); })) {
        out.append({d->slug,
                    QStringLiteral("[%1](/documents/%2)").arg(linkText(d->title), d->slug),
                    false,
                    {},
                    {},
                    {},
                    {},
                    d->title});
        if (out.size() == maxRows)
            break;
    }
    return out;
}

QList<InlineOption> skillOptions(const QList<Skill>& skills, const QString& query)
{
    QList<InlineOption> out;
    for (const Skill* s : prefixFirst(skills, query, [](const Skill& s) { return s.id; })) {
        out.append({s->id, QLatin1Char('/') + s->id, true, s->name, {}, s->description, {}, s->id});
        if (out.size() == maxRows)
            break;
    }
    return out;
}

} // namespace Kestro::InlineMenu
