import QtQuick
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Composer
import Kestro.Pages

// A composer on screen, the kest room's or a one-to-one chat's: the prompt
// bar with @ (teammates) and / (skills), and under it the error of the last
// send, or who took it, or the hint of who the message goes to. `composer`
// is whatever holds the sending: text, hint, note, error, pending, label,
// placeholder and send().
ColumnLayout {
    id: bar
    required property var composer
    property string promptName: "kestPrompt"
    property string access
    property var mentions: []
    property alias editor: prompt
    spacing: 4

    PromptBar {
        id: prompt
        objectName: bar.promptName
        Layout.fillWidth: true
        access: bar.access
        label: bar.composer.label
        placeholder: bar.composer.placeholder
        sendLabel: bar.composer.pending ? "Sending" : "Send"
        pending: bar.composer.pending
        explainsEmpty: true
        mentions: bar.mentions
        mentionLabel: "Call on a teammate"
        value: bar.composer.text
        onValueChanged: if (value !== bar.composer.text) bar.composer.text = value
        onSend: bar.composer.send()
    }
    // Typing replaces the bar's binding to the text; a send that clears the
    // text tells the bar here.
    Connections {
        target: bar.composer
        function onTextChanged() {
            if (prompt.value !== bar.composer.text)
                prompt.value = bar.composer.text
        }
    }
    Text {
        readonly property string line: bar.composer.error.length > 0 ? bar.composer.error
                                      : bar.composer.note.length > 0 ? bar.composer.note : bar.composer.hint
        visible: prompt.notice.length === 0 && line.length > 0
        Layout.fillWidth: true
        Layout.leftMargin: 4
        text: line
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        color: bar.composer.error.length > 0 ? Theme.danger : Theme.muted
        font.family: Theme.sans
        font.pixelSize: 12
        Accessible.role: bar.composer.error.length > 0 ? Accessible.AlertMessage : Accessible.StaticText
        Accessible.name: text
    }
}
