import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Shell

// The sign-in sheet: the service's sign-in page on the app's own profile.
// It closes by itself when the service sends the user back to Kestro.
Popup {
    id: sheet
    objectName: "authSheet"
    modal: true
    closePolicy: Popup.CloseOnEscape
    width: Math.min(520, parent.width - 40)
    height: Math.min(680, parent.height - 40)
    x: (parent.width - width) / 2
    y: (parent.height - height) / 2
    padding: 0
    onClosed: if (String(AuthSession.address).length > 0 && !AuthSession.inBrowser) AuthSession.cancel()

    Connections {
        target: AuthSession
        function onStateChanged() {
            if (String(AuthSession.address).length > 0)
                sheet.open()
            else
                sheet.close()
        }
    }

    Overlay.modal: Rectangle { color: Theme.scrim }
    background: Rectangle {
        radius: 14
        color: Theme.raised
        border.color: Theme.border
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        RowLayout {
            Layout.fillWidth: true
            Layout.margins: 10
            Layout.leftMargin: 16
            Icon { name: "key-round"; size: 16; color: Theme.muted }
            Text {
                Layout.fillWidth: true
                text: "Sign in to Kestro"
                font.family: Theme.display
                font.pixelSize: 15
                font.weight: Font.Bold
                color: Theme.text
            }
            PrimaryButton {
                objectName: "useBrowserButton"
                quiet: true
                implicitHeight: 30
                text: "Use my browser"
                onClicked: AuthSession.useBrowser()
            }
            IconButton {
                glyph: "x"
                tip: "Cancel sign-in"
                onClicked: AuthSession.cancel()
            }
        }
        // Where the page comes from, as a browser's address bar would say.
        RowLayout {
            Layout.fillWidth: true
            Layout.leftMargin: 16
            Layout.rightMargin: 16
            Layout.bottomMargin: 8
            spacing: 6
            Icon { name: "key-round"; size: 12; color: Theme.muted }
            Text {
                // The loaded view, read untyped like the spinner's below.
                readonly property var view: viewLoader.item
                objectName: "authAddress"
                Layout.fillWidth: true
                textFormat: Text.PlainText
                text: view ? String(view.url) : String(AuthSession.address)
                elide: Text.ElideMiddle
                font.family: Theme.mono
                font.pixelSize: 11
                color: Theme.muted
                Accessible.role: Accessible.StaticText
                Accessible.name: "Address: " + text
            }
        }
        Rectangle { Layout.fillWidth: true; height: 1; color: Theme.border }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            // The view exists only while the sheet is open, and is loaded
            // by its address so the web engine starts only then: an idle web
            // view costs memory and CPU.
            Loader {
                id: viewLoader
                anchors.fill: parent
                anchors.bottomMargin: 8
                active: sheet.visible
                source: "AuthWebView.qml"
            }
            BusyIndicator {
                // The loaded view, read untyped: naming its type here would
                // bring in the web engine's module with the sheet.
                readonly property var view: viewLoader.item
                anchors.centerIn: parent
                visible: !!view && view.loading && view.loadProgress < 60
                running: visible
            }
        }
    }
}
