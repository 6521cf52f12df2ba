// Kestro as a screen reader meets it: the real app, signed in against the
// local service with Qt's AT-SPI bridge on, read over the accessibility bus
// the way Orca reads it. Every control a user can act on that shows has a
// name to speak and can take keyboard focus, on Home and on Needs you.

#include "DevServiceProcess.h"
#include "StoredSignIn.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// One object in the tree: the bus name of its application and its path.
struct Node {
    QString service;
    QString path;
};

// What the test reads of a node.
struct Seen {
    QString role;
    QString name;
    bool showing = false;
    bool focusable = false;
};

// The roles of things a user acts on.
const QStringList actionable = {u"push button"_s, u"toggle button"_s, u"check box"_s,  u"radio button"_s,
                                u"link"_s,        u"menu item"_s,     u"entry"_s,      u"combo box"_s,
                                u"page tab"_s,    u"slider"_s,        u"spin button"_s};

// The AT-SPI state bits this test reads.
constexpr int focusableState = 11;
constexpr int showingState = 25;

class AtSpi {
public:
    explicit AtSpi(QDBusConnection bus) : m_bus(std::move(bus)) {}

    QDBusPendingCall send(const Node& node, const QString& interface, const QString& method,
                          const QVariantList& arguments = {}) const
    {
        QDBusMessage message = QDBusMessage::createMethodCall(node.service, node.path, interface, method);
        message.setArguments(arguments);
        return m_bus.asyncCall(message, 5000);
    }
    static QDBusMessage answer(QDBusPendingCall& pending)
    {
        pending.waitForFinished();
        return pending.reply();
    }

    QDBusMessage call(const Node& node, const QString& interface, const QString& method,
                      const QVariantList& arguments = {}) const
    {
        QDBusMessage message = QDBusMessage::createMethodCall(node.service, node.path, interface, method);
        message.setArguments(arguments);
        return m_bus.call(message, QDBus::Block, 5000);
    }

    static QList<Node> childrenOf(const QDBusMessage& reply)
    {
        QList<Node> out;
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
            return out;
        const QDBusArgument array = reply.arguments().first().value<QDBusArgument>();
        array.beginArray();
        while (!array.atEnd()) {
            QString service;
            QDBusObjectPath path;
            array.beginStructure();
            array >> service >> path;
            array.endStructure();
            out.append({service, path.path()});
        }
        array.endArray();
        return out;
    }
    static QString textOf(const QDBusMessage& reply)
    {
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
            return {};
        const QVariant value = reply.arguments().first();
        return value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant().toString()
                                                : value.toString();
    }

    QList<Node> children(const Node& node) const
    {
        return childrenOf(call(node, u"org.a11y.atspi.Accessible"_s, u"GetChildren"_s));
    }

    Seen read(const Node& node) const
    {
        Seen seen;
        seen.role = textOf(call(node, u"org.a11y.atspi.Accessible"_s, u"GetRoleName"_s));
        seen.name = textOf(call(node, u"org.freedesktop.DBus.Properties"_s, u"Get"_s,
                                {u"org.a11y.atspi.Accessible"_s, u"Name"_s}));
        readState(seen, call(node, u"org.a11y.atspi.Accessible"_s, u"GetState"_s));
        return seen;
    }

    static void readState(Seen& seen, const QDBusMessage& reply)
    {
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
            return;
        const auto bits = qdbus_cast<QList<uint>>(reply.arguments().first());
        if (!bits.isEmpty()) {
            seen.focusable = bits[0] & (1u << focusableState);
            seen.showing = bits[0] & (1u << showingState);
        }
    }

