pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Kestro.Controls
import Kestro.Composer

// The open inline menu: its heading, then its rows on one highlight that
// glides from row to row (it jumps when motion is reduced).
Rectangle {
    id: menu
    required property PromptBarModel model
    readonly property int rowHeight: 30
    implicitWidth: 320
    implicitHeight: heading.height + Math.min(rows.count, 8) * rowHeight + 12
    radius: 10
    color: Theme.raised
    border.color: Theme.border
    Accessible.role: Accessible.PopupMenu
    Accessible.name: menu.model.menuLabel

    Text {
        id: heading
        x: 12
        y: 8
        width: parent.width - 24
        height: 22
        textFormat: Text.PlainText
        text: menu.model.menuTitle
        color: Theme.muted
        font.family: Theme.sans
        font.pixelSize: 11
        elide: Text.ElideRight
    }

    Glide {
        objectName: "glide"
        visible: rows.count > 0
        x: rows.x
        rowY: rows.y + menu.model.activeRow * menu.rowHeight - rows.contentY
        width: rows.width
        height: menu.rowHeight
    }

    ListView {
        id: rows
        objectName: "inlineMenuRows"
        x: 6
        y: heading.y + heading.height
        width: parent.width - 12
        height: Math.min(count, 8) * menu.rowHeight
        clip: true
        model: menu.model.options
        currentIndex: menu.model.activeRow
        interactive: count > 8
        highlightFollowsCurrentItem: false
        onCurrentIndexChanged: positionViewAtIndex(currentIndex, ListView.Contain)
        delegate: Item {
            id: row
            required property int index
            required property string label
            required property string hint
            required property string badge
            required property string tip
            required property bool mono
            required property string face
            width: rows.width
            height: menu.rowHeight
            Accessible.role: Accessible.MenuItem
            Accessible.name: row.label + (row.hint.length > 0 && row.hint !== row.label ? ", " + row.hint : "")
            Accessible.selected: row.index === menu.model.activeRow

            // People and teammates show their face, documents a page.
            Avatar {
                visible: menu.model.menuLabel === "Mention"
                x: 6
                anchors.verticalCenter: parent.verticalCenter
                name: row.label
                size: 18
                // The person's picture over the initial, once it has loaded.
                Image {
                    anchors.fill: parent
                    visible: status === Image.Ready
                    source: row.face
                    sourceSize.width: 36
                    sourceSize.height: 36
                    fillMode: Image.PreserveAspectCrop
                    asynchronous: true
                }
            }
            Icon {
                visible: menu.model.menuLabel === "Link a doc"
                x: 7
                anchors.verticalCenter: parent.verticalCenter
                name: "file-text"
                size: 16
                color: Theme.muted
            }
            Text {
                id: labelText
                x: menu.model.menuLabel === "Mention" || menu.model.menuLabel === "Link a doc" ? 32 : 8
                anchors.verticalCenter: parent.verticalCenter
                textFormat: Text.PlainText
                text: row.label
                color: Theme.text
                font.family: row.mono ? Theme.mono : Theme.sans
                font.pixelSize: 13
            }
            Text {
                anchors.left: labelText.right
                anchors.leftMargin: 8
                anchors.right: badgeText.left
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                textFormat: Text.PlainText
                text: row.hint !== row.label ? row.hint : ""
                color: Theme.muted
                font.family: Theme.sans
                font.pixelSize: 12
                elide: Text.ElideRight
            }
            Text {
                id: badgeText
                anchors.right: parent.right
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                textFormat: Text.PlainText
                text: row.badge
                color: Theme.muted
                font.family: Theme.sans
                font.pixelSize: 11
            }
            MouseArea {
                id: pointer
                anchors.fill: parent
                hoverEnabled: true
                onEntered: menu.model.hover(row.index)
                onClicked: menu.model.pick(row.index)
            }
            ToolTip.visible: row.tip.length > 0 && pointer.containsMouse
            ToolTip.delay: 700
            ToolTip.text: row.tip
        }
    }
}
