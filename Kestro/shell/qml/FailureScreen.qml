import QtQuick
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Shell

// The workspace did not load at start: what happened and "Try again".
Rectangle {
    id: screen
    color: Theme.ground
    objectName: "failureScreen"
    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(420, parent.width - 48)
        spacing: 12
        Icon { Layout.alignment: Qt.AlignHCenter; name: "circle-alert"; size: 32; color: Theme.muted }
        Text {
            Layout.fillWidth: true
            text: "Kestro didn't load."
            horizontalAlignment: Text.AlignHCenter
            font.family: Theme.display
            font.pixelSize: 22
            font.weight: Font.Bold
            color: Theme.text
        }
        Text {
            Layout.fillWidth: true
            textFormat: Text.PlainText
            text: App.frameError
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            font.family: Theme.sans
            font.pixelSize: 14
            color: Theme.muted
        }
        PrimaryButton {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 8
            text: App.loadingFrame ? "Trying again…" : "Try again"
            enabled: !App.loadingFrame
            onClicked: App.reload()
        }
    }
}
