// No bound components here: the parts made on demand are Loader components,
// which Qt 6.4 refuses to create when bound to this file's context.
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.AgentWork
import Kestro.RichText

// One message of the kest room or a thread: the author's face and name, the
// time, the text in Markdown, what it cites, the task it is about, the
// approvals it raised, its reactions and, in the room, its thread. Its
// actions (react, reply, how it worked, copy) are the list's one shared
// bar, which comes to the message under the pointer or the keyboard.
FocusScope {
    id: message
    required property int index
    required property string key
    required property bool agent
    required property string name
    required property string handle
    required property string when
    required property string at
    required property string text
    required property bool failed
    required property var cites
    required property string taskKey
    required property string taskTitle
    required property string taskStatus
    required property var reactions
    required property int replies
    required property string repliesText
    required property string lastReply
    required property var repliedBy
    required property string answeringLine
    required property string approvals
    required property string runHref
    required property string threadOf
    // Set by the list: the thread panel shows no thread summaries.
    property bool inThread: false
    property bool canReact: false
    readonly property bool hovered: hover.hovered
    // The source a citation in the text was clicked for, lit for a moment.
    property int pointedCite: -1
    Timer {
        id: pointedCiteTimer
        interval: 1600
        onTriggered: message.pointedCite = -1
    }
    // The sources scroll into view when a citation points at one, once
    // the lit chip is laid out.
    Timer {
        id: showCites
        interval: 0
        onTriggered: {
            const view = message.ListView.view
            if (!view || !citesPart.item)
                return
            const top = citesPart.mapToItem(view.contentItem, 0, 0).y - 8
            const bottom = top + citesPart.height + 16
            if (bottom > view.contentY + view.height)
                view.contentY = Math.min(top, bottom - view.height)
            else if (top < view.contentY)
                view.contentY = top
        }
    }
    signal linkOpened(string path)
    signal reacted(string messageId, string emoji)
    signal addingReaction(string messageId, Item from)

    width: ListView.view ? ListView.view.width : implicitWidth
    implicitHeight: body.implicitHeight + 16
    activeFocusOnTab: false
    Accessible.role: Accessible.ListItem
    Accessible.name: message.name + ", " + message.when + ": " + (message.failed ? "Couldn't answer: " : "")
                     + message.text.substring(0, 300)

    HoverHandler { id: hover }

    Rectangle {
        anchors.fill: parent
        color: message.hovered || message.activeFocus ? Theme.hover : "transparent"
        border.width: message.activeFocus ? 2 : 0
        border.color: Theme.accent
        radius: 8
    }

    // Plain positioning rather than layouts: a long room has many of these.
    Item {
        id: body
        x: 12
        y: 8
        width: message.width - 24
        implicitHeight: Math.max(face.y + face.height, column.implicitHeight)

        Avatar {
            id: face
            y: 2
            name: message.name
            robot: message.agent ? message.handle : ""
            size: 32
        }
        Column {
            id: column
            x: face.width + 10
            width: body.width - x
            spacing: 4

            Row {
                spacing: 8
                Text {
                    text: message.name
                    textFormat: Text.PlainText
                    color: Theme.text
                    font.family: Theme.sans
                    font.pixelSize: 14
                    font.weight: Font.DemiBold
                }
                Text {
                    anchors.baseline: parent.children[0].baseline
                    textFormat: Text.PlainText
                    text: message.when
                    color: Theme.muted
                    font.family: Theme.sans
                    font.pixelSize: 12
                    ToolTip.visible: whenHover.hovered
                    ToolTip.delay: 500
                    ToolTip.text: new Date(message.at).toLocaleString(Qt.locale(), Locale.LongFormat)
                    HoverHandler { id: whenHover }
                }
            }

            // Parts a message may lack are made only when it has them: a
            // long room opens faster, and a reload that adds one changes
            // only that.
            MessagePart {
                owner: message
                active: message.failed
                width: column.width
                sourceComponent: Component {
                    Text {
                        id: failedText
                        readonly property var owner: (parent as MessagePart).owner
                        text: "Couldn't answer: " + failedText.owner.text
                        textFormat: Text.PlainText
                        wrapMode: Text.Wrap
                        color: Theme.danger
                        font.family: Theme.sans
                        font.pixelSize: 14
                    }
                }
            }

            Markdown {
                objectName: "messageText"
                visible: !message.failed
                width: column.width
                text: message.failed ? "" : message.text
                citations: message.cites.length
                onPathClicked: path => message.linkOpened(path)
                // "[2]" in the text points at the second source under it.
                onAnchorClicked: anchor => {
                    const cite = /^#source-(\d+)$/.exec(anchor)
                    const at = cite ? parseInt(cite[1], 10) - 1 : -1
                    if (at < 0 || at >= message.cites.length)
                        return
                    message.pointedCite = at
                    pointedCiteTimer.restart()
                    showCites.restart()
                }
            }

            // What the message cites.
            MessagePart {
                id: citesPart
                owner: message
                active: message.cites.length > 0
                width: column.width
                sourceComponent: Component {
                    Flow {
                        id: citeFlow
                        readonly property var owner: (parent as MessagePart).owner
                        spacing: 4
                        Repeater {
                            // Each source, with whether a citation just pointed at it.
                            model: citeFlow.owner.cites.map((cite, at) => ({
                                title: cite.title, pointed: at === citeFlow.owner.pointedCite }))
                            delegate: Rectangle {
                                required property var modelData
                                required property int index
                                implicitWidth: citeText.implicitWidth + 14
                                implicitHeight: 22
                                radius: 11
                                color: modelData.pointed ? Theme.selected : Theme.well
                                border.width: modelData.pointed ? 2 : 1
                                border.color: modelData.pointed ? Theme.accent : Theme.border
                                Accessible.role: Accessible.StaticText
                                Accessible.name: "Source " + (index + 1) + ": " + modelData.title
                                Text {
                                    id: citeText
                                    anchors.centerIn: parent
                                    text: (parent.index + 1) + "  " + parent.modelData.title
                                    textFormat: Text.PlainText
                                    color: Theme.muted
                                    font.family: Theme.sans
                                    font.pixelSize: 11
                                }
                            }
                        }
                    }
                }
            }

            // The task the message is about.
            MessagePart {
                owner: message
                active: message.taskKey.length > 0
                sourceComponent: Component {
                    AbstractButton {
                        id: taskChip
                        readonly property var owner: (parent as MessagePart).owner
                        implicitWidth: taskChip.contentItem.implicitWidth
                        implicitHeight: 26
                        hoverEnabled: true
                        focusPolicy: Qt.StrongFocus
                        Accessible.role: Accessible.Link
                        Accessible.name: taskChip.owner.taskKey + " " + taskChip.owner.taskTitle + ", " + taskChip.owner.taskStatus
                        Accessible.onPressAction: taskChip.clicked()
                        Keys.onReturnPressed: taskChip.clicked()
                        onClicked: taskChip.owner.linkOpened("/tasks/" + taskChip.owner.taskKey)
                        background: Rectangle {
                            radius: 6
                            color: taskChip.hovered ? Theme.selected : Theme.well
                            border.width: taskChip.visualFocus ? 2 : 1
                            border.color: taskChip.visualFocus ? Theme.accent : Theme.border
                        }
                        contentItem: Row {
                            leftPadding: 8
                            rightPadding: 8
                            spacing: 6
                            Icon { name: "list-checks"; size: 13; color: Theme.muted; anchors.verticalCenter: parent.verticalCenter }
                            Text { textFormat: Text.PlainText; text: taskChip.owner.taskKey; color: Theme.muted; font.family: Theme.mono; font.pixelSize: 12 }
                            Text { text: taskChip.owner.taskTitle; textFormat: Text.PlainText; color: Theme.text; font.family: Theme.sans; font.pixelSize: 12 }
                            Text { textFormat: Text.PlainText; text: taskChip.owner.taskStatus.replace("_", " "); color: Theme.muted; font.family: Theme.sans; font.pixelSize: 12 }
                        }
                    }
                }
            }

            // Approvals the message's run raised.
            MessagePart {
                owner: message
                active: message.approvals.length > 0
                sourceComponent: Component {
                    LinkText {
                        id: approvalsLink
                        readonly property var owner: (parent as MessagePart).owner
                        text: approvalsLink.owner.approvals
                        size: 13
                        onClicked: approvalsLink.owner.linkOpened("/activity?view=you")
                    }
                }
            }

            MessagePart {
                owner: message
                active: message.reactions.length > 0
                width: column.width
                sourceComponent: Component {
                    ReactionChips {
                        id: reactionChips
                        readonly property var owner: (parent as MessagePart).owner
                        reactions: reactionChips.owner.reactions
                        canReact: reactionChips.owner.canReact
                        onToggled: emoji => reactionChips.owner.reacted(reactionChips.owner.key, emoji)
                        onAdding: from => reactionChips.owner.addingReaction(reactionChips.owner.key, from)
                    }
                }
            }

            // The thread under a room message.
            MessagePart {
                owner: message
                active: !message.inThread && (message.replies > 0 || message.answeringLine.length > 0)
                // As wide as the message, so a long answering line is cut short.
                width: column.width
                sourceComponent: Component {
                    RowLayout {
                        id: threadRow
                        readonly property var owner: (parent as MessagePart).owner
                        spacing: 8
                        Row {
                            spacing: -4
                            Repeater {
                                model: threadRow.owner.inThread ? [] : threadRow.owner.repliedBy
                                delegate: Avatar {
                                    required property var modelData
                                    name: modelData.name
                                    robot: modelData.handle
                                    size: 18
                                }
                            }
                        }
                        LinkText {
                            visible: threadRow.owner.replies > 0
                            text: threadRow.owner.repliesText
                            strong: true
                            Accessible.name: text + ", " + threadRow.owner.lastReply
                            onClicked: threadRow.owner.linkOpened("/kest?thread=" + threadRow.owner.threadOf)
                        }
                        Text {
                            visible: threadRow.owner.lastReply.length > 0
                            textFormat: Text.PlainText
                            text: threadRow.owner.lastReply
                            color: Theme.muted
                            font.family: Theme.sans
                            font.pixelSize: 12
                        }
                        Orb {
                            visible: threadRow.owner.answeringLine.length > 0
                            state: "working"
                        }
                        Text {
                            visible: threadRow.owner.answeringLine.length > 0
                            Layout.fillWidth: true
                            Layout.minimumWidth: 40
                            Layout.maximumWidth: implicitWidth
                            textFormat: Text.PlainText
                            text: threadRow.owner.answeringLine
                            elide: Text.ElideRight
                            color: Theme.muted
                            font.family: Theme.sans
                            font.pixelSize: 12
                        }
                        LinkText {
                            visible: threadRow.owner.replies > 0
                            text: "Reply in thread"
                            onClicked: threadRow.owner.linkOpened("/kest?thread=" + threadRow.owner.threadOf)
                        }
                    }
                }
            }
        }
    }
}
