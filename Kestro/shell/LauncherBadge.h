#pragma once

#include <QDBusConnection>
#include <QObject>

class QDBusServiceWatcher;

namespace Kestro {

// The unread count on the app's launcher icon: the Unity launcher entry
// signal that KDE's task manager, Dash to Dock, Plank and others read. It
// is sent again when a dock comes onto the bus after the count was set.
// Whether anything shows it is a guess from who is on the bus: Unity and
// Plank own names of their own, KDE's task manager lives in plasmashell,
// and GNOME's docks are Shell extensions.
class LauncherBadge : public QObject {
    Q_OBJECT
public:
    explicit LauncherBadge(QDBusConnection bus = QDBusConnection::sessionBus(), QObject* parent = nullptr);

    int count() const { return m_count; }
    // Zero hides the number.
    void setCount(int count);
    // Some launcher on this desktop shows the count.
    bool shown() const { return m_shown; }

signals:
    void shownChanged();

private:
    void send();
    void lookForDocks();
    void setShown(bool shown);

    QDBusConnection m_bus;
    QDBusServiceWatcher* m_docks = nullptr;
    int m_count = 0;
    bool m_shown = false;
};

} // namespace Kestro
