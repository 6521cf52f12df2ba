// The keyed list model: a reload becomes the inserts, removes, moves and
// per-role changes that lead to the new list, nothing when nothing changed,
// and a ListView over it keeps its current row and scroll position.

#include "shell/KeyedListModel.h"
#include "shell/RelativeTime.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using Kestro::KeyedList;

namespace {

struct Item {
    QString id;
    QString title;
    int size = 0;
    bool operator==(const Item&) const = default;
};

std::unique_ptr<KeyedList<Item>> makeList()
{
    return std::make_unique<KeyedList<Item>>(
        [](const Item& item) { return item.id; },
        QList<KeyedList<Item>::Role>{{"title", [](const Item& item) { return QVariant(item.title); }},
                                     {"size", [](const Item& item) { return QVariant(item.size); }}});
}

QList<Item> items(const QString& keys)
{
    QList<Item> out;
    for (const QChar key : keys)
        out.append({QString(key), u"Item "_s + key, 1});
    return out;
}

QString keysOf(const Kestro::KeyedListModel& model)
{
    QString out;
    for (int row = 0; row < model.rowCount(); ++row)
        out += model.keyAt(row);
    return out;
}

// Every signal the model can send, counted.
struct Spies {
    explicit Spies(QAbstractItemModel* model)
        : inserted(model, &QAbstractItemModel::rowsInserted),
          removed(model, &QAbstractItemModel::rowsRemoved), moved(model, &QAbstractItemModel::rowsMoved),
          changed(model, &QAbstractItemModel::dataChanged), reset(model, &QAbstractItemModel::modelReset)
    {
    }
    int total() const
    {
        return int(inserted.size() + removed.size() + moved.size() + changed.size() + reset.size());
    }
    QSignalSpy inserted, removed, moved, changed, reset;
};

} // namespace

class KeyedListTest : public QObject {
    Q_OBJECT
private slots:
    void appliesAReloadAsTheSmallestChange()
    {
        auto list = makeList();
        list->apply(items(u"abcde"_s));
        QCOMPARE(keysOf(*list), u"abcde"_s);

        // The same answer again: nothing at all is said.
        {
            Spies spies(list.get());
            list->apply(items(u"abcde"_s));
            QCOMPARE(spies.total(), 0);
        }
        // One record changed in one role: one dataChanged with that role.
        {
            Spies spies(list.get());
            QList<Item> next = items(u"abcde"_s);
            next[2].size = 7;
            list->apply(next);
            QCOMPARE(spies.total(), 1);
            QCOMPARE(spies.changed.size(), 1);
            QCOMPARE(spies.changed[0][0].toModelIndex().row(), 2);
            QCOMPARE(spies.changed[0][1].toModelIndex().row(), 2);
            const auto roles = spies.changed[0][2].value<QList<int>>();
            QCOMPARE(roles.size(), 1);
            QCOMPARE(list->roleNames().value(roles[0]), "size"_ba);
            QCOMPARE(list->valueAt(2, u"size"_s).toInt(), 7);
        }
        // Removed rows go in runs, new ones come in runs, and a row that
        // moved up is moved, not removed and inserted.
        {
            Spies spies(list.get());
            list->apply(items(u"exyab"_s));
            QCOMPARE(keysOf(*list), u"exyab"_s);
            QCOMPARE(spies.removed.size(), 1);  // c and d, neighbours
            QCOMPARE(spies.inserted.size(), 1); // x and y together
            QCOMPARE(spies.moved.size(), 1);    // e to the top
            QCOMPARE(spies.reset.size(), 0);
        }
        // A key that comes twice is shown once, at its first place.
        list->apply(items(u"abab"_s));
        QCOMPARE(keysOf(*list), u"ab"_s);
        QCOMPARE(list->count(), 2);
        list->apply({});
        QCOMPARE(list->count(), 0);
    }

