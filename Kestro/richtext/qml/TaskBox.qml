import QtQuick
import Kestro.Controls

// The small rounded box of a task item, ticked when done.
Rectangle {
    property bool done: false
    width: 14
    height: 14
    radius: 4
    color: done ? Theme.link : "transparent"
    border.width: done ? 0 : 1.5
    border.color: Theme.muted
    Accessible.role: Accessible.CheckBox
    Accessible.name: done ? "Done" : "Not done"
    Accessible.checked: done

    Image {
        anchors.centerIn: parent
        visible: parent.done
        width: 11
        height: 11
        sourceSize.width: 22
        sourceSize.height: 22
        source: "image://icon/check?color=%23ffffff"
    }
}
