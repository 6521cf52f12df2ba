// Delegates name this file's ids and take their data through required
// properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.AgentWork

// A checklist of named steps with their states, for work that is not a run
// (a task's flow, a setup). Each step: key, label, state ("pending",
// "running", "waiting", "done", "failed"), ai, since (ISO-8601), note,
// meta, action (a button's words), details (text that opens). A step whose
// state moved since the list first showed it is drawn as just changed.
ColumnLayout {
    id: list
    property var steps: []
    property string label
    // The first state seen for each key, and the keys the user opened.
    property var firstSeen: ({})
    property var openKeys: ({})
    signal action(string key)
    spacing: 2
    Accessible.role: Accessible.List
    Accessible.name: label

    readonly property var stateWords: ({
        "pending": "not started", "running": "in progress", "waiting": "waiting",
        "done": "Done", "failed": "Failed"
    })
    readonly property var stateIcons: ({
        "pending": "circle-dashed", "running": "loader-circle", "waiting": "hand",
        "done": "check", "failed": "circle-x"
    })

    onStepsChanged: {
        const seen = Object.assign({}, list.firstSeen)
        for (const step of list.steps)
            if (!(step.key in seen))
                seen[step.key] = step.state
        list.firstSeen = seen
    }
    function toggle(key) {
        const keys = Object.assign({}, list.openKeys)
        keys[key] = !keys[key]
        list.openKeys = keys
    }

    Repeater {
        model: list.steps
        delegate: ColumnLayout {
            id: step
            required property var modelData
            readonly property bool changed: list.firstSeen[step.modelData.key] !== undefined
                                            && list.firstSeen[step.modelData.key] !== step.modelData.state
            readonly property bool opens: !!step.modelData.details
            readonly property bool opened: !!list.openKeys[step.modelData.key]
            readonly property real started: step.modelData.since ? Date.parse(step.modelData.since) : NaN
            property real now: Date.now()
            Layout.fillWidth: true
            spacing: 2

            Timer {
                interval: 1000
                repeat: true
                running: step.visible && step.modelData.state === "running" && !isNaN(step.started)
                onTriggered: step.now = Date.now()
            }

            Rectangle {
                Layout.fillWidth: true
                implicitHeight: 30
                radius: 6
                color: step.changed ? Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.08) : "transparent"

                AbstractButton {
                    id: opener
                    anchors.fill: parent
                    enabled: step.opens
                    focusPolicy: step.opens ? Qt.StrongFocus : Qt.NoFocus
                    Accessible.role: Accessible.ListItem
                    Accessible.name: step.modelData.label + ", " + list.stateWords[step.modelData.state]
                    Accessible.description: step.opens ? (step.opened ? "expanded" : "collapsed") : ""
                    Accessible.onPressAction: opener.clicked()
                    Keys.onReturnPressed: opener.clicked()
                    onClicked: list.toggle(step.modelData.key)
                    background: Rectangle {
                        radius: 6
                        color: "transparent"
                        border.width: opener.visualFocus ? 2 : 0
                        border.color: Theme.accent
                    }
                }
                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: 6
                    anchors.rightMargin: 6
                    spacing: 8
                    SpinningIcon {
                        id: mark
                        name: list.stateIcons[step.modelData.state] || "circle-dashed"
                        size: 14
                        color: step.modelData.state === "done" ? Theme.good
                             : step.modelData.state === "failed" ? Theme.danger
                             : step.modelData.state === "waiting" ? Theme.busy
                             : step.modelData.state === "running" ? Theme.accent : Theme.muted
                        spinning: step.modelData.state === "running"
                        ToolTip.visible: markHover.hovered
                        ToolTip.text: list.stateWords[step.modelData.state] || ""
                        HoverHandler { id: markHover }
                    }
                    Icon {
                        visible: !!step.modelData.ai
                        name: "sparkles"
                        size: 12
                        color: Theme.accent
                    }
                    Text {
                        Layout.fillWidth: true
                        text: step.modelData.label + (step.modelData.meta ? " (" + step.modelData.meta + ")" : "")
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        color: step.modelData.state === "pending" ? Theme.muted : Theme.text
                        font.family: Theme.sans
                        font.pixelSize: 13
                    }
                    Text {
                        visible: text.length > 0
                        textFormat: Text.PlainText
                        text: isNaN(step.started) ? "" : Duration.text((step.now - step.started) / 1000)
                        color: Theme.muted
                        font.family: Theme.sans
                        font.pixelSize: 12
                    }
                    PrimaryButton {
                        visible: !!step.modelData.action
                        text: step.modelData.action || ""
                        quiet: true
                        onClicked: list.action(step.modelData.key)
                    }
                    Icon {
                        visible: step.opens
                        name: "chevron-down"
                        size: 12
                        color: Theme.muted
                        rotation: step.opened ? 0 : -90
                    }
                }
            }
            Text {
                visible: !!step.modelData.note
                Layout.fillWidth: true
                Layout.leftMargin: 28
                text: step.modelData.note || ""
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                color: Theme.muted
                font.family: Theme.sans
                font.pixelSize: 12
            }
            Text {
                visible: step.opened
                Layout.fillWidth: true
                Layout.leftMargin: 28
                Layout.bottomMargin: 4
                text: step.modelData.details || ""
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                color: Theme.text
                font.family: Theme.sans
                font.pixelSize: 12
            }
        }
    }
}
