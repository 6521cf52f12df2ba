// Delegates here take their model data only through required properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Kestro.Controls
import Kestro.Pages

// The tasks as a board: a column per status group, side by side, scrolled
// sideways when they do not fit. A dragged card floats above them all.
Item {
    id: board
    property TaskListModel tasks
    signal add(string status, string label)

    Flickable {
        id: scroller
        anchors.fill: parent
        contentWidth: lanes.width + 64
        contentHeight: height
        flickableDirection: Flickable.HorizontalFlick
        boundsBehavior: Flickable.StopAtBounds
        // A card's drag must not scroll the board under it.
        interactive: !board.tasks.dragging
        clip: true
        ScrollBar.horizontal: ScrollBar {}
        Row {
            id: lanes
            x: 32
            height: scroller.height - 24
            spacing: 12
            Repeater {
                id: columns
                // Hidden (the list shows), the board makes no cards.
                model: board.visible ? board.tasks.columns : []
                delegate: TaskBoardColumn {
                    id: lane
                    height: lanes.height
                    onReveal: board.reveal(lane)
                    tasks: board.tasks
                    dragLayer: layer
                    onAdd: (status, label) => board.add(status, label)
                }
            }
        }
    }
    Item {
        id: layer
        anchors.fill: parent
    }
    // A card carried to the board's edge scrolls it that way, so every
    // column can be reached by drag. Runs only while a card is dragged.
    Timer {
        interval: 30
        repeat: true
        running: board.visible && board.tasks.dragging
        onTriggered: {
            const card = layer.children.length > 0 ? layer.children[0] : null
            if (!card)
                return
            const middle = card.x + card.width / 2
            const edge = 80
            if (middle < edge)
                scroller.contentX = Math.max(0, scroller.contentX - 14)
            else if (middle > board.width - edge)
                scroller.contentX = Math.min(scroller.contentWidth - scroller.width, scroller.contentX + 14)
        }
    }

    // Scrolls sideways so the column (and the keyboard's card in it) shows.
    function reveal(column) {
        const left = lanes.x + column.x
        if (left < scroller.contentX)
            scroller.contentX = Math.max(0, left - 32)
        else if (left + column.width > scroller.contentX + scroller.width)
            scroller.contentX = Math.min(scroller.contentWidth - scroller.width, left + column.width + 32 - scroller.width)
    }
    // A moved card is made again in its new place: the keyboard follows it.
    Connections {
        target: board.tasks
        function onCardMoved(id) {
            if (board.visible)
                board.focusCard(id)
        }
    }
    function focusCard(id) {
        for (let i = 0; i < columns.count; ++i) {
            const column = columns.itemAt(i) as TaskBoardColumn
            if (column && column.focusCard(id))
                return
        }
    }
}