    // A relative time is read again each minute although no reload came;
    // the other roles are not.
    void readsClockRolesAgainEachMinute()
    {
        KeyedList<Item> list([](const Item& item) { return item.id; },
                             {{"title", [](const Item& item) { return QVariant(item.title); }},
                              {"when", [](const Item& item) { return QVariant(item.size); }, true}});
        Spies idle(&list);
        emit Kestro::MinuteClock::instance().moved();
        QCOMPARE(idle.total(), 0); // no rows, nothing to say

        list.apply(items(u"abc"_s));
        Spies spies(&list);
        emit Kestro::MinuteClock::instance().moved();
        QCOMPARE(spies.total(), 1);
        QCOMPARE(spies.changed[0][0].toModelIndex().row(), 0);
        QCOMPARE(spies.changed[0][1].toModelIndex().row(), 2);
        const auto roles = spies.changed[0][2].value<QList<int>>();
        QCOMPARE(roles.size(), 1);
        QCOMPARE(list.roleNames().value(roles[0]), "when"_ba);
    }

    void reachesAnyOrder_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::newRow("reversed") << u"abcdef"_s << u"fedcba"_s;
        QTest::newRow("rotated") << u"abcdef"_s << u"bcdefa"_s;
        QTest::newRow("interleaved") << u"abcdef"_s << u"axbyczd"_s;
        QTest::newRow("all new") << u"abc"_s << u"xyz"_s;
        QTest::newRow("from nothing") << QString() << u"abc"_s;
    }
    void reachesAnyOrder()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        auto list = makeList();
        list->apply(items(from));
        // The rows a view would hold, rebuilt from the signals alone.
        QStringList mirror;
        for (const QChar key : from)
            mirror.append(QString(key));
        connect(list.get(), &QAbstractItemModel::rowsInserted, this,
                [&](const QModelIndex&, int first, int last) {
                    for (int row = first; row <= last; ++row)
                        mirror.insert(row, list->keyAt(row));
                });
        connect(list.get(), &QAbstractItemModel::rowsAboutToBeRemoved, this,
                [&](const QModelIndex&, int first, int last) { mirror.remove(first, last - first + 1); });
        connect(
            list.get(), &QAbstractItemModel::rowsAboutToBeMoved, this,
            [&](const QModelIndex&, int first, int, const QModelIndex&, int to) { mirror.move(first, to); });
        list->apply(items(to));
        QCOMPARE(keysOf(*list), to);
        QCOMPARE(mirror.join(QString()), to);
    }

    void aListViewKeepsItsPlaceAcrossAReload()
    {
        auto list = makeList();
        QList<Item> rows;
        for (int i = 0; i < 200; ++i)
            rows.append({u"row%1"_s.arg(i), u"Row %1"_s.arg(i), i});
        list->apply(rows);

        QQuickView view;
        view.setInitialProperties({{u"rows"_s, QVariant::fromValue<QObject*>(list.get())}});
        view.setSource(QUrl(u"data:text/plain,"_s + QString::fromUtf8(QUrl::toPercentEncoding(uR"(
            import QtQuick
            ListView {
                required property var rows
                width: 300; height: 400
                model: rows
                delegate: Text { required property string title; width: 300; height: 20; text: title }
            })"_s))));
        QCOMPARE(view.status(), QQuickView::Ready);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QQuickItem* listView = view.rootObject();
        listView->setProperty("currentIndex", 120);
        listView->setProperty("contentY", 1500.0);
        QTest::qWait(50);
        const QQuickItem* current = listView->property("currentItem").value<QQuickItem*>();
        QVERIFY(current);

        // A reload that changes a visible row and adds one at the end.
        rows[80].title = u"Row 80, renamed"_s;
        rows.append({u"row200"_s, u"Row 200"_s, 200});
        list->apply(rows);
        QTest::qWait(50);
        QCOMPARE(listView->property("currentIndex").toInt(), 120);
        QCOMPARE(listView->property("currentItem").value<QQuickItem*>(), current);
        QCOMPARE(listView->property("contentY").toDouble(), 1500.0);
        QCOMPARE(listView->property("count").toInt(), 201);
    }
};

QTEST_MAIN(KeyedListTest)
#include "tst_keyed_list.moc"
