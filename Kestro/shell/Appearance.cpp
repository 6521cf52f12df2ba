#include "Appearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QPalette>
#include <QSettings>

#include <optional>

namespace Kestro {

namespace {

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString colorSchemeKey = QStringLiteral("color-scheme");

const QString modeKey = QStringLiteral("kestro:appearance");
const QString darkShadeKey = QStringLiteral("kestro:dark-shade");
const QString lightShadeKey = QStringLiteral("kestro:light-shade");

// The portal answers a variant, sometimes wrapped once more; 1 means the
// user prefers dark, 2 light, 0 no preference.
std::optional<bool> schemeIsDark(QVariant value)
{
    while (value.canConvert<QDBusVariant>() && value.userType() == qMetaTypeId<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    bool ok = false;
    const uint scheme = value.toUInt(&ok);
    if (!ok)
        return std::nullopt;
    if (scheme == 1)
        return true;
    if (scheme == 2)
        return false;
    return std::nullopt;
}

QString oneOf(const QString& value, const QStringList& allowed)
{
    return allowed.contains(value) ? value : allowed.first();
}

} // namespace

const QStringList& Appearance::modes()
{
    static const QStringList list{QStringLiteral("system"), QStringLiteral("light"), QStringLiteral("dark")};
    return list;
}

const QStringList& Appearance::darkShades()
{
    static const QStringList list{
        QStringLiteral("graphite"), QStringLiteral("charcoal"), QStringLiteral("dimmed"),
        QStringLiteral("stone"),    QStringLiteral("obsidian"), QStringLiteral("onyx"),
        QStringLiteral("ink"),      QStringLiteral("espresso"), QStringLiteral("carbon")};
    return list;
}

const QStringList& Appearance::lightShades()
{
    static const QStringList list{
        QStringLiteral("daylight"), QStringLiteral("eggshell"), QStringLiteral("paper"),
        QStringLiteral("mist"),     QStringLiteral("ash"),      QStringLiteral("sand"),
        QStringLiteral("sage"),     QStringLiteral("lavender"), QStringLiteral("blush")};
    return list;
}

Appearance::Appearance(bool followDesktop, QObject* parent) : QObject(parent)
{
    const QSettings settings;
    m_mode = oneOf(settings.value(modeKey).toString(), modes());
    m_darkShade = oneOf(settings.value(darkShadeKey).toString(), darkShades());
    m_lightShade = oneOf(settings.value(lightShadeKey).toString(), lightShades());
    if (!followDesktop)
        return;
    // Until the portal answers (or where there is none), the palette the
    // platform theme chose is the best guess.
    m_systemDark = QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
    readPortal();
}

bool Appearance::isDark() const
{
    if (m_mode == QLatin1String("dark"))
        return true;
    if (m_mode == QLatin1String("light"))
        return false;
    return m_systemDark;
}

void Appearance::setMode(const QString& mode)
{
    if (!modes().contains(mode) || mode == m_mode)
        return;
    m_mode = mode;
    QSettings().setValue(modeKey, mode);
    emit changed();
}

void Appearance::setDarkShade(const QString& shade)
{
    if (!darkShades().contains(shade) || shade == m_darkShade)
        return;
    m_darkShade = shade;
    QSettings().setValue(darkShadeKey, shade);
    emit changed();
}

void Appearance::setLightShade(const QString& shade)
{
    if (!lightShades().contains(shade) || shade == m_lightShade)
        return;
    m_lightShade = shade;
    QSettings().setValue(lightShadeKey, shade);
    emit changed();
}

void Appearance::setSystemDark(bool dark)
{
    if (m_systemDark == dark)
        return;
    m_systemDark = dark;
    emit changed();
}

void Appearance::readPortal()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(portalService, portalPath, portalInterface, QStringLiteral("SettingChanged"), this,
                SLOT(portalSettingChanged(QString, QString, QDBusVariant)));
    QDBusMessage read =
        QDBusMessage::createMethodCall(portalService, portalPath, portalInterface, QStringLiteral("Read"));
    read << appearanceGroup << colorSchemeKey;
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(read), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* call) {
        const QDBusPendingReply<QDBusVariant> reply = *call;
        if (!reply.isError())
            if (const auto dark = schemeIsDark(QVariant::fromValue(reply.value())))
                setSystemDark(*dark);
        call->deleteLater();
    });
}

void Appearance::portalSettingChanged(const QString& group, const QString& key, const QDBusVariant& value)
{
    if (group != appearanceGroup || key != colorSchemeKey)
        return;
    const auto dark = schemeIsDark(value.variant());
    setSystemDark(dark.value_or(false));
}

} // namespace Kestro
