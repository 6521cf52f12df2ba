import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Pages

// A group's heading in the task list: its mark, title and count, a button
// that folds it, and (for writers) one that adds a task in it.
Item {
    id: heading
    property var row
    property TaskListModel tasks
    signal add(string status, string label)
    // The keyboard is on one of its buttons.
    readonly property bool focused: fold.activeFocus || addButton.activeFocus

    implicitHeight: 44
    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 28
        anchors.rightMargin: 32
        spacing: 8
        AbstractButton {
            id: fold
            focusPolicy: Qt.StrongFocus
            implicitWidth: contentItem.implicitWidth + 12
            implicitHeight: 32
            hoverEnabled: true
            Accessible.role: Accessible.Button
            Accessible.name: (heading.row && heading.row.folded ? "Show " : "Hide ") + (heading.row ? heading.row.groupTitle : "")
            Keys.onReturnPressed: clicked()
            Keys.onEnterPressed: clicked()
            onClicked: heading.tasks.toggleFolded(heading.row.group)
            background: Rectangle {
                radius: 8
                color: fold.hovered ? Theme.hover : "transparent"
                border.color: fold.visualFocus ? Theme.accent : "transparent"
                border.width: 2
            }
            contentItem: RowLayout {
                spacing: 8
                Icon {
                    name: "chevron-right"
                    size: 14
                    color: Theme.muted
                    rotation: heading.row && heading.row.folded ? 0 : 90
                }
                TaskMark {
                    shape: heading.row ? heading.row.markShape : "open"
                    tone: heading.row ? heading.row.markTone : "muted"
                }
                Text {
                    text: heading.row ? heading.row.groupTitle : ""
                    textFormat: Text.PlainText
                    font.family: Theme.sans
                    font.pixelSize: 14
                    font.weight: Font.DemiBold
                    color: Theme.text
                }
                Text {
                    text: heading.row ? heading.row.count : ""
                    textFormat: Text.PlainText
                    font.family: Theme.sans
                    font.pixelSize: 13
                    color: Theme.muted
                }
            }
        }
        Item { Layout.fillWidth: true }
        IconButton {
            id: addButton
            visible: !!heading.tasks && heading.tasks.canManage
            glyph: "plus"
            tip: heading.row && heading.tasks ? heading.tasks.addLabel(heading.row.group) : "New task"
            Accessible.name: tip
            onClicked: heading.add(heading.tasks.addStatus(heading.row.group), tip)
        }
    }
    Rectangle { anchors.bottom: parent.bottom; x: 28; width: parent.width - 60; height: 1; color: Theme.border }
}
