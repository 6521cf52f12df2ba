import QtQuick
import QtQuick.Controls.Basic
import Kestro.Controls

// A square, flat button with one icon and a tooltip naming what it does.
AbstractButton {
    id: button
    property string glyph
    property string tip
    property int iconSize: 16
    implicitWidth: 30
    implicitHeight: 30
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    Accessible.name: tip
    // A screen reader's "press" acts as a click.
    Accessible.onPressAction: clicked()
    opacity: enabled ? 1 : 0.35

    background: Rectangle {
        radius: 7
        color: button.down || button.checked ? Theme.selected : (button.hovered ? Theme.hover : "transparent")
        border.width: button.visualFocus ? 2 : 0
        border.color: Theme.accent
    }
    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            name: button.glyph
            size: button.iconSize
            color: Theme.muted
        }
    }
    ToolTip.visible: hovered && tip.length > 0
    ToolTip.delay: 600
    ToolTip.text: tip
}
