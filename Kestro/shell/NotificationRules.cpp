#include "NotificationRules.h"

namespace Kestro::NotificationRules {

std::optional<QDateTime> parseAt(const QString& at)
{
    for (const Qt::DateFormat format : {Qt::ISODateWithMs, Qt::ISODate}) {
        const QDateTime parsed = QDateTime::fromString(at.trimmed(), format);
        if (parsed.isValid())
            return parsed;
    }
    return std::nullopt;
}

QString titleOf(const Model::NotificationView& item)
{
    QStringList parts;
    for (const QString& part : {item.by ? item.by->name : QString(), item.verb, item.title})
        if (!part.trimmed().isEmpty())
            parts.append(part.trimmed());
    return parts.join(QLatin1Char(' '));
}

Fresh pick(const QList<Model::NotificationView>& items, const QDateTime& since)
{
    Fresh fresh;
    for (const Model::NotificationView& item : items) {
        if (item.read)
            continue;
        const std::optional<QDateTime> at = parseAt(item.at);
        if (!at || *at <= since)
            continue;
        fresh.items.append(item);
        if (!fresh.latest || *at > *fresh.latest)
            fresh.latest = at;
    }
    return fresh;
}

} // namespace Kestro::NotificationRules
