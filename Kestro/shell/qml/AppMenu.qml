import QtQuick
import QtQml
import QtQml.Models
import QtQuick.Controls.Basic
import Kestro.Controls
import Kestro.Shell

// The workspace menu: the workspaces to switch to, the app's commands with
// their chords, appearance, sign-out and quit.
Menu {
    id: root
    objectName: "appMenu"
    signal quitRequested()
    signal hotKeyHelpRequested()
    // The frame as a plain JavaScript object: a QVariantMap's keys are
    // unknown to the type checks.
    readonly property var frame: App.frame
    width: 300
    topPadding: 6
    bottomPadding: 6
    leftPadding: 6
    rightPadding: 6
    delegate: MenuRow {}
    background: Panel {}

    // Each menu needs a background of its own: an item shared between
    // menus would be moved from one to the other.
    component Panel: Rectangle {
        implicitWidth: 300
        radius: 10
        color: Theme.raised
        border.color: Theme.border
    }

    component Heading: MenuItem {
        id: heading
        enabled: false
        implicitHeight: 26
        contentItem: Text {
            leftPadding: 2
            textFormat: Text.PlainText
            text: heading.text
            font.family: Theme.sans
            font.pixelSize: 11
            font.weight: Font.Medium
            color: Theme.muted
        }
        background: null
    }
    component Line: MenuSeparator {
        contentItem: Rectangle { implicitHeight: 1; color: Theme.border }
    }

    Heading { text: "Workspaces" }
    Instantiator {
        model: root.frame.workspaces || []
        delegate: MenuRow {
            required property var modelData
            text: modelData.name + (modelData.role === "owner" || modelData.role === "admin" || modelData.role === "member" ? "" : "  (" + modelData.role + ")")
            checkable: false
            checked: modelData.current
            glyph: "arrow-left-right"
            objectName: "workspace-" + modelData.id
            onTriggered: App.switchWorkspace(modelData.id)
        }
        onObjectAdded: (index, object) => root.insertItem(1 + index, object)
        onObjectRemoved: (index, object) => root.removeItem(object)
    }
    Line {}
    MenuRow { text: "Search"; glyph: "search"; chord: "Ctrl+K"; onTriggered: Shell.paletteOpen = true }
    // The global key, or (where the desktop gave none) how to make one.
    MenuRow {
        objectName: "hotKeyItem"
        text: Desktop.hotKey.length > 0 ? "Search from anywhere" : "Set a key to open Kestro…"
        glyph: "command"
        chord: Desktop.hotKey
        enabled: Desktop.hotKeySettled
        onTriggered: {
            if (Desktop.hotKey.length > 0)
                Shell.paletteOpen = true
            else
                root.hotKeyHelpRequested()
        }
    }
    MenuRow { text: "Back"; glyph: "chevron-left"; chord: "Ctrl+["; enabled: App.router.canGoBack; onTriggered: App.router.goBack() }
    MenuRow { text: "Forward"; glyph: "chevron-right"; chord: "Ctrl+]"; enabled: App.router.canGoForward; onTriggered: App.router.goForward() }
    MenuRow {
        text: Shell.sidebarCollapsed ? "Expand sidebar" : "Collapse sidebar"
        glyph: "panel-left"
        chord: "Ctrl+Shift+S"
        onTriggered: Shell.toggleSidebar()
    }
    Line {}
    MenuRow { text: "Home"; glyph: "house"; chord: "Ctrl+Shift+1"; onTriggered: App.router.open("/activity") }
    MenuRow { text: "Needs you"; glyph: "hand"; chord: "Ctrl+Shift+2"; onTriggered: App.router.open("/activity?view=you") }
    MenuRow { text: "Tasks"; glyph: "list-checks"; chord: "Ctrl+Shift+3"; onTriggered: App.router.open("/tasks") }
    MenuRow { text: "Kest chat"; glyph: "messages-square"; chord: "Ctrl+Shift+4"; onTriggered: App.router.open("/kest") }
    MenuRow { text: "Settings"; glyph: "settings"; chord: "Ctrl+,"; onTriggered: App.router.open("/settings") }
    Line {}
    Menu {
        id: appearance
        title: "Appearance"
        delegate: MenuRow {}
        background: Panel {}
        topPadding: 6; bottomPadding: 6; leftPadding: 6; rightPadding: 6
        MenuRow { text: "Match the desktop"; checked: Appearance.mode === "system"; onTriggered: Appearance.mode = "system" }
        MenuRow { text: "Light"; checked: Appearance.mode === "light"; onTriggered: Appearance.mode = "light" }
        MenuRow { text: "Dark"; checked: Appearance.mode === "dark"; onTriggered: Appearance.mode = "dark" }
        Line {}
        Menu {
            id: lightShades
            title: "Light shade"
            delegate: MenuRow {}
            background: Panel {}
            topPadding: 6; bottomPadding: 6; leftPadding: 6; rightPadding: 6
            Instantiator {
                model: Appearance.lightShades
                delegate: MenuRow {
                    required property string modelData
                    text: modelData.charAt(0).toUpperCase() + modelData.slice(1)
                    checked: Appearance.lightShade === modelData
                    onTriggered: Appearance.lightShade = modelData
                }
                onObjectAdded: (index, object) => lightShades.insertItem(index, object)
                onObjectRemoved: (index, object) => lightShades.removeItem(object)
            }
        }
        Menu {
            id: darkShades
            title: "Dark shade"
            delegate: MenuRow {}
            background: Panel {}
            topPadding: 6; bottomPadding: 6; leftPadding: 6; rightPadding: 6
            Instantiator {
                model: Appearance.darkShades
                delegate: MenuRow {
                    required property string modelData
                    text: modelData.charAt(0).toUpperCase() + modelData.slice(1)
                    checked: Appearance.darkShade === modelData
                    onTriggered: Appearance.darkShade = modelData
                }
                onObjectAdded: (index, object) => darkShades.insertItem(index, object)
                onObjectRemoved: (index, object) => darkShades.removeItem(object)
            }
        }
        Line {}
        Menu {
            title: "Motion"
            delegate: MenuRow {}
            background: Panel {}
            topPadding: 6; bottomPadding: 6; leftPadding: 6; rightPadding: 6
            MenuRow { text: "Match the desktop"; checked: Appearance.motion === "system"; onTriggered: Appearance.motion = "system" }
            MenuRow { text: "Full motion"; checked: Appearance.motion === "full"; onTriggered: Appearance.motion = "full" }
            MenuRow { text: "Reduce motion"; checked: Appearance.motion === "reduced"; onTriggered: Appearance.motion = "reduced" }
        }
    }
    Line {}
    Instantiator {
        model: Desktop.updates.enabled ? 1 : 0
        delegate: MenuRow {
            objectName: "checkForUpdatesItem"
            text: Desktop.updates.checking ? "Checking for Updates…" : "Check for Updates…"
            glyph: "refresh-cw"
            enabled: !Desktop.updates.checking
            onTriggered: Desktop.updates.checkNow()
        }
        onObjectAdded: (index, object) => root.insertItem(root.count - 2, object)
        onObjectRemoved: (index, object) => root.removeItem(object)
    }
    MenuRow { objectName: "signOutItem"; text: "Sign Out"; glyph: "log-out"; onTriggered: App.signOut() }
    MenuRow { text: "Quit Kestro"; glyph: "x"; chord: "Ctrl+Q"; onTriggered: root.quitRequested() }
}
