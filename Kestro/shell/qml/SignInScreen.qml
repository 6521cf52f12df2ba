import QtQuick
import Kestro.Controls
import Kestro.Shell

// Signed out: the brand, the sign-in card, nothing else.
Rectangle {
    id: screen
    color: Theme.ground
    objectName: "signInScreen"

    SignInCard {
        anchors.centerIn: parent
    }
}
