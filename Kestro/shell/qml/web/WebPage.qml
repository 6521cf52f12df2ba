import QtQuick
// Qt 6.4's type descriptions for QtWebEngine and QtWebChannel are faulty
// (mismatched revisions, an unlisted script-collection type, `uint` and
// `string` types the linter does not know): the few `qmllint disable`
// comments in this file silence just those reports, line by line.
import QtWebEngine // qmllint disable import
import QtWebChannel // qmllint disable import
import Kestro.Controls
import Kestro.Shell

// One of the service's own pages in the embedded view. Links inside the
// service go through the router; the page's title, clicks and data changes
// come back over the "kestro" channel. The view follows the app's theme.
Item {
    id: page
    property string path
    property bool retried: false
    property bool renewing: false
    Connections {
        target: WebViews
        function onSessionRenewed() {
            if (!page.renewing)
                return
            page.renewing = false
            view.url = WebViews.addressOf(page.path)
        }
        function onSessionUnreachable(sentence: string) {
            if (!page.renewing)
                return
            // Not a second landing: the retry starts over.
            page.renewing = false
            page.retried = false
            page.failure = sentence
        }
    }
    property string failure: ""
    property bool missing: false
    readonly property bool loading: view.loading
    objectName: "webPage"

    function show() {
        missing = false
        if (!WebViews.start()) {
            failure = "Kestro couldn't start its web view, so this page can't show. Reinstall Kestro, then try again."
            return
        }
        failure = ""
        view.url = WebViews.addressOf(path)
    }
    onPathChanged: show()

    function installScripts() {
        view.userScripts.collection = [ // qmllint disable type
            { name: "kestro-storage", sourceCode: WebViews.storageScript,
              injectionPoint: WebEngineScript.DocumentCreation, worldId: WebEngineScript.MainWorld, runsOnSubFrames: false },
            { name: "kestro-bridge", sourceCode: WebViews.bridgeScript,
              injectionPoint: WebEngineScript.DocumentCreation, worldId: WebEngineScript.MainWorld, runsOnSubFrames: false },
            { name: "kestro-relay", sourceCode: WebViews.relayScript,
              injectionPoint: WebEngineScript.DocumentCreation, worldId: WebEngineScript.ApplicationWorld, runsOnSubFrames: false }
        ]
    }

    Connections {
        target: WebViews
        function onScriptsChanged() { page.installScripts() }
    }

    WebEngineView {
        id: view
        anchors.fill: parent
        visible: !page.failure && !page.missing
        // A plain QObject from WebViews (see AuthWebView.qml).
        profile: WebViews.profile as WebEngineProfile
        backgroundColor: "transparent"
        webChannel: channel
        webChannelWorld: WebEngineScript.ApplicationWorld // qmllint disable type unqualified

        onNavigationRequested: request => {
            const decision = WebViews.decide(request.url, request.isMainFrame,
                request.navigationType === WebEngineNavigationRequest.LinkClickedNavigation, false)
            if (decision === WebViews.Allow)
                return
            request.reject()
            if (decision !== WebViews.Cancel)
                WebViews.follow(request.url)
        }
        onNewWindowRequested: request => {
            // No second window: the service's pages open here through the
            // router, other sites in the browser; a window no click asked
            // for does not open at all.
            const decision = WebViews.decideWindow(request.requestedUrl, request.userInitiated)
            if (decision === WebViews.Route || decision === WebViews.Browser)
                WebViews.follow(request.requestedUrl)
        }
        onLoadingChanged: info => {
            if (info.status === WebEngineView.LoadSucceededStatus) {
                // Set first: a token that needs no refresh renews the
                // session before landed() returns.
                page.renewing = true
                if (WebViews.landed(info.url, page.retried)) {
                    // Loads again once the cookie holds a current token.
                    page.retried = true
                } else {
                    page.renewing = false
                    if (info.url.toString().indexOf("/login") < 0 && info.url.toString().indexOf("/signup") < 0)
                        page.retried = false
                }
            } else if (info.status === WebEngineView.LoadFailedStatus) {
                if (info.errorCode === -3)
                    return // replaced by another load, or refused by the policy above
                if (info.errorDomain === WebEngineView.HttpErrorDomain && info.errorCode === 404)
                    page.missing = true
                else
                    page.failure = info.errorString.length > 0
                        ? "The page could not be reached (" + info.errorString + "). Check your connection, then try again."
                        : "The page could not be reached. Check your connection, then try again."
            }
        }
        onRenderProcessTerminated: (status, code) => {
            if (status !== WebEngineView.NormalTerminationStatus)
                page.failure = "The page stopped unexpectedly."
        }
        // Inside the view: a message's sender is the view's address.
        WebBridge {
            id: bridge
            WebChannel.id: "kestro" // qmllint disable type
        }

        Component.onCompleted: {
            page.installScripts()
            WebViews.attach(view)
            page.show()
        }
    }

    WebChannel { id: channel; registeredObjects: [bridge] }

    Rectangle {
        anchors.top: parent.top
        height: 2
        width: parent.width * view.loadProgress / 100
        visible: view.loading
        color: Theme.accent
    }

    PageFailure {
        anchors.fill: parent
        visible: page.failure.length > 0
        message: page.failure
        onRetry: page.show()
    }
    MissingPage {
        anchors.fill: parent
        visible: page.missing
    }
}
