import QtQuick

// An icon that turns while `spinning` (a step at work, a load), on the
// shared slow clock: a twelfth of a turn a tick reads as turning where an
// eighth read as ticking. It stands still under reduce motion.
Icon {
    id: icon
    property bool spinning: false
    Pulsing {
        id: spin
        active: icon.spinning && icon.visible && !Theme.reduceMotion
    }
    rotation: spin.active ? (Pulse.tick % 12) * 30 : 0
}
