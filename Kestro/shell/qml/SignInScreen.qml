import QtQuick
import Kestro.Controls
import Kestro.Shell
import Kestro.Visuals

// Signed out: the brand, the sign-in card, nothing else.
Rectangle {
    id: screen
    color: Theme.ground
    objectName: "signInScreen"

    Sky {
        anchors.fill: parent
    }

    SignInCard {
        anchors.centerIn: parent
    }
}
