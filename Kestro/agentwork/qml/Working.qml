import QtQuick
import Kestro.Controls
import Kestro.AgentWork

// "Quill is on Draft the launch e-mail · 3 min 20 s": the orb, the label
// and, from `since`, how long it has been going, in the duration wording.
// The time stands still while paused.
Row {
    id: working
    property string label
    property string state: "working"
    property bool paused: false
    // ISO-8601 start time; empty when not known.
    property string since
    property string href
    signal opened(string href)
    spacing: 8

    readonly property real started: since.length > 0 ? Date.parse(since) : NaN
    property real now: Date.now()
    readonly property string elapsed: isNaN(started) ? "" : Duration.text((now - started) / 1000)

    // One tick a second, only while the line shows and the clock runs.
    Timer {
        interval: 1000
        repeat: true
        running: working.visible && !working.paused && !isNaN(working.started)
        onTriggered: working.now = Date.now()
    }

    Orb {
        anchors.verticalCenter: parent.verticalCenter
        state: working.state
        paused: working.paused
    }
    Text {
        anchors.verticalCenter: parent.verticalCenter
        textFormat: Text.PlainText
        text: working.label + (working.elapsed.length > 0 ? " · " + working.elapsed : "")
        color: Theme.muted
        font.family: Theme.sans
        font.pixelSize: 12
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }
    LinkText {
        visible: working.href.length > 0
        anchors.verticalCenter: parent.verticalCenter
        text: "Watch the steps"
        onClicked: working.opened(working.href)
    }
}
