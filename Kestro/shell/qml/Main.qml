import QtQuick
import QtQuick.Controls.Basic
import Kestro.Controls
import Kestro.Shell

// The main window: the screen for the app's phase, the sign-in sheet, and
// the menu commands' keyboard chords.
ApplicationWindow {
    id: window
    objectName: "mainWindow"
    width: 1240
    height: 800
    minimumWidth: 720
    minimumHeight: 480
    visible: true
    // Where no launcher or tray shows the unread count, it leads the
    // title, as mail and chat windows show it, so the task bar has it.
    title: App.phase === App.SignedIn && signedInFrame && signedInFrame.title
           ? (Bell.unread > 0 && !Desktop.countShownElsewhere ? "(" + Bell.unread + ") " : "")
             + signedInFrame.title + " · Kestro"
           : "Kestro"
    color: Theme.ground
    font.family: Theme.sans

    // Every view reads the one palette; it follows the appearance settings.
    Binding { target: Theme; property: "dark"; value: Appearance.dark }
    Binding { target: Theme; property: "darkShade"; value: Appearance.darkShade }
    Binding { target: Theme; property: "lightShade"; value: Appearance.lightShade }
    Binding { target: Theme; property: "reduceMotion"; value: Appearance.reduceMotion }

    readonly property bool signedIn: App.phase === App.SignedIn
    // The frame the loader below holds while signed in, by its own type.
    readonly property AppFrame signedInFrame: frameLoader.item as AppFrame

    Loader {
        id: frameLoader
        objectName: "frameLoader"
        anchors.fill: parent
        // Every hover tip shares one tool tip (attached from an item, as
        // it must be), whose text would read markup in a name or a title:
        // it reads plain text, for all.
        Component.onCompleted: {
            const tip = ToolTip.toolTip.contentItem as Text
            if (tip)
                tip.textFormat = Text.PlainText
        }
        active: window.signedIn
        sourceComponent: AppFrame {
            onQuitRequested: Qt.quit()
        }
    }
    Loader {
        anchors.fill: parent
        active: App.phase === App.SignedOut
        sourceComponent: SignInScreen {}
    }
    Loader {
        anchors.fill: parent
        active: App.phase === App.Launching
        sourceComponent: App.frameError.length > 0 ? failure
                         : App.setupPath.length > 0 && !App.loadingFrame ? setup : launching
        Component { id: failure; FailureScreen {} }
        Component { id: setup; SetupScreen {} }
        Component { id: launching; LaunchScreen {} }
    }

    AuthSheet {}
    UpdateDialog {}

    // The menu commands. Shift+digit arrives as the shifted character on
    // most layouts, so both spellings are listened for.
    Shortcut { sequences: ["Ctrl+K"]; enabled: window.signedIn; onActivated: Shell.paletteOpen = true }
    Shortcut { sequences: ["Ctrl+["]; enabled: window.signedIn; onActivated: App.router.goBack() }
    Shortcut { sequences: ["Ctrl+]"]; enabled: window.signedIn; onActivated: App.router.goForward() }
    Shortcut { sequences: ["Ctrl+Shift+S"]; enabled: window.signedIn; onActivated: Shell.toggleSidebar() }
    Shortcut { sequences: ["Ctrl+,"]; enabled: window.signedIn; onActivated: App.router.open("/settings") }
    Shortcut { sequences: ["Ctrl+Q"]; onActivated: Qt.quit() }

    Component.onCompleted: App.start()
}
