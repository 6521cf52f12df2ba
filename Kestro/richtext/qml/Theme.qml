import QtQuick

// The colours and type the rich-text views draw with, light or dark.
QtObject {
    property bool dark: false
    readonly property color text: dark ? "#ececf0" : "#1d1d1f"
    readonly property color muted: dark ? "#9a9aa3" : "#6b6b70"
    readonly property color link: dark ? "#8fa2ff" : "#3b5bdb"
    readonly property color background: dark ? "#17171a" : "#fbfbfa"
    readonly property color well: dark ? "#222226" : "#f2f2f0"
    readonly property color line: dark ? Qt.rgba(1, 1, 1, 0.08) : Qt.rgba(0, 0, 0, 0.08)
    readonly property color quoteBar: dark ? "#3a3a42" : "#d9d9de"
    readonly property color mark: dark ? Qt.rgba(1, 0.85, 0.3, 0.12) : Qt.rgba(1, 0.75, 0, 0.12)
    readonly property color added: dark ? Qt.rgba(0.3, 0.85, 0.45, 0.10) : Qt.rgba(0.1, 0.6, 0.25, 0.10)
    readonly property color removed: dark ? Qt.rgba(1, 0.35, 0.35, 0.10) : Qt.rgba(0.85, 0.15, 0.15, 0.10)
    readonly property color danger: dark ? "#ff7b7b" : "#c92a2a"
    readonly property var tones: dark
        ? { "string": "#9ad68a", "comment": Qt.rgba(0.85, 0.85, 0.9, 0.45), "number": "#f3b36b", "keyword": "#c79bff", "call": "#7fc8ff" }
        : { "string": "#2b8a3e", "comment": Qt.rgba(0.1, 0.1, 0.12, 0.45), "number": "#c2410c", "keyword": "#7c3aed", "call": "#1c64c8" }
    readonly property string sans: "Geist"
    readonly property string mono: "Geist Mono"
    readonly property string display: "Plus Jakarta Sans"
}
