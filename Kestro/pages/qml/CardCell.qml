import QtQuick
import Kestro.Pages

// A card's place in its column: it keeps the room while the card itself
// is dragged away above the board.
Item {
    id: cell
    required property var model
    required property int index
    property alias card: card
    property TaskListModel tasks
    property Item dragLayer
    // The keyboard came to this card (Tab, or a move by keys).
    signal focused()
    height: card.implicitHeight
    TaskCard {
        id: card
        width: cell.width
        row: cell.model
        tasks: cell.tasks
        dragLayer: cell.dragLayer
        onActiveFocusChanged: if (activeFocus) cell.focused()
    }
}
