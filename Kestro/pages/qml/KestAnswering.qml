import QtQuick
import QtQuick.Layouts
import Kestro.Controls
import Kestro.AgentWork

// A teammate answering right now: "<name> is answering", what it does, a
// link to its run, and its trace folded under the line.
ColumnLayout {
    id: row
    required property string name
    required property string handle
    required property string doing
    required property string href
    required property var trace
    signal linkOpened(string href)
    spacing: 2

    RowLayout {
        Layout.fillWidth: true
        spacing: 8
        Avatar {
            name: row.name
            robot: row.handle
            size: 20
        }
        Orb { state: "working" }
        LinkText {
            text: row.name + " is answering"
            size: 13
            strong: true
            color: Theme.text
            Accessible.name: text + (row.doing.length > 0 ? ": " + row.doing : "")
            onClicked: row.linkOpened(row.href)
        }
        Text {
            Layout.fillWidth: true
            text: row.doing
            textFormat: Text.PlainText
            elide: Text.ElideRight
            color: Theme.muted
            font.family: Theme.sans
            font.pixelSize: 13
        }
    }
    TraceView {
        Layout.fillWidth: true
        Layout.leftMargin: 28
        trace: row.trace
        href: row.href
        onLinkOpened: href => row.linkOpened(href)
    }
}
