import QtQuick
import QtQuick.Controls.Basic
import Kestro.Controls

// Words that open something, inside running text or a line of details:
// reached with Tab, opened with Return, Enter, Space or a click, and read
// by screen readers as a link.
AbstractButton {
    id: link
    property color color: Theme.link
    property int size: 12
    property bool strong: false
    implicitWidth: link.contentItem.implicitWidth
    implicitHeight: link.contentItem.implicitHeight
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Link
    Accessible.name: text
    Accessible.onPressAction: link.clicked()
    Keys.onReturnPressed: link.clicked()
    Keys.onEnterPressed: link.clicked()
    background: Rectangle {
        x: -3
        y: -1
        width: link.width + 6
        height: link.height + 2
        radius: 4
        color: "transparent"
        border.width: link.visualFocus ? 2 : 0
        border.color: Theme.accent
    }
    contentItem: Text {
        text: link.text
        textFormat: Text.PlainText
        color: link.color
        font.family: Theme.sans
        font.pixelSize: link.size
        font.weight: link.strong ? Font.DemiBold : Font.Normal
        font.underline: link.hovered
    }
    HoverHandler { cursorShape: Qt.PointingHandCursor }
}
