// Delegates name this file's ids and take their data through required
// properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Pages

// A thread of the kest room, beside it: its first message and replies,
// who answers in it now, and its composer.
Rectangle {
    id: panel
    required property KestRoomModel room
    property string access
    property bool canReact: false
    signal addingReaction(string messageId, Item from)
    // The keyboard goes to an editor only once someone can see it; the
    // room asks again when the panel shows.
    function focusComposer() {
        if (visible)
            threadComposer.editor.focusEditor()
    }
    color: Theme.page
    Accessible.role: Accessible.Pane
    Accessible.name: "Thread"

    Rectangle {
        width: 1
        height: parent.height
        color: Theme.border
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.leftMargin: 1
        spacing: 0

        RowLayout {
            Layout.fillWidth: true
            Layout.margins: 12
            spacing: 8
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 0
                Text {
                    text: "Thread"
                    color: Theme.text
                    font.family: Theme.display
                    font.pixelSize: 16
                    font.weight: Font.Bold
                    Accessible.role: Accessible.Heading
                    Accessible.name: text
                }
                Text {
                    text: "in the kest chat"
                    color: Theme.muted
                    font.family: Theme.sans
                    font.pixelSize: 12
                }
            }
            IconButton {
                objectName: "closeThread"
                glyph: "x"
                tip: "Close the thread"
                Accessible.name: "Close"
                onClicked: panel.room.closeThread()
            }
        }
        Text {
            visible: panel.room.threadNote.length > 0
            Layout.fillWidth: true
            Layout.leftMargin: 16
            textFormat: Text.PlainText
            text: panel.room.threadNote
            color: Theme.muted
            font.family: Theme.sans
            font.pixelSize: 12
        }
        KestTimeline {
            id: replies
            objectName: "threadTimeline"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Accessible.name: "Replies"
            model: panel.room.thread
            inThread: true
            canReact: panel.canReact
            onLinkOpened: path => panel.room.open(path)
            onReacted: (id, emoji) => panel.room.react(id, emoji)
            onAddingReaction: (id, from) => panel.addingReaction(id, from)
        }
        Repeater {
            model: panel.room.threadAnswering
            delegate: KestAnswering {
                Layout.fillWidth: true
                Layout.leftMargin: 16
                Layout.rightMargin: 16
                onLinkOpened: href => panel.room.open(href)
            }
        }
        KestComposerBar {
            id: threadComposer
            promptName: "threadPrompt"
            Layout.fillWidth: true
            Layout.margins: 12
            composer: panel.room.threadComposer
            access: panel.access
            mentions: panel.room.mentions
        }
    }
}
