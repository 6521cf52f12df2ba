#pragma once

#include <QDBusConnection>
#include <QObject>

class QDBusServiceWatcher;

namespace Kestro {

// The unread count on the app's launcher icon: the Unity launcher entry
// signal that KDE's task manager, Dash to Dock, Plank and others read. It
// is sent again when a dock comes onto the bus after the count was set.
class LauncherBadge : public QObject {
    Q_OBJECT
public:
    explicit LauncherBadge(QDBusConnection bus = QDBusConnection::sessionBus(), QObject* parent = nullptr);

    int count() const { return m_count; }
    // Zero hides the number.
    void setCount(int count);

private:
    void send();

    QDBusConnection m_bus;
    QDBusServiceWatcher* m_docks = nullptr;
    int m_count = 0;
};

} // namespace Kestro
