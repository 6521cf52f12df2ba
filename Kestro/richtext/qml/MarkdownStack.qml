// Components here stay in this file's context: delegates name its ids, and
// take their model data only through required properties.
pragma ComponentBehavior: Bound
import QtQuick
import Kestro.RichText

// Blocks laid out one under another.
Column {
    id: stack
    property var blocks: []
    property real size: 14
    property bool document: false
    signal linkClicked(string link)

    spacing: document ? 14 : 10

    Repeater {
        model: stack.blocks
        delegate: MarkdownBlockView {
            required property var modelData
            width: stack.width
            block: modelData
            size: stack.size
            document: stack.document
            onLinkClicked: link => stack.linkClicked(link)
        }
    }
}
