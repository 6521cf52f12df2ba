import QtQuick
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Shell

// "Log in to your workspace." with the button that starts the web sign-in;
// while it runs, what the app waits for; after a failure, why.
Rectangle {
    id: card
    width: 380
    implicitHeight: column.implicitHeight + 64
    height: implicitHeight
    radius: 16
    color: Theme.raised
    border.color: Theme.border

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 32
        spacing: 14

        Row {
            spacing: 10
            Layout.alignment: Qt.AlignHCenter
            Rectangle {
                width: 30; height: 30; radius: 9
                color: Theme.accent
                Icon { anchors.centerIn: parent; name: "sparkles"; size: 17; color: "white" }
            }
            Text {
                text: "Kestro"
                font.family: Theme.display
                font.pixelSize: 24
                font.weight: Font.Bold
                color: Theme.text
                anchors.verticalCenter: parent.verticalCenter
            }
        }
        Text {
            Layout.fillWidth: true
            text: "Log in to your workspace."
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            font.family: Theme.sans
            font.pixelSize: 15
            color: Theme.muted
        }
        PrimaryButton {
            id: signIn
            objectName: "signInButton"
            Layout.fillWidth: true
            Layout.topMargin: 6
            text: App.signingIn ? "Waiting for the browser" : "Log in"
            enabled: !App.signingIn
            focus: true
            onClicked: App.signIn()
            Keys.onReturnPressed: App.signIn()
        }
        // The hint reads on a line of its own; the two ways out sit under it.
        Text {
            visible: App.signingIn && AuthSession.inBrowser
            Layout.fillWidth: true
            textFormat: Text.PlainText
            text: "Finish signing in in your browser; Kestro opens again by itself."
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            font.family: Theme.sans
            font.pixelSize: 13
            color: Theme.muted
        }
        RowLayout {
            visible: App.signingIn && AuthSession.inBrowser
            Layout.alignment: Qt.AlignHCenter
            spacing: 8
            PrimaryButton {
                objectName: "signInHereButton"
                quiet: true
                text: "Sign in here instead"
                onClicked: AuthSession.useSheet()
            }
            PrimaryButton {
                objectName: "cancelSignInButton"
                quiet: true
                text: "Cancel"
                onClicked: AuthSession.cancel()
            }
        }
        Text {
            objectName: "signInError"
            visible: App.signInError.length > 0
            Layout.fillWidth: true
            textFormat: Text.PlainText
            text: App.signInError
            wrapMode: Text.WordWrap
            horizontalAlignment: Text.AlignHCenter
            font.family: Theme.sans
            font.pixelSize: 13
            color: Theme.danger
        }
    }
}
