import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.AgentWork

// A run's steps wherever its work shows: a header that says what the run is
// doing (or, after, how it went), a link to the run page, and the steps,
// folded away until the user opens them. A forced `open` wins over the
// user's choice.
ColumnLayout {
    id: view
    // A run's trace (a page model's role); nothing shows without one.
    property var trace
    // The run page, when there is one to link to.
    property string href
    // true or false forces the steps open or closed; undefined leaves it
    // to the user.
    property var open: undefined
    property bool orb: false
    property bool chosenOpen: false
    readonly property bool expanded: view.open === true || (view.open !== false && view.chosenOpen)
    readonly property alias model: trace
    signal linkOpened(string href)

    visible: trace.present
    spacing: 2

    TraceModel {
        id: trace
        trace: view.trace
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 6

        AbstractButton {
            id: toggle
            objectName: "traceToggle"
            implicitWidth: toggle.contentItem.implicitWidth
            implicitHeight: 26
            hoverEnabled: view.open === undefined
            // A forced choice leaves nothing to toggle.
            focusPolicy: view.open === undefined ? Qt.StrongFocus : Qt.NoFocus
            Accessible.role: Accessible.Button
            Accessible.name: trace.headline
            Accessible.description: view.expanded ? "expanded" : "collapsed"
            Accessible.onPressAction: toggle.clicked()
            Keys.onReturnPressed: toggle.clicked()
            Keys.onEnterPressed: toggle.clicked()
            onClicked: if (view.open === undefined) view.chosenOpen = !view.expanded
            background: Rectangle {
                radius: 6
                color: toggle.hovered ? Theme.hover : "transparent"
                border.width: toggle.visualFocus ? 2 : 0
                border.color: Theme.accent
            }
            contentItem: Row {
                leftPadding: 6
                rightPadding: 6
                spacing: 6
                Orb {
                    visible: view.orb && trace.inProgress
                    anchors.verticalCenter: parent.verticalCenter
                    state: "working"
                }
                Text {
                    anchors.verticalCenter: parent.verticalCenter
                    text: trace.headline
                    textFormat: Text.PlainText
                    color: trace.failed ? Theme.danger : Theme.muted
                    font.family: Theme.sans
                    font.pixelSize: 12
                    elide: Text.ElideRight
                    // A fixed cap: tying it to the view's width would loop
                    // through the layouts that size the view.
                    width: Math.min(implicitWidth, 420)
                }
                Icon {
                    visible: trace.steps > 0
                    anchors.verticalCenter: parent.verticalCenter
                    name: "chevron-down"
                    size: 14
                    color: Theme.muted
                    rotation: view.expanded ? 0 : -90
                }
                }
        }
        LinkText {
            visible: view.href.length > 0
            text: trace.inProgress ? "Watch the steps" : "See every step"
            onClicked: view.linkOpened(view.href)
        }
        Item { Layout.fillWidth: true }
    }

    Repeater {
        model: view.expanded ? trace.rows : null
        delegate: TraceStepRow {
            Layout.fillWidth: true
            Layout.leftMargin: 6
        }
    }
}
