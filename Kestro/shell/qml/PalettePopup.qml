// Components here stay in this file's context: delegates name its ids, and
// take their model data only through required properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Shell

// The command palette (Ctrl+K): type to filter pages, teammates, tasks and
// projects; arrows choose, Enter opens through the router, Escape closes.
Popup {
    id: popup
    objectName: "palette"
    modal: true
    focus: true
    width: Math.min(600, parent.width - 80)
    height: Math.min(440, field.height + results.contentHeight + 40)
    x: (parent.width - width) / 2
    y: Math.max(40, parent.height * 0.14)
    padding: 0
    Connections {
        target: Shell
        function onPaletteOpenChanged() {
            if (Shell.paletteOpen)
                popup.open()
            else
                popup.close()
        }
    }
    onOpened: { field.text = ""; results.currentIndex = 0; field.forceActiveFocus() }
    onClosed: { Shell.paletteOpen = false; Commands.reset() }

    Overlay.modal: Rectangle { color: Theme.scrim }
    background: Rectangle {
        radius: 14
        color: Theme.raised
        border.color: Theme.border
    }

    function choose(index) {
        var item = Commands.items[index]
        if (!item)
            return
        popup.close()
        App.router.open(item.href)
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        RowLayout {
            Layout.fillWidth: true
            Layout.margins: 14
            spacing: 10
            Icon { name: "search"; size: 18; color: Theme.muted }
            TextField {
                id: field
                objectName: "paletteField"
                Layout.fillWidth: true
                placeholderText: "Search pages, teammates, tasks and projects"
                placeholderTextColor: Theme.muted
                color: Theme.text
                font.family: Theme.sans
                font.pixelSize: 16
                background: null
                onTextChanged: { Commands.query = text; results.currentIndex = 0 }
                Keys.onDownPressed: results.currentIndex = Math.min(results.count - 1, results.currentIndex + 1)
                Keys.onUpPressed: results.currentIndex = Math.max(0, results.currentIndex - 1)
                Keys.onReturnPressed: popup.choose(results.currentIndex)
                Keys.onEnterPressed: popup.choose(results.currentIndex)
                Keys.onEscapePressed: popup.close()
            }
            BusyIndicator { visible: Commands.searching; running: visible; implicitWidth: 18; implicitHeight: 18 }
        }
        Rectangle { Layout.fillWidth: true; height: 1; color: Theme.border }
        Text {
            visible: results.count === 0
            Layout.fillWidth: true
            Layout.margins: 22
            horizontalAlignment: Text.AlignHCenter
            textFormat: Text.PlainText
            text: Commands.searching ? "Searching…" : (Commands.error.length > 0 ? Commands.error : "Nothing matches \u201c" + field.text + "\u201d.")
            wrapMode: Text.WordWrap
            font.family: Theme.sans
            font.pixelSize: 13
            color: Theme.muted
        }
        ListView {
            id: results
            objectName: "paletteResults"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.margins: 6
            clip: true
            model: Commands.items
            highlightMoveDuration: 0
            boundsBehavior: Flickable.StopAtBounds
            delegate: AbstractButton {
                id: row
                required property var modelData
                required property int index
                width: ListView.view.width
                implicitHeight: 40
                hoverEnabled: true
                Accessible.name: modelData.title
                onClicked: popup.choose(index)
                onHoveredChanged: if (hovered) results.currentIndex = index
                background: Rectangle {
                    radius: 8
                    color: row.ListView.isCurrentItem ? Theme.selected : "transparent"
                }
                contentItem: RowLayout {
                    spacing: 10
                    Icon { Layout.leftMargin: 10; name: row.modelData.icon; size: 16; color: Theme.muted }
                    Text {
                        textFormat: Text.PlainText
                        text: row.modelData.title
                        elide: Text.ElideRight
                        Layout.maximumWidth: row.width * 0.6
                        font.family: Theme.sans
                        font.pixelSize: 14
                        color: Theme.text
                    }
                    Text {
                        Layout.fillWidth: true
                        textFormat: Text.PlainText
                        text: row.modelData.subtitle
                        elide: Text.ElideRight
                        font.family: Theme.sans
                        font.pixelSize: 12
                        color: Theme.muted
                    }
                    Text {
                        Layout.rightMargin: 10
                        textFormat: Text.PlainText
                        text: row.modelData.kind
                        font.family: Theme.sans
                        font.pixelSize: 11
                        color: Theme.muted
                    }
                }
            }
        }
    }
}
