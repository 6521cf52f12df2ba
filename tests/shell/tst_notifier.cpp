// Desktop notifications and the launcher badge over a real session bus (the
// test runs inside its own D-Bus session): a fake notification server and a
// fake dock, on a connection of their own, record what the app sends; the
// notifications come from a fake service over loopback.

#include "shell/DesktopNotifications.h"
#include "shell/LauncherBadge.h"
#include "shell/NotificationRules.h"
#include "shell/Notifier.h"

#include "SignedInClient.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QJsonArray>
#include <QSet>
#include <QSettings>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>

using namespace Kestro;
using namespace KestroTest;
using namespace Qt::Literals::StringLiterals;

// What a notification server is asked, and the clicks it reports.
class FakeNotificationServer : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    struct Shown {
        uint replaces;
        QString summary;
        QString body;
        QStringList actions;
        QVariantMap hints;
    };
    QList<Shown> shown;

public slots:
    uint Notify(const QString&, uint replaces, const QString&, const QString& summary, const QString& body,
                const QStringList& actions, const QVariantMap& hints, int)
    {
        shown.append({replaces, summary, body, actions, hints});
        return replaces ? replaces : uint(shown.size() + 100);
    }
    QStringList GetCapabilities() { return {u"actions"_s, u"body"_s}; }
    void CloseNotification(uint id) { closed.append(id); }

public:
    QList<uint> closed;

signals:
    void ActionInvoked(uint id, const QString& action);
    void NotificationClosed(uint id, uint reason);
};

// The desktop portal's notifications, as a Flatpak sandbox reaches them.
class FakeNotificationPortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Notification")
public:
    QList<QPair<QString, QVariantMap>> added;
    QStringList removed;
public slots:
    void AddNotification(const QString& id, const QVariantMap& notification)
    {
        added.append({id, notification});
    }
    void RemoveNotification(const QString& id) { removed.append(id); }
signals:
    void ActionInvoked(const QString& id, const QString& action, const QVariantList& parameter);
};

// The Unity launcher entry's listeners see this.
class FakeDock : public QObject {
    Q_OBJECT
public:
    QList<QPair<qint64, bool>> updates;
    QString app;
public slots:
    void update(const QString& application, const QVariantMap& properties)
    {
        app = application;
        // The count must travel as a 64-bit integer ("x"), or docks ignore it.
        updates.append({properties.value(u"count"_s).typeId() == QMetaType::LongLong
                            ? properties.value(u"count"_s).toLongLong()
                            : -1,
                        properties.value(u"count-visible"_s).toBool()});
    }
};

namespace {

QJsonObject item(const QString& id, const QString& at, bool read = false, const QString& verb = u"finished"_s)
{
    return QJsonObject{
        {u"id"_s, id},
        {u"kind"_s, u"done"_s},
        {u"by"_s, QJsonObject{{u"type"_s, u"agent"_s}, {u"id"_s, u"a1"_s}, {u"name"_s, u"Quill"_s}}},
        {u"verb"_s, verb},
        {u"title"_s, u"the launch post"_s},
        {u"text"_s, u"Ready for your review."_s},
        {u"href"_s, u"/tasks/NOR-"_s + id},
        {u"read"_s, read},
        {u"at"_s, at}};
}

} // namespace

class TestNotifier : public QObject {
    Q_OBJECT

    // The bus keeps one sender's messages in order: once the fake server
    // answers a call, every signal it sent before has arrived.
    void roundTrip()
    {
        const QDBusMessage ask = QDBusMessage::createMethodCall(
            u"org.freedesktop.Notifications"_s, u"/org/freedesktop/Notifications"_s,
            u"org.freedesktop.Notifications"_s, u"GetCapabilities"_s);
        QDBusPendingCallWatcher watcher(QDBusConnection::sessionBus().asyncCall(ask));
        QSignalSpy answered(&watcher, &QDBusPendingCallWatcher::finished);
        QVERIFY(answered.wait());
        QCoreApplication::processEvents();
    }

