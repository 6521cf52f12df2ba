import QtQuick
import Kestro.Controls

// The sign that a teammate is at work: a dot that breathes while it works,
// stands still while paused or when motion is reduced, and shows a waiting
// or failed state in colour.
Item {
    id: orb
    // "working", "waiting", "failed" or "idle".
    property string state: "working"
    property bool paused: false
    property int size: 10
    implicitWidth: size
    implicitHeight: size
    readonly property color tint: state === "failed" ? Theme.danger
                                : state === "waiting" ? Theme.busy
                                : state === "idle" ? Theme.muted : Theme.accent

    Rectangle {
        id: halo
        anchors.centerIn: parent
        width: orb.size * 1.8
        height: width
        radius: width / 2
        color: orb.tint
        opacity: 0
    }
    SequentialAnimation {
        running: orb.state === "working" && !orb.paused && !Theme.reduceMotion && orb.visible
        loops: Animation.Infinite
        onStopped: halo.opacity = 0
        NumberAnimation { target: halo; property: "opacity"; from: 0; to: 0.28; duration: 700; easing.type: Easing.OutQuad }
        NumberAnimation { target: halo; property: "opacity"; from: 0.28; to: 0; duration: 900; easing.type: Easing.InQuad }
    }
    Rectangle {
        anchors.centerIn: parent
        width: orb.size
        height: width
        radius: width / 2
        color: orb.tint
    }
}
