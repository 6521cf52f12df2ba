import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Shell

// "Log in to your workspace." with the button that starts the web sign-in;
// while it runs, what the app waits for; after a failure, why.
Rectangle {
    id: card
    property AppTheme theme
    width: 380
    implicitHeight: column.implicitHeight + 64
    height: implicitHeight
    radius: 16
    color: theme.raised
    border.color: theme.border

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
                color: card.theme.accent
                Icon { anchors.centerIn: parent; name: "sparkles"; size: 17; color: "white" }
            }
            Text {
                text: "Kestro"
                font.family: card.theme.display
                font.pixelSize: 24
                font.weight: Font.Bold
                color: card.theme.text
                anchors.verticalCenter: parent.verticalCenter
            }
        }
        Text {
            Layout.fillWidth: true
            text: "Log in to your workspace."
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.WordWrap
            font.family: card.theme.sans
            font.pixelSize: 15
            color: card.theme.muted
        }
        PrimaryButton {
            id: signIn
            objectName: "signInButton"
            theme: card.theme
            Layout.fillWidth: true
            Layout.topMargin: 6
            text: App.signingIn ? "Waiting for the browser" : "Log in"
            enabled: !App.signingIn
            focus: true
            onClicked: App.signIn()
            Keys.onReturnPressed: App.signIn()
        }
        RowLayout {
            visible: App.signingIn && AuthSession.inBrowser
            Layout.fillWidth: true
            spacing: 8
            Text {
                Layout.fillWidth: true
                text: "Finish signing in in your browser; Kestro opens again by itself."
                wrapMode: Text.WordWrap
                font.family: card.theme.sans
                font.pixelSize: 13
                color: card.theme.muted
            }
            PrimaryButton {
                theme: card.theme
                quiet: true
                text: "Cancel"
                onClicked: AuthSession.cancel()
            }
        }
        Text {
            objectName: "signInError"
            visible: App.signInError.length > 0
            Layout.fillWidth: true
            text: App.signInError
            wrapMode: Text.WordWrap
            horizontalAlignment: Text.AlignHCenter
            font.family: card.theme.sans
            font.pixelSize: 13
            color: card.theme.danger
        }
    }
}