    // The index of the action named `name` ("Press"), or -1.
    int actionIndex(const Node& node, const QString& name) const
    {
        const QDBusMessage reply = call(node, u"org.a11y.atspi.Action"_s, u"GetActions"_s);
        if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty())
            return -1;
        const QDBusArgument array = reply.arguments().first().value<QDBusArgument>();
        int index = 0, found = -1;
        array.beginArray();
        while (!array.atEnd()) {
            QString actionName, description, keys;
            array.beginStructure();
            array >> actionName >> description >> keys;
            array.endStructure();
            if (actionName == name && found < 0)
                found = index;
            ++index;
        }
        array.endArray();
        return found;
    }

    // Kestro's application node, if it is on the bus yet. Every application
    // on the accessibility bus has its root at the same path; asking each
    // one does not depend on the registry having heard of it.
    std::optional<Node> kestro() const
    {
        const QDBusMessage names =
            m_bus.call(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                                      u"org.freedesktop.DBus"_s, u"ListNames"_s));
        if (names.type() != QDBusMessage::ReplyMessage || names.arguments().isEmpty())
            return std::nullopt;
        for (const QString& name : names.arguments().first().toStringList()) {
            if (!name.startsWith(u':') || name == m_bus.baseService())
                continue;
            const Node root{name, u"/org/a11y/atspi/accessible/root"_s};
            const QDBusMessage reply =
                m_bus.call(QDBusMessage::createMethodCall(name, root.path,
                                                          u"org.freedesktop.DBus.Properties"_s, u"Get"_s)
                               << u"org.a11y.atspi.Accessible"_s << u"Name"_s,
                           QDBus::Block, 1000);
            if (textOf(reply) == QLatin1String("Kestro"))
                return root;
        }
        return std::nullopt;
    }

    // Every node under `root`, level by level: each level's questions go
    // out together, so the walk costs a few round trips per level rather
    // than several per node.
    QList<QPair<Node, Seen>> walk(const Node& root) const
    {
        QList<QPair<Node, Seen>> out;
        QList<Node> level{root};
        while (!level.isEmpty() && out.size() < 4000) {
            QList<QDBusPendingCall> kids, roles, names, states;
            for (const Node& node : std::as_const(level)) {
                kids.append(send(node, u"org.a11y.atspi.Accessible"_s, u"GetChildren"_s));
                roles.append(send(node, u"org.a11y.atspi.Accessible"_s, u"GetRoleName"_s));
                names.append(send(node, u"org.freedesktop.DBus.Properties"_s, u"Get"_s,
                                  {u"org.a11y.atspi.Accessible"_s, u"Name"_s}));
                states.append(send(node, u"org.a11y.atspi.Accessible"_s, u"GetState"_s));
            }
            QList<Node> next;
            for (qsizetype i = 0; i < level.size(); ++i) {
                Seen seen;
                seen.role = textOf(answer(roles[i]));
                seen.name = textOf(answer(names[i]));
                readState(seen, answer(states[i]));
                out.append({level[i], seen});
                next.append(childrenOf(answer(kids[i])));
            }
            level = next;
        }
        return out;
    }

private:
    QDBusConnection m_bus;
};

} // namespace

class AccessibilityTreeTest : public QObject {
    Q_OBJECT

    KestroTest::DevServiceProcess m_service{QStringLiteral(KESTRO_DEVSERVICE)};
    QProcess m_app;
    std::unique_ptr<AtSpi> m_atspi;
    Node m_root;

    // Waits until a text or heading named `landmark` shows (not a control:
    // the sidebar names pages too), then checks every control that shows.
    void checkScreen(const QString& landmark)
    {
        QList<QPair<Node, Seen>> tree;
        const auto landed = [&] {
            tree = m_atspi->walk(m_root);
            for (const auto& [node, seen] : tree)
                if (seen.showing && seen.name == landmark && !actionable.contains(seen.role))
                    return true;
            return false;
        };
        QTRY_VERIFY2_WITH_TIMEOUT(landed(), qPrintable(u"\"%1\" never showed in the tree."_s.arg(landmark)),
                                  30000);
        QStringList unnamed, unreachable;
        int acted = 0;
        for (const auto& [node, seen] : std::as_const(tree)) {
            if (!seen.showing || !actionable.contains(seen.role))
                continue;
            ++acted;
            if (seen.name.trimmed().isEmpty())
                unnamed.append(seen.role + u" at "_s + node.path);
            else if (!seen.focusable)
                unreachable.append(seen.role + u" \""_s + seen.name + u'"');
        }
        // A screen with no controls at all means the walk saw nothing.
        QVERIFY2(acted >= 10, qPrintable(u"Only %1 controls were found."_s.arg(acted)));
        QVERIFY2(unnamed.isEmpty(), qPrintable(u"Controls without a name: "_s + unnamed.join(u", "_s)));
        QVERIFY2(unreachable.isEmpty(),
                 qPrintable(u"Controls the keyboard cannot reach: "_s + unreachable.join(u", "_s)));
    }

