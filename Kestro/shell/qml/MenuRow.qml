import QtQuick
import QtQuick.Controls.Basic

// A menu entry that shows its keyboard chord on the right, as desktop menus do.
MenuItem {
    id: item
    property AppTheme theme
    property string chord
    property string glyph
    implicitHeight: 32
    implicitWidth: 280
    font.family: theme.sans
    font.pixelSize: 13
    contentItem: Item {
        Icon {
            id: mark
            anchors.left: parent.left
            anchors.verticalCenter: parent.verticalCenter
            name: item.checked ? "check" : item.glyph
            visible: name.length > 0
            size: 15
            color: item.theme.muted
        }
        Text {
            anchors.left: parent.left
            anchors.leftMargin: 24
            anchors.right: chordText.left
            anchors.verticalCenter: parent.verticalCenter
            text: item.text
            font: item.font
            elide: Text.ElideRight
            color: item.enabled ? item.theme.text : item.theme.muted
        }
        Text {
            id: chordText
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: item.chord
            font.family: item.theme.sans
            font.pixelSize: 12
            color: item.theme.muted
        }
    }
    indicator: null
    arrow: Icon {
        visible: item.subMenu !== null
        x: item.width - width - 8
        y: (item.height - height) / 2
        name: "chevron-right"
        size: 14
        color: item.theme.muted
    }
    background: Rectangle {
        radius: 6
        color: item.highlighted ? item.theme.selected : "transparent"
    }
}
