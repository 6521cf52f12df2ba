// Components here stay in this file's context: delegates name its ids, and
// take their model data only through required properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Pages

// "/tasks": the workspace's tasks by status, with a search, "Only mine",
// foldable groups and new tasks (in a group or on their own).
Item {
    id: page
    property alias router: listModel.router
    property alias route: listModel.route
    readonly property string title: "Tasks"
    readonly property bool loading: listModel.loader.loading && listModel.loader.state !== Loaded.Content
    objectName: "tasksPage"

    TaskListModel {
        id: listModel
        Component.onCompleted: {
            listModel.restoreAddress()
            listModel.start()
        }
    }

    Bones {
        visible: listModel.loader.state === Loaded.Bones
        x: 32
        y: 96
        width: page.width - 64
    }
    PageFailure {
        anchors.fill: parent
        visible: listModel.loader.state === Loaded.Failed
        message: listModel.loader.error
        onRetry: listModel.loader.reload()
    }

    // The filter bar.
    RowLayout {
        id: bar
        x: 32
        y: 20
        width: page.width - 64
        spacing: 8
        TextField {
            id: searchField
            objectName: "taskSearch"
            Layout.preferredWidth: 280
            placeholderText: "Search tasks"
            Accessible.name: "Search tasks"
            color: Theme.text
            placeholderTextColor: Theme.muted
            font.family: Theme.sans
            background: Rectangle {
                implicitHeight: 36
                radius: 8
                color: Theme.raised
                border.color: searchField.activeFocus ? Theme.accent : Theme.border
            }
            // Typed words become the address after a short pause; the field
            // follows the address only while nobody types in it.
            Component.onCompleted: text = listModel.query
            Connections {
                target: listModel
                function onRouteChanged() {
                    if (!searchField.activeFocus)
                        searchField.text = listModel.query
                }
            }
            onTextEdited: typing.restart()
            onAccepted: listModel.search(text)
            Timer {
                id: typing
                interval: 300
                onTriggered: listModel.search(searchField.text)
            }
        }
        PrimaryButton {
            objectName: "onlyMine"
            quiet: !listModel.mine
            text: "Only mine"
            Accessible.name: listModel.mine ? "Only mine, on" : "Only mine, off"
            onClicked: listModel.setMine(!listModel.mine)
        }
        Text {
            visible: listModel.loader.state === Loaded.Content
            text: listModel.shown === 1 ? "1 task" : listModel.shown + " tasks"
            Accessible.role: Accessible.StaticText
            Accessible.name: text
            textFormat: Text.PlainText
            font.family: Theme.sans
            font.pixelSize: 13
            color: Theme.muted
        }
        Item { Layout.fillWidth: true }
        // List or board: the same tasks, the same filters.
        Row {
            spacing: 0
            PrimaryButton {
                objectName: "showList"
                quiet: listModel.board
                text: "List"
                Accessible.name: listModel.board ? "List" : "List, shown"
                onClicked: listModel.setBoard(false)
            }
            PrimaryButton {
                objectName: "showBoard"
                quiet: !listModel.board
                text: "Board"
                Accessible.name: listModel.board ? "Board, shown" : "Board"
                onClicked: listModel.setBoard(true)
            }
        }
        PrimaryButton {
            objectName: "newTask"
            visible: listModel.canManage
            text: "New task"
            onClicked: dialog.openFor("todo", "")
        }
    }

    ListView {
        id: list
        objectName: "taskList"
        anchors.fill: parent
        anchors.topMargin: 72
        visible: listModel.loader.state === Loaded.Content && !listModel.board
        clip: true
        // Hidden (the board shows), the list makes no rows.
        model: listModel.board ? null : listModel.rows
        boundsBehavior: Flickable.StopAtBounds
        bottomMargin: 40
        ScrollBar.vertical: ScrollBar {}
        Accessible.role: Accessible.List
        Accessible.name: "Tasks"
        keyNavigationEnabled: true

        // A heading or a task. (Both are made for every row and one shows:
        // Qt 6.4 will not load a component bound to this file from a Loader.)
        delegate: Item {
            id: cell
            required property int index
            required property var model
            width: list.width
            height: cell.model.header ? heading.implicitHeight : task.implicitHeight
            TaskListHeading {
                id: heading
                width: cell.width
                visible: cell.model.header
                row: cell.model
                tasks: listModel
                onAdd: (status, label) => dialog.openFor(status, label)
                // The keyboard's place stays on screen, and the rows after
                // it get made.
                onFocusedChanged: if (focused) list.positionViewAtIndex(cell.index, ListView.Contain)
            }
            TaskListItem {
                id: task
                width: cell.width
                visible: !cell.model.header
                row: cell.model
                tasks: listModel
                onActiveFocusChanged: if (activeFocus) list.positionViewAtIndex(cell.index, ListView.Contain)
            }
        }
    }

    TaskBoard {
        objectName: "taskBoard"
        anchors.fill: parent
        anchors.topMargin: 72
        visible: listModel.loader.state === Loaded.Content && listModel.board && listModel.shown > 0
        tasks: listModel
        onAdd: (status, label) => dialog.openFor(status, label)
    }
    // A refused move: the service's sentence, and (where a teammate waits
    // for answers) the way to move it anyway.
    Rectangle {
        objectName: "moveRefused"
        visible: listModel.moveError.length > 0
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 24
        width: Math.min(page.width - 64, refusal.implicitWidth + 32)
        height: refusal.implicitHeight + 20
        radius: 10
        color: Theme.raised
        border.color: Theme.border
        RowLayout {
            id: refusal
            anchors.centerIn: parent
            width: parent.width - 32
            spacing: 10
            Icon { name: "circle-alert"; size: 16; color: Theme.danger }
            Text {
                Layout.fillWidth: true
                Layout.maximumWidth: 520
                text: listModel.moveError
                textFormat: Text.PlainText
                wrapMode: Text.Wrap
                font.family: Theme.sans
                font.pixelSize: 13
                color: Theme.text
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            PrimaryButton {
                objectName: "moveAnyway"
                visible: listModel.canMoveAnyway
                text: "Move anyway: its questions are withdrawn"
                onClicked: listModel.moveAnyway()
            }
            IconButton { glyph: "x"; tip: "Dismiss"; onClicked: listModel.clearMoveError() }
        }
    }

    EmptyState {
        anchors.centerIn: parent
        width: Math.min(420, page.width - 64)
        visible: listModel.loader.state === Loaded.Content && listModel.shown === 0
        glyph: "list-checks"
        title: listModel.emptyLine
        text: listModel.mine || listModel.query.length > 0 ? "" : "Tasks you and your teammates take on show here."
    }
    PrimaryButton {
        objectName: "removeMine"
        anchors.horizontalCenter: parent.horizontalCenter
        y: page.height / 2 + 60
        visible: listModel.loader.state === Loaded.Content && listModel.shown === 0 && listModel.mine
        quiet: true
        text: "Remove the filter Only mine"
        onClicked: listModel.setMine(false)
    }

    NewTaskDialog {
        id: dialog
        model: listModel
    }
}
