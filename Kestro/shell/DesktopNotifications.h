#pragma once

#include <QCoroTask>
#include <QDBusConnection>
#include <QHash>
#include <QObject>
#include <QString>

namespace Kestro {

// Desktop notifications through the freedesktop notification server on the
// session bus, or, inside a Flatpak sandbox (which keeps that server out of
// reach), through the desktop portal's notifications. A repeat of an item
// replaces its banner; a click on one (its default action) is reported
// with the item's id and address. Where no server answers, posts fail
// quietly: the bell and the badge still tell.
class DesktopNotifications : public QObject {
    Q_OBJECT
public:
    struct Post {
        QString id; // the item's id
        QString title;
        QString body;
        QString href; // an in-app path
    };

    enum class Route { Server, Portal };
    // The portal inside a Flatpak sandbox, the server elsewhere.
    static Route defaultRoute();

    explicit DesktopNotifications(QDBusConnection bus = QDBusConnection::sessionBus(),
                                  Route route = defaultRoute(), QObject* parent = nullptr);

    // Shows one notification; true when a server took it.
    QCoro::Task<bool> post(Post post);
    // Takes down every banner this app still shows (at sign-out, or when
    // the workspace changes: they speak of another workspace's things).
    void closeAll();
    quint64 generation() const { return m_generation; }

signals:
    void clicked(const QString& id, const QString& href);

private slots:
    void onActionInvoked(uint serverId, const QString& action);
    void onClosed(uint serverId, uint reason);
    void onPortalAction(const QString& id, const QString& action, const QVariantList& parameter);

private:
    // The server knows a banner by its number, the portal by the item's id.
    void close(uint serverId, const QString& id);
    QDBusMessage notifyCall(const Post& post) const;

    QDBusConnection m_bus;
    Route m_route;
    uint m_portalIds = 0;             // the portal names banners by our ids; these stand in
    QHash<QString, uint> m_serverIds; // item id → the server's id for its banner
    QHash<uint, Post> m_shown;        // the server's id → what it shows
    bool m_toldMissing = false;
    // Bumped by closeAll(): a post that was on its way then is not kept.
    quint64 m_generation = 0;
};

} // namespace Kestro
