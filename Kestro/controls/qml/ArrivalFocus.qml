import QtQuick
import QtQuick.Templates as T

// Gives the keyboard to a page's composer once the page's content shows
// (`ready`, or `request()` for a new place on the page, then `due`), unless
// a popup holds it by then: a menu, the bell or the palette that the user
// opened meanwhile keeps it.
Item {
    id: arrival
    // The page's content shows: bind to the page's load state.
    property bool ready: false
    signal due()
    function request() { soon.restart() }
    onReadyChanged: if (arrival.ready) arrival.request()
    function popupHoldsKeyboard(): bool {
        for (let item = Window.activeFocusItem; item; item = item.parent)
            if (item === T.Overlay.overlay)
                return true
        return false
    }
    // After the content shows, so the editor is on screen when it gets it.
    Timer {
        id: soon
        interval: 0
        onTriggered: if (!arrival.popupHoldsKeyboard()) arrival.due()
    }
}
