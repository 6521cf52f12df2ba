import QtQuick
import QtQuick.Controls.Basic
import Kestro.Controls

// The one filled button of a screen.
Button {
    id: button
    property bool quiet: false
    implicitHeight: 36
    leftPadding: 18
    rightPadding: 18
    hoverEnabled: true
    // A screen reader's "press" acts as a click.
    Accessible.onPressAction: clicked()
    font.family: Theme.sans
    font.pixelSize: 14
    font.weight: Font.Medium
    contentItem: Text {
        textFormat: Text.PlainText
        text: button.text
        font: button.font
        color: button.quiet ? Theme.text : Theme.accentText
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }
    background: Rectangle {
        radius: 8
        color: button.quiet
            ? (button.hovered ? Theme.hover : "transparent")
            : (button.down ? Qt.darker(Theme.accent, 1.15) : (button.hovered ? Qt.lighter(Theme.accent, 1.08) : Theme.accent))
        border.width: button.quiet || button.visualFocus ? 1 : 0
        border.color: button.visualFocus ? Theme.accent : Theme.border
    }
}
