#pragma once

#include <QObject>

namespace Kestro {

// The window's own view state: whether the sidebar is collapsed (kept in
// the settings under "kestro:sidebar-collapsed") and whether the command
// palette is open.
class ShellState : public QObject {
    Q_OBJECT
    Q_PROPERTY(
        bool sidebarCollapsed READ sidebarCollapsed WRITE setSidebarCollapsed NOTIFY sidebarCollapsedChanged)
    Q_PROPERTY(bool paletteOpen READ paletteOpen WRITE setPaletteOpen NOTIFY paletteOpenChanged)

public:
    static constexpr QLatin1StringView sidebarKey{"kestro:sidebar-collapsed"};

    explicit ShellState(QObject* parent = nullptr);

    bool sidebarCollapsed() const { return m_sidebarCollapsed; }
    void setSidebarCollapsed(bool collapsed);
    bool paletteOpen() const { return m_paletteOpen; }
    void setPaletteOpen(bool open);

    Q_INVOKABLE void toggleSidebar() { setSidebarCollapsed(!m_sidebarCollapsed); }
    // The page host says a page finished loading (its first answer shown,
    // or its web page loaded); the start-up benchmark waits for it.
    Q_INVOKABLE void notePageShown() { emit pageShown(); }

signals:
    void pageShown();
    void sidebarCollapsedChanged();
    void paletteOpenChanged();

private:
    bool m_sidebarCollapsed = false;
    bool m_paletteOpen = false;
};

} // namespace Kestro
