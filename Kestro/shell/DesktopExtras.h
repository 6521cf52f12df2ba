#pragma once

#include "Updates.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

namespace Kestro {

class GlobalHotKey;
class LauncherBadge;
class TrayIcon;

// What Kestro adds to the desktop around its window: the unread count on
// the launcher, the tray and (where neither shows it) the window title;
// the global key to the command palette; the update check. Views read it
// as the Desktop singleton.
class DesktopExtras : public QObject {
    Q_OBJECT
    // "Ctrl+Alt+K" (or what the desktop bound) once registered; empty where
    // no global key could be had.
    Q_PROPERTY(QString hotKey READ hotKey NOTIFY hotKeyChanged)
    Q_PROPERTY(bool hotKeySettled READ hotKeySettled NOTIFY hotKeyChanged)
    // What to bind in the desktop's keyboard settings instead.
    Q_PROPERTY(QString paletteCommand READ paletteCommand CONSTANT)
    // The launcher or the tray shows the count, so the title need not.
    Q_PROPERTY(bool countShownElsewhere READ countShownElsewhere NOTIFY countShownElsewhereChanged)
    Q_PROPERTY(Kestro::Updates* updates READ updates CONSTANT)
public:
    struct Hooks {
        std::function<void()> openPalette; // forward, with the palette open
        std::function<void(const QString& path)> openPath;
        std::function<void()> raise;
        std::function<void()> quit;
        std::function<void(const QUrl&)> openInBrowser;
    };

    DesktopExtras(LauncherBadge& badge, Hooks hooks, QObject* parent = nullptr);
    ~DesktopExtras() override;

    QString hotKey() const;
    bool hotKeySettled() const;
    QString paletteCommand() const { return QStringLiteral("kestro --palette"); }
    bool countShownElsewhere() const;
    Updates* updates() const { return m_updates.get(); }

    // The signed-in frame appeared: the global key (once), the daily update
    // check.
    void signedIn();
    // The unread count, or zero when signed out.
    void setUnread(int count);

signals:
    void hotKeyChanged();
    void countShownElsewhereChanged();

private:
    LauncherBadge& m_badge;
    Hooks m_hooks;
    std::unique_ptr<Updates> m_updates;
    std::unique_ptr<GlobalHotKey> m_hotKey;
    std::unique_ptr<TrayIcon> m_tray;
};

} // namespace Kestro
