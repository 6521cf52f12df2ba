import QtQuick
import Kestro.Controls

// Selectable rich text for one block's inline runs; links report through
// linkActivated and show the pointing hand.
TextEdit {
    id: words
    property string html
    property real size: 14
    property bool bold: false
    property string family: Theme.sans
    signal linkClicked(string link)

    readOnly: true
    selectByMouse: true
    persistentSelection: false
    textFormat: TextEdit.RichText
    wrapMode: TextEdit.Wrap
    color: Theme.text
    selectionColor: Theme.dark ? "#3b4a80" : "#c7d2fe"
    selectedTextColor: Theme.text
    font.family: family
    font.pixelSize: size
    font.weight: bold ? Font.DemiBold : Font.Normal
    // The html comes styled (links, code spans) from the document model.
    text: html
    onLinkActivated: link => words.linkClicked(link)

    HoverHandler {
        cursorShape: words.hoveredLink !== "" ? Qt.PointingHandCursor : Qt.IBeamCursor
    }
}
