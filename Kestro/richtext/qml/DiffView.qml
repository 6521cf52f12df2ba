// Components here stay in this file's context: delegates name its ids, and
// take their model data only through required properties.
pragma ComponentBehavior: Bound
import QtQuick
import Kestro.Controls
import Kestro.RichText

// A file's text beside a proposed new text: kept, removed and added lines
// with both line numbers, removals first at each change.
Rectangle {
    id: diff
    property string oldText
    property string newText

    readonly property var rows: CodeView.diff(oldText, newText)
    readonly property bool same: oldText === newText
    implicitHeight: same ? message.implicitHeight + 24 : list.height + 16
    height: implicitHeight
    radius: 8
    color: Theme.well
    border.width: 1
    border.color: Theme.line

    Text {
        id: message
        visible: diff.same
        anchors.centerIn: parent
        textFormat: Text.PlainText
        text: CodeView.noChangeText()
        color: Theme.muted
        font.family: Theme.sans
        font.pixelSize: 13
    }
    Column {
        id: list
        visible: !diff.same
        y: 8
        width: diff.width
        Repeater {
            model: diff.same ? [] : diff.rows
            delegate: Rectangle {
                id: row
                required property var modelData
                width: list.width
                height: 19
                color: modelData.kind === "added" ? Theme.added
                     : modelData.kind === "removed" ? Theme.removed : "transparent"
                Row {
                    spacing: 8
                    leftPadding: 8
                    Repeater {
                        model: [row.modelData.oldNumber, row.modelData.newNumber]
                        delegate: Text {
                            required property var modelData
                            width: 28
                            horizontalAlignment: Text.AlignRight
                            textFormat: Text.PlainText
                            text: modelData > 0 ? modelData : ""
                            color: Theme.muted
                            font.family: Theme.mono
                            font.pixelSize: 12
                        }
                    }
                    Text {
                        textFormat: Text.PlainText
                        text: (row.modelData.kind === "added" ? "+ " : row.modelData.kind === "removed" ? "- " : "  ") + row.modelData.text
                        color: Theme.text
                        font.family: Theme.mono
                        font.pixelSize: 12
                    }
                }
            }
        }
    }
}
