import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Pages

// A task in the list: its mark, key and title, what it is a sub-task of,
// the teammate at work on it, its labels, project, due day, sub-task
// progress, priority and assignee ("Nobody yet"). Enter or a click opens it.
AbstractButton {
    id: item
    property var row
    property TaskListModel tasks

    implicitHeight: Math.max(44, contentItem.implicitHeight + 16)
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Link
    Accessible.name: row ? [row.taskKey + " " + row.title, row.groupTitle, row.assignee, row.working, row.due,
                            row.priority.length > 0 ? row.priority + " priority" : "",
                            row.progress.length > 0 ? row.progress + " sub-tasks done" : ""]
                           .filter(part => part.length > 0).join(", ") : ""
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    onClicked: tasks.open(row.href)
    background: Rectangle {
        x: 20
        width: item.width - 40
        radius: 8
        color: item.hovered ? Theme.hover : "transparent"
        border.color: item.visualFocus ? Theme.accent : "transparent"
        border.width: 2
    }
    leftPadding: 36
    rightPadding: 36
    contentItem: RowLayout {
        spacing: 10
        TaskMark {
            shape: item.row ? item.row.markShape : "open"
            tone: item.row ? item.row.markTone : "muted"
        }
        Text {
            Layout.preferredWidth: 64
            text: item.row ? item.row.taskKey : ""
            textFormat: Text.PlainText
            font.family: Theme.mono
            font.pixelSize: 12
            color: Theme.muted
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 2
            Text {
                Layout.fillWidth: true
                text: item.row ? item.row.title : ""
                textFormat: Text.PlainText
                elide: Text.ElideRight
                font.family: Theme.sans
                font.pixelSize: 14
                color: Theme.text
            }
            Text {
                visible: text.length > 0
                text: item.row ? item.row.parentLine : ""
                textFormat: Text.PlainText
                font.family: Theme.sans
                font.pixelSize: 12
                color: Theme.muted
            }
            RowLayout {
                visible: !!item.row && item.row.working.length > 0
                spacing: 6
                SpinningIcon { name: "loader-circle"; size: 12; color: Theme.busy; spinning: parent.visible }
                Text {
                    text: item.row ? item.row.working : ""
                    textFormat: Text.PlainText
                    font.family: Theme.sans
                    font.pixelSize: 12
                    color: Theme.muted
                }
            }
        }
        Text {
            visible: text.length > 0
            text: item.row ? item.row.labels.join(" \u00b7 ") : ""
            textFormat: Text.PlainText
            font.family: Theme.sans
            font.pixelSize: 12
            color: Theme.muted
        }
        Text {
            visible: text.length > 0
            text: item.row ? item.row.project : ""
            textFormat: Text.PlainText
            font.family: Theme.sans
            font.pixelSize: 12
            color: Theme.muted
        }
        Text {
            visible: text.length > 0
            text: item.row ? item.row.due : ""
            textFormat: Text.PlainText
            font.family: Theme.sans
            font.pixelSize: 12
            color: item.row && item.row.pastDue ? Theme.danger : Theme.muted
        }
        Text {
            visible: text.length > 0
            text: item.row ? item.row.progress : ""
            textFormat: Text.PlainText
            font.family: Theme.sans
            font.pixelSize: 12
            color: Theme.muted
        }
        Text {
            visible: text.length > 0
            text: item.row ? item.row.priority : ""
            textFormat: Text.PlainText
            font.family: Theme.sans
            font.pixelSize: 12
            color: Theme.muted
        }
        Text {
            Layout.preferredWidth: 130
            horizontalAlignment: Text.AlignRight
            text: item.row ? item.row.assignee : ""
            textFormat: Text.PlainText
            elide: Text.ElideRight
            font.family: Theme.sans
            font.pixelSize: 12
            color: item.row && item.row.assignee === "Nobody yet" ? Theme.muted : Theme.text
        }
    }
}
