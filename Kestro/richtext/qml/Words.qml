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
    // Links and code spans take the theme's link colour and the mono face.
    text: html.replace(/<a href=/g, "<a style=\"color:" + Theme.link + ";text-decoration:underline\" href=")
              .replace(/<code>/g, "<span style=\"font-family:'" + Theme.mono + "'\">")
              .replace(/<\/code>/g, "</span>")
    onLinkActivated: link => words.linkClicked(link)

    HoverHandler {
        cursorShape: words.hoveredLink !== "" ? Qt.PointingHandCursor : Qt.IBeamCursor
    }
}
