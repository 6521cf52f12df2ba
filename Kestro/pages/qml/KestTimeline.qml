// Delegates name this file's ids and take their data through required
// properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import Kestro.Controls
import Kestro.RichText

// Messages, newest at the bottom: the model lists them newest first and the
// view lays them out bottom to top, so older history never moves what is on
// screen. The view follows new messages while the user is at the newest one
// and otherwise offers "Jump to the latest". One bar of actions serves every
// message: it comes to the one under the pointer, or the keyboard's.
ListView {
    id: timeline
    property bool inThread: false
    property bool canReact: false
    // What Copy says it copies: a room message, or a teammate's reply.
    property string copyTip: "Copy the message"
    // Follows new messages while the newest one shows.
    property bool stuck: true
    property Item hoveredItem: null
    // The pointer's message first; the keyboard's when the pointer is on none.
    readonly property Item target: timeline.hoveredItem ? timeline.hoveredItem
                                 : timeline.activeFocus || actions.activeFocus ? timeline.currentItem : null
    signal linkOpened(string path)
    signal reacted(string messageId, string emoji)
    signal addingReaction(string messageId, Item from)

    verticalLayoutDirection: ListView.BottomToTop
    clip: true
    focus: true
    keyNavigationEnabled: true
    // No current row until the keyboard picks one: a current row makes the
    // view scroll back to it when messages arrive while the user reads.
    currentIndex: -1
    onActiveFocusChanged: if (timeline.activeFocus && timeline.currentIndex < 0) timeline.currentIndex = timeline.indexAt(0, timeline.contentY + timeline.height - 1)
    boundsBehavior: Flickable.StopAtBounds
    // Tall rows are measured a screen ahead, so scrolling into them does not jump.
    cacheBuffer: 800
    activeFocusOnTab: true
    Accessible.role: Accessible.List
    ScrollBar.vertical: ScrollBar {
        id: scrollBar
        onPressedChanged: if (!scrollBar.pressed) timeline.remember()
    }

    onCountChanged: if (timeline.stuck) stick.restart()
    onMovementEnded: {
        timeline.stuck = timeline.atYEnd
        timeline.remember()
    }
    // Only the user's own scrolling lets go of the newest message or takes
    // it back: a drag, a flick, the wheel, the scroll bar or the keys.
    onContentYChanged: if (timeline.moving || scrollBar.pressed) {
        timeline.stuck = timeline.atYEnd
        timeline.anchorKey = ""
    }
    // The keyboard's moves, not a row arriving (which shifts the current
    // index, now or when the view next lays out), decide whether the view
    // follows the newest message: a move lands on another message.
    property string currentKey
    onCurrentIndexChanged: {
        const key = timeline.currentIndex >= 0 ? timeline.model.keyAt(timeline.currentIndex) : ""
        const moved = key !== timeline.currentKey
        timeline.currentKey = key
        if (moved && timeline.activeFocus) {
            timeline.stuck = timeline.currentIndex <= 0
            timeline.anchorKey = ""
        }
    }
    // Rows keep settling after they are placed (their parts and text come
    // in over a few frames): the row being read is put back each time.
    onContentHeightChanged: {
        if (timeline.stuck && !timeline.moving && !scrollBar.pressed)
            stick.restart()
        else if (timeline.anchorKey.length > 0 && !timeline.moving && !scrollBar.pressed)
            keep.restart()
    }

    // A message that arrives while the user reads older ones is laid out
    // below them, which would push what they read up by its height: the
    // message in the middle of the view is remembered before the rows come
    // and put back where it was after.
    property string anchorKey
    property real anchorOffset: 0
    Connections {
        target: timeline.model
        ignoreUnknownSignals: true
        function onRowsAboutToBeInserted() {
            timeline.remember()
        }
        function onRowsInserted() {
            if (timeline.anchorKey.length > 0 && !timeline.stuck)
                keep.restart()
        }
    }
    // Once the view has placed the new rows.
    Timer {
        id: keep
        interval: 0
        onTriggered: {
            timeline.forceLayout()
            const item = timeline.itemAtIndex(timeline.model.indexOf(timeline.anchorKey))
            if (item && !timeline.moving) {
                timeline.contentY = item.y - timeline.anchorOffset
                timeline.returnToBounds()
            }
        }
    }

    // The row across the middle of the view, and where it shows, while the
    // user reads older messages.
    function remember() {
        const row = timeline.indexAt(timeline.width / 2, timeline.contentY + timeline.height / 2)
        const item = row >= 0 ? timeline.itemAtIndex(row) : null
        timeline.anchorKey = item && !timeline.stuck ? timeline.model.keyAt(row) : ""
        if (item)
            timeline.anchorOffset = item.y - timeline.contentY
    }

    // Back to the newest once the new rows are laid out.
    Timer {
        id: stick
        interval: 0
        onTriggered: timeline.positionViewAtBeginning()
    }
    Keys.onPressed: event => {
        if (event.key === Qt.Key_End) {
            timeline.jumpToLatest()
            event.accepted = true
        }
    }

    function jumpToLatest() {
        timeline.currentIndex = 0
        timeline.positionViewAtBeginning()
        timeline.stuck = true
    }

    delegate: KestMessage {
        id: row
        inThread: timeline.inThread
        canReact: timeline.canReact
        onHoveredChanged: {
            if (row.hovered)
                timeline.hoveredItem = row
            else if (timeline.hoveredItem === row)
                timeline.hoveredItem = null
        }
        onLinkOpened: path => timeline.linkOpened(path)
        onReacted: (id, emoji) => timeline.reacted(id, emoji)
        onAddingReaction: (id, from) => timeline.addingReaction(id, from)
    }

    // The one bar of actions.
    Row {
        id: actions
        objectName: "messageActions"
        readonly property var message: timeline.target
        parent: message ? message : timeline
        visible: !!message
        anchors.top: parent.top
        anchors.right: parent.right
        anchors.topMargin: 4
        anchors.rightMargin: 8
        z: 10
        spacing: 2
        IconButton {
            visible: timeline.canReact
            glyph: "face-slightly-smiling-plus"
            tip: "Add a reaction"
            onClicked: timeline.addingReaction(actions.message.key, this)
        }
        IconButton {
            visible: !timeline.inThread && timeline.canReact
            glyph: "message-square-reply"
            tip: "Reply in thread"
            onClicked: timeline.linkOpened("/kest?thread=" + actions.message.threadOf)
        }
        IconButton {
            objectName: "howItWorked"
            visible: !!actions.message && actions.message.runHref.length > 0
            glyph: "list-checks"
            tip: "How it worked"
            onClicked: timeline.linkOpened(actions.message.runHref)
        }
        IconButton {
            glyph: "copy"
            tip: timeline.copyTip
            Accessible.name: "Copy"
            onClicked: CodeView.copy(actions.message.text)
        }
    }

    PrimaryButton {
        objectName: "jumpToLatest"
        parent: timeline
        visible: !timeline.atYEnd && timeline.count > 0 && !timeline.stuck
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 12
        text: "Jump to the latest"
        onClicked: timeline.jumpToLatest()
    }
}
