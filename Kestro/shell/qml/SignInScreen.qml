import QtQuick
import QtQuick.Controls.Basic
import Kestro.Shell

// Signed out: the brand, the sign-in card, nothing else.
Rectangle {
    id: screen
    property AppTheme theme
    color: theme.ground
    objectName: "signInScreen"

    SignInCard {
        anchors.centerIn: parent
        theme: screen.theme
    }
}
