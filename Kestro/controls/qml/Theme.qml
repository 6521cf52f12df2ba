pragma Singleton
import QtQuick

// The one palette every view reads: the rich-text colours and the frame's
// surfaces, light or dark, tinted by the chosen shade. The window binds
// `dark` and the shades to the appearance settings.
QtObject {
    property bool dark: false
    property string darkShade: "graphite"
    property string lightShade: "daylight"
    // Motion is cut to jumps and fades (the desktop's or the user's choice).
    property bool reduceMotion: false

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

    // Text and rich text.
    readonly property color text: dark ? "#ececf0" : "#1d1d1f"
    readonly property color muted: dark ? "#9a9aa3" : "#6b6b70"
    readonly property color link: dark ? "#8fa2ff" : "#3b5bdb"
    readonly property color well: dark ? Qt.lighter(ground, 1.3) : Qt.darker(ground, 1.035)
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

    // Surfaces.
    readonly property color ground: dark ? (darkGrounds[darkShade] || "#1b1b1f") : (lightGrounds[lightShade] || "#ffffff")
    readonly property color background: ground
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
    // The sky behind Home and the sign-in card: the ground with a little
    // blue in it; the light clouds' cores a cool grey under white rims.
    // The dark clouds are the dark sky, lifted (the shader does that).
    readonly property color lightGround: lightGrounds[lightShade] || "#ffffff"
    readonly property color skyColor: dark ? Qt.tint(ground, Qt.rgba(0.35, 0.45, 0.85, 0.10))
                                           : Qt.tint(lightGround, Qt.rgba(0.40, 0.62, 0.95, 0.30))
    readonly property color cloudColor: Qt.tint(lightGround, Qt.rgba(0.78, 0.83, 0.91, 0.55))
    // A placeholder's bones, a shade off the ground.
    readonly property color bone: dark ? Qt.rgba(1, 1, 1, 0.07) : Qt.rgba(0, 0, 0, 0.06)
}
