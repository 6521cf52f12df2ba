import QtQuick
import Kestro.Visuals

// The sky's drawing: one shader over the whole item, drawn into a layer at
// about a third of its size and scaled up (the clouds are soft, so nobody
// sees the difference, and the shader runs on an eighth of the pixels). Where
// the shader cannot be built, nothing draws and the page's own ground shows.
Item {
    id: surface
    property bool dark: false
    property color sky: "white"
    property color cloud: "white"
    // Reduce motion: one moment of the clouds, drawn once.
    property bool still: false
    // Nobody sees it: no frames at all.
    property bool stopped: false
    // 0: a frame for every frame of the display; else at most this many a
    // second (a software renderer cannot afford more).
    property int framesPerSecond: 0
    readonly property alias view: view

    Accessible.ignored: true

    SkyView {
        id: view
        dark: surface.dark
        sky: surface.sky
        cloud: surface.cloud
        still: surface.still
        stopped: surface.stopped || !surface.visible
        viewSize: Qt.size(surface.width, surface.height)
    }

    ShaderEffect {
        id: effect
        anchors.fill: parent
        readonly property size res: view.res
        readonly property real time: view.time
        readonly property real theme: view.theme
        readonly property color skyL: view.skyL
        readonly property color cloudL: view.cloudL
        readonly property color skyD: view.skyD
        fragmentShader: "qrc:/Kestro/Visuals/shaders/sky.frag.qsb"
        layer.enabled: true
        layer.textureSize: view.drawable
        layer.smooth: true
        onStatusChanged: {
            if (status === ShaderEffect.Error)
                console.warn("The sky is not drawn: its shader did not load (" + log.replace(/\s+/g, " ").trim() + ").")
        }
    }

    FrameAnimation {
        running: !view.paused && surface.framesPerSecond === 0
        onTriggered: view.frame()
    }
    Timer {
        running: !view.paused && surface.framesPerSecond > 0
        interval: Math.round(1000 / Math.max(1, surface.framesPerSecond))
        repeat: true
        onTriggered: view.frame()
    }
}
