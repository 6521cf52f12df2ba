import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Pages

// A task on the board: mark, key, title, the teammate at work, priority
// and assignee. It is dragged to another column or place (writers only),
// moved with Alt and the arrow keys, and opened with Enter or a click.
AbstractButton {
    id: card
    property var row
    property TaskListModel tasks
    // Where it floats while dragged, above every column.
    property Item dragLayer
    readonly property string taskId: row ? row.key : ""
    objectName: row ? "taskCard-" + row.taskKey : "taskCard"
    readonly property bool dragged: drag.active

    implicitHeight: contentItem.implicitHeight + 20
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Link
    Accessible.name: row ? [row.taskKey + " " + row.title, row.groupTitle, row.assignee, row.working,
                            row.priority.length > 0 ? row.priority + " priority" : ""]
                           .filter(part => part.length > 0).join(", ") : ""
    Accessible.description: tasks && tasks.canManage ? "Alt and the arrow keys move it." : ""
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onPressed: event => {
        if (!(event.modifiers & Qt.AltModifier) || !tasks || !tasks.canManage)
            return
        const steps = { [Qt.Key_Left]: [-1, 0], [Qt.Key_Right]: [1, 0], [Qt.Key_Up]: [0, -1], [Qt.Key_Down]: [0, 1] }
        const step = steps[event.key]
        if (!step)
            return
        event.accepted = true
        tasks.moveBy(taskId, step[0], step[1])
    }
    onClicked: tasks.open(row.href)

    Drag.active: drag.active
    Drag.source: card
    Drag.keys: ["kestro-task"]
    Drag.hotSpot.x: width / 2
    Drag.hotSpot.y: 16
    DragHandler {
        id: drag
        enabled: !!card.tasks && card.tasks.canManage
        // Held still: the board reloads only after the drop.
        onActiveChanged: {
            if (active) {
                card.tasks.dragging = true
            } else {
                card.Drag.drop()
                card.tasks.dragging = false
            }
        }
    }
    states: State {
        when: drag.active
        ParentChange { target: card; parent: card.dragLayer }
        PropertyChanges { card.z: 10; card.opacity: 0.92 }
    }

    background: Rectangle {
        radius: 10
        color: card.dragged ? Theme.raised : card.hovered ? Theme.hover : Theme.raised
        border.color: card.visualFocus ? Theme.accent : Theme.border
        border.width: card.visualFocus ? 2 : 1
    }
    padding: 10
    contentItem: ColumnLayout {
        spacing: 6
        RowLayout {
            spacing: 6
            TaskMark {
                size: 14
                shape: card.row ? card.row.markShape : "open"
                tone: card.row ? card.row.markTone : "muted"
            }
            Text {
                text: card.row ? card.row.taskKey : ""
                textFormat: Text.PlainText
                font.family: Theme.mono
                font.pixelSize: 11
                color: Theme.muted
            }
            Item { Layout.fillWidth: true }
            Text {
                visible: text.length > 0
                text: card.row ? card.row.priority : ""
                textFormat: Text.PlainText
                font.family: Theme.sans
                font.pixelSize: 11
                color: Theme.muted
            }
        }
        Text {
            Layout.fillWidth: true
            text: card.row ? card.row.title : ""
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            maximumLineCount: 3
            elide: Text.ElideRight
            font.family: Theme.sans
            font.pixelSize: 13
            color: Theme.text
        }
        RowLayout {
            visible: !!card.row && card.row.working.length > 0
            spacing: 6
            SpinningIcon { name: "loader-circle"; size: 12; color: Theme.busy; spinning: parent.visible }
            Text {
                Layout.fillWidth: true
                text: card.row ? card.row.working : ""
                textFormat: Text.PlainText
                elide: Text.ElideRight
                font.family: Theme.sans
                font.pixelSize: 12
                color: Theme.muted
            }
        }
        RowLayout {
            spacing: 6
            Text {
                Layout.fillWidth: true
                text: card.row ? card.row.assignee : ""
                textFormat: Text.PlainText
                elide: Text.ElideRight
                font.family: Theme.sans
                font.pixelSize: 12
                color: card.row && card.row.assignee === "Nobody yet" ? Theme.muted : Theme.text
            }
            Text {
                visible: text.length > 0
                text: card.row ? card.row.progress : ""
                textFormat: Text.PlainText
                font.family: Theme.sans
                font.pixelSize: 12
                color: Theme.muted
            }
            Text {
                visible: text.length > 0
                text: card.row ? card.row.due : ""
                textFormat: Text.PlainText
                font.family: Theme.sans
                font.pixelSize: 12
                color: card.row && card.row.pastDue ? Theme.danger : Theme.muted
            }
        }
    }
}