    // Presses the sidebar's entry named `place`, as a screen reader does.
    void pressPlace(const QString& place)
    {
        std::optional<Node> entry;
        for (const auto& [node, seen] : m_atspi->walk(m_root))
            if (seen.showing && seen.name == place && actionable.contains(seen.role))
                entry = node;
        QVERIFY2(entry, qPrintable(u"The sidebar has no \"%1\" control."_s.arg(place)));
        const int press = m_atspi->actionIndex(*entry, u"Press"_s);
        QVERIFY(press >= 0);
        const QDBusMessage pressed =
            m_atspi->call(*entry, u"org.a11y.atspi.Action"_s, u"DoAction"_s, {QVariant::fromValue(press)});
        QCOMPARE(pressed.type(), QDBusMessage::ReplyMessage);
    }

private slots:
    void initTestCase()
    {
        m_service.start({u"--auto-approve"_s});
        KestroTest::storeSignIn(m_service.origin());

        const QDBusMessage address = QDBusConnection::sessionBus().call(QDBusMessage::createMethodCall(
            u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, u"org.a11y.Bus"_s, u"GetAddress"_s));
        QVERIFY2(address.type() == QDBusMessage::ReplyMessage,
                 "No accessibility bus answers; at-spi2-core must be installed (scripts/setup).");
        const QDBusConnection bus =
            QDBusConnection::connectToBus(address.arguments().first().toString(), u"a11y"_s);
        QVERIFY(bus.isConnected());
        m_atspi = std::make_unique<AtSpi>(bus);

        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QT_LINUX_ACCESSIBILITY_ALWAYS_ON"_s, u"1"_s);
        m_app.setProcessEnvironment(environment);
        m_app.setProcessChannelMode(QProcess::ForwardedChannels);
        m_app.start(QStringLiteral(KESTRO_APP), {u"--origin"_s, m_service.origin().toString()});
        QVERIFY(m_app.waitForStarted());
        std::optional<Node> app;
        QTRY_VERIFY_WITH_TIMEOUT((app = m_atspi->kestro()).has_value(), 30000);
        m_root = *app;
    }

    void homeSpeaksEveryControl() { checkScreen(u"Waiting for you"_s); }

    void needsYouSpeaksEveryControl()
    {
        pressPlace(u"Needs you"_s);
        checkScreen(u"Needs you"_s);
    }

    // The room, its messages, the composer and the teammates' faces.
    void kestChatSpeaksEveryControl()
    {
        pressPlace(u"Kest chat"_s);
        checkScreen(u"Messages"_s);
    }

    // The site picker, the ranges, the figures and the breakdowns.
    void analyticsSpeaksEveryControl()
    {
        pressPlace(u"Analytics"_s);
        checkScreen(u"Last 7 days"_s);
    }

    // The filters, the groups' fold and add buttons, and the task rows.
    void tasksSpeakEveryControl()
    {
        pressPlace(u"Tasks"_s);
        checkScreen(u"6 tasks"_s);
        // The board: its columns say what they hold, its cards are reachable.
        pressPlace(u"Board"_s);
        checkScreen(u"To do, 1 task"_s);
        pressPlace(u"List"_s);
        checkScreen(u"6 tasks"_s);
    }

    void cleanupTestCase()
    {
        m_app.kill();
        m_app.waitForFinished();
    }
};

QTEST_GUILESS_MAIN(AccessibilityTreeTest)
#include "tst_accessibility_tree.moc"
