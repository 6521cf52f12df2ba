import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Shell

// Where the desktop gave Kestro no global key: how to bind one in the
// desktop's own keyboard settings, with the command ready to copy.
Popup {
    id: dialog
    objectName: "hotKeyHelp"
    anchors.centerIn: parent
    width: 460
    modal: true
    focus: true
    padding: 20
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside
    onOpened: copy.forceActiveFocus()
    background: Rectangle { radius: 14; color: Theme.raised; border.color: Theme.border }

    ColumnLayout {
        width: parent.width
        spacing: 10
        Accessible.role: Accessible.Dialog
        Accessible.name: "Open Kestro from anywhere"
        Text {
            text: "Open Kestro from anywhere"
            textFormat: Text.PlainText
            font.family: Theme.sans
            font.pixelSize: 16
            font.weight: Font.DemiBold
            color: Theme.text
        }
        Text {
            Layout.fillWidth: true
            text: "Your desktop did not let Kestro take Ctrl+Alt+K for itself. In your desktop's keyboard "
                  + "settings, add a custom shortcut that runs this command, and that key brings Kestro "
                  + "forward with its search open."
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            font.family: Theme.sans
            font.pixelSize: 13
            color: Theme.muted
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            TextField {
                id: command
                Layout.fillWidth: true
                readOnly: true
                selectByMouse: true
                text: Desktop.paletteCommand
                font.family: Theme.mono
                font.pixelSize: 13
                color: Theme.text
                Accessible.name: "Command to bind"
                background: Rectangle { radius: 8; color: Theme.ground; border.color: Theme.border }
            }
            PrimaryButton {
                id: copy
                quiet: true
                text: copied ? "Copied" : "Copy"
                property bool copied: false
                onClicked: {
                    command.selectAll()
                    command.copy()
                    command.deselect()
                    copied = true
                }
            }
        }
        PrimaryButton {
            Layout.topMargin: 6
            Layout.alignment: Qt.AlignRight
            text: "Done"
            onClicked: dialog.close()
        }
    }
}
