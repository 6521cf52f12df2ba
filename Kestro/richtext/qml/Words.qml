import QtQuick

// Selectable rich text for one block's inline runs; links report through
// linkActivated and show the pointing hand.
TextEdit {
    id: words
    required property var theme
    property string html
    property real size: 14
    property bool bold: false
    property string family: theme.sans
    signal linkClicked(string link)

    readOnly: true
    selectByMouse: true
    persistentSelection: false
    textFormat: TextEdit.RichText
    wrapMode: TextEdit.Wrap
    color: theme.text
    selectionColor: theme.dark ? "#3b4a80" : "#c7d2fe"
    selectedTextColor: theme.text
    font.family: family
    font.pixelSize: size
    font.weight: bold ? Font.DemiBold : Font.Normal
    // Links and code spans take the theme's link colour and the mono face.
    text: html.replace(/<a href=/g, "<a style=\"color:" + theme.link + ";text-decoration:underline\" href=")
              .replace(/<code>/g, "<span style=\"font-family:'" + theme.mono + "'\">")
              .replace(/<\/code>/g, "</span>")
    onLinkActivated: link => words.linkClicked(link)

    HoverHandler {
        cursorShape: words.hoveredLink !== "" ? Qt.PointingHandCursor : Qt.IBeamCursor
    }
}
