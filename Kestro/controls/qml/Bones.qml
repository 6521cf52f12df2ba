import QtQuick
import QtQuick.Layouts
import Kestro.Controls

// The placeholder a page shows before its first answer: a heading's bone
// and a few rows', breathing gently.
ColumnLayout {
    id: bones
    property int rows: 5
    spacing: 14
    Accessible.role: Accessible.StaticText
    Accessible.name: "Loading"
    opacity: 0.75
    // Started with the item rather than as a value source on opacity, so the
    // starting 0.75 above stays a plain value the pulse takes over from. It
    // breathes only while it shows (and not under reduced motion): a hidden
    // pulse would keep the window drawing frames, and the machine busy.
    SequentialAnimation {
        running: bones.visible && !Theme.reduceMotion
        loops: Animation.Infinite
        NumberAnimation { target: bones; property: "opacity"; to: 1; duration: 700; easing.type: Easing.InOutQuad }
        NumberAnimation { target: bones; property: "opacity"; to: 0.55; duration: 700; easing.type: Easing.InOutQuad }
    }
    Rectangle { Layout.preferredWidth: 280; Layout.preferredHeight: 26; radius: 6; color: Theme.bone }
    Rectangle { Layout.preferredWidth: 200; Layout.preferredHeight: 14; radius: 4; color: Theme.bone }
    Item { Layout.preferredHeight: 10 }
    Repeater {
        model: bones.rows
        RowLayout {
            id: bone
            required property int index
            spacing: 12
            Rectangle { Layout.preferredWidth: 26; Layout.preferredHeight: 26; radius: 13; color: Theme.bone }
            ColumnLayout {
                spacing: 6
                Rectangle { Layout.preferredWidth: 220 + (bone.index % 3) * 60; Layout.preferredHeight: 12; radius: 4; color: Theme.bone }
                Rectangle { Layout.preferredWidth: 140 + (bone.index % 2) * 90; Layout.preferredHeight: 10; radius: 4; color: Theme.bone }
            }
        }
    }
}
