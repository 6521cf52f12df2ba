#include "ShellState.h"

#include <QSettings>

namespace Kestro {

ShellState::ShellState(QObject* parent) : QObject(parent)
{
    m_sidebarCollapsed = QSettings().value(QString(sidebarKey), false).toBool();
}

void ShellState::setSidebarCollapsed(bool collapsed)
{
    if (m_sidebarCollapsed == collapsed)
        return;
    m_sidebarCollapsed = collapsed;
    QSettings().setValue(QString(sidebarKey), collapsed);
    emit sidebarCollapsedChanged();
}

void ShellState::setPaletteOpen(bool open)
{
    if (m_paletteOpen == open)
        return;
    m_paletteOpen = open;
    emit paletteOpenChanged();
}

} // namespace Kestro
