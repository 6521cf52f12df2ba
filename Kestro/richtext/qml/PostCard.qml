import QtQuick
import Kestro.Controls

// A post on X that a paragraph links to, as a compact card: who posted it
// and where it lives. The app does not fetch the post itself (X serves it
// only to its own embed script); a click opens it.
Rectangle {
    id: card
    property string address
    property string user
    property string postId
    signal opened()

    width: Math.min(420, parent ? parent.width : 420)
    height: 58
    radius: 10
    color: area.containsMouse ? Qt.darker(Theme.well, Theme.dark ? 0.9 : 1.03) : Theme.well
    border.color: Theme.line
    Accessible.role: Accessible.Link
    Accessible.name: "Post by @" + user + " on X"
    activeFocusOnTab: true
    Keys.onReturnPressed: card.opened()
    Keys.onSpacePressed: card.opened()

    Rectangle {
        id: mark
        x: 12
        anchors.verticalCenter: parent.verticalCenter
        width: 32
        height: 32
        radius: 16
        color: Theme.dark ? "#f5f5f5" : "#111111"
        Text {
            anchors.centerIn: parent
            text: "X"
            font.family: Theme.display
            font.bold: true
            font.pixelSize: 15
            color: Theme.dark ? "#111111" : "#ffffff"
        }
    }
    Column {
        anchors.left: mark.right
        anchors.leftMargin: 12
        anchors.right: parent.right
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2
        Text {
            width: parent.width
            textFormat: Text.PlainText
            text: "@" + card.user
            elide: Text.ElideRight
            font.family: Theme.sans
            font.pixelSize: 14
            font.weight: Font.DemiBold
            color: Theme.text
        }
        Text {
            width: parent.width
            textFormat: Text.PlainText
            text: "Post " + card.postId + " on X"
            elide: Text.ElideRight
            font.family: Theme.sans
            font.pixelSize: 12
            color: Theme.muted
        }
    }
    Rectangle {
        anchors.fill: parent
        radius: card.radius
        color: "transparent"
        border.width: card.activeFocus ? 2 : 0
        border.color: Theme.link
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        cursorShape: Qt.PointingHandCursor
        onClicked: card.opened()
    }
}
