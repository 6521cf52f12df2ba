// Delegates name this file's ids and take their data through required
// properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.AgentWork
import Kestro.Pages

// A private chat with one teammate ("/kest/<handle>/chat"), organised as
// threads; "/kest/<handle>/chat/<id>" opens one beside the list.
Item {
    id: page
    property alias router: chat.router
    property alias route: chat.route
    property string access
    readonly property string title: chat.name.length > 0 ? chat.name : "Chat"
    // The header's spinner is for the first load: timed reloads stay quiet.
    readonly property bool loading: chat.loader.loading && chat.loader.state !== Loaded.Content
    objectName: "directChatPage"

    DirectChatModel {
        id: chat
        objectName: "directChat"
        Component.onCompleted: chat.start()
        // Opening a thread, or going back to the list, the keyboard goes
        // to the composer.
        onRouteChanged: arrival.request()
    }
    ArrivalFocus {
        id: arrival
        ready: chat.loader.state === Loaded.Content
        onDue: page.focusComposer()
    }
    function focusComposer() {
        if (arrival.ready)
            chatComposer.editor.focusEditor()
    }

    Bones {
        visible: chat.loader.state === Loaded.Bones
        x: 32
        y: 40
        width: Math.min(760, page.width - 64)
    }
    PageFailure {
        anchors.fill: parent
        visible: chat.loader.state === Loaded.Failed
        message: chat.loader.error
        onRetry: chat.loader.reload()
    }

    RowLayout {
        anchors.fill: parent
        visible: chat.loader.state === Loaded.Content
        spacing: 0

        // The threads.
        ColumnLayout {
            Layout.preferredWidth: Math.min(320, page.width * 0.34)
            Layout.fillHeight: true
            spacing: 0

            RowLayout {
                Layout.fillWidth: true
                Layout.margins: 16
                spacing: 10
                Avatar {
                    name: chat.name
                    robot: chat.handle
                    status: chat.agentStatus
                    size: 36
                }
                ColumnLayout {
                    Layout.fillWidth: true
                    spacing: 0
                    Text {
                        textFormat: Text.PlainText
                        text: chat.name
                        color: Theme.text
                        font.family: Theme.display
                        font.pixelSize: 18
                        font.weight: Font.Bold
                        Accessible.role: Accessible.Heading
                        Accessible.name: text
                    }
                    Text {
                        Layout.fillWidth: true
                        textFormat: Text.PlainText
                        text: chat.agentTitle
                        elide: Text.ElideRight
                        color: Theme.muted
                        font.family: Theme.sans
                        font.pixelSize: 12
                    }
                }
                IconButton {
                    glyph: "square-pen"
                    tip: "New thread"
                    visible: chat.threadOpen
                    onClicked: chat.closeThread()
                }
            }
            ListView {
                id: threads
                objectName: "chatThreads"
                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true
                model: chat.threads
                keyNavigationEnabled: true
                activeFocusOnTab: true
                Accessible.role: Accessible.List
                Accessible.name: "Threads"
                boundsBehavior: Flickable.StopAtBounds
                ScrollBar.vertical: ScrollBar {}
                header: Text {
                    visible: chat.threadsNote.length > 0
                    height: visible ? implicitHeight + 8 : 0
                    x: 16
                    textFormat: Text.PlainText
                    text: chat.threadsNote
                    color: Theme.muted
                    font.family: Theme.sans
                    font.pixelSize: 12
                }
                delegate: AbstractButton {
                    id: row
                    required property var model
                    required property int index
                    readonly property bool current: chat.route.segments.length > 3 && chat.route.segments[3] === row.model.key
                    width: ListView.view.width
                    implicitHeight: 62
                    hoverEnabled: true
                    focusPolicy: Qt.StrongFocus
                    Accessible.role: Accessible.ListItem
                    Accessible.name: row.model.title + ", " + row.model.repliesText
                    Accessible.description: "Open thread"
                    Accessible.onPressAction: row.clicked()
                    Keys.onReturnPressed: row.clicked()
                    Keys.onEnterPressed: row.clicked()
                    onClicked: chat.open(row.model.href)
                    ToolTip.visible: hovered
                    ToolTip.delay: 800
                    ToolTip.text: "Open thread"
                    background: Rectangle {
                        color: row.current ? Theme.selected : row.hovered ? Theme.hover : "transparent"
                        border.width: row.visualFocus ? 2 : 0
                        border.color: Theme.accent
                    }
                    contentItem: Item {
                    ColumnLayout {
                        anchors.left: parent.left
                        anchors.right: parent.right
                        anchors.verticalCenter: parent.verticalCenter
                        spacing: 4
                        Text {
                            Layout.fillWidth: true
                            Layout.leftMargin: 16
                            Layout.rightMargin: 12
                            text: row.model.title
                            textFormat: Text.PlainText
                            elide: Text.ElideRight
                            color: Theme.text
                            font.family: Theme.sans
                            font.pixelSize: 13
                            font.weight: Font.DemiBold
                        }
                        RowLayout {
                            Layout.leftMargin: 16
                            Layout.rightMargin: 12
                            spacing: 6
                            Orb {
                                visible: row.model.working
                                state: "working"
                            }
                            Text {
                                Layout.fillWidth: true
                                text: row.model.working ? (row.model.doing.length > 0 ? row.model.doing : chat.name + " is getting to work")
                                    : row.model.failed ? "reply failed"
                                    : [row.model.repliesText, row.model.lastReply, row.model.via].filter(t => t.length > 0).join(" · ")
                                textFormat: Text.PlainText
                                elide: Text.ElideRight
                                color: row.model.failed ? Theme.danger : Theme.muted
                                font.family: Theme.sans
                                font.pixelSize: 12
                            }
                        }
                    }
                    }
                }
            }
        }
        Rectangle {
            Layout.fillHeight: true
            implicitWidth: 1
            color: Theme.border
        }

        // The open thread, or the start of a new one.
        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0

            RowLayout {
                visible: chat.threadOpen
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
                        Layout.fillWidth: true
                        text: "with " + chat.name + (chat.threadFrom.length > 0 ? " · " + chat.threadFrom : "")
                              + (chat.threadTitle.length > 0 ? " · " + chat.threadTitle : "")
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        color: Theme.muted
                        font.family: Theme.sans
                        font.pixelSize: 12
                    }
                }
                IconButton {
                    objectName: "closeChatThread"
                    glyph: "x"
                    tip: "Close the thread"
                    Accessible.name: "Close"
                    onClicked: chat.closeThread()
                }
            }

            Item {
                Layout.fillWidth: true
                Layout.fillHeight: true
                KestTimeline {
                    anchors.fill: parent
                    anchors.leftMargin: 12
                    anchors.rightMargin: 12
                    visible: chat.threadOpen
                    objectName: "chatTimeline"
                    Accessible.name: "Messages"
                    model: chat.messages
                    inThread: true
                    copyTip: "Copy the reply"
                    onLinkOpened: path => chat.open(path)
                }
                EmptyState {
                    visible: !chat.threadOpen
                    anchors.centerIn: parent
                    width: Math.min(520, parent.width - 48)
                    glyph: "messages-square"
                    title: "Start a thread with " + chat.name
                    text: "It works from what your brain knows about the business, on your own AI plan. Every message you send here starts a thread; reply inside it to keep going."
                }
            }

            Text {
                visible: chat.threadFailure.length > 0
                Layout.fillWidth: true
                Layout.leftMargin: 24
                text: chat.threadFailure
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                color: Theme.danger
                font.family: Theme.sans
                font.pixelSize: 12
            }
            ColumnLayout {
                visible: chat.working
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                spacing: 2
                // Once a trace shows, it offers "Watch the steps": one link,
                // not two; before, the working line does.
                Working {
                    label: chat.workingLine
                    since: chat.workingSince
                    href: chat.trace ? "" : chat.runHref
                    onOpened: href => chat.open(href)
                }
                TraceView {
                    Layout.fillWidth: true
                    trace: chat.trace
                    href: chat.runHref
                    onLinkOpened: href => chat.open(href)
                }
            }

            KestComposerBar {
                id: chatComposer
                Layout.fillWidth: true
                Layout.leftMargin: 24
                Layout.rightMargin: 24
                Layout.topMargin: 8
                Layout.bottomMargin: 16
                promptName: "chatPrompt"
                composer: chat
                access: page.access
            }
        }
    }
}
