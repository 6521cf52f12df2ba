// Delegates name this file's ids and take their data through required
// properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Kestro.Controls

// A message's reactions: one chip per emoji with its count (the user's own
// drawn as chosen), who reacted on hover, a click toggles the user's own;
// then "Add a reaction", for those who may write.
Flow {
    id: chips
    property var reactions: []
    property bool canReact: false
    signal toggled(string emoji)
    signal adding(Item from)
    spacing: 4

    Repeater {
        model: chips.reactions
        delegate: AbstractButton {
            id: chip
            required property var modelData
            implicitWidth: chip.contentItem.implicitWidth + 16
            implicitHeight: 24
            hoverEnabled: true
            focusPolicy: Qt.StrongFocus
            Accessible.role: Accessible.Button
            Accessible.name: chip.modelData.emoji + " " + chip.modelData.count + ", " + chip.modelData.who
            Accessible.onPressAction: chip.clicked()
            Keys.onReturnPressed: chip.clicked()
            Keys.onEnterPressed: chip.clicked()
            // Those who read only still see who reacted.
            onClicked: if (chips.canReact) chips.toggled(chip.modelData.emoji)
            ToolTip.visible: hovered
            ToolTip.delay: 300
            ToolTip.text: chip.modelData.who
            background: Rectangle {
                radius: 12
                color: chip.modelData.mine ? Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.14)
                     : chip.hovered ? Theme.hover : Theme.well
                border.width: chip.visualFocus ? 2 : 1
                border.color: chip.visualFocus || chip.modelData.mine ? Theme.accent : Theme.border
            }
            contentItem: Text {
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                textFormat: Text.PlainText
                text: chip.modelData.emoji + " " + chip.modelData.count
                color: Theme.text
                font.family: Theme.sans
                font.pixelSize: 12
            }
        }
    }
    IconButton {
        id: add
        visible: chips.canReact && chips.reactions.length > 0
        implicitWidth: 28
        implicitHeight: 24
        glyph: "face-slightly-smiling-plus"
        tip: "Add a reaction"
        iconSize: 14
        focusPolicy: Qt.StrongFocus
        onClicked: chips.adding(add)
    }
}
