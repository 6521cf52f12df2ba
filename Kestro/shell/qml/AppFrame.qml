import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Shell

// The signed-in window: sidebar, header and the page.
Rectangle {
    id: frame
    property AppTheme theme
    signal quitRequested()
    objectName: "frame"
    color: theme.page

    readonly property string title: WebViews.title.length > 0 && pages.showsWebPage ? WebViews.title : pages.page.title

    RowLayout {
        anchors.fill: parent
        spacing: 0
        Sidebar {
            id: sidebar
            theme: frame.theme
            Layout.fillHeight: true
            Layout.preferredWidth: implicitWidth
            onOpenMenu: anchor => menu.popup(anchor, 0, anchor.height + 4)
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0
            Header {
                Layout.fillWidth: true
                theme: frame.theme
                title: frame.title
                loading: pages.loading
            }
            Text {
                visible: App.switchError.length > 0
                Layout.fillWidth: true
                Layout.margins: 10
                text: App.switchError
                wrapMode: Text.WordWrap
                font.family: frame.theme.sans
                font.pixelSize: 13
                color: frame.theme.danger
            }
            PageHost {
                id: pages
                Layout.fillWidth: true
                Layout.fillHeight: true
                theme: frame.theme
            }
        }
    }

    AppMenu {
        id: menu
        theme: frame.theme
        onQuitRequested: frame.quitRequested()
    }
    PalettePopup { theme: frame.theme }
}
