// Components here stay in this file's context: delegates name its ids, and
// take their model data only through required properties.
pragma ComponentBehavior: Bound
import QtQuick
import Kestro.Controls
import Kestro.RichText

// A bullet or ordered list. Ordered numbers count from `start`, end in "."
// whatever delimiter the source used, and align right in their column.
Column {
    id: list
    property bool ordered: false
    property int start: 1
    property var items: []
    property real size: 14
    signal linkClicked(string link)

    spacing: 4

    TextMetrics {
        id: widest
        font.family: Theme.sans
        font.pixelSize: list.size
        text: (list.start + list.items.length - 1) + "."
    }
    readonly property real markerWidth: ordered ? widest.advanceWidth : list.size * 0.7

    Repeater {
        model: list.items
        delegate: Row {
            id: row
            required property var modelData
            required property int index
            spacing: 8
            width: list.width

            Item {
                width: list.markerWidth
                height: list.size * 1.45
                Text {
                    visible: row.modelData.task === undefined || row.modelData.task === null
                    anchors.right: parent.right
                    anchors.baseline: parent.top
                    anchors.baselineOffset: list.size * 1.15
                    color: Theme.muted
                    font.family: Theme.sans
                    font.pixelSize: list.size
                    textFormat: Text.PlainText
                    text: list.ordered ? (list.start + row.index) + "." : "•"
                }
                TaskBox {
                    visible: row.modelData.task === true || row.modelData.task === false
                    done: row.modelData.task === true
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                }
            }
            // An item of plain text is one text item; one that holds code or
            // a quote stacks its blocks (loaded by name, for the recursion).
            Words {
                id: itemWords
                visible: row.modelData.html !== ""
                width: list.width - list.markerWidth - 8
                html: row.modelData.html
                size: list.size
                onLinkClicked: link => list.linkClicked(link)
            }
            Loader {
                id: content
                visible: !itemWords.visible
                width: list.width - list.markerWidth - 8
                Component.onCompleted: if (row.modelData.html === "")
                    setSource("MarkdownStack.qml", { blocks: row.modelData.blocks, size: list.size, spacing: 4 })
                onLoaded: {
                    item.width = Qt.binding(() => content.width)
                    item.linkClicked.connect(list.linkClicked)
                }
            }
        }
    }
}
