// Components here stay in this file's context: delegates name its ids, and
// take their model data only through required properties.
pragma ComponentBehavior: Bound
import QtQuick
import Kestro.Controls
import Kestro.RichText

// A code well: optional title bar with the copy button, optional line
// numbers from `start`, one marked line, tones for JavaScript, TypeScript
// and JSON, whole-line tints for "diff".
Rectangle {
    id: block
    property string code
    property string lang
    property string title
    property bool numbers: false
    property int start: 1
    property int mark: 0
    property bool bare: false
    property bool danger: false
    property bool copied: false

    readonly property var lines: CodeView.lines(code, lang, start, mark, bare, Theme.tones)
    // Line numbers and tinted lines (a diff, a marked line) need a row per
    // line, tinted across the whole well; other code is one text.
    readonly property bool perLine: numbers || lines.some(line => line.tint !== "")
    function tintColor(tint: string): color {
        return tint === "marked" ? Theme.mark : tint === "added" ? Theme.added
             : tint === "removed" ? Theme.removed : "transparent"
    }
    implicitHeight: column.height
    height: implicitHeight
    radius: bare ? 0 : 8
    color: bare ? "transparent" : Theme.well
    border.width: bare ? 0 : 1
    border.color: danger ? Theme.danger : Theme.line

    Column {
        id: column
        width: block.width

        Item {
            visible: !block.bare
            width: parent.width
            height: 30
            Text {
                anchors.left: parent.left
                anchors.leftMargin: 12
                anchors.verticalCenter: parent.verticalCenter
                textFormat: Text.PlainText
                text: block.title !== "" ? block.title : block.lang
                color: block.danger ? Theme.danger : Theme.muted
                font.family: Theme.mono
                font.pixelSize: 12
            }
            IconButton {
                id: copyButton
                anchors.right: parent.right
                anchors.rightMargin: 4
                anchors.verticalCenter: parent.verticalCenter
                implicitWidth: 26
                implicitHeight: 26
                iconSize: 14
                glyph: block.copied ? "check" : "copy"
                tip: block.copied ? "Copied" : "Copy the code"
                onClicked: {
                    CodeView.copy(block.code)
                    block.copied = true
                    copiedTimer.restart()
                }
                Timer {
                    id: copiedTimer
                    interval: 1600
                    onTriggered: block.copied = false
                }
            }
        }

        // Plain code is one text: one item however long the code, and the
        // selection runs across lines.
        TextEdit {
            visible: !block.perLine
            width: parent.width
            leftPadding: 12
            rightPadding: 12
            bottomPadding: block.bare ? 0 : 8
            topPadding: block.bare ? 0 : 2
            wrapMode: TextEdit.WrapAtWordBoundaryOrAnywhere
            readOnly: true
            selectByMouse: true
            textFormat: TextEdit.RichText
            // An empty line needs a character, or rich text drops it.
            text: block.perLine ? "" : block.lines.map(line => "<p style=\"margin:0px\">"
                                                        + (line.html.length > 0 ? line.html : "&nbsp;") + "</p>").join("")
            color: block.danger ? Theme.danger : Theme.text
            font.family: Theme.mono
            font.pixelSize: 13
        }
        Column {
            visible: block.perLine
            width: parent.width
            bottomPadding: block.bare ? 0 : 8
            topPadding: block.bare ? 0 : 2
            Repeater {
                model: block.perLine ? block.lines : []
                delegate: Rectangle {
                    id: line
                    required property var modelData
                    width: column.width
                    height: codeLine.height
                    color: block.tintColor(modelData.tint)
                    Row {
                        spacing: 12
                        leftPadding: 12
                        Text {
                            visible: block.numbers
                            width: 24
                            horizontalAlignment: Text.AlignRight
                            textFormat: Text.PlainText
                            text: line.modelData.number
                            color: Theme.muted
                            font.family: Theme.mono
                            font.pixelSize: 13
                        }
                        TextEdit {
                            id: codeLine
                            // Long lines wrap rather than run past the well.
                            width: line.width - (block.numbers ? 60 : 24)
                            wrapMode: TextEdit.WrapAtWordBoundaryOrAnywhere
                            readOnly: true
                            selectByMouse: true
                            textFormat: TextEdit.RichText
                            text: line.modelData.html
                            color: block.danger ? Theme.danger : Theme.text
                            font.family: Theme.mono
                            font.pixelSize: 13
                        }
                    }
                }
            }
        }
    }
}
