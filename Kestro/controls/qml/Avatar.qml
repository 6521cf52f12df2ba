import QtQuick
import Kestro.Controls

// A person's round initial, or a teammate's robot face (drawn from its
// handle), with an optional status dot.
Rectangle {
    id: avatar
    property string name
    // A teammate's handle: its face instead of the initial.
    property string robot
    property string status: ""
    property int size: 22
    width: size
    height: size
    radius: size / 2
    // A stable hue per name, so a teammate keeps their colour.
    readonly property real hue: {
        var h = 0
        for (var i = 0; i < name.length; ++i)
            h = (h * 31 + name.charCodeAt(i)) % 360
        return h / 360
    }
    color: robot.length > 0 ? "transparent" : Qt.hsla(hue, 0.55, Theme.dark ? 0.38 : 0.62, 1)
    Accessible.role: Accessible.Graphic
    Accessible.name: name
    Image {
        visible: avatar.robot.length > 0
        anchors.fill: parent
        source: visible ? "image://robot/" + avatar.robot + (Theme.dark ? "?dark" : "") : ""
        sourceSize.width: avatar.size * 2
        sourceSize.height: avatar.size * 2
        smooth: true
        // Drawn off the GUI thread: a long list of faces opens without
        // waiting for them.
        asynchronous: true
    }
    Text {
        visible: avatar.robot.length === 0
        anchors.centerIn: parent
        textFormat: Text.PlainText
        text: avatar.name.length > 0 ? avatar.name.charAt(0).toUpperCase() : "?"
        color: "white"
        font.family: "Plus Jakarta Sans"
        font.weight: Font.Bold
        font.pixelSize: Math.round(avatar.size * 0.48)
    }
    Rectangle {
        visible: avatar.status.length > 0
        width: Math.max(7, avatar.size * 0.36)
        height: width
        radius: width / 2
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: -1
        border.width: 2
        border.color: Theme.sidebar
        color: avatar.status === "working" || avatar.status === "running" ? Theme.busy
             : avatar.status === "idle" || avatar.status === "online" || avatar.status === "ready" ? Theme.good
             : Theme.muted
    }
}
