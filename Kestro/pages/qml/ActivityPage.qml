// Components here stay in this file's context: delegates name its ids, and
// take their model data only through required properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.AgentWork
import Kestro.Pages
import Kestro.Visuals

// Home ("/activity"): a greeting, what waits for the user, the teammates at
// work and the kest's day. Needs you ("/activity?view=you"): everything that
// waits, oldest first. One page for both, so switching is instant.
Item {
    id: page
    property alias router: activity.router
    property alias route: activity.route
    readonly property string title: activity.needsYou ? "Needs you" : "Home"
    // The header's spinner is for the first load: timed reloads stay quiet.
    readonly property bool loading: activity.loader.loading && activity.loader.state !== Loaded.Content
    objectName: "activityPage"

    ActivityModel {
        id: activity
        Component.onCompleted: activity.start()
    }

    // Home's sky; Needs you is a work list and keeps the plain ground.
    Sky {
        anchors.fill: parent
        visible: !activity.needsYou
    }

    Bones {
        visible: activity.loader.state === Loaded.Bones
        x: content.x
        y: 40
        width: content.width
    }
    PageFailure {
        anchors.fill: parent
        visible: activity.loader.state === Loaded.Failed
        message: activity.loader.error
        onRetry: activity.loader.reload()
    }

    Flickable {
        id: flick
        objectName: "activityScroll"
        anchors.fill: parent
        visible: activity.loader.state === Loaded.Content
        contentHeight: content.implicitHeight + 80
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ScrollBar {}

        ColumnLayout {
            id: content
            width: Math.min(760, page.width - 64)
            x: (page.width - width) / 2
            y: 40
            spacing: 10

            PageHeader {
                Layout.fillWidth: true
                Layout.bottomMargin: 8
                title: activity.needsYou ? "Needs you" : activity.greeting
                subtitle: activity.needsYou ? activity.waitingLine : activity.summary
            }

            // Home: the kest at a glance.
            Flow {
                visible: !activity.needsYou && activity.kest.count > 0
                Layout.fillWidth: true
                Layout.bottomMargin: 12
                spacing: 6
                Repeater {
                    model: activity.kest
                    delegate: AbstractButton {
                        id: mate
                        required property var model
                        // The row sits 10 in from either side; an id inside
                        // contentItem would make its deferred assignment immediate.
                        implicitWidth: mate.contentItem.implicitWidth + 20
                        implicitHeight: 34
                        horizontalPadding: 10
                        hoverEnabled: true
                        focusPolicy: Qt.StrongFocus
                        Accessible.role: Accessible.Link
                        Accessible.name: model.name + ", " + model.title
                        Keys.onReturnPressed: clicked()
                        Keys.onEnterPressed: clicked()
                        onClicked: activity.open(model.href)
                        ToolTip.visible: hovered
                        ToolTip.delay: 500
                        ToolTip.text: model.title
                        background: Rectangle {
                            radius: 17
                            color: mate.hovered ? Theme.hover : "transparent"
                            border.color: mate.visualFocus ? Theme.accent : Theme.border
                            border.width: mate.visualFocus ? 2 : 1
                        }
                        contentItem: RowLayout {
                            spacing: 7
                            Avatar { name: mate.model.name; status: mate.model.status; size: 22 }
                            Text {
                                text: mate.model.name
                                textFormat: Text.PlainText
                                font.family: Theme.sans
                                font.pixelSize: 13
                                color: Theme.text
                            }
                        }
                    }
                }
            }

            SectionHeader {
                visible: !activity.needsYou
                Layout.fillWidth: true
                text: "Waiting for you"
                count: activity.waiting.count
            }
            Repeater {
                model: activity.waiting
                delegate: ListRow {
                    required property var model
                    // Home shows the first few; Needs you shows them all.
                    visible: activity.needsYou || model.index < 3
                    Layout.fillWidth: true
                    chip: model.kindLabel
                    face: model.byName
                    title: model.title
                    subtitle: model.text
                    note: model.when
                    onClicked: activity.open(model.href)
                }
            }
            PrimaryButton {
                visible: !activity.needsYou && activity.waiting.count > 3
                quiet: true
                text: "See all " + activity.waiting.count + " in Needs you"
                onClicked: activity.open("/activity?view=you")
            }
            EmptyState {
                visible: activity.waiting.count === 0
                Layout.fillWidth: true
                Layout.topMargin: activity.needsYou ? 60 : 8
                Layout.bottomMargin: 8
                glyph: "check-check"
                title: "Nothing waits for you."
                text: activity.needsYou ? "When a teammate needs an approval, an answer or a review, it shows here." : ""
            }

            SectionHeader {
                visible: !activity.needsYou && activity.running.count > 0
                Layout.fillWidth: true
                Layout.topMargin: 16
                text: "Working now"
                count: activity.running.count
            }
            Repeater {
                model: activity.needsYou ? null : activity.running
                delegate: Column {
                    id: runningRow
                    required property var model
                    Layout.fillWidth: true
                    ListRow {
                        width: parent.width
                        face: runningRow.model.name
                        title: runningRow.model.name + " is on " + runningRow.model.title
                        onClicked: activity.open(runningRow.model.href)
                    }
                    // What it is doing now, and for how long.
                    Working {
                        x: 44
                        label: runningRow.model.doing.length > 0 ? runningRow.model.doing : "Working"
                        since: runningRow.model.startedAt
                    }
                }
            }

            SectionHeader {
                visible: !activity.needsYou
                Layout.fillWidth: true
                Layout.topMargin: 16
                text: "Today"
            }
            Repeater {
                model: activity.needsYou ? null : activity.today
                delegate: ListRow {
                    required property var model
                    Layout.fillWidth: true
                    glyph: model.icon
                    glyphColor: model.kind === "failed" ? Theme.danger : (model.kind === "run" ? Theme.good : Theme.muted)
                    title: model.name + " " + model.verb + ": " + model.title
                    subtitle: model.text
                    note: model.when
                    onClicked: activity.open(model.href)
                }
            }
            EmptyState {
                visible: !activity.needsYou && activity.today.count === 0
                Layout.fillWidth: true
                glyph: "sparkles"
                title: "Nothing done yet today."
                text: "Ask the kest for something in the Kest chat, and its work shows here."
            }

            SectionHeader {
                visible: !activity.needsYou && activity.routines.count > 0
                Layout.fillWidth: true
                Layout.topMargin: 16
                text: "Routines"
            }
            Repeater {
                model: activity.needsYou ? null : activity.routines
                delegate: ListRow {
                    required property var model
                    Layout.fillWidth: true
                    glyph: "refresh-cw"
                    title: model.name
                    subtitle: model.schedule + (model.paused ? " · paused" : "")
                    onClicked: activity.open(model.href)
                }
            }
        }
    }
}
