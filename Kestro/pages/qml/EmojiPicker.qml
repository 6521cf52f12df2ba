// Delegates name this file's ids and take their data through required
// properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls

// The emoji to react with: a search field over a grid of the reactions
// people use at work, by name. Enter picks the first match; the arrows move
// through the grid.
Popup {
    id: picker
    property string messageId
    signal picked(string messageId, string emoji)
    width: 316
    height: 300
    padding: 8
    modal: false
    focus: true
    closePolicy: Popup.CloseOnEscape | Popup.CloseOnPressOutside

    // Each: the emoji, its name (what a screen reader says), more words to find it by.
    readonly property var all: [
        ["👍", "thumbs up", "yes"], ["👎", "thumbs down", "no"], ["❤️", "red heart", "love"],
        ["🎉", "party popper", "tada celebrate"], ["😄", "grinning face", "smile happy"], ["😂", "tears of joy", "laugh"],
        ["🙏", "folded hands", "thanks please"], ["👀", "eyes", "looking"], ["🚀", "rocket", "launch ship"],
        ["✅", "check mark", "done"], ["❌", "cross mark", "no wrong"], ["🔥", "fire", "hot"],
        ["💯", "hundred points", "perfect"], ["👏", "clapping hands", "applause"], ["🙌", "raised hands", "hooray"],
        ["💪", "flexed biceps", "strong"], ["🤔", "thinking face", "hmm"], ["😮", "surprised face", "wow"],
        ["😢", "crying face", "sad"], ["😅", "sweat smile", "relief"], ["🤝", "handshake", "deal"],
        ["👌", "OK hand", "perfect"], ["✨", "sparkles", "new"], ["⭐", "star", ""],
        ["💡", "light bulb", "idea"], ["📌", "pushpin", "pin"], ["📈", "chart increasing", "up growth"],
        ["📉", "chart decreasing", "down"], ["⚠️", "warning", "careful"], ["🐛", "bug", ""],
        ["🛠️", "hammer and wrench", "tools fix"], ["🔍", "magnifying glass", "search look"], ["📝", "memo", "note write"],
        ["📣", "megaphone", "announce"], ["⏰", "alarm clock", "time"], ["⏳", "hourglass", "waiting"],
        ["☕", "hot beverage", "coffee"], ["🍕", "pizza", ""], ["🎯", "direct hit", "target goal"],
        ["🏆", "trophy", "win"], ["💰", "money bag", "money"], ["🤖", "robot", "teammate"],
        ["🧠", "brain", "smart"], ["👋", "waving hand", "hello"], ["😍", "heart eyes", "love"],
        ["😎", "sunglasses", "cool"], ["🙈", "see-no-evil monkey", "oops"], ["🤯", "exploding head", "mind blown"]
    ]
    property string query
    readonly property var shown: {
        const q = picker.query.trim().toLowerCase()
        return q.length === 0 ? picker.all : picker.all.filter(e => (e[1] + " " + e[2]).toLowerCase().indexOf(q) >= 0)
    }

    function openFor(id, from) {
        picker.messageId = id
        picker.query = ""
        search.text = ""
        const p = from.mapToItem(picker.parent, 0, from.height + 4)
        picker.x = Math.max(8, Math.min(p.x, picker.parent.width - picker.width - 8))
        picker.y = p.y + picker.height > picker.parent.height ? p.y - picker.height - from.height - 8 : p.y
        picker.open()
        search.forceActiveFocus()
    }
    function choose(emoji) {
        picker.picked(picker.messageId, emoji)
        picker.close()
    }

    background: Rectangle {
        radius: 10
        color: Theme.raised
        border.color: Theme.border
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 6
        TextField {
            id: search
            Layout.fillWidth: true
            placeholderText: "Find an emoji"
            Accessible.name: "Find an emoji"
            color: Theme.text
            font.family: Theme.sans
            font.pixelSize: 13
            onTextChanged: picker.query = text
            Keys.onReturnPressed: if (picker.shown.length > 0) picker.choose(picker.shown[0][0])
            Keys.onEnterPressed: if (picker.shown.length > 0) picker.choose(picker.shown[0][0])
            Keys.onDownPressed: grid.forceActiveFocus()
            background: Rectangle {
                radius: 6
                color: Theme.well
                border.color: search.activeFocus ? Theme.accent : Theme.border
            }
        }
        GridView {
            id: grid
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            cellWidth: 37
            cellHeight: 37
            model: picker.shown
            keyNavigationEnabled: true
            Accessible.role: Accessible.List
            Accessible.name: "Emoji"
            Keys.onReturnPressed: if (grid.currentIndex >= 0) picker.choose(picker.shown[grid.currentIndex][0])
            Keys.onEnterPressed: if (grid.currentIndex >= 0) picker.choose(picker.shown[grid.currentIndex][0])
            delegate: AbstractButton {
                id: cell
                required property var modelData
                required property int index
                width: 35
                height: 35
                hoverEnabled: true
                focusPolicy: Qt.NoFocus
                Accessible.role: Accessible.Button
                Accessible.name: cell.modelData[1]
                Accessible.onPressAction: picker.choose(cell.modelData[0])
                onClicked: picker.choose(cell.modelData[0])
                background: Rectangle {
                    radius: 6
                    color: cell.hovered || (grid.activeFocus && grid.currentIndex === cell.index) ? Theme.selected : "transparent"
                }
                contentItem: Text {
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    textFormat: Text.PlainText
                    text: cell.modelData[0]
                    font.pixelSize: 20
                }
            }
        }
        Text {
            visible: picker.shown.length === 0
            text: "No emoji by that name."
            color: Theme.muted
            font.family: Theme.sans
            font.pixelSize: 12
        }
    }
}
