#include "Appcast.h"

#include <QRegularExpression>
#include <QXmlStreamReader>

namespace Kestro {

namespace {

constexpr QLatin1StringView sparkleNamespace("http://www.andymatuschak.org/xml-namespaces/sparkle");

// A version as its numbers and words; separators only divide them.
struct VersionPart {
    bool number = false;
    qulonglong value = 0;
    QString word;
};

QList<VersionPart> versionParts(const QString& version)
{
    QList<VersionPart> parts;
    qsizetype i = 0;
    while (i < version.size()) {
        const QChar c = version.at(i);
        qsizetype end = i;
        if (c.isDigit()) {
            while (end < version.size() && version.at(end).isDigit())
                ++end;
            // Twenty digits overflow; such a number is as large as one gets.
            bool ok = false;
            const qulonglong value = QStringView(version).sliced(i, end - i).toULongLong(&ok);
            parts.append({true, ok ? value : ~0ULL, {}});
        } else if (c.isLetter()) {
            while (end < version.size() && version.at(end).isLetter())
                ++end;
            parts.append({false, 0, version.sliced(i, end - i).toLower()});
        } else {
            end = i + 1;
        }
        i = end;
    }
    return parts;
}

QString plainText(QString html)
{
    // Blocks part words; inline tags sit inside them.
    static const QRegularExpression blocks(QStringLiteral("</?(p|br|li|ul|ol|div|h[1-6]|tr|td)\\b[^>]*>"),
                                           QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression tags(QStringLiteral("<[^>]*>"));
    html.replace(blocks, QStringLiteral(" "));
    html.remove(tags);
    html.replace(QStringLiteral("&lt;"), QStringLiteral("<"))
        .replace(QStringLiteral("&gt;"), QStringLiteral(">"))
        .replace(QStringLiteral("&quot;"), QStringLiteral("\""))
        .replace(QStringLiteral("&#39;"), QStringLiteral("'"))
        .replace(QStringLiteral("&amp;"), QStringLiteral("&"));
    return html.simplified();
}

QUrl webAddress(const QString& text)
{
    const QUrl url(text.trimmed(), QUrl::StrictMode);
    const QString scheme = url.scheme();
    return url.isValid() && (scheme == QLatin1String("https") || scheme == QLatin1String("http")) ? url
                                                                                                  : QUrl();
}

} // namespace

int compareVersions(const QString& a, const QString& b)
{
    const QList<VersionPart> left = versionParts(a);
    const QList<VersionPart> right = versionParts(b);
    const qsizetype shared = std::min(left.size(), right.size());
    for (qsizetype i = 0; i < shared; ++i) {
        const VersionPart& l = left[i];
        const VersionPart& r = right[i];
        if (l.number && r.number) {
            if (l.value != r.value)
                return l.value < r.value ? -1 : 1;
        } else if (!l.number && !r.number) {
            if (const int c = l.word.compare(r.word))
                return c < 0 ? -1 : 1;
        } else {
            // 1.0.1 against 1.0b: the number is the later release.
            return l.number ? 1 : -1;
        }
    }
    // What the longer one has beyond the other: zeros change nothing, a
    // number is a later release, a word a pre-release of the same one.
    const QList<VersionPart>& longer = left.size() > right.size() ? left : right;
    const int sign = left.size() > right.size() ? 1 : -1;
    for (qsizetype i = shared; i < longer.size(); ++i) {
        if (!longer[i].number)
            return -sign;
        if (longer[i].value != 0)
            return sign;
    }
    return 0;
}

std::optional<QList<AppcastRelease>> parseAppcast(const QByteArray& xml)
{
    QXmlStreamReader reader(xml);
    if (!reader.readNextStartElement() || reader.name() != QLatin1String("rss"))
        return std::nullopt;
    QList<AppcastRelease> releases;
    std::optional<AppcastRelease> item;
    QUrl enclosure;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartElement) {
            const QStringView name = reader.name();
            const bool sparkle = reader.namespaceUri() == sparkleNamespace;
            if (name == QLatin1String("item") && !sparkle) {
                item.emplace();
                enclosure.clear();
            } else if (!item) {
                continue;
            } else if (name == QLatin1String("enclosure") && !sparkle) {
                const QXmlStreamAttributes attributes = reader.attributes();
                enclosure = webAddress(attributes.value(QLatin1String("url")).toString());
                // Older feeds put the versions on the enclosure.
                if (item->version.isEmpty())
                    item->version = attributes.value(sparkleNamespace, QLatin1String("version")).toString();
                if (item->shortVersion.isEmpty())
                    item->shortVersion =
                        attributes.value(sparkleNamespace, QLatin1String("shortVersionString")).toString();
            } else if (sparkle && name == QLatin1String("version")) {
                item->version = reader.readElementText().trimmed();
            } else if (sparkle && name == QLatin1String("shortVersionString")) {
                item->shortVersion = reader.readElementText().trimmed();
            } else if (sparkle && name == QLatin1String("releaseNotesLink")) {
                item->releaseNotes = webAddress(reader.readElementText());
            } else if (sparkle && name == QLatin1String("minimumSystemVersion")) {
                item->minimumSystemVersion = reader.readElementText().trimmed();
            } else if (!sparkle && name == QLatin1String("title")) {
                item->title = reader.readElementText().trimmed();
            } else if (!sparkle && name == QLatin1String("link")) {
                item->downloadPage = webAddress(reader.readElementText());
            } else if (!sparkle && name == QLatin1String("description")) {
                item->description = plainText(reader.readElementText(QXmlStreamReader::IncludeChildElements));
            }
        } else if (token == QXmlStreamReader::EndElement && item && reader.name() == QLatin1String("item")) {
            if (item->downloadPage.isEmpty())
                item->downloadPage = enclosure;
            if (!item->version.isEmpty() && !item->downloadPage.isEmpty())
                releases.append(*item);
            item.reset();
        }
    }
    if (reader.hasError())
        return std::nullopt;
    return releases;
}

std::optional<AppcastRelease> newestUpdate(const QList<AppcastRelease>& releases, const QString& current,
                                           const QString& system)
{
    // Rolling distributions have no version ("unknown"): nothing to compare.
    const bool knownSystem = !system.isEmpty() && system.front().isDigit();
    std::optional<AppcastRelease> newest;
    for (const AppcastRelease& release : releases) {
        if (knownSystem && !release.minimumSystemVersion.isEmpty() &&
            compareVersions(system, release.minimumSystemVersion) < 0)
            continue;
        if (compareVersions(release.version, current) <= 0)
            continue;
        if (!newest || compareVersions(release.version, newest->version) > 0)
            newest = release;
    }
    return newest;
}

} // namespace Kestro
