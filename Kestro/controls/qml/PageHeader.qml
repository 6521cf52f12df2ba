import QtQuick
import QtQuick.Layouts
import Kestro.Controls

// A page's own heading and the line under it.
ColumnLayout {
    id: header
    property string title
    property string subtitle
    spacing: 6
    Text {
        Layout.fillWidth: true
        text: header.title
        textFormat: Text.PlainText
        wrapMode: Text.WordWrap
        font.family: Theme.display
        font.pixelSize: 26
        font.weight: Font.Bold
        color: Theme.text
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Text {
        visible: text.length > 0
        Layout.fillWidth: true
        text: header.subtitle
        textFormat: Text.PlainText
        wrapMode: Text.WordWrap
        font.family: Theme.sans
        font.pixelSize: 14
        color: Theme.muted
    }
}
