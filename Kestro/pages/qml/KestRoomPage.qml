// Delegates name this file's ids and take their data through required
// properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Pages

// The kest chat ("/kest"): the room where the people of the workspace and
// every teammate talk, with a thread beside it ("/kest?thread=<id>").
Item {
    id: page
    property alias router: room.router
    property alias route: room.route
    // The user's role in the workspace (the host keeps it current).
    property string access
    // Viewers, approvers and guests read but do not write.
    readonly property bool canWrite: page.access.length > 0 && page.access !== "viewer"
                                     && page.access !== "approver" && page.access !== "guest"
    readonly property string title: "Kest chat"
    // The header's spinner is for the first load: timed reloads stay quiet.
    readonly property bool loading: room.loader.loading && room.loader.state !== Loaded.Content
    objectName: "kestRoomPage"

    KestRoomModel {
        id: room
        objectName: "kestRoom"
        Component.onCompleted: room.start()
        // Arriving, the keyboard goes to the composer the user will write
        // in: the open thread's, else the room's.
        onThreadIdChanged: arrival.request()
    }
    ArrivalFocus {
        id: arrival
        ready: room.loader.state === Loaded.Content
        onDue: page.focusComposer()
    }
    function focusComposer() {
        if (!page.canWrite)
            return
        if (room.threadId.length > 0)
            thread.focusComposer()
        else
            composer.editor.focusEditor()
    }

    Bones {
        visible: room.loader.state === Loaded.Bones
        x: 32
        y: 40
        width: Math.min(760, page.width - 64)
    }
    PageFailure {
        anchors.fill: parent
        visible: room.loader.state === Loaded.Failed
        message: room.loader.error
        onRetry: room.loader.reload()
    }

    RowLayout {
        anchors.fill: parent
        visible: room.loader.state === Loaded.Content
        spacing: 0

        ColumnLayout {
            id: roomColumn
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0

            // Who is in the room.
            RowLayout {
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                Layout.topMargin: 20
                Layout.bottomMargin: 8
                spacing: 12
                PageHeader {
                    Layout.fillWidth: true
                    title: "Kest chat"
                    subtitle: room.everyoneLine
                }
                Row {
                    spacing: -6
                    Repeater {
                        model: room.kest
                        delegate: Avatar {
                            id: face
                            required property var model
                            name: face.model.name
                            robot: face.model.key
                            status: face.model.status
                            size: 30
                            ToolTip.visible: faceHover.hovered
                            ToolTip.text: face.model.name + ", " + face.model.title
                            HoverHandler { id: faceHover }
                        }
                    }
                }
            }
            Repeater {
                model: room.needsYou
                delegate: Text {
                    required property string modelData
                    Layout.leftMargin: 24
                    textFormat: Text.PlainText
                    text: modelData
                    color: Theme.busy
                    font.family: Theme.sans
                    font.pixelSize: 13
                    font.weight: Font.DemiBold
                }
            }

            Item {
                Layout.fillWidth: true
                Layout.fillHeight: true

                KestTimeline {
                    id: timeline
                    objectName: "roomTimeline"
                    anchors.fill: parent
                    anchors.leftMargin: 12
                    anchors.rightMargin: 12
                    Accessible.name: "Messages"
                    model: room.messages
                    canReact: page.canWrite
                    onLinkOpened: path => room.open(path)
                    onReacted: (id, emoji) => room.react(id, emoji)
                    onAddingReaction: (id, from) => picker.openFor(id, from)
                }
                EmptyState {
                    visible: room.messages.count === 0
                    anchors.centerIn: parent
                    width: Math.min(520, parent.width - 48)
                    glyph: "messages-square"
                    title: "Talk to the whole kest"
                    text: room.emptyText
                }
            }

            // Teammates answering, room-wide.
            Repeater {
                model: room.answering
                delegate: KestAnswering {
                    Layout.fillWidth: true
                    Layout.leftMargin: 24
                    Layout.rightMargin: 24
                    onLinkOpened: href => room.open(href)
                }
            }

            // A refused reaction says so for a while, or until dismissed.
            RowLayout {
                visible: room.reactionError.length > 0
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                spacing: 8
                Text {
                    Layout.fillWidth: true
                    text: room.reactionError
                    textFormat: Text.PlainText
                    wrapMode: Text.Wrap
                    color: Theme.danger
                    font.family: Theme.sans
                    font.pixelSize: 12
                    Accessible.role: Accessible.AlertMessage
                    Accessible.name: text
                }
                IconButton {
                    glyph: "x"
                    tip: "Dismiss"
                    onClicked: room.dismissReactionError()
                }
                Timer {
                    id: reactionErrorTimer
                    interval: 8000
                    onTriggered: room.dismissReactionError()
                }
                // Each new refusal gets its own 8 s.
                Connections {
                    target: room
                    function onReactionErrorChanged() {
                        if (room.reactionError.length > 0)
                            reactionErrorTimer.restart()
                    }
                }
            }

            KestComposerBar {
                id: composer
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                Layout.topMargin: 8
                Layout.bottomMargin: 16
                composer: room.composer
                access: page.access
                mentions: room.mentions
            }
        }

        KestThreadPanel {
            id: thread
            objectName: "threadPanel"
            visible: room.threadId.length > 0 && room.threadShown
            Layout.preferredWidth: Math.min(room.threadWidth, page.width * 0.6)
            Layout.fillHeight: true
            room: room
            access: page.access
            canReact: page.canWrite
            onAddingReaction: (id, from) => picker.openFor(id, from)
            // A thread shows once its answer is in: that is its arrival.
            onVisibleChanged: if (visible) arrival.request()

            // The panel's left edge: drag to make it wider or narrower.
            MouseArea {
                width: 6
                height: parent.height
                x: -3
                cursorShape: Qt.SplitHCursor
                property real pressedAt: 0
                property int startWidth: 0
                onPressed: mouse => {
                    pressedAt = mapToItem(page, mouse.x, 0).x
                    startWidth = thread.width
                }
                onPositionChanged: mouse => {
                    if (pressed)
                        room.threadWidth = startWidth + (pressedAt - mapToItem(page, mouse.x, 0).x)
                }
            }
        }
    }

    EmojiPicker {
        id: picker
        onPicked: (id, emoji) => room.react(id, emoji)
    }
}
