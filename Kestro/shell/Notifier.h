#pragma once

#include <QCoroTask>
#include <QDateTime>
#include <QObject>

#include <functional>

namespace Kestro {

class DesktopNotifications;
class Router;

// Tells the desktop about the workspace's new activity: after each of the
// bell's polls it reads the notifications and posts the unread ones newer
// than the last it posted, one after another; a click on one marks it read,
// brings the window forward and opens its page. GUI thread only.
class Notifier : public QObject {
    Q_OBJECT
public:
    Notifier(DesktopNotifications& desktop, Router& router, QObject* parent = nullptr);

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
    QCoro::Task<> open(QString id, QString href);

    DesktopNotifications& m_desktop;
    Router& m_router;
    std::function<QDateTime()> m_clock;
    bool m_posting = false; // one notifyNew at a time: a slow poll is not overtaken
};

} // namespace Kestro
