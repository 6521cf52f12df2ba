#pragma once

#include <QCoroTask>
#include <QDateTime>
#include <QObject>

#include <functional>

namespace Kestro {

class DesktopNotifications;

// Tells the desktop about the workspace's new activity: after each of the
// bell's polls it reads the notifications and posts the unread ones newer
// than the last it posted, one after another; a click on one marks it read,
// brings the window forward and opens its page. GUI thread only.
class Notifier : public QObject {
    Q_OBJECT
public:
    // What a click does besides raising the window: open an in-app path
    // (as any link does, kept for later while signed out) and mark the
    // item read (the bell shows it read at once).
    struct Hooks {
        std::function<void(const QString& path)> openPath;
        std::function<void(const QString& id)> markRead;
    };

    Notifier(DesktopNotifications& desktop, Hooks hooks, QObject* parent = nullptr);

    // The signed-in frame appeared: from now on, not what came before.
    void start();
    // Posts what is new since the last post.
    QCoro::Task<> notifyNew();
    // For tests: what "now" is.
    void setClock(std::function<QDateTime()> clock) { m_clock = std::move(clock); }

signals:
    // A click asks for the window.
    void raiseRequested();

private:
    QDateTime notifiedAt() const;
    void open(const QString& id, const QString& href);

    DesktopNotifications& m_desktop;
    Hooks m_hooks;
    std::function<QDateTime()> m_clock;
    bool m_posting = false; // one notifyNew at a time: a slow poll is not overtaken
};

} // namespace Kestro
