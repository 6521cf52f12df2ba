// Delegates here take their model data only through required properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Pages

// One status group on the board: its heading with the count and (for
// writers) a new-task button, and its cards. A card dropped here takes the
// group's status and the place where it was let go; a line shows that
// place while a card hovers.
Rectangle {
    id: column
    required property var modelData
    property TaskListModel tasks
    property Item dragLayer
    readonly property KeyedListModel cards: modelData.tasks
    signal add(string status, string label)
    // A card here has the keyboard: the board scrolls to this column.
    signal reveal()

    function focusCard(id) {
        const at = column.cards.indexOf(id)
        if (at < 0)
            return false
        list.positionViewAtIndex(at, ListView.Contain)
        const cell = list.itemAtIndex(at) as CardCell
        if (cell)
            cell.card.forceActiveFocus(Qt.TabFocusReason)
        return true
    }

    objectName: "boardColumn-" + modelData.group
    width: 272
    radius: 12
    color: drop.containsDrag ? Theme.selected : Theme.well
    Accessible.role: Accessible.List
    Accessible.name: column.modelData.title + ", " + column.cards.count + (column.cards.count === 1 ? " task" : " tasks")

    RowLayout {
        id: heading
        x: 12
        y: 8
        width: column.width - 24
        height: 32
        spacing: 8
        TaskMark { shape: column.modelData.markShape; tone: column.modelData.markTone }
        Text {
            text: column.modelData.title
            textFormat: Text.PlainText
            font.family: Theme.sans
            font.pixelSize: 13
            font.weight: Font.DemiBold
            color: Theme.text
        }
        Text {
            text: column.cards.count
            textFormat: Text.PlainText
            font.family: Theme.sans
            font.pixelSize: 12
            color: Theme.muted
        }
        Item { Layout.fillWidth: true }
        IconButton {
            visible: !!column.tasks && column.tasks.canManage
            glyph: "plus"
            tip: column.tasks ? column.tasks.addLabel(column.modelData.group) : "New task"
            onClicked: column.add(column.modelData.addStatus, tip)
        }
    }

    ListView {
        id: list
        anchors.fill: parent
        anchors.topMargin: 48
        anchors.leftMargin: 8
        anchors.rightMargin: 8
        clip: true
        spacing: 8
        bottomMargin: 12
        model: column.cards
        boundsBehavior: Flickable.StopAtBounds
        delegate: CardCell {
            id: cell
            width: list.width
            onFocused: {
                list.positionViewAtIndex(cell.index, ListView.Contain)
                column.reveal()
            }
            tasks: column.tasks
            dragLayer: column.dragLayer
        }
    }

    // Where a card let go here lands: before the first card whose middle
    // is below the point (over the heading: the top; past them all: the end).
    function placeAt(y) {
        const inList = y + list.contentY - list.y
        for (let at = 0; at < list.count; ++at) {
            const cell = list.itemAtIndex(at)
            if (cell && inList < cell.y + cell.height / 2)
                return at
        }
        return list.count
    }
    DropArea {
        id: drop
        anchors.fill: parent
        keys: ["kestro-task"]
        property int place: -1
        onPositionChanged: d => place = column.placeAt(d.y)
        onExited: place = -1
        onDropped: d => {
            const id = (d.source as TaskCard).taskId
            const group = column.modelData.group
            const at = column.placeAt(d.y)
            place = -1
            d.accept()
            column.tasks.moveTask(id, group, at)
        }
    }
    Rectangle {
        visible: drop.containsDrag && drop.place >= 0
        x: 10
        width: column.width - 20
        height: 2
        radius: 1
        color: Theme.accent
        y: {
            if (drop.place < 0)
                return 0
            const cell = list.itemAtIndex(Math.min(drop.place, list.count - 1))
            if (!cell)
                return list.y + 4
            return list.y - list.contentY + (drop.place < list.count ? cell.y - 5 : cell.y + cell.height + 3)
        }
    }
}
