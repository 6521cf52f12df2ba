import QtQuick
import Kestro.Controls

// One highlight that moves to the active row rather than one per row, so
// the eye follows it; it jumps when motion is reduced.
Rectangle {
    id: glide
    // Where the active row is, in the parent's coordinates.
    property real rowY: 0
    y: rowY
    radius: 7
    color: Theme.selected
    Behavior on y {
        enabled: !Theme.reduceMotion
        NumberAnimation { duration: 120; easing.type: Easing.OutCubic }
    }
}
