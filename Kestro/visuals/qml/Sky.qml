import QtQuick
import Kestro.Controls
import Kestro.Visuals

// The sky behind a page: the app's theme and the user's wish for less
// motion, passed down to its drawing. It stops while the window is
// minimised or hidden, and on a software renderer whenever the theme is
// not blending.
SkySurface {
    id: sky
    dark: Theme.dark
    sky: Theme.skyColor
    cloud: Theme.cloudColor
    still: Theme.reduceMotion || SkyPolicy.still
    framesPerSecond: SkyPolicy.framesPerSecond
    stopped: Window.visibility === Window.Minimized || Window.visibility === Window.Hidden
             || (SkyPolicy.calm && !sky.view.blending)
    // The first sky in a window asks what draws it: made inside a shown
    // window, it has its host from the start, and no change tells of it.
    readonly property var host: Window.window
    onHostChanged: SkyPolicy.learnFrom(host)
    Component.onCompleted: SkyPolicy.learnFrom(host)
}
