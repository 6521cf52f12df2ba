import QtQuick
import QtQuick.Controls
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Shell

// The command palette (Ctrl+K): type to filter pages, teammates, tasks and
// projects; arrows choose, Enter opens through the router, Escape closes.
Popup {
    id: palette
    property AppTheme theme
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
                palette.open()
            else
                palette.close()
        }
    }
    onOpened: { field.text = ""; results.currentIndex = 0; field.forceActiveFocus() }
    onClosed: { Shell.paletteOpen = false; Palette.reset() }

    Overlay.modal: Rectangle { color: palette.theme.scrim }
    background: Rectangle {
        radius: 14
        color: palette.theme.raised
        border.color: palette.theme.border
    }

    function choose(index) {
        var item = Palette.items[index]
        if (!item)
            return
        palette.close()
        App.router.open(item.href)
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0
        RowLayout {
            Layout.fillWidth: true
            Layout.margins: 14
            spacing: 10
            Icon { name: "search"; size: 18; color: palette.theme.muted }
            TextField {
                id: field
                objectName: "paletteField"
                Layout.fillWidth: true
                placeholderText: "Search pages, teammates, tasks and projects"
                placeholderTextColor: palette.theme.muted
                color: palette.theme.text
                font.family: palette.theme.sans
                font.pixelSize: 16
                background: null
                onTextChanged: { Palette.query = text; results.currentIndex = 0 }
                Keys.onDownPressed: results.currentIndex = Math.min(results.count - 1, results.currentIndex + 1)
                Keys.onUpPressed: results.currentIndex = Math.max(0, results.currentIndex - 1)
                Keys.onReturnPressed: palette.choose(results.currentIndex)
                Keys.onEnterPressed: palette.choose(results.currentIndex)
                Keys.onEscapePressed: palette.close()
            }
            BusyIndicator { visible: Palette.searching; running: visible; implicitWidth: 18; implicitHeight: 18 }
        }
        Rectangle { Layout.fillWidth: true; height: 1; color: palette.theme.border }
        Text {
            visible: results.count === 0
            Layout.fillWidth: true
            Layout.margins: 22
            horizontalAlignment: Text.AlignHCenter
            text: Palette.searching ? "Searching…" : (Palette.error.length > 0 ? Palette.error : "Nothing matches \u201c" + field.text + "\u201d.")
            wrapMode: Text.WordWrap
            font.family: palette.theme.sans
            font.pixelSize: 13
            color: palette.theme.muted
        }
        ListView {
            id: results
            objectName: "paletteResults"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.margins: 6
            clip: true
            model: Palette.items
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
                onClicked: palette.choose(index)
                onHoveredChanged: if (hovered) results.currentIndex = index
                background: Rectangle {
                    radius: 8
                    color: row.ListView.isCurrentItem ? palette.theme.selected : "transparent"
                }
                contentItem: RowLayout {
                    spacing: 10
                    Icon { Layout.leftMargin: 10; name: row.modelData.icon; size: 16; color: palette.theme.muted }
                    Text {
                        text: row.modelData.title
                        elide: Text.ElideRight
                        Layout.maximumWidth: row.width * 0.6
                        font.family: palette.theme.sans
                        font.pixelSize: 14
                        color: palette.theme.text
                    }
                    Text {
                        Layout.fillWidth: true
                        text: row.modelData.subtitle
                        elide: Text.ElideRight
                        font.family: palette.theme.sans
                        font.pixelSize: 12
                        color: palette.theme.muted
                    }
                    Text {
                        Layout.rightMargin: 10
                        text: row.modelData.kind
                        font.family: palette.theme.sans
                        font.pixelSize: 11
                        color: palette.theme.muted
                    }
                }
            }
        }
    }
}
