#include "LauncherBadge.h"

#include <QDBusMessage>
#include <QDBusServiceWatcher>

namespace Kestro {

LauncherBadge::LauncherBadge(QDBusConnection bus, QObject* parent) : QObject(parent), m_bus(std::move(bus))
{
    if (!m_bus.isConnected())
        return;
    // Unity, and the docks that take its place, own this name.
    m_docks = new QDBusServiceWatcher(QStringLiteral("com.canonical.Unity"), m_bus,
                                      QDBusServiceWatcher::WatchForRegistration, this);
    connect(m_docks, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        if (m_count > 0)
            send();
    });
}

void LauncherBadge::setCount(int count)
{
    count = std::max(count, 0);
    if (count == m_count)
        return;
    m_count = count;
    send();
}

void LauncherBadge::send()
{
    if (!m_bus.isConnected())
        return;
    QDBusMessage update = QDBusMessage::createSignal(QStringLiteral("/com/kestro/LauncherEntry"),
                                                     QStringLiteral("com.canonical.Unity.LauncherEntry"),
                                                     QStringLiteral("Update"));
    QVariantMap properties;
    properties.insert(QStringLiteral("count"), QVariant::fromValue(qint64(m_count)));
    properties.insert(QStringLiteral("count-visible"), m_count > 0);
    update << QStringLiteral("application://kestro.desktop") << properties;
    m_bus.send(update);
}

} // namespace Kestro
