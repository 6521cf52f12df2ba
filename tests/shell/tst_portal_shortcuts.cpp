// The global shortcut through the desktop portal, against a fake portal on
// the test's own session bus that answers each request the way
// xdg-desktop-portal does: a request object, then its Response signal.

#include "shell/PortalShortcuts.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace Kestro;
using namespace Qt::Literals::StringLiterals;

struct Shortcut {
    QString id;
    QVariantMap properties;
};
Q_DECLARE_METATYPE(Shortcut)

QDBusArgument& operator<<(QDBusArgument& argument, const Shortcut& shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, Shortcut& shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

class FakePortal : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.GlobalShortcuts")
public:
    explicit FakePortal(QDBusConnection bus) : m_bus(std::move(bus)) {}
    uint bindAnswer = 0;
    QVariantMap createOptions;
    QList<Shortcut> bound;
    const QString session = u"/org/freedesktop/portal/desktop/session/1_9/kestro"_s;

    void activate(const QString& session, const QString& id)
    {
        QDBusMessage signal =
            QDBusMessage::createSignal(u"/org/freedesktop/portal/desktop"_s,
                                       u"org.freedesktop.portal.GlobalShortcuts"_s, u"Activated"_s);
        signal << QVariant::fromValue(QDBusObjectPath(session)) << id << qulonglong(1) << QVariantMap();
        m_bus.send(signal);
    }

public slots:
    QDBusObjectPath CreateSession(const QVariantMap& options, const QDBusMessage& message)
    {
        createOptions = options;
        return respond(message, options, 0, {{u"session_handle"_s, session}});
    }
    QDBusObjectPath BindShortcuts(const QDBusObjectPath& session, const QList<Shortcut>& shortcuts,
                                  const QString&, const QVariantMap& options, const QDBusMessage& message)
    {
        QVariantMap results;
        if (session.path() == this->session) {
            bound = shortcuts;
            results.insert(u"shortcuts"_s,
                           QVariant::fromValue(QList<Shortcut>{
                               {u"open-palette"_s, {{u"trigger_description"_s, u"Ctrl+Alt+K"_s}}}}));
        }
        return respond(message, options, bindAnswer, results);
    }

private:
    // The request object is named from the caller and its token; its
    // Response follows the method's reply.
    QDBusObjectPath respond(const QDBusMessage& message, const QVariantMap& options, uint code,
                            QVariantMap results)
    {
        const QString path = u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(
            message.service().mid(1).replace(u'.', u'_'), options.value(u"handle_token"_s).toString());
        QTimer::singleShot(0, this, [this, path, code, results] {
            QDBusMessage signal =
                QDBusMessage::createSignal(path, u"org.freedesktop.portal.Request"_s, u"Response"_s);
            signal << code << results;
            m_bus.send(signal);
        });
        return QDBusObjectPath(path);
    }

    QDBusConnection m_bus;
};

class TestPortalShortcuts : public QObject {
    Q_OBJECT

    // The desktop's side: a connection of its own that owns the portal's
    // name and serves `portal` there.
    static QDBusConnection desktopBus()
    {
        return QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"desktop"_s);
    }
    static bool serve(QDBusConnection& bus, FakePortal& portal)
    {
        return bus.registerObject(u"/org/freedesktop/portal/desktop"_s, &portal,
                                  QDBusConnection::ExportAllSlots) &&
               bus.registerService(u"org.freedesktop.portal.Desktop"_s);
    }

private slots:
    void initTestCase()
    {
        qDBusRegisterMetaType<Shortcut>();
        qDBusRegisterMetaType<QList<Shortcut>>();
        QVERIFY(QDBusConnection::sessionBus().isConnected());
    }

    void theShortcutIsBoundAndItsPressesArrive()
    {
        QDBusConnection bus = desktopBus();
        FakePortal portal(bus);
        QVERIFY(serve(bus, portal));

        PortalShortcuts shortcuts;
        QSignalSpy bound(&shortcuts, &PortalShortcuts::bound);
        QSignalSpy refused(&shortcuts, &PortalShortcuts::refused);
        QSignalSpy activated(&shortcuts, &PortalShortcuts::activated);
        shortcuts.bind(u"open-palette"_s, u"Open the palette"_s, u"CTRL+ALT+k"_s);
        QTRY_COMPARE(bound.count(), 1);
        QCOMPARE(bound.at(0).at(0).toString(), u"Ctrl+Alt+K"_s);
        QCOMPARE(refused.count(), 0);
        QCOMPARE(portal.bound.size(), 1);
        QCOMPARE(portal.bound.at(0).id, u"open-palette"_s);
        QCOMPARE(portal.bound.at(0).properties.value(u"preferred_trigger"_s).toString(), u"CTRL+ALT+k"_s);
        // Plasma 5.27 reads the shortcuts from the session's options.
        const auto early = qdbus_cast<QList<Shortcut>>(portal.createOptions.value(u"shortcuts"_s));
        QCOMPARE(early.size(), 1);
        QCOMPARE(early.at(0).properties.value(u"description"_s).toString(), u"Open the palette"_s);

        portal.activate(u"/org/freedesktop/portal/desktop/session/1_9/someone_else"_s, u"open-palette"_s);
        portal.activate(portal.session, u"open-palette"_s);
        QTRY_COMPARE(activated.count(), 1);
        QCOMPARE(activated.at(0).at(0).toString(), u"open-palette"_s);
        QDBusConnection::disconnectFromBus(u"desktop"_s);
    }

    void aDeclinedShortcutOrNoPortalIsARefusal()
    {
        {
            QDBusConnection bus = desktopBus();
            FakePortal portal(bus);
            portal.bindAnswer = 1; // the user said no in the desktop's dialog
            QVERIFY(serve(bus, portal));
            PortalShortcuts shortcuts;
            QSignalSpy bound(&shortcuts, &PortalShortcuts::bound);
            QSignalSpy refused(&shortcuts, &PortalShortcuts::refused);
            shortcuts.bind(u"open-palette"_s, u"Open the palette"_s, u"CTRL+ALT+k"_s);
            QTRY_COMPARE(refused.count(), 1);
            QCOMPARE(refused.at(0).at(0).toString(), u"the shortcut was declined"_s);
            QCOMPARE(bound.count(), 0);
            QDBusConnection::disconnectFromBus(u"desktop"_s);
        }
        PortalShortcuts shortcuts;
        QSignalSpy refused(&shortcuts, &PortalShortcuts::refused);
        shortcuts.bind(u"open-palette"_s, u"Open the palette"_s, u"CTRL+ALT+k"_s);
        QTRY_COMPARE(refused.count(), 1);
        QCOMPARE(refused.at(0).at(0).toString(), u"the desktop offers no global shortcuts"_s);
    }
};

QTEST_GUILESS_MAIN(TestPortalShortcuts)
#include "tst_portal_shortcuts.moc"
