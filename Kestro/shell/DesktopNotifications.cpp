#include "DesktopNotifications.h"

#include <QCoroSignal>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFile>
#include <QPointer>

namespace Kestro {

namespace {
const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");
const QString interface = QStringLiteral("org.freedesktop.Notifications");
const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalInterface = QStringLiteral("org.freedesktop.portal.Notification");
const QString openAction = QStringLiteral("open");
} // namespace

DesktopNotifications::Route DesktopNotifications::defaultRoute()
{
    return QFile::exists(QStringLiteral("/.flatpak-info")) ? Route::Portal : Route::Server;
}

DesktopNotifications::DesktopNotifications(QDBusConnection bus, Route route, QObject* parent)
    : QObject(parent), m_bus(std::move(bus)), m_route(route)
{
    if (!m_bus.isConnected())
        return;
    if (m_route == Route::Portal) {
        m_bus.connect(portalService, portalPath, portalInterface, QStringLiteral("ActionInvoked"), this,
                      SLOT(onPortalAction(QString, QString, QVariantList)));
        return;
    }
    m_bus.connect(service, path, interface, QStringLiteral("ActionInvoked"), this,
                  SLOT(onActionInvoked(uint, QString)));
    m_bus.connect(service, path, interface, QStringLiteral("NotificationClosed"), this,
                  SLOT(onClosed(uint, uint)));
}

QDBusMessage DesktopNotifications::notifyCall(const Post& post) const
{
    if (m_route == Route::Portal) {
        // The portal keys banners by the app's own id: a repeat replaces.
        QDBusMessage call = QDBusMessage::createMethodCall(portalService, portalPath, portalInterface,
                                                           QStringLiteral("AddNotification"));
        const QVariantMap notification{{QStringLiteral("title"), post.title},
                                       {QStringLiteral("body"), post.body},
                                       {QStringLiteral("priority"), QStringLiteral("normal")},
                                       {QStringLiteral("default-action"), openAction}};
        call << post.id << notification;
        return call;
    }
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
    return call;
}

QCoro::Task<bool> DesktopNotifications::post(Post post)
{
    if (!m_bus.isConnected())
        co_return false;
    QPointer<DesktopNotifications> self(this);
    const quint64 generation = m_generation;
    QDBusPendingCallWatcher watcher(m_bus.asyncCall(notifyCall(post), 10'000));
    co_await qCoro(&watcher, &QDBusPendingCallWatcher::finished);
    if (!self)
        co_return false;
    const QDBusPendingReply<> reply = watcher;
    if (reply.isError()) {
        // No server, or one that refused: said once, not at every poll.
        if (!std::exchange(m_toldMissing, true))
            qInfo("Desktop notifications are not shown: %s", qPrintable(reply.error().message()));
        co_return false;
    }
    m_toldMissing = false;
    const uint serverId = m_route == Route::Portal ? m_serverIds.value(post.id, ++m_portalIds)
                                                   : QDBusPendingReply<uint>(watcher).value();
    if (generation != m_generation) {
        // Signed out (or moved to another workspace) while it was on its
        // way: it goes as soon as it came.
        close(serverId, post.id);
        co_return false;
    }
    m_serverIds.insert(post.id, serverId);
    m_shown.insert(serverId, std::move(post));
    co_return true;
}

void DesktopNotifications::close(uint serverId, const QString& id)
{
    if (m_route == Route::Portal) {
        QDBusMessage call = QDBusMessage::createMethodCall(portalService, portalPath, portalInterface,
                                                           QStringLiteral("RemoveNotification"));
        call << id;
        m_bus.asyncCall(call, 10'000);
        return;
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("CloseNotification"));
    call << serverId;
    m_bus.asyncCall(call, 10'000);
}

void DesktopNotifications::closeAll()
{
    for (auto shown = m_shown.cbegin(); shown != m_shown.cend(); ++shown)
        close(shown.key(), shown->id);
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

void DesktopNotifications::onPortalAction(const QString& id, const QString& action, const QVariantList&)
{
    // The portal sends this app's actions only.
    const auto serverId = m_serverIds.constFind(id);
    if (serverId != m_serverIds.cend() && action == openAction)
        onActionInvoked(*serverId, QStringLiteral("default"));
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
