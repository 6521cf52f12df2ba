import QtQuick
import QtQuick.Layouts
import Kestro.Controls

// What a list shows when it has nothing: an icon, a line, and what to do.
ColumnLayout {
    id: empty
    property string glyph: "inbox"
    property string title
    property string text
    spacing: 6
    Accessible.role: Accessible.StaticText
    Accessible.name: title + (text.length > 0 ? " " + text : "")
    Icon { Layout.alignment: Qt.AlignHCenter; name: empty.glyph; size: 24; color: Theme.muted }
    Text {
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        text: empty.title
        textFormat: Text.PlainText
        font.family: Theme.sans
        font.pixelSize: 14
        font.weight: Font.Medium
        color: Theme.text
    }
    Text {
        visible: text.length > 0
        Layout.fillWidth: true
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.WordWrap
        text: empty.text
        textFormat: Text.PlainText
        font.family: Theme.sans
        font.pixelSize: 13
        color: Theme.muted
    }
}
