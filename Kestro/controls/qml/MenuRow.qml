import QtQuick
import QtQuick.Controls.Basic
import Kestro.Controls

// A menu entry that shows its keyboard chord on the right, as desktop menus do.
MenuItem {
    id: item
    property string chord
    property string glyph
    readonly property color ink: Theme.text
    readonly property color faint: Theme.muted
    readonly property color pick: Theme.selected
    implicitHeight: 32
    implicitWidth: 280
    // A screen reader's "press" picks the entry, as a click does.
    Accessible.onPressAction: triggered()
    font.family: "Geist"
    font.pixelSize: 13
    // The chord's width, measured out here: the title stops where the chord
    // starts, and an id inside contentItem would make its deferred
    // assignment immediate. The chord takes its font from here too.
    TextMetrics {
        id: chordMetrics
        font.family: "Geist"
        font.pixelSize: 12
        text: item.chord
    }
    contentItem: Item {
        Icon {
            anchors.left: parent.left
            anchors.verticalCenter: parent.verticalCenter
            name: item.checked ? "check" : item.glyph
            visible: name.length > 0
            size: 15
            color: item.faint
        }
        Text {
            anchors.left: parent.left
            anchors.leftMargin: 24
            anchors.right: parent.right
            anchors.rightMargin: chordMetrics.advanceWidth
            anchors.verticalCenter: parent.verticalCenter
            textFormat: Text.PlainText
            text: item.text
            font: item.font
            elide: Text.ElideRight
            color: item.enabled ? item.ink : item.faint
        }
        Text {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            textFormat: Text.PlainText
            text: item.chord
            font: chordMetrics.font
            color: item.faint
        }
    }
    indicator: null
    arrow: Icon {
        visible: item.subMenu !== null
        x: item.width - width - 8
        y: (item.height - height) / 2
        name: "chevron-right"
        size: 14
        color: item.faint
    }
    background: Rectangle {
        radius: 6
        color: item.highlighted ? item.pick : "transparent"
    }
}
