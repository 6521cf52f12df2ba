import QtQuick
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
    readonly property bool loading: current.shown ? !!current.shown.loading : false
    // A native page names itself; a failed web load shows our own view, so
    // the title is the route table's, not the web page's.
    readonly property bool showsWebPage: page.kind === "web" && !!current.shown && !current.shown.failure
                                         && !current.shown.missing
    readonly property string pageTitle: current.shown && current.shown.title ? current.shown.title : page.title

    function show() {
        if (page.kind === "native")
            current.setSource(page.component, { router: App.router, route: host.route })
        else if (page.kind === "web") {
            // The engine must be up before its first view exists.
            WebViews.start()
            current.setSource("WebPage.qml", { path: host.route.text })
        }
        else
            current.setSource("MissingPage.qml", {})
    }
    onLoadingChanged: if (!loading && current.item) Shell.notePageShown()
    onPageChanged: {
        if (page.identity !== current.identity) {
            current.identity = page.identity
            show()
        } else if (current.shown) {
            // Same page, new query: the page takes the route as it is.
            if (page.kind === "native")
                current.shown.route = host.route
            else if (page.kind === "web")
                current.shown.path = host.route.text
        }
    }
    Component.onCompleted: {
        current.identity = page.identity
        show()
    }

    Loader {
        id: current
        property string identity
        // The page, untyped: pages are loaded by address and differ in type,
        // so what they share is read off a plain object.
        readonly property var shown: item
        anchors.fill: parent
        // A web page's view is built off the frame's paint (the engine
        // itself starts just before, in show()).
        asynchronous: host.page.kind === "web"
        // A native page that writes is told the user's role, and kept told.
        onLoaded: {
            if (host.page.kind === "native" && current.item && current.item.hasOwnProperty("access"))
                current.item.access = Qt.binding(() => App.frame.workspace ? App.frame.workspace.role || "" : "")
        }
    }
}
