import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Shell

// The outcome of an update check: a newer release with its notes and the
// way to its download page, or a sentence saying there is none, or why
// the check failed. Shows whenever the check has something to say.
Popup {
    id: dialog
    objectName: "updateDialog"
    readonly property Updates updates: Desktop.updates

    anchors.centerIn: parent
    width: 440
    modal: true
    focus: true
    padding: 20
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside
    onClosed: if (updates.showing) updates.dismiss()
    readonly property bool offer: updates.outcome === Updates.Offer
    onOpened: (offer ? download : ok).forceActiveFocus()
    // Follows the check: a binding on `visible` would end at the first
    // Escape, and the next outcome would not show.
    Connections {
        target: dialog.updates
        function onChanged() {
            if (dialog.updates.showing && !dialog.visible)
                dialog.open()
            else if (!dialog.updates.showing && dialog.visible)
                dialog.close()
        }
    }
    background: Rectangle { radius: 14; color: Theme.raised; border.color: Theme.border }

    ColumnLayout {
        width: parent.width
        spacing: 10
        Accessible.role: Accessible.Dialog
        Accessible.name: dialog.updates.heading
        RowLayout {
            spacing: 10
            SpinningIcon {
                visible: dialog.updates.checking
                spinning: true
                name: "loader-circle"
                size: 20
                color: Theme.muted
            }
            Icon {
                visible: !dialog.updates.checking
                name: dialog.offer ? "sparkles"
                      : dialog.updates.outcome === Updates.Current ? "circle-check" : "circle-alert"
                size: 20
                color: dialog.updates.outcome === Updates.Failed ? Theme.danger : Theme.accent
            }
            Text {
                Layout.fillWidth: true
                text: dialog.updates.heading
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                font.family: Theme.sans
                font.pixelSize: 16
                font.weight: Font.DemiBold
                color: Theme.text
            }
        }
        Text {
            Layout.fillWidth: true
            text: dialog.updates.detail
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            font.family: Theme.sans
            font.pixelSize: 13
            color: Theme.muted
        }
        Text {
            Layout.fillWidth: true
            visible: dialog.offer && dialog.updates.notes.length > 0
            text: dialog.updates.notes
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            font.family: Theme.sans
            font.pixelSize: 13
            color: Theme.text
        }
        RowLayout {
            Layout.topMargin: 6
            Layout.alignment: Qt.AlignRight
            spacing: 8
            PrimaryButton {
                id: ok
                quiet: dialog.offer
                text: dialog.offer ? "Later" : dialog.updates.checking ? "Cancel" : "OK"
                onClicked: dialog.updates.dismiss()
            }
            PrimaryButton {
                id: download
                visible: dialog.offer
                text: "Open Download Page"
                onClicked: dialog.updates.openDownloadPage()
            }
        }
    }
}
