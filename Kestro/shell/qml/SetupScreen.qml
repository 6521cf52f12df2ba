import QtQuick
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Shell

// A workspace that is not set up yet: the service's setup steps in place of
// the frame, until the last step sends the app on to the workspace.
Rectangle {
    id: screen
    objectName: "setupScreen"
    color: Theme.ground

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        RowLayout {
            Layout.fillWidth: true
            Layout.margins: 12
            Layout.leftMargin: 20
            spacing: 10
            Rectangle {
                width: 26; height: 26; radius: 8
                color: Theme.accent
                Icon { anchors.centerIn: parent; name: "sparkles"; size: 15; color: "white" }
            }
            Text {
                Layout.fillWidth: true
                text: "Set up your workspace"
                font.family: Theme.display
                font.pixelSize: 15
                font.weight: Font.Bold
                color: Theme.text
            }
            PrimaryButton {
                objectName: "setupSignOut"
                quiet: true
                implicitHeight: 30
                text: "Sign out"
                onClicked: App.signOut()
            }
        }
        Rectangle { Layout.fillWidth: true; implicitHeight: 1; color: Theme.border }
        // By address, as the page host does: the web engine's types load
        // only with the first web page.
        Loader {
            id: step
            Layout.fillWidth: true
            Layout.fillHeight: true
            Component.onCompleted: step.setSource("WebPage.qml", { path: App.setupPath })
            Binding {
                target: step.item
                property: "path"
                value: App.setupPath
                when: step.status === Loader.Ready
            }
        }
    }
}
