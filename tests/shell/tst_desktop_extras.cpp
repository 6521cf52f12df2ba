// The desktop around the window, as the X server and the session bus see
// it: the global key grabbed on Xvfb and pressed with xdotool (with and
// without Num Lock, and when another program holds it), and the tray icon
// registered with a fake StatusNotifier watcher whose menu is read and
// clicked over dbusmenu, as a panel does.

#include "shell/GlobalHotKey.h"
#include "shell/TrayIcon.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QMutex>
#include <QProcess>
#include <QScopeGuard>
#include <QTest>
#include <QThread>
#include <QWindow>

#include <X11/Xlib.h>
#include <X11/keysym.h>
// Xlib's macros would rename Qt's own words below.
#undef Bool
#undef Status
#undef None

using namespace Kestro;
using namespace Qt::Literals::StringLiterals;

// Stands in for a panel's StatusNotifier watcher: says whether a host is
// there and records who registers. It answers from a thread of its own, as
// a panel answers from its own process: Qt asks the watcher with a call
// that blocks the asking thread.
class FakeWatcher : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)
    Q_PROPERTY(QStringList RegisteredStatusNotifierItems READ items)
public:
    std::atomic<bool> host = true;
    std::atomic<int> asked = 0;
    QStringList registered() const
    {
        QMutexLocker lock(&m_mutex);
        return m_registered;
    }
    bool hostRegistered()
    {
        ++asked;
        return host;
    }
    int protocolVersion() const { return 0; }
    QStringList items() const { return registered(); }
public slots:
    void RegisterStatusNotifierItem(const QString& service, const QDBusMessage& message)
    {
        QMutexLocker lock(&m_mutex);
        // Qt names the item by its bus name, or by the path on the sender's name.
        m_registered.append(service.startsWith(u'/') ? message.service() : service);
    }
    void RegisterStatusNotifierHost(const QString&) {}

private:
    mutable QMutex m_mutex;
    QStringList m_registered;
};

namespace {

// Calls the app's side (served on this thread) without blocking it.
QDBusMessage callAndWait(QDBusConnection bus, const QDBusMessage& message)
{
    QDBusPendingCall pending = bus.asyncCall(message);
    QDBusPendingCallWatcher watcher(pending);
    bool done = false;
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, [&] { done = true; });
    if (!QTest::qWaitFor([&] { return done; }))
        return QDBusMessage::createError(QDBusError::Timeout, u"no answer"_s);
    return pending.reply();
}

void press(const QStringList& keys)
{
    for (const QString& key : keys)
        QCOMPARE(QProcess::execute(u"xdotool"_s, {u"key"_s, key}), 0);
}

// A dbusmenu layout node: its id, label and children.
struct MenuNode {
    int id = 0;
    QString label;
    QList<MenuNode> children;
};

MenuNode readNode(const QDBusArgument& argument)
{
    MenuNode node;
    QVariantMap properties;
    QVariantList children;
    argument.beginStructure();
    argument >> node.id >> properties >> children;
    argument.endStructure();
    node.label = properties.value(u"label"_s).toString();
    for (const QVariant& child : std::as_const(children))
        node.children.append(readNode(child.userType() == qMetaTypeId<QDBusVariant>()
                                          ? child.value<QDBusVariant>().variant().value<QDBusArgument>()
                                          : child.value<QDBusArgument>()));
    return node;
}

} // namespace

