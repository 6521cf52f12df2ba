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

    Pulsing {
        id: breath
        active: orb.state === "working" && !orb.paused && !Theme.reduceMotion && orb.visible
    }
    // Breathes on the shared slow clock: 13 steps in and out.
    Rectangle {
        id: halo
        anchors.centerIn: parent
        width: orb.size * 1.8
        height: width
        radius: width / 2
        color: orb.tint
        opacity: breath.active ? 0.28 * Math.sin(Math.PI * (Pulse.tick % 13) / 13) : 0
    }
    Rectangle {
        anchors.centerIn: parent
        width: orb.size
        height: width
        radius: width / 2
        color: orb.tint
    }
}
