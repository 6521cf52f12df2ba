#include "Route.h"

#include <QUrl>
#include <QUrlQuery>

namespace Kestro {

namespace {

QString percentDecoded(const QString& part)
{
    // A part that does not decode cleanly is kept as it stands.
    const QByteArray bytes = QByteArray::fromPercentEncoding(part.toUtf8());
    const QString decoded = QString::fromUtf8(bytes);
    return decoded.contains(QChar::ReplacementCharacter) ? part : decoded;
}

} // namespace

Route Route::parse(const QString& text)
{
    const QString withSlash = text.startsWith(QLatin1Char('/')) ? text : QLatin1Char('/') + text;
    Route route;
    const QUrl url(withSlash, QUrl::StrictMode);
    QString query;
    if (url.isValid() && url.scheme().isEmpty() && url.host().isEmpty()) {
        route.path = url.path(QUrl::FullyEncoded);
        query = url.query(QUrl::FullyEncoded);
    } else {
        route.path = withSlash;
    }
    const QStringList parts = route.path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString& part : parts)
        route.segments.append(percentDecoded(part));
    if (!query.isEmpty()) {
        const QUrlQuery items(query);
        for (const auto& [name, value] : items.queryItems(QUrl::FullyEncoded))
            route.query.insert(percentDecoded(name), percentDecoded(value));
    }
    return route;
}

QString Route::canonicalPath() const
{
    return QLatin1Char('/') + segments.join(QLatin1Char('/'));
}

QString Route::text() const
{
    if (query.isEmpty())
        return path;
    QUrlQuery items;
    for (auto it = query.cbegin(); it != query.cend(); ++it)
        items.addQueryItem(QString::fromUtf8(QUrl::toPercentEncoding(it.key())),
                           QString::fromUtf8(QUrl::toPercentEncoding(it.value())));
    return path + QLatin1Char('?') + items.query(QUrl::FullyEncoded);
}

QString Route::area() const
{
    static const QMap<QString, QString> areas{
        {QStringLiteral("documents"), QStringLiteral("docs")},
        {QStringLiteral("email"), QStringLiteral("email")},
        {QStringLiteral("canvas"), QStringLiteral("canvas")},
        {QStringLiteral("crm"), QStringLiteral("crm")},
        {QStringLiteral("surveys"), QStringLiteral("surveys")},
        {QStringLiteral("analytics"), QStringLiteral("analytics")},
        {QStringLiteral("sessions"), QStringLiteral("sessions")},
        {QStringLiteral("support"), QStringLiteral("support")},
        {QStringLiteral("interviews"), QStringLiteral("interviews")},
        {QStringLiteral("research"), QStringLiteral("research")},
        {QStringLiteral("vault"), QStringLiteral("vault")},
        {QStringLiteral("tests"), QStringLiteral("engineering")},
        {QStringLiteral("incidents"), QStringLiteral("engineering")},
        {QStringLiteral("product-analytics"), QStringLiteral("engineering")},
        {QStringLiteral("tasks"), QStringLiteral("tasks")},
        {QStringLiteral("projects"), QStringLiteral("tasks")},
    };
    return segments.isEmpty() ? QString() : areas.value(segments.first());
}

QVariantMap Route::queryMap() const
{
    QVariantMap out;
    for (auto it = query.cbegin(); it != query.cend(); ++it)
        out.insert(it.key(), it.value());
    return out;
}

size_t qHash(const Route& route, size_t seed)
{
    seed = qHashMulti(seed, route.path, route.segments);
    for (auto it = route.query.cbegin(); it != route.query.cend(); ++it)
        seed = qHashMulti(seed, it.key(), it.value());
    return seed;
}

bool isInAppPath(const QString& path)
{
    if (path == QLatin1String("/"))
        return false;
    static const char* const webOnly[] = {"/docs", "/share",   "/invite", "/reset-password", "/admin",
                                          "/blog", "/pricing", "/legal",  "/download"};
    for (const char* prefix : webOnly) {
        const QLatin1StringView p(prefix);
        if (path == p || path.startsWith(p + QLatin1Char('/')))
            return false;
    }
    return true;
}

} // namespace Kestro
