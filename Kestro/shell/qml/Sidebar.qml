// Components here stay in this file's context: delegates name its ids, and
// take their model data only through required properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Shell

// The workspace menu, search, the product areas and the kest's teammates
// with their status. Collapses to icons.
Rectangle {
    id: sidebar
    readonly property bool collapsed: Shell.sidebarCollapsed
    readonly property var frame: App.frame
    readonly property string path: App.router.route.path
    readonly property var query: App.router.route.query
    // The route table's places as a plain array, to filter.
    readonly property var places: Pages.places
    signal openMenu(Item anchor)
    color: Theme.sidebar
    implicitWidth: collapsed ? 56 : 236
    Behavior on implicitWidth { NumberAnimation { duration: 140; easing.type: Easing.OutCubic } }

    Rectangle { anchors.right: parent.right; width: 1; height: parent.height; color: Theme.border }

    function isCurrent(place) {
        var q = place.indexOf("?")
        var placePath = q < 0 ? place : place.substring(0, q)
        var view = q < 0 ? "" : place.substring(q + 1)
        if (view.length > 0)
            return sidebar.path === placePath && ("view=" + (sidebar.query.view || "")) === view
        if (placePath === "/activity")
            return sidebar.path === placePath && !sidebar.query.view
        // A teammate's own chat and runs belong to the teammate's entry.
        if (placePath === "/kest")
            return sidebar.path === placePath
        return sidebar.path === placePath || sidebar.path.indexOf(placePath + "/") === 0
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 10
        anchors.rightMargin: 11
        spacing: 2

        // The workspace menu.
        AbstractButton {
            id: workspaceButton
            objectName: "workspaceButton"
            Layout.fillWidth: true
            implicitHeight: 40
            hoverEnabled: true
            Accessible.name: "Workspace menu"
            onClicked: sidebar.openMenu(workspaceButton)
            background: Rectangle {
                radius: 8
                color: workspaceButton.down ? Theme.selected : (workspaceButton.hovered ? Theme.hover : "transparent")
            }
            contentItem: RowLayout {
                spacing: 9
                Rectangle {
                    Layout.leftMargin: sidebar.collapsed ? 4 : 6
                    width: 26; height: 26; radius: 7
                    color: Theme.accent
                    Text {
                        anchors.centerIn: parent
                        textFormat: Text.PlainText
                        text: (sidebar.frame.workspace ? sidebar.frame.workspace.name : "K").charAt(0)
                        color: "white"
                        font.family: Theme.display
                        font.weight: Font.Bold
                        font.pixelSize: 13
                    }
                }
                Column {
                    visible: !sidebar.collapsed
                    Layout.fillWidth: true
                    Text {
                        objectName: "workspaceName"
                        width: parent.width
                        textFormat: Text.PlainText
                        text: sidebar.frame.workspace ? sidebar.frame.workspace.name : ""
                        elide: Text.ElideRight
                        font.family: Theme.sans
                        font.pixelSize: 13
                        font.weight: Font.DemiBold
                        color: Theme.text
                    }
                    Text {
                        width: parent.width
                        textFormat: Text.PlainText
                        text: sidebar.frame.user ? sidebar.frame.user.name : ""
                        elide: Text.ElideRight
                        font.family: Theme.sans
                        font.pixelSize: 11
                        color: Theme.muted
                    }
                }
                Icon {
                    visible: !sidebar.collapsed
                    Layout.rightMargin: 6
                    name: "chevrons-up-down"
                    size: 14
                    color: Theme.muted
                }
            }
        }

        SidebarItem {
            Layout.fillWidth: true
            Layout.topMargin: 6
            collapsed: sidebar.collapsed
            glyph: "search"
            label: "Search"
            onClicked: Shell.paletteOpen = true
        }

        Item { Layout.preferredHeight: 8 }

        Repeater {
            model: sidebar.places.filter(p => p.section === "main")
            delegate: SidebarItem {
                required property var modelData
                Layout.fillWidth: true
                collapsed: sidebar.collapsed
                glyph: modelData.icon
                label: modelData.title
                current: sidebar.isCurrent(modelData.path)
                count: !sidebar.frame.counts ? 0
                     : modelData.title === "Needs you" ? sidebar.frame.counts.needsYou
                     : modelData.title === "Tasks" ? sidebar.frame.counts.tasks : 0
                onClicked: App.router.open(modelData.path)
            }
        }

        SectionLabel { text: "Workspace"; visible: !sidebar.collapsed }

        Flickable {
            Layout.fillWidth: true
            Layout.fillHeight: true
            contentHeight: lower.implicitHeight
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar { policy: ScrollBar.AsNeeded }
            ColumnLayout {
                id: lower
                width: parent.width
                spacing: 2
                Repeater {
                    model: sidebar.places.filter(p => p.section === "work")
                    delegate: SidebarItem {
                        required property var modelData
                        Layout.fillWidth: true
                        collapsed: sidebar.collapsed
                        glyph: modelData.icon
                        label: modelData.title
                        current: sidebar.isCurrent(modelData.path)
                        onClicked: App.router.open(modelData.path)
                    }
                }
                SectionLabel { text: "Kest"; visible: !sidebar.collapsed }
                Repeater {
                    model: sidebar.frame.kest || []
                    delegate: AbstractButton {
                        id: mate
                        required property var modelData
                        Layout.fillWidth: true
                        implicitHeight: 32
                        hoverEnabled: true
                        Accessible.name: modelData.name + ", " + modelData.status
                        readonly property string target: "/kest/" + modelData.handle + "/chat"
                        onClicked: App.router.open(target)
                        background: Rectangle {
                            radius: 7
                            color: sidebar.isCurrent(mate.target) ? Theme.selected : (mate.hovered ? Theme.hover : "transparent")
                        }
                        contentItem: RowLayout {
                            spacing: 9
                            Avatar {
                                Layout.leftMargin: sidebar.collapsed ? 6 : 7
                                name: mate.modelData.name
                                robot: mate.modelData.handle
                                status: mate.modelData.status
                                size: 20
                            }
                            Text {
                                visible: !sidebar.collapsed
                                Layout.fillWidth: true
                                textFormat: Text.PlainText
                                text: mate.modelData.name + (mate.modelData.lead ? "  ·  lead" : "")
                                elide: Text.ElideRight
                                font.family: Theme.sans
                                font.pixelSize: 13
                                color: Theme.text
                            }
                            Text {
                                visible: !sidebar.collapsed && mate.modelData.status === "working"
                                Layout.rightMargin: 8
                                text: "working"
                                font.family: Theme.sans
                                font.pixelSize: 11
                                color: Theme.muted
                            }
                        }
                        ToolTip.visible: sidebar.collapsed && hovered
                        ToolTip.text: modelData.name + " · " + modelData.title
                    }
                }
            }
        }

        // A newer Kestro found by the daily check waits here, out of the
        // way, until the user looks.
        SidebarItem {
            objectName: "updateAvailable"
            Layout.fillWidth: true
            visible: Desktop.updates.offering
            collapsed: sidebar.collapsed
            glyph: "sparkles"
            label: Desktop.updates.offeredVersion.length > 0 ? "Kestro " + Desktop.updates.offeredVersion + " is available" : ""
            onClicked: Desktop.updates.showOffer()
            ToolTip.visible: sidebar.collapsed && hovered
            ToolTip.text: label
        }
        SidebarItem {
            Layout.fillWidth: true
            collapsed: sidebar.collapsed
            glyph: "settings"
            label: "Settings"
            current: sidebar.isCurrent("/settings")
            onClicked: App.router.open("/settings")
        }
    }

    component SectionLabel: Text {
        Layout.fillWidth: true
        Layout.topMargin: 14
        Layout.bottomMargin: 4
        Layout.leftMargin: 10
        font.family: Theme.sans
        font.pixelSize: 11
        font.weight: Font.Medium
        color: Theme.muted
    }
}
