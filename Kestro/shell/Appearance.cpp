#include "Appearance.h"

#include "DBusAnswer.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
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
const QString reducedMotionKey = QStringLiteral("reduced-motion");
const QString gnomeGroup = QStringLiteral("org.gnome.desktop.interface");
const QString gnomeAnimationsKey = QStringLiteral("enable-animations");
const QString kdeGroup = QStringLiteral("org.kde.kdeglobals.KDE");
const QString kdeFactorKey = QStringLiteral("AnimationDurationFactor");

const QString modeKey = QStringLiteral("kestro:appearance");
const QString darkShadeKey = QStringLiteral("kestro:dark-shade");
const QString lightShadeKey = QStringLiteral("kestro:light-shade");
const QString motionKey = QStringLiteral("kestro:motion");

QVariant unwrapped(QVariant value)
{
    while (value.userType() == qMetaTypeId<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

// The portal answers a variant, sometimes wrapped once more; 1 means the
// user prefers dark, 2 light, 0 no preference.
std::optional<bool> schemeIsDark(QVariant value)
{
    value = unwrapped(value);
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

// The portal's "reduced-motion": 1 reduced, 0 no preference.
std::optional<bool> reducedMotion(const QVariant& wrapped)
{
    bool ok = false;
    const uint value = unwrapped(wrapped).toUInt(&ok);
    return ok ? std::optional<bool>(value == 1) : std::nullopt;
}

std::optional<bool> flag(const QVariant& wrapped)
{
    const QVariant value = unwrapped(wrapped);
    return value.userType() == QMetaType::Bool ? std::optional<bool>(value.toBool()) : std::nullopt;
}

std::optional<double> number(const QVariant& wrapped)
{
    bool ok = false;
    const double value = unwrapped(wrapped).toDouble(&ok);
    return ok ? std::optional<double>(value) : std::nullopt;
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

const QStringList& Appearance::motions()
{
    static const QStringList list{QStringLiteral("system"), QStringLiteral("full"),
                                  QStringLiteral("reduced")};
    return list;
}

Appearance::Appearance(bool followDesktop, QObject* parent) : QObject(parent)
{
    const QSettings settings;
    m_mode = oneOf(settings.value(modeKey).toString(), modes());
    m_darkShade = oneOf(settings.value(darkShadeKey).toString(), darkShades());
    m_lightShade = oneOf(settings.value(lightShadeKey).toString(), lightShades());
    m_motion = oneOf(settings.value(motionKey).toString(), motions());
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

bool Appearance::systemReducedMotion() const
{
    if (m_reducedMotion)
        return *m_reducedMotion;
    if (m_gnomeAnimations)
        return !*m_gnomeAnimations;
    if (m_kdeAnimationFactor)
        return *m_kdeAnimationFactor == 0.0;
    return false;
}

bool Appearance::reduceMotion() const
{
    if (m_motion == QLatin1String("reduced"))
        return true;
    if (m_motion == QLatin1String("full"))
        return false;
    return systemReducedMotion();
}

void Appearance::setMotion(const QString& motion)
{
    if (!motions().contains(motion) || motion == m_motion)
        return;
    m_motion = motion;
    QSettings().setValue(motionKey, motion);
    emit changed();
}

void Appearance::setDesktopMotion(std::optional<bool> reduced, std::optional<bool> gnomeAnimations,
                                  std::optional<double> kdeAnimationFactor)
{
    const bool before = systemReducedMotion();
    m_reducedMotion = reduced;
    m_gnomeAnimations = gnomeAnimations;
    m_kdeAnimationFactor = kdeAnimationFactor;
    if (systemReducedMotion() != before)
        emit changed();
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
    readSetting(appearanceGroup, colorSchemeKey);
    readSetting(appearanceGroup, reducedMotionKey);
    readSetting(gnomeGroup, gnomeAnimationsKey);
    readSetting(kdeGroup, kdeFactorKey);
}

void Appearance::readSetting(const QString& group, const QString& key)
{
    QDBusMessage read =
        QDBusMessage::createMethodCall(portalService, portalPath, portalInterface, QStringLiteral("Read"));
    read << group << key;
    whenAnswered(QDBusConnection::sessionBus(), read, this, [this, group, key](const QDBusMessage& answer) {
        const QDBusReply<QDBusVariant> reply(answer);
        if (reply.isValid())
            portalSettingChanged(group, key, reply.value());
    });
}

void Appearance::portalSettingChanged(const QString& group, const QString& key, const QDBusVariant& value)
{
    if (group == appearanceGroup && key == colorSchemeKey)
        setSystemDark(schemeIsDark(value.variant()).value_or(false));
    else if (group == appearanceGroup && key == reducedMotionKey)
        setDesktopMotion(reducedMotion(value.variant()), m_gnomeAnimations, m_kdeAnimationFactor);
    else if (group == gnomeGroup && key == gnomeAnimationsKey)
        setDesktopMotion(m_reducedMotion, flag(value.variant()), m_kdeAnimationFactor);
    else if (group == kdeGroup && key == kdeFactorKey)
        setDesktopMotion(m_reducedMotion, m_gnomeAnimations, number(value.variant()));
}

} // namespace Kestro
