#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QObject>

#include <functional>

namespace Kestro {

// Calls `message` on `bus` without waiting, and hands its answer (a reply or
// an error message) to `then` on the GUI thread. Nothing comes when
// `context` is gone first.
inline void whenAnswered(QDBusConnection bus, const QDBusMessage& message, QObject* context,
                         std::function<void(const QDBusMessage& answer)> then)
{
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [then = std::move(then)](QDBusPendingCallWatcher* call) {
                         call->deleteLater();
                         then(call->reply());
                     });
}

} // namespace Kestro
