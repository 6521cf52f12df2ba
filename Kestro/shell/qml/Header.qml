import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Shell

// Back, Forward, the page's title and the bell.
Rectangle {
    id: header
    property string title
    property bool loading: false
    color: Theme.page
    implicitHeight: 48

    Rectangle { anchors.bottom: parent.bottom; width: parent.width; height: 1; color: Theme.border }

    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 10
        anchors.rightMargin: 12
        spacing: 2
        IconButton {
            glyph: Shell.sidebarCollapsed ? "panel-left-open" : "panel-left-close"
            tip: (Shell.sidebarCollapsed ? "Expand sidebar" : "Collapse sidebar") + "  (Ctrl+Shift+S)"
            onClicked: Shell.toggleSidebar()
        }
        IconButton {
            objectName: "backButton"
            glyph: "chevron-left"
            tip: "Back  (Ctrl+[)"
            enabled: App.router.canGoBack
            onClicked: App.router.goBack()
        }
        IconButton {
            objectName: "forwardButton"
            glyph: "chevron-right"
            tip: "Forward  (Ctrl+])"
            enabled: App.router.canGoForward
            onClicked: App.router.goForward()
        }
        Text {
            objectName: "pageTitle"
            Layout.fillWidth: true
            Layout.leftMargin: 8
            textFormat: Text.PlainText
            text: header.title
            elide: Text.ElideRight
            font.family: Theme.display
            font.pixelSize: 16
            font.weight: Font.Bold
            color: Theme.text
        }
        BusyIndicator {
            visible: header.loading
            running: visible
            implicitWidth: 18
            implicitHeight: 18
        }
        IconButton {
            id: bellButton
            objectName: "bellButton"
            glyph: "bell"
            tip: Bell.unread === 1 ? "1 unread notification" : Bell.unread > 1 ? Bell.unread + " unread notifications" : "Notifications"
            checked: bellPopup.visible
            onClicked: bellPopup.visible ? bellPopup.close() : bellPopup.open()
            Rectangle {
                visible: Bell.unread > 0
                anchors.top: parent.top
                anchors.right: parent.right
                anchors.topMargin: 2
                anchors.rightMargin: 1
                height: 15
                width: Math.max(15, count.implicitWidth + 8)
                radius: 7.5
                color: Theme.badge
                Text {
                    id: count
                    anchors.centerIn: parent
                    textFormat: Text.PlainText
                    text: Bell.unread > 99 ? "99+" : Bell.unread
                    color: "white"
                    font.family: Theme.sans
                    font.pixelSize: 10
                    font.weight: Font.Bold
                }
            }
        }
    }

    BellPopup {
        id: bellPopup
        x: header.width - width - 10
        y: header.height - 2
    }
}
