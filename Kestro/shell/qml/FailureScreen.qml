import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Shell

// The workspace did not load at start: what happened and "Try again".
Rectangle {
    id: screen
    property AppTheme theme
    color: theme.ground
    objectName: "failureScreen"
    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(420, parent.width - 48)
        spacing: 12
        Icon { Layout.alignment: Qt.AlignHCenter; name: "circle-alert"; size: 32; color: screen.theme.muted }
        Text {
            Layout.fillWidth: true
            text: "Kestro didn't load."
            horizontalAlignment: Text.AlignHCenter
            font.family: screen.theme.display
            font.pixelSize: 22
            font.weight: Font.Bold
            color: screen.theme.text
        }
        Text {
            Layout.fillWidth: true
            text: App.frameError
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            font.family: screen.theme.sans
            font.pixelSize: 14
            color: screen.theme.muted
        }
        PrimaryButton {
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 8
            theme: screen.theme
            text: App.loadingFrame ? "Trying again…" : "Try again"
            enabled: !App.loadingFrame
            onClicked: App.reload()
        }
    }
}
