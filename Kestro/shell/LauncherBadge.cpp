#include "LauncherBadge.h"

#include "DBusAnswer.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusServiceWatcher>

namespace Kestro {

namespace {

// Owners of these names show a launcher count themselves.
const QStringList dockNames{QStringLiteral("com.canonical.Unity"), QStringLiteral("org.kde.plasmashell"),
                            QStringLiteral("net.launchpad.plank")};
// GNOME Shell shows none without one of these extensions.
const QStringList gnomeDocks{QStringLiteral("dash-to-dock@micxgx.gmail.com"),
                             QStringLiteral("ubuntu-dock@ubuntu.com")};
constexpr double gnomeExtensionEnabled = 1;

} // namespace

LauncherBadge::LauncherBadge(QDBusConnection bus, QObject* parent) : QObject(parent), m_bus(std::move(bus))
{
    if (!m_bus.isConnected())
        return;
    m_docks = new QDBusServiceWatcher(this);
    m_docks->setConnection(m_bus);
    m_docks->setWatchedServices(dockNames + QStringList{QStringLiteral("org.gnome.Shell")});
    connect(m_docks, &QDBusServiceWatcher::serviceRegistered, this, [this] {
        if (m_count > 0)
            send();
        lookForDocks();
    });
    connect(m_docks, &QDBusServiceWatcher::serviceUnregistered, this, &LauncherBadge::lookForDocks);
    lookForDocks();
}

void LauncherBadge::lookForDocks()
{
    // Who is on the bus, asked without waiting: this runs at start-up.
    const QDBusMessage names = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ListNames"));
    whenAnswered(m_bus, names, this, [this](const QDBusMessage& answer) {
        const QStringList onBus = QDBusReply<QStringList>(answer).value();
        for (const QString& name : dockNames) {
            if (onBus.contains(name)) {
                setShown(true);
                return;
            }
        }
        if (!onBus.contains(QStringLiteral("org.gnome.Shell"))) {
            setShown(false);
            return;
        }
        // Said once the extensions answer: no flicker to "not shown" before.
        auto pending = std::make_shared<int>(int(gnomeDocks.size()));
        auto found = std::make_shared<bool>(false);
        for (const QString& uuid : gnomeDocks) {
            QDBusMessage info = QDBusMessage::createMethodCall(
                QStringLiteral("org.gnome.Shell"), QStringLiteral("/org/gnome/Shell"),
                QStringLiteral("org.gnome.Shell.Extensions"), QStringLiteral("GetExtensionInfo"));
            info << uuid;
            whenAnswered(m_bus, info, this, [this, pending, found](const QDBusMessage& answer) {
                const QDBusReply<QVariantMap> reply(answer);
                if (reply.isValid() &&
                    reply.value().value(QStringLiteral("state")).toDouble() == gnomeExtensionEnabled)
                    *found = true;
                if (--*pending == 0)
                    setShown(*found);
            });
        }
    });
}

void LauncherBadge::setShown(bool shown)
{
    if (shown == m_shown)
        return;
    m_shown = shown;
    emit shownChanged();
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
