pragma Singleton
import QtQuick

// One slow clock for the signs of work (an orb's breath, a step's spinner):
// they move together in steps of an eighth of a second instead of at the
// display's rate. A window where teammates work then redraws 8 times a
// second, which a software renderer affords (at the display's rate it took
// a quarter of a core), and it stops when no sign of work shows.
QtObject {
    id: pulse
    // How many signs of work are moving now (see Pulsing).
    property int users: 0
    // Counts up while any moves; 156 is a whole number of breaths (13
    // ticks) and of spinner turns (12 ticks).
    property int tick: 0
    readonly property Timer clock: Timer {
        interval: 125
        repeat: true
        running: pulse.users > 0
        onTriggered: pulse.tick = (pulse.tick + 1) % 156
    }
}
