import QtQuick
import Kestro

// The window's colours: the rich-text palette plus the frame's surfaces,
// tinted by the chosen light or dark shade.
Theme {
    id: theme
    property string darkShade: "graphite"
    property string lightShade: "daylight"

    readonly property var darkGrounds: ({
        "graphite": "#1b1b1f", "charcoal": "#202124", "dimmed": "#22272e",
        "stone": "#1f1d1b", "obsidian": "#0e0e11", "onyx": "#121212",
        "ink": "#0f1422", "espresso": "#1d1714", "carbon": "#171717"
    })
    readonly property var lightGrounds: ({
        "daylight": "#ffffff", "eggshell": "#fbf9f3", "paper": "#f8f7f4",
        "mist": "#f3f6f9", "ash": "#f2f2f2", "sand": "#f7f1e6",
        "sage": "#f0f5ef", "lavender": "#f5f3fc", "blush": "#fcf3f3"
    })

    readonly property color ground: dark ? (darkGrounds[darkShade] || "#1b1b1f") : (lightGrounds[lightShade] || "#ffffff")
    readonly property color page: ground
    readonly property color sidebar: dark ? Qt.lighter(ground, 1.25) : Qt.darker(ground, 1.035)
    readonly property color raised: dark ? Qt.lighter(ground, 1.45) : "#ffffff"
    readonly property color border: dark ? Qt.rgba(1, 1, 1, 0.09) : Qt.rgba(0, 0, 0, 0.09)
    readonly property color hover: dark ? Qt.rgba(1, 1, 1, 0.06) : Qt.rgba(0, 0, 0, 0.045)
    readonly property color selected: dark ? Qt.rgba(1, 1, 1, 0.11) : Qt.rgba(0, 0, 0, 0.075)
    readonly property color accent: dark ? "#8b9dff" : "#4257e0"
    readonly property color accentText: "#ffffff"
    readonly property color badge: dark ? "#ff6b6b" : "#e03131"
    readonly property color shadow: dark ? Qt.rgba(0, 0, 0, 0.5) : Qt.rgba(0, 0, 0, 0.16)
    readonly property color scrim: dark ? Qt.rgba(0, 0, 0, 0.55) : Qt.rgba(0, 0, 0, 0.28)
    readonly property color good: dark ? "#69db7c" : "#2f9e44"
    readonly property color busy: dark ? "#ffd43b" : "#e8a400"
}
