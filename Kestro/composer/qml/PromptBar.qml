import QtQuick
import QtQuick.Controls.Basic
import Kestro.Controls
import Kestro.Composer

// The one place where the user writes to teammates. The text belongs to
// the caller (`value`, two-way); Return sends it through `send`, Shift+Return
// breaks the line, and while an inline menu is open the arrows, Return, Tab
// and Escape go to the menu first.
FocusScope {
    id: bar
    // The user's role here (the workspace's, from the frame), and the roles
    // that may write. Unset, the bar stays read-only rather than let anyone
    // write by mistake.
    property string access
    property var allow: ["owner", "admin", "member"]
    // Two-way: the bar writes what the user types back here, which replaces
    // a binding; a caller keeps its own copy with onValueChanged.
    property string value
    property string placeholder
    property string label: "Message"
    property string sendLabel: "Send"
    property bool pending: false
    property bool disabled: false
    property int min: stacked ? 56 : 32
    property int maxLength: 0
    property alias mentions: menus.mentions
    property alias mentionLabel: menus.mentionLabel
    property alias skillsFor: menus.skillsFor
    property alias docLinks: menus.docLinks
    property alias sources: menus.sources
    property bool stacked: false
    property bool quiet: false
    // Set when the caller takes files (pasted or dropped) through `files`.
    property bool acceptsFiles: false
    // Set when Escape with no menu open should reach `cancel`; otherwise
    // the key passes on to the page.
    property bool cancels: false
    // Takes the keyboard as soon as it shows.
    property bool autoFocus: false
    // Set when the caller says itself why an empty message is not sent:
    // Send stays enabled and an empty text still reaches `send`.
    property bool explainsEmpty: false
    // The caller's extra buttons, placed beside (or above) the editor.
    default property alias actions: actionRow.data
    readonly property int maxHeight: 240
    readonly property string notice: menus.readOnlyNotice(access, allow)
    readonly property alias editor: area
    readonly property alias model: menus

    signal send(string text)
    signal cancel()
    signal files(var paths)

    implicitHeight: notice.length > 0 ? noticeText.implicitHeight + 24 : frame.implicitHeight
    implicitWidth: 480

    function submit() {
        // A word the input method still composes belongs to the message.
        // (Qt 6.4 describes Qt.inputMethod to the linter as a bare QObject,
        // hence the disable comments on its calls.)
        Qt.inputMethod.commit() // qmllint disable
        if (bar.pending || bar.disabled || bar.notice.length > 0
                || (bar.value.trim().length === 0 && !bar.explainsEmpty))
            return
        bar.send(bar.value)
    }
    // A read-only bar (its notice shows) takes no keyboard.
    // Coming back to words kept from before, the caret waits after them.
    function focusEditor() {
        if (bar.notice.length > 0 || area.activeFocus)
            return
        area.cursorPosition = area.length
        area.forceActiveFocus()
    }
    Component.onCompleted: if (bar.autoFocus) bar.focusEditor()

    PromptBarModel {
        id: menus
        onPicked: (text, caret) => {
            // The pick already holds what the input method was composing.
            Qt.inputMethod.reset() // qmllint disable
            bar.value = text
            area.cursorPosition = caret
        }
    }

    Text {
        id: noticeText
        visible: bar.notice.length > 0
        anchors.fill: parent
        anchors.margins: 12
        textFormat: Text.PlainText
        text: bar.notice
        wrapMode: Text.Wrap
        color: Theme.muted
        font.family: Theme.sans
        font.pixelSize: 13
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }

    Rectangle {
        id: frame
        visible: bar.notice.length === 0
        anchors.fill: parent
        implicitHeight: (bar.stacked ? actionRow.height + 8 : 0) + editorBox.height + 12
        radius: bar.quiet ? 0 : 12
        color: bar.quiet ? "transparent" : Theme.raised
        border.width: bar.quiet ? 0 : 1
        border.color: area.activeFocus ? Theme.accent : Theme.border
        opacity: bar.disabled ? 0.6 : 1

        Row {
            id: actionRow
            x: 8
            y: bar.stacked ? 8 : (frame.height - height) / 2
            spacing: 4
        }

        Flickable {
            id: editorBox
            objectName: "promptScroll"
            x: bar.stacked ? 8 : actionRow.width + (actionRow.width > 0 ? 12 : 8)
            y: bar.stacked ? actionRow.height + 16 : 6
            width: frame.width - x - sendButton.width - 16
            height: Math.max(bar.min, Math.min(area.implicitHeight, bar.maxHeight))
            contentHeight: area.implicitHeight
            clip: true
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar { policy: area.implicitHeight > bar.maxHeight ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff }

            TextArea.flickable: TextArea {
                id: area
                objectName: "promptEditor"
                focus: true
                enabled: !bar.disabled
                // The caret blinks for a while after the last key, then
                // stays lit: a caret that blinks forever keeps the window
                // drawing frames while the user reads.
                cursorDelegate: Rectangle {
                    id: caret
                    // The editor (the delegate's parent) owns the caret.
                    readonly property TextArea editor: parent as TextArea
                    width: 2
                    color: Theme.accent
                    property bool lit: true
                    property int blinks: 0
                    visible: !!caret.editor && caret.editor.activeFocus && caret.editor.selectedText.length === 0
                             && (caret.lit || Theme.reduceMotion)
                    Timer {
                        interval: 530
                        repeat: true
                        running: !!caret.editor && caret.editor.activeFocus && caret.blinks < 20 && !Theme.reduceMotion
                        onTriggered: {
                            caret.lit = !caret.lit
                            caret.blinks += 1
                            if (caret.blinks >= 20)
                                caret.lit = true
                        }
                    }
                    Connections {
                        target: caret.editor
                        function onCursorPositionChanged() { caret.blinks = 0; caret.lit = true }
                        function onActiveFocusChanged() { caret.blinks = 0; caret.lit = true }
                    }
                }
                text: bar.value
                placeholderText: bar.placeholder
                placeholderTextColor: Theme.muted
                color: Theme.text
                selectionColor: Theme.accent
                selectedTextColor: Theme.accentText
                wrapMode: TextEdit.Wrap
                font.family: Theme.sans
                font.pixelSize: 14
                leftPadding: 4
                rightPadding: 4
                topPadding: 7
                bottomPadding: 9
                background: null
                Accessible.name: bar.label
                Accessible.role: Accessible.EditableText

                onTextChanged: {
                    if (bar.maxLength > 0 && text.length > bar.maxLength) {
                        // Over the limit: the excess is cut where it came in,
                        // just before the caret, not from the end.
                        const at = cursorPosition
                        const excess = text.length - bar.maxLength
                        const from = Math.max(0, at - excess)
                        remove(from, from + excess)
                        cursorPosition = from
                    }
                    if (text !== bar.value)
                        bar.value = text
                    menus.edited(text, cursorPosition, preeditText)
                }
                onCursorPositionChanged: menus.edited(text, cursorPosition, preeditText)
                onPreeditTextChanged: menus.edited(text, cursorPosition, preeditText)
                // The caret stays in sight as the text scrolls.
                onCursorRectangleChanged: {
                    const r = cursorRectangle
                    if (r.y < editorBox.contentY)
                        editorBox.contentY = r.y
                    else if (r.y + r.height > editorBox.contentY + editorBox.height)
                        editorBox.contentY = r.y + r.height - editorBox.height
                }

                Keys.onPressed: event => {
                    if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
                        if (inputMethodComposing) {
                            // The input method's text is committed, not sent.
                            Qt.inputMethod.commit() // qmllint disable
                            event.accepted = true
                        } else if (event.modifiers & Qt.ShiftModifier) {
                            event.accepted = false // the editor breaks the line
                        } else {
                            event.accepted = true
                            if (!menus.key(PromptBarModel.Enter))
                                bar.submit()
                        }
                    } else if (event.key === Qt.Key_Tab) {
                        event.accepted = true
                        const next = menus.key(PromptBarModel.Tab) ? null : area.nextItemInFocusChain(true)
                        if (next)
                            next.forceActiveFocus(Qt.TabFocusReason)
                    } else if (event.key === Qt.Key_Backtab) {
                        event.accepted = true
                        const previous = area.nextItemInFocusChain(false)
                        if (previous)
                            previous.forceActiveFocus(Qt.BacktabFocusReason)
                    } else if (event.key === Qt.Key_Up) {
                        event.accepted = menus.key(PromptBarModel.Up)
                    } else if (event.key === Qt.Key_Down) {
                        event.accepted = menus.key(PromptBarModel.Down)
                    } else if (event.key === Qt.Key_Escape) {
                        if (menus.key(PromptBarModel.Escape)) {
                            event.accepted = true
                        } else if (bar.cancels) {
                            event.accepted = true
                            bar.cancel()
                        } else {
                            event.accepted = false // the page's Escape
                        }
                    } else if (event.matches(StandardKey.Paste) && bar.acceptsFiles) {
                        const paths = menus.pastedFiles()
                        if (paths.length > 0) {
                            event.accepted = true
                            bar.files(paths)
                        } else {
                            event.accepted = false // plain text: the editor pastes it
                        }
                    }
                }
            }
        }

        AbstractButton {
            id: sendButton
            objectName: "sendButton"
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 8
            implicitWidth: 32
            implicitHeight: 32
            enabled: !bar.disabled && !bar.pending && (bar.explainsEmpty || bar.value.trim().length > 0)
            focusPolicy: Qt.TabFocus
            Accessible.name: bar.pending ? bar.sendLabel + ", sending" : bar.sendLabel
            Accessible.role: Accessible.Button
            Accessible.onPressAction: bar.submit()
            onClicked: bar.submit()
            background: Rectangle {
                radius: 8
                color: sendButton.enabled || bar.pending ? Theme.accent : Theme.selected
                border.width: sendButton.visualFocus ? 2 : 0
                border.color: Theme.text
            }
            contentItem: Item {
                Icon {
                    anchors.centerIn: parent
                    visible: !bar.pending
                    name: "arrow-up"
                    size: 16
                    color: Theme.accentText
                }
                Icon {
                    anchors.centerIn: parent
                    visible: bar.pending
                    name: "loader-circle"
                    size: 16
                    color: Theme.accentText
                    RotationAnimator on rotation {
                        running: bar.pending && !Theme.reduceMotion
                        from: 0
                        to: 360
                        duration: 900
                        loops: Animation.Infinite
                    }
                }
            }
            ToolTip.visible: hovered
            ToolTip.delay: 600
            ToolTip.text: bar.sendLabel
        }

        // How much is left, once the text nears its limit.
        Text {
            objectName: "lengthLeft"
            visible: bar.maxLength > 0 && bar.value.length >= bar.maxLength * 0.9
            anchors.right: sendButton.left
            anchors.rightMargin: 8
            anchors.verticalCenter: sendButton.verticalCenter
            textFormat: Text.PlainText
            text: (bar.maxLength - bar.value.length) + " left"
            color: bar.value.length >= bar.maxLength ? Theme.danger : Theme.muted
            font.family: Theme.sans
            font.pixelSize: 11
        }

        // The editor's own menu; Paste also takes files and images.
        MouseArea {
            anchors.fill: editorBox
            acceptedButtons: Qt.RightButton
            onClicked: mouse => {
                editMenu.canPasteFiles = bar.acceptsFiles && menus.clipboardHasFiles()
                editMenu.popup()
            }
        }
        Menu {
            id: editMenu
            property bool canPasteFiles: false
            MenuItem { text: "Cut"; enabled: area.selectedText.length > 0; onTriggered: area.cut() }
            MenuItem { text: "Copy"; enabled: area.selectedText.length > 0; onTriggered: area.copy() }
            MenuItem {
                text: "Paste"
                enabled: area.canPaste || editMenu.canPasteFiles
                onTriggered: {
                    const paths = bar.acceptsFiles ? menus.pastedFiles() : []
                    if (paths.length > 0)
                        bar.files(paths)
                    else
                        area.paste()
                }
            }
            MenuItem { text: "Select all"; onTriggered: area.selectAll() }
        }

        DropArea {
            anchors.fill: parent
            enabled: bar.acceptsFiles && !bar.disabled
            // Only files: dragged text still goes into the editor.
            keys: ["text/uri-list"]
            onDropped: drop => {
                const paths = menus.localFiles(drop.urls)
                if (paths.length > 0) {
                    drop.accept()
                    bar.files(paths)
                }
            }
        }
    }

    // The menu opens above the caret, inside the window.
    Popup {
        id: menuPopup
        visible: menus.menuOpen && area.activeFocus
        parent: bar
        padding: 0
        margins: 8
        closePolicy: Popup.NoAutoClose
        focus: false
        x: Math.max(0, Math.min(editorBox.x + area.cursorRectangle.x, bar.width - width))
        y: editorBox.y + area.cursorRectangle.y - editorBox.contentY - height - 6
        background: null
        contentItem: InlineMenuList {
            objectName: "inlineMenu"
            model: menus
        }
    }
}
