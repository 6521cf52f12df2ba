import QtQuick
import QtQuick.Controls.Basic
import Kestro.Controls
import Kestro.Visuals

// While the stored sign-in is read and the workspace loads.
Rectangle {
    id: screen
    color: Theme.ground
    Sky {
        anchors.fill: parent
    }
    Column {
        anchors.centerIn: parent
        spacing: 16
        Rectangle {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 44; height: 44; radius: 13
            color: Theme.accent
            Icon { anchors.centerIn: parent; name: "sparkles"; size: 24; color: "white" }
        }
        BusyIndicator {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 28; height: 28
            running: screen.visible
        }
    }
}
