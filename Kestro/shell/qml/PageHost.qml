import QtQuick
import Kestro.Shell

// The main area: the page for the router's route. The service's pages
// share one web view that follows the path; a path the product does not
// know shows the missing-page view.
Item {
    id: host
    property AppTheme theme
    readonly property string path: App.router.route.text
    readonly property var page: Pages.pageFor(path)
    readonly property bool loading: web.item ? web.item.loading : false
    // A failed load shows our own view, so the title is not the page's.
    readonly property bool showsWebPage: !!web.item && !web.item.failure && !web.item.missing

    Loader {
        id: web
        anchors.fill: parent
        active: host.page.kind === "web"
        // The frame paints first; the web engine starts right after.
        asynchronous: true
        visible: active
        sourceComponent: WebPage { theme: host.theme; path: host.path }
    }
    Loader {
        anchors.fill: parent
        active: host.page.kind === "missing"
        sourceComponent: MissingPage { theme: host.theme }
    }
}
