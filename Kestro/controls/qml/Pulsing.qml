import QtQuick

// Keeps the Pulse clock running while `active`: one per moving sign of
// work, counted once whether it starts active, turns so later or goes away.
QtObject {
    id: pulsing
    property bool active: false
    property bool counted: false
    function sync() {
        if (pulsing.active === pulsing.counted)
            return
        Pulse.users += pulsing.active ? 1 : -1
        pulsing.counted = pulsing.active
    }
    onActiveChanged: pulsing.sync()
    Component.onCompleted: pulsing.sync()
    Component.onDestruction: if (pulsing.counted) Pulse.users -= 1
}
