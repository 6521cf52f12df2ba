import QtQuick
import QtQuick.Shapes
import Kestro.Controls

// The visitors over the range: a line and the area under it, drawn with
// Qt Quick Shapes from points between 0 and 1, and the axis's words.
Item {
    id: chart
    property var points: []
    property string peak
    property string start
    property string end
    property string summary
    readonly property real plotTop: 22
    readonly property real plotBottom: height - 22

    implicitHeight: 220
    Accessible.role: Accessible.Chart
    Accessible.name: summary

    function place(p) {
        return Qt.point(p.x * chart.width, chart.plotTop + (1 - p.y) * (chart.plotBottom - chart.plotTop))
    }
    readonly property var line: points.map(p => chart.place(p))
    // The line closed along the ground, for the area under it.
    readonly property var area: line.length > 1
        ? [Qt.point(line[0].x, plotBottom)].concat(line, [Qt.point(line[line.length - 1].x, plotBottom)])
        : []

    // The peak's level and the ground line.
    Rectangle { x: 0; y: chart.plotTop; width: chart.width; height: 1; color: Theme.line }
    Rectangle { x: 0; y: chart.plotBottom; width: chart.width; height: 1; color: Theme.border }
    Text {
        x: 0; y: 2
        text: chart.peak
        textFormat: Text.PlainText
        font.family: Theme.sans; font.pixelSize: 11
        color: Theme.muted
    }

    Shape {
        anchors.fill: parent
        visible: chart.line.length > 1
        ShapePath {
            strokeColor: "transparent"
            fillGradient: LinearGradient {
                x1: 0; y1: chart.plotTop; x2: 0; y2: chart.plotBottom
                GradientStop { position: 0; color: Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.22) }
                GradientStop { position: 1; color: Qt.rgba(Theme.accent.r, Theme.accent.g, Theme.accent.b, 0.02) }
            }
            PathPolyline { path: chart.area }
        }
        ShapePath {
            strokeColor: Theme.accent
            strokeWidth: 2
            fillColor: "transparent"
            joinStyle: ShapePath.RoundJoin
            capStyle: ShapePath.RoundCap
            PathPolyline { path: chart.line }
        }
    }
    // One day (or hour) is a dot, not a line.
    Rectangle {
        visible: chart.line.length === 1
        x: chart.line.length === 1 ? chart.line[0].x - 4 : 0
        y: chart.line.length === 1 ? chart.line[0].y - 4 : 0
        width: 8; height: 8; radius: 4
        color: Theme.accent
    }

    Text {
        anchors.left: parent.left
        anchors.bottom: parent.bottom
        text: chart.start
        textFormat: Text.PlainText
        font.family: Theme.sans; font.pixelSize: 11
        color: Theme.muted
    }
    Text {
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        text: chart.end
        textFormat: Text.PlainText
        font.family: Theme.sans; font.pixelSize: 11
        color: Theme.muted
    }
}
