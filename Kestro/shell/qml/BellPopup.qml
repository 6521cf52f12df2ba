import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Shell

// The notifications list under the bell: newest first, unread marked; a
// click opens the item and marks it read.
Popup {
    id: popup
    objectName: "bellPopup"
    width: 380
    height: Math.min(480, list.contentHeight + top.height + 24)
    padding: 0
    focus: true // Escape closes it
    onOpened: Bell.load()

    background: Rectangle {
        radius: 12
        color: Theme.raised
        border.color: Theme.border
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        RowLayout {
            id: top
            Layout.fillWidth: true
            Layout.margins: 12
            Text {
                Layout.fillWidth: true
                text: "Notifications"
                font.family: Theme.display
                font.pixelSize: 15
                font.weight: Font.Bold
                color: Theme.text
            }
            IconButton {
                glyph: "check-check"
                tip: "Mark all as read"
                enabled: Bell.unread > 0
                onClicked: Bell.markAllRead()
            }
            IconButton {
                glyph: "trash-2"
                tip: "Clear all"
                enabled: Bell.items.length > 0
                onClicked: Bell.clear()
            }
        }
        Rectangle { Layout.fillWidth: true; height: 1; color: Theme.border }
        Text {
            visible: Bell.error.length > 0
            Layout.fillWidth: true
            Layout.margins: 12
            textFormat: Text.PlainText
            text: Bell.error
            wrapMode: Text.WordWrap
            font.family: Theme.sans
            font.pixelSize: 13
            color: Theme.danger
        }
        Text {
            visible: Bell.items.length === 0 && !Bell.loading && Bell.error.length === 0
            Layout.fillWidth: true
            Layout.margins: 24
            horizontalAlignment: Text.AlignHCenter
            text: "You're all caught up."
            font.family: Theme.sans
            font.pixelSize: 13
            color: Theme.muted
        }
        ListView {
            id: list
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            model: Bell.items
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar {}
            delegate: AbstractButton {
                id: row
                required property var modelData
                width: ListView.view.width
                implicitHeight: row.contentItem.implicitHeight + 20
                hoverEnabled: true
                Accessible.name: modelData.title
                onClicked: {
                    if (!modelData.read)
                        Bell.markRead(modelData.id)
                    popup.close()
                    App.router.open(modelData.href)
                }
                background: Rectangle { color: row.hovered ? Theme.hover : "transparent" }
                contentItem: RowLayout {
                    spacing: 10
                    Avatar {
                        Layout.alignment: Qt.AlignTop
                        Layout.leftMargin: 12
                        Layout.topMargin: 10
                        name: row.modelData.by ? row.modelData.by.name : "Kestro"
                        size: 26
                    }
                    ColumnLayout {
                        Layout.fillWidth: true
                        Layout.topMargin: 10
                        spacing: 2
                        Text {
                            Layout.fillWidth: true
                            textFormat: Text.PlainText
                            text: row.modelData.title
                            elide: Text.ElideRight
                            font.family: Theme.sans
                            font.pixelSize: 13
                            font.weight: row.modelData.read ? Font.Normal : Font.DemiBold
                            color: Theme.text
                        }
                        Text {
                            Layout.fillWidth: true
                            textFormat: Text.PlainText
                            text: row.modelData.text
                            maximumLineCount: 2
                            wrapMode: Text.WordWrap
                            elide: Text.ElideRight
                            font.family: Theme.sans
                            font.pixelSize: 12
                            color: Theme.muted
                        }
                    }
                    Rectangle {
                        Layout.alignment: Qt.AlignTop
                        Layout.topMargin: 16
                        Layout.rightMargin: 14
                        width: 8; height: 8; radius: 4
                        color: row.modelData.read ? "transparent" : Theme.accent
                    }
                }
            }
        }
    }
}
