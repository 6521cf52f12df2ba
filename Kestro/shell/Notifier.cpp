#include "Notifier.h"

#include "DesktopNotifications.h"
#include "NotificationRules.h"

#include "calls/app.h"
#include <QPointer>
#include <QSettings>

namespace Kestro {

using namespace NotificationRules;

Notifier::Notifier(DesktopNotifications& desktop, Hooks hooks, QObject* parent)
    : QObject(parent), m_desktop(desktop), m_hooks(std::move(hooks)),
      m_clock([] { return QDateTime::currentDateTimeUtc(); })
{
    connect(&m_desktop, &DesktopNotifications::clicked, this,
            [this](const QString& id, const QString& href) { open(id, href); });
}

void Notifier::start()
{
    // The first run after installing posts nothing of last week's items.
    QSettings settings;
    if (!settings.contains(QLatin1String(notifiedAtKey)))
        settings.setValue(QLatin1String(notifiedAtKey), m_clock().toString(Qt::ISODateWithMs));
}

QDateTime Notifier::notifiedAt() const
{
    const std::optional<QDateTime> stored =
        parseAt(QSettings().value(QLatin1String(notifiedAtKey)).toString());
    return stored ? *stored : m_clock();
}

QCoro::Task<> Notifier::notifyNew()
{
    if (m_posting)
        co_return;
    m_posting = true;
    QPointer<Notifier> self(this);
    const QDateTime since = notifiedAt();
    QList<Model::NotificationView> items;
    try {
        items = (co_await Calls::app::notificationsAction()).items;
    } catch (const std::exception&) {
        // Nothing posted, the mark left: the next poll tries again.
        if (self)
            m_posting = false;
        co_return;
    }
    if (!self)
        co_return;
    const Fresh fresh = pick(items, since);
    const quint64 generation = m_desktop.generation();
    if (fresh.latest && *fresh.latest > since)
        QSettings().setValue(QLatin1String(notifiedAtKey), fresh.latest->toUTC().toString(Qt::ISODateWithMs));
    for (const Model::NotificationView& item : fresh.items) {
        // Built before the co_await: GCC 12 cannot keep a braced list alive across one.
        DesktopNotifications::Post post{item.id, titleOf(item), item.text, item.href};
        co_await m_desktop.post(std::move(post));
        if (!self)
            co_return;
        // Signed out or switched meanwhile: the rest are not for now.
        if (m_desktop.generation() != generation)
            break;
    }
    m_posting = false;
}

void Notifier::open(const QString& id, const QString& href)
{
    emit raiseRequested();
    if (!href.isEmpty() && m_hooks.openPath)
        m_hooks.openPath(href);
    if (m_hooks.markRead)
        m_hooks.markRead(id);
}

} // namespace Kestro
