#include "KeyedListModel.h"

#include "RelativeTime.h"

namespace Kestro {

KeyedListModel::KeyedListModel(const QList<QByteArray>& roles, QObject* parent)
    : QAbstractListModel(parent), m_roleNames(roles)
{
}

void KeyedListModel::setClockRoles(const QList<int>& roles)
{
    if (roles.isEmpty())
        return;
    for (int role : roles)
        m_clockRoles.append(qtRole(role));
    connect(&MinuteClock::instance(), &MinuteClock::moved, this, [this] {
        if (count() > 0)
            emit dataChanged(index(0), index(count() - 1), m_clockRoles);
    });
}

int KeyedListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant KeyedListModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    if (role == Qt::UserRole + 1)
        return m_keys[index.row()];
    const int named = role - qtRole(0);
    if (named < 0 || named >= roleCount())
        return {};
    return roleValue(index.row(), named);
}

void KeyedListModel::multiData(const QModelIndex& index, QModelRoleDataSpan roleDataSpan) const
{
    for (QModelRoleData& roleData : roleDataSpan)
        roleData.setData(data(index, roleData.role()));
}

QHash<int, QByteArray> KeyedListModel::roleNames() const
{
    QHash<int, QByteArray> names{{Qt::UserRole + 1, QByteArrayLiteral("key")}};
    for (int role = 0; role < roleCount(); ++role)
        names.insert(qtRole(role), m_roleNames[role]);
    return names;
}

int KeyedListModel::indexOf(const QString& key) const
{
    return int(m_keys.indexOf(key));
}

QString KeyedListModel::keyAt(int row) const
{
    return row >= 0 && row < count() ? m_keys[row] : QString();
}

QVariant KeyedListModel::valueAt(int row, const QString& roleName) const
{
    if (row < 0 || row >= count())
        return {};
    if (roleName == QLatin1String("key"))
        return m_keys[row];
    const qsizetype role = m_roleNames.indexOf(roleName.toUtf8());
    return role < 0 ? QVariant() : roleValue(row, int(role));
}

void KeyedListModel::announce(const QString& key, const QByteArray& roleName)
{
    const int row = indexOf(key);
    const int role = int(m_roleNames.indexOf(roleName));
    if (row < 0 || role < 0)
        return;
    emit dataChanged(index(row), index(row), {qtRole(role)});
}

} // namespace Kestro
