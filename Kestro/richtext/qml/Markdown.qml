import QtQuick
import Kestro.Controls
import Kestro.RichText

// The one Markdown view: parses `text` into blocks and lays them out.
// Links: "#..." go to `anchorClicked` (citations), app paths to
// `pathClicked` (the router), everything else to the system.
Item {
    id: root
    property string text
    property bool document: false
    property int citations: 0
    property bool images: false
    property bool embeds: false
    property real size: 14
    signal anchorClicked(string anchor)
    signal pathClicked(string path)

    // Read from the data, not from `visible`, which a hidden parent turns off.
    readonly property bool flowsAlone: model.soleHtml.length > 0
    implicitHeight: flowsAlone ? sole.implicitHeight : stack.implicitHeight
    height: implicitHeight

    function open(link: string) {
        switch (model.linkTarget(link)) {
        case "anchor": root.anchorClicked(link); break
        case "app": root.pathClicked(model.appPath(link)); break
        default: Qt.openUrlExternally(link)
        }
    }

    MarkdownDocument {
        id: model
        text: root.text
        citations: root.citations
        images: root.images
        embeds: root.embeds
        size: root.document ? root.size + 1 : root.size
        document: root.document
        linkColor: Theme.link
    }
    // Most texts are one run of flowing text: one text item.
    Words {
        id: sole
        visible: root.flowsAlone
        width: root.width
        html: model.soleHtml
        size: model.size
        onLinkClicked: link => root.open(link)
    }
    MarkdownStack {
        id: stack
        visible: !root.flowsAlone
        width: root.width
        blocks: root.flowsAlone ? [] : model.blocks
        size: model.size
        document: root.document
        onLinkClicked: link => root.open(link)
    }
}
