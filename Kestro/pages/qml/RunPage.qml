// Delegates name this file's ids and take their data through required
// properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.AgentWork
import Kestro.RichText
import Kestro.Pages

// A teammate's run ("/kest/<handle>/runs/<id>"): its answer, its sources
// and draft, every step it took and each round of calls, live while it works.
Item {
    id: page
    property alias router: run.router
    property alias route: run.route
    readonly property string title: run.title
    // The header's spinner is for the first load: timed reloads stay quiet.
    readonly property bool loading: run.loader.loading && run.loader.state !== Loaded.Content
    objectName: "runPage"

    RunModel {
        id: run
        Component.onCompleted: run.start()
    }

    Bones {
        visible: run.loader.state === Loaded.Bones
        x: content.x
        y: 40
        width: content.width
    }
    PageFailure {
        anchors.fill: parent
        visible: run.loader.state === Loaded.Failed
        message: run.loader.error
        onRetry: run.loader.reload()
    }

    Flickable {
        anchors.fill: parent
        visible: run.loader.state === Loaded.Content
        contentHeight: content.implicitHeight + 80
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ScrollBar {}

        ColumnLayout {
            id: content
            width: Math.min(760, page.width - 64)
            x: (page.width - width) / 2
            y: 32
            spacing: 12

            RowLayout {
                Layout.fillWidth: true
                spacing: 12
                Avatar {
                    name: run.agentName
                    robot: run.handle
                    size: 40
                }
                PageHeader {
                    Layout.fillWidth: true
                    title: run.title
                    subtitle: run.agentTitle
                }
                PrimaryButton {
                    quiet: true
                    text: "Chat with " + run.agentName
                    visible: run.handle.length > 0
                    onClicked: run.open("/kest/" + run.handle + "/chat")
                }
            }

            Working {
                visible: run.inProgress
                label: run.agentName + " is working"
                since: run.started
            }
            LinkText {
                visible: run.waiting > 0
                text: (run.waiting === 1 ? "An approval waits for you" : run.waiting + " approvals wait for you") + " in Needs you"
                size: 13
                onClicked: run.open("/activity?view=you")
            }

            SectionHeader {
                visible: run.reply.length > 0
                Layout.fillWidth: true
                text: "Answer"
            }
            Markdown {
                visible: run.reply.length > 0
                Layout.fillWidth: true
                text: run.reply
                citations: run.cites.length
                onPathClicked: path => run.open(path)
            }
            Flow {
                visible: run.cites.length > 0
                Layout.fillWidth: true
                spacing: 4
                Repeater {
                    model: run.cites
                    delegate: Rectangle {
                        required property var modelData
                        required property int index
                        implicitWidth: citeText.implicitWidth + 14
                        implicitHeight: 22
                        radius: 11
                        color: Theme.well
                        border.color: Theme.border
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

            SectionHeader {
                visible: run.draftText.length > 0
                Layout.fillWidth: true
                Layout.topMargin: 8
                text: run.draftTitle.length > 0 ? "Draft: " + run.draftTitle : "Draft"
            }
            Rectangle {
                visible: run.draftText.length > 0
                Layout.fillWidth: true
                implicitHeight: draft.implicitHeight + 24
                radius: 8
                color: Theme.well
                border.color: Theme.border
                Markdown {
                    id: draft
                    x: 12
                    y: 12
                    width: parent.width - 24
                    text: run.draftText
                }
            }

            SectionHeader {
                Layout.fillWidth: true
                Layout.topMargin: 8
                text: "Steps"
            }
            TraceView {
                Layout.fillWidth: true
                trace: run.trace
                orb: true
                open: true
            }

            SectionHeader {
                visible: run.roundCount > 0
                Layout.fillWidth: true
                Layout.topMargin: 8
                text: "Rounds"
                count: run.roundCount
            }
            Repeater {
                model: run.calls
                delegate: ColumnLayout {
                    id: call
                    required property string heading
                    required property string detail
                    required property bool hasCall
                    required property string icon
                    required property string label
                    required property string status
                    required property string markIcon
                    required property string markWords
                    required property bool busy
                    required property string why
                    required property string input
                    required property bool inputJson
                    required property string result
                    required property bool failed
                    required property string approval
                    Layout.fillWidth: true
                    spacing: 0
                    RowLayout {
                        visible: call.heading.length > 0
                        Layout.topMargin: 6
                        spacing: 8
                        Text {
                            textFormat: Text.PlainText
                            text: call.heading
                            color: Theme.text
                            font.family: Theme.sans
                            font.pixelSize: 13
                            font.weight: Font.DemiBold
                            Accessible.role: Accessible.Heading
                            Accessible.name: text
                        }
                        Text {
                            text: call.detail
                            textFormat: Text.PlainText
                            color: Theme.muted
                            font.family: Theme.sans
                            font.pixelSize: 12
                        }
                    }
                    TraceStepRow {
                        visible: call.hasCall
                        Layout.fillWidth: true
                        fold: false
                        icon: call.icon
                        label: call.label
                        status: call.status
                        markIcon: call.markIcon
                        markWords: call.markWords
                        busy: call.busy
                        chipText: ""
                        chipHost: ""
                        chipUrl: ""
                        why: call.why
                        input: call.input
                        inputJson: call.inputJson
                        result: call.result
                        failed: call.failed
                        pages: []
                    }
                    LinkText {
                        visible: call.approval.length > 0
                        Layout.leftMargin: 28
                        text: "Decide in Needs you"
                        onClicked: run.open("/activity?view=you")
                    }
                }
            }
        }
    }
}
