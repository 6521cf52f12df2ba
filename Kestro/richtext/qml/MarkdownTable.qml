// Components here stay in this file's context: delegates name its ids, and
// take their model data only through required properties.
pragma ComponentBehavior: Bound
import QtQuick
import Kestro.Controls
import Kestro.RichText

// A pipe table: a filled head row, rules between rows, fills and rules in
// black or white at 8% opacity.
Rectangle {
    id: table
    property var head: []
    property var rows: []
    property real size: 14
    signal linkClicked(string link)

    readonly property real cellWidth: head.length > 0 ? width / head.length : width
    implicitHeight: body.height
    height: implicitHeight
    radius: 6
    color: "transparent"
    border.width: 1
    border.color: Theme.line
    clip: true

    Column {
        id: body
        width: table.width
        Repeater {
            model: [table.head, ...table.rows]
            delegate: Rectangle {
                id: tableRow
                required property var modelData
                required property int index
                width: table.width
                height: cells.height
                color: index === 0 ? Theme.line : "transparent"
                Row {
                    id: cells
                    Repeater {
                        model: tableRow.modelData
                        delegate: Words {
                            required property var modelData
                            width: table.cellWidth
                            padding: 8
                            html: modelData
                            size: table.size * 0.93
                            bold: tableRow.index === 0
                            onLinkClicked: link => table.linkClicked(link)
                        }
                    }
                }
                Rectangle {
                    visible: tableRow.index > 0
                    width: parent.width
                    height: 1
                    color: Theme.line
                }
            }
        }
    }
}
