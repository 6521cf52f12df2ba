import QtQuick
import QtQuick.Controls.Basic
import Kestro.Controls

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
    // A screen reader's "press" acts as a click.
    Accessible.onPressAction: clicked()

    background: Rectangle {
        radius: 7
        color: row.current ? Theme.selected : (row.hovered ? Theme.hover : "transparent")
        border.width: row.visualFocus ? 2 : 0
        border.color: Theme.accent
    }
    // The count's width, measured out here: the label stops short of the
    // count, and an id inside contentItem would make its deferred assignment
    // immediate. The count takes its font from here too.
    TextMetrics {
        id: countMetrics
        font.family: Theme.sans
        font.pixelSize: 12
        text: row.count
    }
    contentItem: Item {
        Icon {
            x: row.collapsed ? (parent.width - width) / 2 : 10
            anchors.verticalCenter: parent.verticalCenter
            name: row.glyph
            size: 16
            color: row.current ? Theme.text : Theme.muted
        }
        Text {
            visible: !row.collapsed
            // Shown only when expanded: right of the icon (at 10, 16 wide) by
            // 10, and 6 short of the count (10 in from the right).
            anchors.left: parent.left
            anchors.leftMargin: 10 + 16 + 10
            anchors.right: parent.right
            anchors.rightMargin: 10 + 6 + (row.count > 0 ? countMetrics.advanceWidth : 0)
            anchors.verticalCenter: parent.verticalCenter
            textFormat: Text.PlainText
            text: row.label
            elide: Text.ElideRight
            font.family: Theme.sans
            font.pixelSize: 13
            font.weight: row.current ? Font.Medium : Font.Normal
            color: Theme.text
        }
        Text {
            visible: !row.collapsed && row.count > 0
            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            width: visible ? implicitWidth : 0
            textFormat: Text.PlainText
            text: row.count
            font: countMetrics.font
            color: Theme.muted
        }
    }
    ToolTip.visible: collapsed && hovered
    ToolTip.delay: 300
    ToolTip.text: label
}
