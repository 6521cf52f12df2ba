import QtQuick
import Kestro.Controls
import Kestro.Shell

// The main area: the page for the router's route, by the route table. One
// page object per page identity: a route that changes only its query (a
// tab, a filter, Back and Forward between them) is handed to the page that
// shows, which is not built again. The service's pages share one web view
// that follows the path; a path with no page shows the missing-page view.
// Pages are loaded by their address, so the web engine starts only when a
// web page first shows.
Item {
    id: host
    readonly property var route: App.router.route
    readonly property var page: Pages.pageFor(route.text)
    readonly property bool loading: current.item ? !!current.item.loading : false
    // A native page names itself; a failed web load shows our own view, so
    // the title is the route table's, not the web page's.
    readonly property bool showsWebPage: page.kind === "web" && !!current.item && !current.item.failure
                                         && !current.item.missing
    readonly property string pageTitle: current.item && current.item.title ? current.item.title : page.title

    function show() {
        if (page.kind === "native")
            current.setSource(page.component, { router: App.router, route: host.route })
        else if (page.kind === "web")
            current.setSource("WebPage.qml", { path: host.route.text })
        else
            current.setSource("MissingPage.qml", {})
    }
    onLoadingChanged: if (!loading && current.item) Shell.notePageShown()
    onPageChanged: {
        if (page.identity !== current.identity) {
            current.identity = page.identity
            show()
        } else if (current.item) {
            // Same page, new query: the page takes the route as it is.
            if (page.kind === "native")
                current.item.route = host.route
            else if (page.kind === "web")
                current.item.path = host.route.text
        }
    }
    Component.onCompleted: {
        current.identity = page.identity
        show()
    }

    Loader {
        id: current
        property string identity
        anchors.fill: parent
        // The frame paints first; a web page's engine starts right after.
        asynchronous: host.page.kind === "web"
    }
}
