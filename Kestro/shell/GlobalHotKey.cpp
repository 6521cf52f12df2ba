#include "GlobalHotKey.h"

#include "PortalShortcuts.h"
#include "X11HotKey.h"

#include <QGuiApplication>
#include <QLoggingCategory>

#include <X11/keysym.h>

namespace Kestro {

namespace {
Q_LOGGING_CATEGORY(lcHotKey, "kestro.hotkey")
const QString shownKey = QStringLiteral("Ctrl+Alt+K");
} // namespace

GlobalHotKey::GlobalHotKey(QObject* parent) : QObject(parent) {}

GlobalHotKey::~GlobalHotKey() = default;

void GlobalHotKey::install(std::function<void()> open)
{
    if (m_installed)
        return;
    m_installed = true;
    m_open = std::move(open);
    const QString platform = QGuiApplication::platformName();
    // Under a Wayland session Kestro may still draw through XWayland, where
    // a grab reaches only X windows: the compositor's portal is the way.
    const bool waylandSession = qEnvironmentVariable("XDG_SESSION_TYPE") == QLatin1String("wayland") ||
                                !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    if (platform == QLatin1String("xcb") && !waylandSession) {
        QString refusal;
        m_x11 = X11HotKey::grab(XK_k, &refusal);
        if (m_x11) {
            connect(m_x11.get(), &X11HotKey::pressed, this, &GlobalHotKey::press);
            settle(shownKey, {});
        } else {
            settle({}, refusal);
        }
    } else if (waylandSession) {
        m_portal = std::make_unique<PortalShortcuts>();
        connect(m_portal.get(), &PortalShortcuts::bound, this,
                [this](const QString& trigger) { settle(trigger.isEmpty() ? shownKey : trigger, {}); });
        connect(m_portal.get(), &PortalShortcuts::refused, this,
                [this](const QString& why) { settle({}, why); });
        connect(m_portal.get(), &PortalShortcuts::activated, this, [this](const QString& id) {
            if (id == QLatin1String("open-palette"))
                press();
        });
        m_portal->bind(QStringLiteral("open-palette"),
                       QStringLiteral("Bring Kestro forward with its command palette"),
                       QStringLiteral("CTRL+ALT+k"));
    } else {
        settle({}, QStringLiteral("this display has no global keys"));
    }
}

void GlobalHotKey::settle(QString key, const QString& refusal)
{
    if (m_settled)
        return;
    m_settled = true;
    m_key = std::move(key);
    if (m_key.isEmpty())
        qCInfo(lcHotKey).noquote()
            << QStringLiteral("Kestro could not register Ctrl+Alt+K: %1. To open Kestro's command "
                              "palette from anywhere, bind a key to \"kestro --palette\" in your "
                              "desktop's keyboard settings.")
                   .arg(refusal);
    emit changed();
}

void GlobalHotKey::press()
{
    if (m_open)
        m_open();
}

} // namespace Kestro
