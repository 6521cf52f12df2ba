import QtQuick
import QtQuick.Controls.Basic

// The one filled button of a screen.
Button {
    id: button
    property AppTheme theme
    property bool quiet: false
    implicitHeight: 36
    leftPadding: 18
    rightPadding: 18
    hoverEnabled: true
    font.family: theme.sans
    font.pixelSize: 14
    font.weight: Font.Medium
    contentItem: Text {
        text: button.text
        font: button.font
        color: button.quiet ? button.theme.text : button.theme.accentText
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }
    background: Rectangle {
        radius: 8
        color: button.quiet
            ? (button.hovered ? button.theme.hover : "transparent")
            : (button.down ? Qt.darker(button.theme.accent, 1.15) : (button.hovered ? Qt.lighter(button.theme.accent, 1.08) : button.theme.accent))
        border.width: button.quiet || button.visualFocus ? 1 : 0
        border.color: button.visualFocus ? button.theme.accent : button.theme.border
    }
}
