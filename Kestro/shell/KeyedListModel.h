#pragma once

#include <QAbstractListModel>
#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QVariant>

#include <functional>

namespace Kestro {

// A list of records for views, one row per record, keyed by the record's id.
// A reload hands the whole new list to apply(); the model turns it into the
// inserts, removes, moves and per-role changes that lead from the rows shown
// to the new ones, so a view keeps its scroll position, current row, focus
// and opened rows, and a reload that changes nothing tells the view nothing.
//
// This base holds what QML sees; KeyedList<Record> below holds the records.
class KeyedListModel : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    void multiData(const QModelIndex& index, QModelRoleDataSpan roleDataSpan) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return int(m_keys.size()); }
    // The row of a key, or -1.
    Q_INVOKABLE int indexOf(const QString& key) const;
    Q_INVOKABLE QString keyAt(int row) const;
    // One role's value by its name, for views that read a row outside a
    // delegate (the palette's Enter, a test).
    Q_INVOKABLE QVariant valueAt(int row, const QString& roleName) const;
    // Tells the views that one role of a row reads differently now although
    // its record did not change (the role also reads state kept beside the
    // records, such as a change shown before the service confirms it).
    void announce(const QString& key, const QByteArray& roleName);

signals:
    void countChanged();

protected:
    // Roles are numbered from Qt::UserRole + 1 in the order named; "key"
    // is always there as the first one.
    KeyedListModel(const QList<QByteArray>& roles, QObject* parent);

    // The value of role `role` (0 = the first named role) of row `row`.
    virtual QVariant roleValue(qsizetype row, int role) const = 0;
    int roleCount() const { return int(m_roleNames.size()); }
    // Roles whose value depends on the time of day ("4 min ago"): views
    // read them again every minute, whether or not a reload came.
    void setClockRoles(const QList<int>& roles);
    static int qtRole(int role) { return Qt::UserRole + 2 + role; }

    QList<QString> m_keys;

private:
    QList<QByteArray> m_roleNames;
    QList<int> m_clockRoles;
};

template <typename Record> class KeyedList : public KeyedListModel {
public:
    struct Role {
        QByteArray name;
        std::function<QVariant(const Record&)> value;
        // The value moves with the clock (a relative time).
        bool clock = false;
    };
    using Key = std::function<QString(const Record&)>;

    KeyedList(Key key, QList<Role> roles, QObject* parent = nullptr)
        : KeyedListModel(namesOf(roles), parent), m_key(std::move(key)), m_roles(std::move(roles))
    {
        QList<int> clockRoles;
        for (int role = 0; role < roleCount(); ++role)
            if (m_roles[role].clock)
                clockRoles.append(role);
        setClockRoles(clockRoles);
    }

    const QList<Record>& records() const { return m_rows; }
    const Record* find(const QString& key) const
    {
        const int row = indexOf(key);
        return row < 0 ? nullptr : &m_rows[row];
    }

    // Makes the rows equal to `next` (a later record with a key seen before
    // in `next` is dropped), with the fewest signals it can tell.
    void apply(QList<Record> next)
    {
        QList<QString> keys;
        keys.reserve(next.size());
        QSet<QString> seen;
        seen.reserve(next.size());
        for (qsizetype i = 0; i < next.size();) {
            QString key = m_key(next[i]);
            if (seen.contains(key)) {
                next.removeAt(i);
                continue;
            }
            seen.insert(key);
            keys.append(std::move(key));
            ++i;
        }
        const qsizetype before = m_keys.size();

        // Rows whose key is gone, from the end so the rows above stay put;
        // neighbours go in one signal.
        for (qsizetype row = m_keys.size() - 1; row >= 0;) {
            if (seen.contains(m_keys[row])) {
                --row;
                continue;
            }
            qsizetype first = row;
            while (first > 0 && !seen.contains(m_keys[first - 1]))
                --first;
            beginRemoveRows({}, int(first), int(row));
            m_keys.remove(first, row - first + 1);
            m_rows.remove(first, row - first + 1);
            endRemoveRows();
            row = first - 1;
        }

        // Walk the new order: a row in place is compared, a key not shown
        // yet is inserted (a run of them in one signal), a row further down
        // moves up.
        QSet<QString> shown(m_keys.cbegin(), m_keys.cend());
        for (qsizetype i = 0; i < keys.size();) {
            if (i < m_keys.size() && m_keys[i] == keys[i]) {
                update(i, std::move(next[i]));
                ++i;
                continue;
            }
            if (!shown.contains(keys[i])) {
                qsizetype end = i + 1;
                while (end < keys.size() && !shown.contains(keys[end]))
                    ++end;
                beginInsertRows({}, int(i), int(end - 1));
                for (qsizetype k = i; k < end; ++k) {
                    m_keys.insert(k, keys[k]);
                    m_rows.insert(k, std::move(next[k]));
                    shown.insert(keys[k]);
                }
                endInsertRows();
                i = end;
                continue;
            }
            const qsizetype from = m_keys.indexOf(keys[i], i + 1);
            beginMoveRows({}, int(from), int(from), {}, int(i));
            m_keys.move(from, i);
            m_rows.move(from, i);
            endMoveRows();
            update(i, std::move(next[i]));
            ++i;
        }
        if (m_keys.size() != before)
            emit countChanged();
    }

protected:
    QVariant roleValue(qsizetype row, int role) const override { return m_roles[role].value(m_rows[row]); }

private:
    static QList<QByteArray> namesOf(const QList<Role>& roles)
    {
        QList<QByteArray> names;
        for (const Role& role : roles)
            names.append(role.name);
        return names;
    }

    // Replaces a row's record; views hear of the roles whose value moved.
    void update(qsizetype row, Record&& record)
    {
        if (m_rows[row] == record)
            return;
        QList<int> changed;
        for (int role = 0; role < roleCount(); ++role)
            if (m_roles[role].value(m_rows[row]) != m_roles[role].value(record))
                changed.append(qtRole(role));
        m_rows[row] = std::move(record);
        if (!changed.isEmpty())
            emit dataChanged(index(int(row)), index(int(row)), changed);
    }

    Key m_key;
    QList<Role> m_roles;
    QList<Record> m_rows;
};

} // namespace Kestro
