#pragma once

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <functional>

namespace Kestro {

// A global shortcut through the desktop portal, where the desktop offers
// one (Wayland sessions of KDE Plasma 5.27 and later, GNOME 48 and later):
// a session is created, the shortcut bound (the desktop may ask the user
// to confirm or pick another key), and each press arrives as a signal.
class PortalShortcuts : public QObject {
    Q_OBJECT
public:
    explicit PortalShortcuts(QDBusConnection bus = QDBusConnection::sessionBus(), QObject* parent = nullptr);

    // Binds `id`, described as `description`, preferring `trigger` (the
    // portal's notation, such as "CTRL+ALT+k"). Reports through bound() or
    // refused(), once.
    void bind(const QString& id, const QString& description, const QString& trigger);

signals:
    void bound(const QString& trigger); // what the desktop settled on; may be empty
    void refused(const QString& why);
    void activated(const QString& id);

public slots:
    // The portal's Activated signal (QtDBus connects only public slots).
    void onActivated(const QDBusObjectPath& session, const QString& id, qulonglong timestamp,
                     const QVariantMap& options);

private:
    // Calls a portal method that answers through a request object, and
    // hands its results to `then` (a response other than 0 is a refusal).
    void request(const QString& method, QList<QVariant> arguments, const QString& token,
                 std::function<void(const QVariantMap&)> then);
    QString requestPath(const QString& token) const;

    QDBusConnection m_bus;
    QString m_id;
    QString m_description;
    QString m_trigger;
    QDBusObjectPath m_session;
    int m_tokens = 0;
};

} // namespace Kestro
