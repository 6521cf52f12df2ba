import QtQuick

// A pipe table: a filled head row, rules between rows, fills and rules in
// black or white at 8% opacity.
Rectangle {
    id: table
    required property var theme
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
    border.color: theme.line
    clip: true

    Column {
        id: body
        width: table.width
        Repeater {
            model: [table.head].concat(table.rows)
            delegate: Rectangle {
                id: tableRow
                required property var modelData
                required property int index
                width: table.width
                height: cells.height
                color: index === 0 ? table.theme.line : "transparent"
                Row {
                    id: cells
                    Repeater {
                        model: tableRow.modelData
                        delegate: Words {
                            required property var modelData
                            theme: table.theme
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
                    color: table.theme.line
                }
            }
        }
    }
}
