import QtQuick
import Kestro.Controls
import Kestro.RichText

// One block: a run of flowing text (headings, paragraphs and plain lists
// together), or a paragraph with embedded posts, code, a quote, a list, a
// table or a rule.
Loader {
    id: view
    property var block: ({})
    property real size: 14
    property bool document: false
    signal linkClicked(string link)

    sourceComponent: {
        switch (block.kind) {
        case "flow": return flow
        case "paragraph": return paragraph
        case "code": return code
        case "quote": return quote
        case "list": return list
        case "table": return table
        default: return rule
        }
    }

    // Each kind's item reaches this view through its parent (the loader
    // parents what it loads to itself, before any binding runs): ids outside
    // a component are out of the linter's sight, and binding these
    // components to this file's context would stop a 6.4 Loader from
    // creating them.
    Component {
        id: flow
        Words {
            id: flowWords
            readonly property MarkdownBlockView host: parent as MarkdownBlockView
            html: flowWords.host.block.html
            size: flowWords.host.size
            onLinkClicked: link => flowWords.host.linkClicked(link)
        }
    }
    Component {
        id: paragraph
        Column {
            id: paragraphColumn
            readonly property MarkdownBlockView host: parent as MarkdownBlockView
            spacing: 8
            Words {
                width: paragraphColumn.host.width
                html: paragraphColumn.host.block.html
                size: paragraphColumn.host.size
                onLinkClicked: link => paragraphColumn.host.linkClicked(link)
            }
            Repeater {
                model: paragraphColumn.host.block.posts || []
                delegate: PostCard {
                    required property var modelData
                    address: modelData.address
                    user: modelData.user
                    postId: modelData.id
                }
                // A card opens its own address (the post's), wired from here
                // where this view is in reach.
                onItemAdded: (index, item) => {
                    const card = item as PostCard
                    card.opened.connect(() => paragraphColumn.host.linkClicked(card.address))
                }
            }
        }
    }
    Component {
        id: code
        CodeBlock {
            id: codeBlock
            readonly property MarkdownBlockView host: parent as MarkdownBlockView
            code: codeBlock.host.block.code
            lang: codeBlock.host.block.lang
        }
    }
    Component {
        id: quote
        Row {
            id: quoteRow
            readonly property MarkdownBlockView host: parent as MarkdownBlockView
            spacing: 12
            Rectangle {
                width: 3
                radius: 1.5
                height: quoteRow.host.block.html !== "" ? quoteWords.height : inner.height
                color: Theme.quoteBar
            }
            // A quote of plain text is one text item; one that holds code,
            // a table or another quote stacks its blocks (loaded by name,
            // for the recursion).
            Words {
                id: quoteWords
                visible: quoteRow.host.block.html !== ""
                width: quoteRow.host.width - 15
                html: quoteRow.host.block.html
                size: quoteRow.host.size
                onLinkClicked: link => quoteRow.host.linkClicked(link)
            }
            Loader {
                id: inner
                visible: !quoteWords.visible
                width: quoteRow.host.width - 15
                Component.onCompleted: if (quoteRow.host.block.html === "")
                    setSource("MarkdownStack.qml", { blocks: quoteRow.host.block.blocks, size: quoteRow.host.size })
                onLoaded: {
                    item.width = Qt.binding(() => inner.width)
                    item.linkClicked.connect(quoteRow.host.linkClicked)
                }
            }
        }
    }
    Component {
        id: list
        MarkdownList {
            id: blockList
            readonly property MarkdownBlockView host: parent as MarkdownBlockView
            ordered: blockList.host.block.ordered
            start: blockList.host.block.start
            items: blockList.host.block.items
            size: blockList.host.size
            onLinkClicked: link => blockList.host.linkClicked(link)
        }
    }
    Component {
        id: table
        MarkdownTable {
            id: blockTable
            readonly property MarkdownBlockView host: parent as MarkdownBlockView
            head: blockTable.host.block.head
            rows: blockTable.host.block.rows
            size: blockTable.host.size
            onLinkClicked: link => blockTable.host.linkClicked(link)
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
