pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Pages

// A new task: what needs doing, a brief, its status and who takes it, and
// one sentence that says what happens next. The task opens once made.
Popup {
    id: dialog
    objectName: "newTaskDialog"
    property TaskListModel model
    property string heading: "New task"
    readonly property var statuses: [
        { value: "todo", text: "To do" }, { value: "in_progress", text: "In progress" },
        { value: "in_review", text: "In review" }, { value: "backlog", text: "Backlog" },
        { value: "done", text: "Done" }, { value: "canceled", text: "Canceled" }
    ]
    readonly property var assignee: who.currentIndex >= 0 && dialog.model ? dialog.model.assignees[who.currentIndex] : null

    function openFor(status, label) {
        heading = label.length > 0 ? label : "New task"
        model.clearCreateError()
        titleField.clear()
        brief.clear()
        const at = statuses.findIndex(s => s.value === status)
        statusBox.currentIndex = at >= 0 ? at : 0
        who.currentIndex = 0
        open()
        titleField.forceActiveFocus()
    }

    anchors.centerIn: parent
    width: 520
    modal: true
    focus: true
    padding: 20
    // A stray click beside it keeps the draft: Escape or Cancel close it.
    closePolicy: Popup.CloseOnEscape
    background: Rectangle { radius: 14; color: Theme.raised; border.color: Theme.border }

    Connections {
        target: dialog.model
        function onCreatingChanged() {
            if (!dialog.model.creating && dialog.model.createError.length === 0 && dialog.opened)
                dialog.close()
        }
    }

    ColumnLayout {
        width: parent.width
        spacing: 12
        Text {
            text: dialog.heading
            textFormat: Text.PlainText
            font.family: Theme.sans
            font.pixelSize: 16
            font.weight: Font.DemiBold
            color: Theme.text
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        TextField {
            id: titleField
            objectName: "newTaskTitle"
            Layout.fillWidth: true
            placeholderText: "What needs doing?"
            Accessible.name: "What needs doing?"
            onAccepted: createButton.clicked()
        }
        ScrollView {
            Layout.fillWidth: true
            Layout.preferredHeight: 96
            TextArea {
                id: brief
                objectName: "newTaskBrief"
                wrapMode: TextEdit.Wrap
                placeholderText: "Add a brief: the goal, what done looks like, anything to use (optional)"
                Accessible.name: "Brief"
                // Tab moves on (a tab in a brief is no use to anybody).
                KeyNavigation.tab: statusBox
                KeyNavigation.backtab: titleField
            }
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            ComboBox {
                id: statusBox
                objectName: "newTaskStatus"
                Layout.fillWidth: true
                model: dialog.statuses
                textRole: "text"
                valueRole: "value"
                Accessible.name: "Status: " + currentText
            }
            ComboBox {
                id: who
                objectName: "newTaskAssignee"
                Layout.fillWidth: true
                model: dialog.model ? dialog.model.assignees : []
                textRole: "label"
                Accessible.name: "Who takes it: " + currentText
            }
        }
        Text {
            objectName: "newTaskHint"
            Layout.fillWidth: true
            wrapMode: Text.WordWrap
            text: dialog.model && dialog.assignee
                  ? dialog.model.hint(statusBox.currentValue || "todo", dialog.assignee.kind, dialog.assignee.name) : ""
            textFormat: Text.PlainText
            font.family: Theme.sans
            font.pixelSize: 13
            color: Theme.muted
        }
        Text {
            visible: text.length > 0
            Layout.fillWidth: true
            wrapMode: Text.WordWrap
            text: dialog.model ? dialog.model.createError : ""
            textFormat: Text.PlainText
            font.family: Theme.sans
            font.pixelSize: 12
            color: Theme.danger
            Accessible.role: Accessible.AlertMessage
            Accessible.name: text
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            PrimaryButton { quiet: true; text: "Cancel"; onClicked: dialog.close() }
            PrimaryButton {
                id: createButton
                objectName: "createTask"
                enabled: dialog.model && !dialog.model.creating
                text: dialog.model && dialog.model.creating ? "Creating" : "Create task"
                onClicked: dialog.model.create(titleField.text, brief.text, statusBox.currentValue || "todo",
                                               dialog.assignee ? dialog.assignee.kind : "lead",
                                               dialog.assignee ? dialog.assignee.id : "")
            }
        }
    }
}
