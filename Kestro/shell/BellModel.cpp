#include "BellModel.h"

#include "calls/app.h"
#include "service/ServiceError.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QPointer>

namespace Kestro {

BellModel::BellModel(QObject* parent) : QObject(parent)
{
    m_poll.setInterval(pollMilliseconds);
    connect(&m_poll, &QTimer::timeout, this, &BellModel::refreshCount);
}

void BellModel::setActive(bool active)
{
    if (m_active == active)
        return;
    m_active = active;
    ++m_generation; // answers for the previous session or workspace are dropped
    if (active) {
        m_poll.start();
        refreshCount();
    } else {
        m_poll.stop();
        m_items.clear();
        emit itemsChanged();
        setUnread(0);
        setError({});
    }
    emit activeChanged();
}

void BellModel::refreshCount()
{
    if (m_active)
        runCount();
}

QCoro::Task<> BellModel::runCount()
{
    QPointer<BellModel> self(this);
    const quint64 generation = m_generation;
    try {
        const auto result = co_await Calls::app::notificationCountAction();
        if (self && generation == m_generation) {
            setUnread(int(result.unread));
            emit polled();
        }
    } catch (const std::exception&) {
        // A missed poll changes nothing; the next one tries again.
    }
}

void BellModel::load()
{
    if (m_active)
        runLoad();
}

QCoro::Task<> BellModel::runLoad()
{
    QPointer<BellModel> self(this);
    const quint64 generation = m_generation;
    setLoading(true);
    try {
        const auto result = co_await Calls::app::notificationsAction();
        if (!self || generation != m_generation)
            co_return;
        QVariantList items;
        for (const auto& item : result.items)
            items.append(item.encode().toObject().toVariantMap());
        m_items = items;
        emit itemsChanged();
        setUnread(int(result.unread));
        setError({});
    } catch (const std::exception& error) {
        if (!self || generation != m_generation)
            co_return;
        setError(describeError(error));
    }
    setLoading(false);
}

void BellModel::markRead(const QString& id)
{
    if (m_active && !id.isEmpty())
        runRead({id});
}

void BellModel::markAllRead()
{
    QStringList ids;
    for (const QVariant& item : std::as_const(m_items))
        if (!item.toMap().value(QStringLiteral("read")).toBool())
            ids.append(item.toMap().value(QStringLiteral("id")).toString());
    if (m_active && !ids.isEmpty())
        runRead(ids);
}

QCoro::Task<> BellModel::runRead(QStringList ids)
{
    QPointer<BellModel> self(this);
    const quint64 generation = m_generation;
    // Shown read at once; the service's count follows.
    for (QVariant& item : m_items) {
        QVariantMap map = item.toMap();
        if (ids.contains(map.value(QStringLiteral("id")).toString())) {
            map[QStringLiteral("read")] = true;
            item = map;
        }
    }
    emit itemsChanged();
    try {
        const auto result = co_await Calls::app::readNotificationsAction(
            JSONValue::fromQJsonValue(QJsonArray::fromStringList(ids)));
        if (self && generation == m_generation)
            setUnread(int(result.unread));
    } catch (const std::exception& error) {
        if (self && generation == m_generation) {
            setError(describeError(error));
            runLoad();
        }
    }
}

void BellModel::clear()
{
    if (m_active)
        runClear();
}

QCoro::Task<> BellModel::runClear()
{
    QPointer<BellModel> self(this);
    const quint64 generation = m_generation;
    try {
        const auto outcome = co_await Calls::app::clearNotificationsAction();
        if (!self || generation != m_generation)
            co_return;
        if (outcome.error) {
            setError(*outcome.error);
            co_return;
        }
        m_items.clear();
        emit itemsChanged();
        setUnread(0);
        setError({});
    } catch (const std::exception& error) {
        if (self && generation == m_generation)
            setError(describeError(error));
    }
}

void BellModel::setUnread(int unread)
{
    if (m_unread == unread)
        return;
    m_unread = unread;
    emit unreadChanged();
}

void BellModel::setError(const QString& error)
{
    if (m_error == error)
        return;
    m_error = error;
    emit errorChanged();
}

void BellModel::setLoading(bool on)
{
    if (m_loading == on)
        return;
    m_loading = on;
    emit loadingChanged();
}

} // namespace Kestro