    QDBusConnection m_other = QDBusConnection(u"none"_s);
    FakeNotificationServer m_server;

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        if (!QDBusConnection::sessionBus().isConnected())
            QSKIP("No session bus: run the tests through scripts/test.");
        m_other = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"desktop"_s);
        QVERIFY(m_other.registerObject(u"/org/freedesktop/Notifications"_s, &m_server,
                                       QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
        QVERIFY(m_other.registerService(u"org.freedesktop.Notifications"_s));
    }

    void rules()
    {
        using namespace NotificationRules;
        QVERIFY(parseAt(u"2026-11-25T10:00:00.250Z"_s));
        QVERIFY(parseAt(u"2026-11-25T10:00:00Z"_s));
        QVERIFY(!parseAt(u"yesterday"_s));
        QVERIFY(!parseAt(u""_s));
        Model::NotificationView quiet;
        quiet.by = Model::NotificationViewBy{u"agent"_s, u"a1"_s, u"Quill"_s, std::nullopt};
        quiet.title = u"the launch post"_s;
        QCOMPARE(titleOf(quiet), u"Quill the launch post"_s); // an empty verb leaves one blank
    }

    void postsWhatIsNewOnceAndOpensItsPage()
    {
        QSettings().remove(QLatin1String(NotificationRules::notifiedAtKey));
        SignedInClient signedIn;
        Client::setShared(signedIn.client.get());
        QJsonArray answer;
        QStringList readIds;
        signedIn.service.setActionHandler([&](const QByteArray& module, const QByteArray& action,
                                              const QJsonValue&,
                                              const TestHttpServer::Request&) -> TestHttpServer::Response {
            if (module == "app" && action == "notificationsAction")
                return jsonAnswer(QJsonObject{{u"items"_s, answer}, {u"unread"_s, answer.size()}});
            return {404, "{}"};
        });
        QDateTime now = QDateTime::fromString(u"2026-11-25T10:00:00Z"_s, Qt::ISODate);
        QStringList opened;
        DesktopNotifications desktop;
        Notifier notifier(desktop, {[&](const QString& path) { opened.append(path); },
                                    [&](const QString& id) { readIds.append(id); }});
        notifier.setClock([&] { return now; });
        m_server.shown.clear();

        // The first frame: last week's unread items stay quiet.
        notifier.start();
        answer = {item(u"1"_s, u"2026-11-18T09:00:00.000Z"_s)};
        blockingWait(notifier.notifyNew());
        QCOMPARE(m_server.shown.size(), 0);

        // New ones: with or without fractions of a second, in the answer's
        // order; not one already read, nor one with no readable time.
        answer = {item(u"2"_s, u"2026-11-25T10:05:00.500Z"_s), item(u"3"_s, u"2026-11-25T10:06:00Z"_s),
                  item(u"4"_s, u"2026-11-25T10:07:00Z"_s, true), item(u"5"_s, u"soon"_s),
                  item(u"6"_s, u"2026-11-25T10:04:00Z"_s, false, u""_s)};
        blockingWait(notifier.notifyNew());
        QCOMPARE(m_server.shown.size(), 3);
        QCOMPARE(m_server.shown[0].summary, u"Quill finished the launch post"_s);
        QCOMPARE(m_server.shown[0].body, u"Ready for your review."_s);
        QCOMPARE(m_server.shown[1].summary, u"Quill finished the launch post"_s);
        QCOMPARE(m_server.shown[2].summary, u"Quill the launch post"_s);
        QCOMPARE(m_server.shown[0].actions, (QStringList{u"default"_s, u"Open"_s}));
        QCOMPARE(m_server.shown[0].hints.value(u"urgency"_s).typeId(), QMetaType::UChar);
        QCOMPARE(m_server.shown[0].hints.value(u"desktop-entry"_s).toString(), u"kestro"_s);
        QCOMPARE(QSettings().value(QLatin1String(NotificationRules::notifiedAtKey)).toString(),
                 u"2026-11-25T10:06:00.000Z"_s);

        // The next poll with the same items posts nothing again.
        blockingWait(notifier.notifyNew());
        QCOMPARE(m_server.shown.size(), 3);

        // Another program's banner, or another action, is not ours; then a
        // click on item 3's banner: read, its page open, the window asked
        // for. (Signals from one sender arrive in order: the click's coming
        // means the two before it were seen and dropped.)
        QSignalSpy raised(&notifier, &Notifier::raiseRequested);
        emit m_server.ActionInvoked(999, u"default"_s);
        emit m_server.ActionInvoked(101, u"dismiss"_s);
        emit m_server.ActionInvoked(102, u"default"_s);
        QTRY_COMPARE(raised.count(), 1);
        QCOMPARE(opened, QStringList{u"/tasks/NOR-3"_s});
        QCOMPARE(readIds, QStringList{u"3"_s});

        // Signed out: the banners go, and a late click on one opens nothing.
        desktop.closeAll();
        QTRY_COMPARE(m_server.closed.size(), 3);
        QCOMPARE(QSet<uint>(m_server.closed.begin(), m_server.closed.end()), (QSet<uint>{101, 102, 103}));
        emit m_server.ActionInvoked(103, u"default"_s);
        roundTrip();
        QCOMPARE(raised.count(), 1);
        QCOMPARE(opened.size(), 1);

        // A failed answer posts nothing and leaves the mark.
        signedIn.service.setActionHandler(
            [](const QByteArray&, const QByteArray&, const QJsonValue&, const TestHttpServer::Request&) {
                return TestHttpServer::Response{500, "down"};
            });
        blockingWait(notifier.notifyNew());
        QCOMPARE(m_server.shown.size(), 3);
        QCOMPARE(QSettings().value(QLatin1String(NotificationRules::notifiedAtKey)).toString(),
                 u"2026-11-25T10:06:00.000Z"_s);
        Client::setShared(nullptr);
    }

    void aRepeatReplacesItsBanner()
    {
        DesktopNotifications desktop;
        m_server.shown.clear();
        QVERIFY(blockingWait(desktop.post({u"7"_s, u"Title"_s, u"Body"_s, u"/tasks"_s})));
        QVERIFY(blockingWait(desktop.post({u"7"_s, u"Title"_s, u"Body again"_s, u"/tasks"_s})));
        QCOMPARE(m_server.shown.size(), 2);
        QCOMPARE(m_server.shown[0].replaces, 0u);
        QCOMPARE(m_server.shown[1].replaces, 101u);
        // Closed, it is forgotten: the next post is a new banner.
        emit m_server.NotificationClosed(101, 2);
        roundTrip();
        QVERIFY(blockingWait(desktop.post({u"7"_s, u"Title"_s, u"Body"_s, u"/tasks"_s})));
        QCOMPARE(m_server.shown[2].replaces, 0u);
    }

    // Inside a sandbox: the portal names banners by the item's id, so a
    // repeat replaces; its "open" action is the click.
    void insideFlatpakThePortalCarriesThem()
    {
        FakeNotificationPortal portal;
        QVERIFY(m_other.registerObject(u"/org/freedesktop/portal/desktop"_s, &portal,
                                       QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
        QVERIFY(m_other.registerService(u"org.freedesktop.portal.Desktop"_s));
        DesktopNotifications desktop(QDBusConnection::sessionBus(), DesktopNotifications::Route::Portal);
        QSignalSpy clicked(&desktop, &DesktopNotifications::clicked);
        m_server.shown.clear();
        QVERIFY(blockingWait(
            desktop.post({u"7"_s, u"Quill finished the post"_s, u"Ready."_s, u"/tasks/NOR-7"_s})));
        QVERIFY(blockingWait(desktop.post({u"8"_s, u"Atlas replied"_s, u"See the thread."_s, u"/kest"_s})));
        QCOMPARE(portal.added.size(), 2);
        QCOMPARE(portal.added[0].first, u"7"_s);
        QCOMPARE(portal.added[0].second.value(u"title"_s).toString(), u"Quill finished the post"_s);
        QCOMPARE(portal.added[0].second.value(u"body"_s).toString(), u"Ready."_s);
        QCOMPARE(portal.added[0].second.value(u"default-action"_s).toString(), u"open"_s);
        QVERIFY(m_server.shown.isEmpty()); // not the server's

        emit portal.ActionInvoked(u"8"_s, u"open"_s, {});
        emit portal.ActionInvoked(u"unknown"_s, u"open"_s, {});
        QTRY_COMPARE(clicked.count(), 1);
        QCOMPARE(clicked[0], (QVariantList{u"8"_s, u"/kest"_s}));

        desktop.closeAll();
        QTRY_COMPARE(portal.removed.size(), 2);
        QCOMPARE(QSet<QString>(portal.removed.begin(), portal.removed.end()),
                 (QSet<QString>{u"7"_s, u"8"_s}));
        m_other.unregisterService(u"org.freedesktop.portal.Desktop"_s);
        m_other.unregisterObject(u"/org/freedesktop/portal/desktop"_s);
    }

    void theLauncherShowsTheCount()
    {
        FakeDock dock;
        QVERIFY(m_other.connect(QString(), QString(), u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s,
                                &dock, SLOT(update(QString, QVariantMap))));
        // The bus takes the match rule asynchronously: a round trip on the
        // same connection makes sure it is in place before the first signal.
        QVERIFY(m_other.interface()->isServiceRegistered(u"org.freedesktop.DBus"_s).value());
        LauncherBadge badge;
        badge.setCount(3);
        QTRY_COMPARE(dock.updates.size(), 1);
        QCOMPARE(dock.app, u"application://kestro.desktop"_s);
        QCOMPARE(dock.updates[0], (QPair<qint64, bool>{3, true}));
        badge.setCount(3); // nothing new, nothing sent
        badge.setCount(0);
        QTRY_COMPARE(dock.updates.size(), 2);
        QCOMPARE(dock.updates[1], (QPair<qint64, bool>{0, false}));
        // A dock that comes later hears the count that is up.
        badge.setCount(5);
        QTRY_COMPARE(dock.updates.size(), 3);
        QVERIFY(!badge.shown());
        QVERIFY(m_other.registerService(u"com.canonical.Unity"_s));
        QTRY_COMPARE(dock.updates.size(), 4);
        QCOMPARE(dock.updates[3], (QPair<qint64, bool>{5, true}));
        // Whether the count shows somewhere follows the docks on the bus.
        QTRY_VERIFY(badge.shown());
        m_other.unregisterService(u"com.canonical.Unity"_s);
        QTRY_VERIFY(!badge.shown());
    }
};

QTEST_GUILESS_MAIN(TestNotifier)
#include "tst_notifier.moc"
