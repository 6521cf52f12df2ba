#include "DesktopNotifications.h"

#include <QCoroSignal>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QPointer>

namespace Kestro {

namespace {
const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");
const QString interface = QStringLiteral("org.freedesktop.Notifications");
} // namespace

DesktopNotifications::DesktopNotifications(QDBusConnection bus, QObject* parent)
    : QObject(parent), m_bus(std::move(bus))
{
    if (!m_bus.isConnected())
        return;
    m_bus.connect(service, path, interface, QStringLiteral("ActionInvoked"), this,
                  SLOT(onActionInvoked(uint, QString)));
    m_bus.connect(service, path, interface, QStringLiteral("NotificationClosed"), this,
                  SLOT(onClosed(uint, uint)));
}

QCoro::Task<bool> DesktopNotifications::post(Post post)
{
    if (!m_bus.isConnected())
        co_return false;
    QPointer<DesktopNotifications> self(this);
    const quint64 generation = m_generation;
    QVariantMap hints;
    hints.insert(QStringLiteral("urgency"),
                 QVariant::fromValue(uchar(1))); // normal; a byte, or servers drop it
    hints.insert(QStringLiteral("desktop-entry"), QStringLiteral("kestro"));
    hints.insert(QStringLiteral("sound-name"), QStringLiteral("message-new-instant"));
    hints.insert(QStringLiteral("category"), QStringLiteral("im.received"));
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Notify"));
    call << QStringLiteral("Kestro") << m_serverIds.value(post.id, 0u) << QStringLiteral("kestro")
         << post.title << post.body << QStringList{QStringLiteral("default"), QStringLiteral("Open")} << hints
         << int(-1);
    QDBusPendingCallWatcher watcher(m_bus.asyncCall(call, 10'000));
    co_await qCoro(&watcher, &QDBusPendingCallWatcher::finished);
    if (!self)
        co_return false;
    const QDBusPendingReply<uint> reply = watcher;
    if (reply.isError()) {
        // No server, or one that refused: said once, not at every poll.
        if (!std::exchange(m_toldMissing, true))
            qInfo("Desktop notifications are not shown: %s", qPrintable(reply.error().message()));
        co_return false;
    }
    m_toldMissing = false;
    const uint serverId = reply.value();
    if (generation != m_generation) {
        // Signed out (or moved to another workspace) while it was on its
        // way: it goes as soon as it came.
        close(serverId);
        co_return false;
    }
    m_serverIds.insert(post.id, serverId);
    m_shown.insert(serverId, std::move(post));
    co_return true;
}

void DesktopNotifications::close(uint serverId)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("CloseNotification"));
    call << serverId;
    m_bus.asyncCall(call, 10'000);
}

void DesktopNotifications::closeAll()
{
    for (const uint serverId : m_shown.keys())
        close(serverId);
    // Forgotten now: a click on one still on its way opens nothing.
    m_shown.clear();
    m_serverIds.clear();
    ++m_generation;
}

void DesktopNotifications::onActionInvoked(uint serverId, const QString& action)
{
    // Other programs' banners share the signal; only ours are known here.
    const auto shown = m_shown.constFind(serverId);
    if (shown == m_shown.cend() || action != QLatin1String("default"))
        return;
    emit clicked(shown->id, shown->href);
}

void DesktopNotifications::onClosed(uint serverId, uint)
{
    const auto shown = m_shown.constFind(serverId);
    if (shown == m_shown.cend())
        return;
    m_serverIds.remove(shown->id);
    m_shown.erase(shown);
}

} // namespace Kestro
