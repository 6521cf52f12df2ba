import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls

// One row of a list that opens something: an icon or face, a title with a
// line under it, and a note on the right. Click, Return, Enter or Space
// opens it; the keyboard focus shows as a ring.
AbstractButton {
    id: row
    property string glyph
    property color glyphColor: Theme.muted
    property string face // a person's or teammate's name: their initial
    property string title
    property string subtitle
    property string note
    property string chip
    // The content row is as tall as its text column whenever that clears the
    // 44 floor, so measuring the row keeps contentItem free of ids (an id
    // there would make its deferred assignment immediate).
    implicitHeight: Math.max(44, row.contentItem.implicitHeight + 16)
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Link
    Accessible.name: title
    Accessible.description: subtitle
    // A screen reader's "press" acts as a click.
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: row.clicked()
    Keys.onEnterPressed: row.clicked()

    background: Rectangle {
        radius: 8
        color: row.down ? Theme.selected : (row.hovered ? Theme.hover : "transparent")
        border.width: row.visualFocus ? 2 : 0
        border.color: Theme.accent
    }
    contentItem: RowLayout {
        spacing: 12
        Item {
            Layout.preferredWidth: 26
            Layout.preferredHeight: 26
            Layout.alignment: Qt.AlignTop
            Layout.topMargin: 1
            Avatar {
                visible: row.face.length > 0
                anchors.centerIn: parent
                name: row.face
                size: 26
            }
            Icon {
                visible: row.face.length === 0 && row.glyph.length > 0
                anchors.centerIn: parent
                name: row.glyph
                size: 17
                color: row.glyphColor
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2
            RowLayout {
                Layout.fillWidth: true
                spacing: 8
                Text {
                    visible: row.chip.length > 0
                    text: row.chip
                    textFormat: Text.PlainText
                    font.family: Theme.sans
                    font.pixelSize: 11
                    font.weight: Font.Medium
                    color: Theme.accent
                }
                Text {
                    Layout.fillWidth: true
                    text: row.title
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                    font.family: Theme.sans
                    font.pixelSize: 14
                    font.weight: Font.Medium
                    color: Theme.text
                }
            }
            Text {
                visible: text.length > 0
                Layout.fillWidth: true
                text: row.subtitle
                textFormat: Text.PlainText
                wrapMode: Text.WordWrap
                maximumLineCount: 2
                elide: Text.ElideRight
                font.family: Theme.sans
                font.pixelSize: 13
                color: Theme.muted
            }
        }
        Text {
            visible: text.length > 0
            Layout.alignment: Qt.AlignTop
            text: row.note
            textFormat: Text.PlainText
            font.family: Theme.sans
            font.pixelSize: 12
            color: Theme.muted
        }
    }
}
