#pragma once

#include <QDBusConnection>
#include <QObject>

#include <functional>
#include <memory>

class QPlatformMenu;
class QPlatformSystemTrayIcon;

namespace Kestro {

// Kestro's icon in the panel's status area, with the unread count on it and
// a short menu. It shows only where a StatusNotifier host runs (KDE, or
// GNOME with the AppIndicator extension): on a desktop without one there
// is nowhere to put it, and the window never hides into it.
class TrayIcon : public QObject {
    Q_OBJECT
public:
    struct Hooks {
        std::function<void()> openNeedsYou;
        std::function<void()> checkForUpdates; // none: the command is left out
        std::function<void()> quit;
        std::function<void()> raise; // a click on the icon itself
    };

    explicit TrayIcon(Hooks hooks, QDBusConnection bus = QDBusConnection::sessionBus(),
                      QObject* parent = nullptr);
    ~TrayIcon() override;

    bool isShown() const { return m_icon != nullptr; }
    void setCount(int count);

signals:
    void shownChanged();

private:
    void lookForHost();
    void show();
    void hide();
    void paint();

    Hooks m_hooks;
    QDBusConnection m_bus;
    std::unique_ptr<QPlatformSystemTrayIcon> m_icon;
    std::unique_ptr<QPlatformMenu> m_menu;
    int m_count = 0;
};

} // namespace Kestro