class TestDesktopExtras : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (QGuiApplication::platformName() != u"xcb"_s)
            QSKIP("Needs an X server (the tests run under Xvfb).");
        QVERIFY(QDBusConnection::sessionBus().isConnected());
    }

    void theKeyReachesKestroFromAnywhere()
    {
        GlobalHotKey key;
        QCOMPARE(key.settled(), false);
        int presses = 0;
        key.install([&] { ++presses; });
        QVERIFY(key.settled());
        QCOMPARE(key.key(), u"Ctrl+Alt+K"_s);

        press({u"ctrl+alt+k"_s});
        QTRY_COMPARE(presses, 1);
        // X counts Num Lock and Caps Lock as modifiers; the key works with either on.
        press({u"Num_Lock"_s, u"ctrl+alt+k"_s, u"Num_Lock"_s});
        QTRY_COMPARE(presses, 2);
        press({u"Caps_Lock"_s, u"ctrl+alt+k"_s, u"Caps_Lock"_s});
        QTRY_COMPARE(presses, 3);
        // Another combination with the same key is not ours.
        press({u"ctrl+k"_s, u"ctrl+shift+alt+k"_s, u"ctrl+alt+k"_s});
        QTRY_COMPARE(presses, 4);
        // Pressed in one of Kestro's own windows, it still counts, once.
        QWindow own;
        own.resize(200, 100);
        own.show();
        QVERIFY(QTest::qWaitForWindowExposed(&own));
        QCOMPARE(
            QProcess::execute(u"xdotool"_s, {u"windowfocus"_s, u"--sync"_s, QString::number(own.winId())}),
            0);
        press({u"ctrl+alt+k"_s});
        QTRY_COMPARE(presses, 5);

        // A second registration keeps the first and its action.
        int other = 0;
        key.install([&] { ++other; });
        press({u"ctrl+alt+k"_s});
        QTRY_COMPARE(presses, 6);
        QCOMPARE(other, 0);
    }

    // Another program's grab wins: Kestro says so once and offers the
    // command instead; once Kestro lets go, the key is free again.
    void aKeyTakenElsewhereIsReportedOnce()
    {
        Display* other = XOpenDisplay(nullptr);
        QVERIFY(other);
        const KeyCode k = XKeysymToKeycode(other, XK_k);
        XGrabKey(other, k, ControlMask | Mod1Mask, DefaultRootWindow(other), 1, GrabModeAsync, GrabModeAsync);
        XSync(other, 0);

        static QStringList told;
        told.clear();
        const QtMessageHandler before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext&, const QString& message) { told.append(message); });
        GlobalHotKey key;
        int presses = 0;
        key.install([&] { ++presses; });
        QVERIFY(key.settled());
        QCOMPARE(key.key(), QString());
        key.install([&] { ++presses; }); // not retried, not logged again
        qInstallMessageHandler(before);
        QCOMPARE(told.size(), 1);
        QVERIFY2(
            told[0].contains(u"could not register Ctrl+Alt+K: another program holds the combination"_s) &&
                told[0].contains(u"kestro --palette"_s),
            qPrintable(told[0]));

        XUngrabKey(other, k, ControlMask | Mod1Mask, DefaultRootWindow(other));
        XSync(other, 0);
        XCloseDisplay(other);
        {
            GlobalHotKey mine;
            mine.install([] {});
            QCOMPARE(mine.key(), u"Ctrl+Alt+K"_s);
        }
        // Gone with its owner: the key can be taken by the next.
        GlobalHotKey next;
        next.install([&] { ++presses; });
        QCOMPARE(next.key(), u"Ctrl+Alt+K"_s);
        press({u"ctrl+alt+k"_s});
        QTRY_COMPARE(presses, 1);
    }

    void theTrayShowsOnlyWhereAHostIs()
    {
        QDBusConnection panel = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"panel"_s);
        QThread panelThread;
        panelThread.start();
        auto stop = qScopeGuard([&] {
            panelThread.quit();
            panelThread.wait();
        });
        FakeWatcher watcher;
        watcher.moveToThread(&panelThread);
        watcher.host = false;
        QVERIFY(panel.registerObject(u"/StatusNotifierWatcher"_s, &watcher,
                                     QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties));
        QVERIFY(panel.registerService(u"org.kde.StatusNotifierWatcher"_s));

        int needsYou = 0, quits = 0;
        {
            // A watcher with no host behind it: nowhere to show.
            TrayIcon tray({[&] { ++needsYou; }, {}, [&] { ++quits; }, {}});
            QTRY_VERIFY(watcher.asked.load() > 0);
            // One round trip on the same connection brings the answer in.
            QDBusConnection::sessionBus().interface()->isServiceRegistered(
                u"org.kde.StatusNotifierWatcher"_s);
            QCoreApplication::processEvents();
            QVERIFY(!tray.isShown());
        }

        watcher.host = true;
        TrayIcon tray({[&] { ++needsYou; }, {}, [&] { ++quits; }, {}});
        QTRY_VERIFY(tray.isShown());
        QTRY_COMPARE(watcher.registered().size(), 1);

        // The menu, read as the panel reads it.
        const QString item = watcher.registered().first();
        QDBusMessage layout =
            QDBusMessage::createMethodCall(item, u"/MenuBar"_s, u"com.canonical.dbusmenu"_s, u"GetLayout"_s);
        layout << 0 << -1 << QStringList();
        const QDBusMessage answer = callAndWait(panel, layout);
        QVERIFY2(answer.type() == QDBusMessage::ReplyMessage, qPrintable(answer.errorMessage()));
        const MenuNode root = readNode(answer.arguments().at(1).value<QDBusArgument>());
        QStringList labels;
        for (const MenuNode& child : root.children)
            labels.append(child.label);
        // No update feed in this test: no "Check for Updates…".
        QCOMPARE(labels, (QStringList{u"Open Needs you"_s, u"Quit"_s}));

        QDBusMessage click =
            QDBusMessage::createMethodCall(item, u"/MenuBar"_s, u"com.canonical.dbusmenu"_s, u"Event"_s);
        click << root.children.at(0).id << u"clicked"_s << QVariant::fromValue(QDBusVariant(0)) << 0U;
        QCOMPARE(callAndWait(panel, click).type(), QDBusMessage::ReplyMessage);
        QTRY_COMPARE(needsYou, 1);
        QCOMPARE(quits, 0);

        // The panel goes, and the icon with it; a restarted panel gets it back.
        panel.unregisterService(u"org.kde.StatusNotifierWatcher"_s);
        QTRY_VERIFY(!tray.isShown());
        QVERIFY(panel.registerService(u"org.kde.StatusNotifierWatcher"_s));
        QTRY_VERIFY(tray.isShown());
        QTRY_COMPARE(watcher.registered().size(), 2);
        QDBusConnection::disconnectFromBus(u"panel"_s);
    }
};

QTEST_MAIN(TestDesktopExtras)
#include "tst_desktop_extras.moc"
