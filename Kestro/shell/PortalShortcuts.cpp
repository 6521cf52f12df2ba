#include "PortalShortcuts.h"

#include "DBusAnswer.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusReply>

namespace Kestro {

// One shortcut as the portal passes it: an id and its properties.
struct PortalShortcut {
    QString id;
    QVariantMap properties;
};

// Found by argument-dependent lookup, so in the type's own namespace.
QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

} // namespace Kestro

Q_DECLARE_METATYPE(Kestro::PortalShortcut)

namespace Kestro {

namespace {

constexpr QLatin1StringView portalService("org.freedesktop.portal.Desktop");
constexpr QLatin1StringView portalPath("/org/freedesktop/portal/desktop");
constexpr QLatin1StringView shortcutsInterface("org.freedesktop.portal.GlobalShortcuts");

// A request's path as a string whether it came as one or as an object path.
QString pathText(const QVariant& value)
{
    if (value.canConvert<QDBusObjectPath>())
        return value.value<QDBusObjectPath>().path();
    return value.toString();
}

} // namespace

// Waits for one portal request's Response signal.
class PortalRequest : public QObject {
    Q_OBJECT
public:
    explicit PortalRequest(std::function<void(uint, const QVariantMap&)> then, QObject* parent)
        : QObject(parent), m_then(std::move(then))
    {
    }

public slots:
    void response(uint code, const QVariantMap& results)
    {
        auto then = std::move(m_then);
        deleteLater();
        if (then)
            then(code, results);
    }

private:
    std::function<void(uint, const QVariantMap&)> m_then;
};

PortalShortcuts::PortalShortcuts(QDBusConnection bus, QObject* parent)
    : QObject(parent), m_bus(std::move(bus))
{
    // QtDBus finds a slot's parameter types by name, and an object path is
    // known by name only once registered.
    qRegisterMetaType<QDBusObjectPath>();
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
}

QString PortalShortcuts::requestPath(const QString& token) const
{
    // The portal makes the request's object from the caller's unique name
    // and the token; listening there before calling misses no answer.
    QString sender = m_bus.baseService().mid(1);
    sender.replace(QLatin1Char('.'), QLatin1Char('_'));
    return QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(sender, token);
}

void PortalShortcuts::request(const QString& method, QList<QVariant> arguments, const QString& token,
                              std::function<void(const QVariantMap&)> then)
{
    auto* pending = new PortalRequest(
        [this, method, then = std::move(then)](uint code, const QVariantMap& results) {
            if (code == 0)
                then(results);
            else
                emit refused(code == 1 ? QStringLiteral("the shortcut was declined")
                                       : QStringLiteral("the desktop did not complete %1").arg(method));
        },
        this);
    // Listening (or no longer) for the Response of the request at `path`.
    const auto listen = [this, pending](const QString& path, bool on) {
        const QString request = QStringLiteral("org.freedesktop.portal.Request");
        const QString response = QStringLiteral("Response");
        if (on)
            m_bus.connect(portalService, path, request, response, pending, SLOT(response(uint, QVariantMap)));
        else
            m_bus.disconnect(portalService, path, request, response, pending,
                             SLOT(response(uint, QVariantMap)));
    };
    const QString path = requestPath(token);
    listen(path, true);
    QDBusMessage call = QDBusMessage::createMethodCall(portalService, portalPath, shortcutsInterface, method);
    call.setArguments(arguments);
    whenAnswered(m_bus, call, this, [this, pending, path, listen](const QDBusMessage& answer) {
        const QDBusReply<QDBusObjectPath> reply(answer);
        if (!reply.isValid()) {
            listen(path, false);
            pending->deleteLater();
            const QDBusError::ErrorType type = reply.error().type();
            emit refused(type == QDBusError::ServiceUnknown || type == QDBusError::UnknownInterface ||
                                 type == QDBusError::UnknownMethod
                             ? QStringLiteral("the desktop offers no global shortcuts")
                             : reply.error().message());
        } else if (reply.value().path() != path) {
            // An older portal names the request its own way: listen there.
            listen(path, false);
            listen(reply.value().path(), true);
        }
    });
}

void PortalShortcuts::bind(const QString& id, const QString& description, const QString& trigger)
{
    if (!m_bus.isConnected()) {
        emit refused(QStringLiteral("there is no session bus"));
        return;
    }
    m_id = id;
    m_description = description;
    m_trigger = trigger;
    const QList<PortalShortcut> shortcuts{
        {id, {{QStringLiteral("description"), description}, {QStringLiteral("preferred_trigger"), trigger}}}};
    m_bus.connect(portalService, portalPath, shortcutsInterface, QStringLiteral("Activated"), this,
                  SLOT(onActivated(QDBusObjectPath, QString, qulonglong, QVariantMap)));

    const QString token = QStringLiteral("kestro%1").arg(++m_tokens);
    QVariantMap options{{QStringLiteral("handle_token"), token},
                        {QStringLiteral("session_handle_token"), QStringLiteral("kestro")},
                        // Plasma 5.27 takes the shortcuts from here, not from BindShortcuts.
                        {QStringLiteral("shortcuts"), QVariant::fromValue(shortcuts)}};
    request(QStringLiteral("CreateSession"), {options}, token, [this, shortcuts](const QVariantMap& results) {
        m_session = QDBusObjectPath(pathText(results.value(QStringLiteral("session_handle"))));
        const QString token = QStringLiteral("kestro%1").arg(++m_tokens);
        request(QStringLiteral("BindShortcuts"),
                {QVariant::fromValue(m_session), QVariant::fromValue(shortcuts), QString(),
                 QVariantMap{{QStringLiteral("handle_token"), token}}},
                token, [this](const QVariantMap& results) {
                    QString trigger;
                    const auto list =
                        qdbus_cast<QList<PortalShortcut>>(results.value(QStringLiteral("shortcuts")));
                    for (const PortalShortcut& shortcut : list)
                        if (shortcut.id == m_id)
                            trigger =
                                shortcut.properties.value(QStringLiteral("trigger_description")).toString();
                    emit bound(trigger);
                });
    });
}

void PortalShortcuts::onActivated(const QDBusObjectPath& session, const QString& id, qulonglong,
                                  const QVariantMap&)
{
    if (session == m_session)
        emit activated(id);
}

} // namespace Kestro

#include "PortalShortcuts.moc"
