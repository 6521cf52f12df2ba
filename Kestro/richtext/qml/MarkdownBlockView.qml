import QtQuick
import Kestro.Controls
import Kestro.RichText

// One block: a heading, paragraph, code, quote, list, table or rule.
Loader {
    id: view
    property var block: ({})
    property real size: 14
    property bool document: false
    signal linkClicked(string link)

    readonly property var headingSizes: [1.75, 1.45, 1.25, 1.1, 1.0, 0.95]

    sourceComponent: {
        switch (block.kind) {
        case "heading": return heading
        case "paragraph": return paragraph
        case "code": return code
        case "quote": return quote
        case "list": return list
        case "table": return table
        default: return rule
        }
    }

    Component {
        id: heading
        Words {
            html: view.block.html
            family: view.block.level <= 2 ? Theme.display : Theme.sans
            bold: true
            size: view.size * view.headingSizes[view.block.level - 1]
            topPadding: view.document ? 6 : 2
            onLinkClicked: link => view.linkClicked(link)
        }
    }
    Component {
        id: paragraph
        Column {
            spacing: 8
            Words {
                width: view.width
                html: view.block.html
                size: view.size
                onLinkClicked: link => view.linkClicked(link)
            }
            Repeater {
                model: view.block.posts || []
                delegate: PostCard {
                    required property var modelData
                    address: modelData.address
                    user: modelData.user
                    postId: modelData.id
                    onOpened: view.linkClicked(modelData.address)
                }
            }
        }
    }
    Component {
        id: code
        CodeBlock {
            code: view.block.code
            lang: view.block.lang
        }
    }
    Component {
        id: quote
        Row {
            spacing: 12
            Rectangle {
                width: 3
                radius: 1.5
                height: inner.height
                color: Theme.quoteBar
            }
            Loader {
                id: inner
                width: view.width - 15
                // Quotes nest: the stack is loaded by name to allow the recursion.
                Component.onCompleted: setSource("MarkdownStack.qml",
                                                 { blocks: view.block.blocks, size: view.size })
                onLoaded: {
                    item.width = Qt.binding(() => inner.width)
                    item.linkClicked.connect(view.linkClicked)
                }
            }
        }
    }
    Component {
        id: list
        MarkdownList {
            ordered: view.block.ordered
            start: view.block.start
            items: view.block.items
            size: view.size
            onLinkClicked: link => view.linkClicked(link)
        }
    }
    Component {
        id: table
        MarkdownTable {
            head: view.block.head
            rows: view.block.rows
            size: view.size
            onLinkClicked: link => view.linkClicked(link)
        }
    }
    Component {
        id: rule
        Item {
            height: 9
            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                width: parent.width
                height: 1
                color: Theme.line
            }
        }
    }
}
