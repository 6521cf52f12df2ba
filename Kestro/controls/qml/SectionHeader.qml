import QtQuick
import QtQuick.Layouts
import Kestro.Controls

// A section's heading inside a page, with an optional count beside it.
RowLayout {
    id: header
    property string text
    property int count: -1
    spacing: 8
    Accessible.role: Accessible.Heading
    Accessible.name: text
    Text {
        text: header.text
        textFormat: Text.PlainText
        font.family: Theme.display
        font.pixelSize: 14
        font.weight: Font.Bold
        color: Theme.text
    }
    Text {
        visible: header.count >= 0
        textFormat: Text.PlainText
        text: header.count
        font.family: Theme.sans
        font.pixelSize: 13
        color: Theme.muted
    }
    Item { Layout.fillWidth: true }
}
