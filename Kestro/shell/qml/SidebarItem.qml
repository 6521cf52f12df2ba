import QtQuick
import QtQuick.Controls.Basic
import Kestro.Controls
import Kestro.Shell

// One row of the sidebar: icon, label, an optional count; only the icon
// when the sidebar is collapsed.
AbstractButton {
    id: row
    property string glyph
    property string label
    property int count: 0
    property bool current: false
    property bool collapsed: false
    implicitHeight: 32
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.name: label
    Accessible.role: Accessible.Button

    background: Rectangle {
        radius: 7
        color: row.current ? Theme.selected : (row.hovered ? Theme.hover : "transparent")
        border.width: row.visualFocus ? 2 : 0
        border.color: Theme.accent
    }
    contentItem: Item {
        Icon {
            id: mark
            x: row.collapsed ? (parent.width - width) / 2 : 10
            anchors.verticalCenter: parent.verticalCenter
            name: row.glyph
            size: 16
            color: row.current ? Theme.text : Theme.muted
        }
        Text {
            visible: !row.collapsed
            anchors.left: mark.right
            anchors.leftMargin: 10
            anchors.right: badge.left
            anchors.rightMargin: 6
            anchors.verticalCenter: parent.verticalCenter
            text: row.label
            elide: Text.ElideRight
            font.family: Theme.sans
            font.pixelSize: 13
            font.weight: row.current ? Font.Medium : Font.Normal
            color: Theme.text
        }
        Text {
            id: badge
            visible: !row.collapsed && row.count > 0
            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            width: visible ? implicitWidth : 0
            text: row.count
            font.family: Theme.sans
            font.pixelSize: 12
            color: Theme.muted
        }
    }
    ToolTip.visible: collapsed && hovered
    ToolTip.delay: 300
    ToolTip.text: label
}
