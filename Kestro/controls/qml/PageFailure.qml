import QtQuick
import QtQuick.Layouts
import Kestro.Controls

// A page that did not load: the heading, the error's own sentence and, when
// the page can try again, a retry.
Rectangle {
    id: failure
    property string message
    property bool canRetry: true
    property string retryText: "Try again"
    signal retry()
    color: Theme.page
    objectName: "pageFailure"
    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(440, parent.width - 48)
        spacing: 10
        Icon { Layout.alignment: Qt.AlignHCenter; name: "file-question"; size: 30; color: Theme.muted }
        Text {
            Layout.fillWidth: true
            text: "This page didn't load."
            horizontalAlignment: Text.AlignHCenter
            font.family: Theme.display
            font.pixelSize: 19
            font.weight: Font.Bold
            color: Theme.text
        }
        Text {
            Layout.fillWidth: true
            textFormat: Text.PlainText
            text: failure.message
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            font.family: Theme.sans
            font.pixelSize: 14
            color: Theme.muted
        }
        PrimaryButton {
            visible: failure.canRetry
            Layout.alignment: Qt.AlignHCenter
            Layout.topMargin: 8
            quiet: true
            text: failure.retryText
            onClicked: failure.retry()
        }
    }
}
