import QtQuick
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Shell

// The signed-in window: sidebar, header and the page.
Rectangle {
    id: frame
    signal quitRequested()
    objectName: "frame"
    color: Theme.page

    readonly property string title: WebViews.title.length > 0 && pages.showsWebPage ? WebViews.title : pages.pageTitle

    RowLayout {
        anchors.fill: parent
        spacing: 0
        Sidebar {
            id: sidebar
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
                title: frame.title
                loading: pages.loading
            }
            Text {
                visible: App.switchError.length > 0
                Layout.fillWidth: true
                Layout.margins: 10
                textFormat: Text.PlainText
                text: App.switchError
                wrapMode: Text.WordWrap
                font.family: Theme.sans
                font.pixelSize: 13
                color: Theme.danger
            }
            PageHost {
                id: pages
                Layout.fillWidth: true
                Layout.fillHeight: true
            }
        }
    }

    AppMenu {
        id: menu
        onQuitRequested: frame.quitRequested()
        onHotKeyHelpRequested: hotKeyHelp.open()
    }
    HotKeyHelp { id: hotKeyHelp }
    PalettePopup {}
}
