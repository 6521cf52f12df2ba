#include "DesktopExtras.h"

#include "GlobalHotKey.h"
#include "LauncherBadge.h"
#include "TrayIcon.h"
#include "Updates.h"

#include <QCoreApplication>

namespace Kestro {

DesktopExtras::DesktopExtras(LauncherBadge& badge, Hooks hooks, QObject* parent)
    : QObject(parent), m_badge(badge), m_hooks(std::move(hooks)),
      // The feed address is the build's: empty in distribution packages,
      // which update through the system.
      m_updates(std::make_unique<Updates>(QUrl(QStringLiteral(KESTRO_UPDATE_FEED)),
                                          QCoreApplication::applicationVersion())),
      m_hotKey(std::make_unique<GlobalHotKey>())
{
    m_updates->setOpener(m_hooks.openInBrowser);
    connect(m_hotKey.get(), &GlobalHotKey::changed, this, &DesktopExtras::hotKeyChanged);
    connect(&m_badge, &LauncherBadge::shownChanged, this, &DesktopExtras::countShownElsewhereChanged);

    Updates* updates = m_updates.get();
    m_tray = std::make_unique<TrayIcon>(
        TrayIcon::Hooks{[this] {
                            m_hooks.raise();
                            m_hooks.openPath(QStringLiteral("/activity?view=you"));
                        },
                        updates->enabled() ? std::function<void()>([this, updates] {
                            m_hooks.raise();
                            updates->checkNow();
                        })
                                           : std::function<void()>(),
                        m_hooks.quit, m_hooks.raise});
    connect(m_tray.get(), &TrayIcon::shownChanged, this, &DesktopExtras::countShownElsewhereChanged);
}

DesktopExtras::~DesktopExtras() = default;

QString DesktopExtras::hotKey() const
{
    return m_hotKey->key();
}

bool DesktopExtras::hotKeySettled() const
{
    return m_hotKey->settled();
}

bool DesktopExtras::countShownElsewhere() const
{
    return m_badge.shown() || m_tray->isShown();
}

void DesktopExtras::signedIn()
{
    m_hotKey->install(m_hooks.openPalette);
    m_updates->startSchedule();
}

void DesktopExtras::setUnread(int count)
{
    m_badge.setCount(count);
    m_tray->setCount(count);
}

} // namespace Kestro
