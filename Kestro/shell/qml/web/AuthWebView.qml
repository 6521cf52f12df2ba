import QtQuick
// Qt 6.4's type descriptions for QtWebEngine are faulty (mismatched
// revisions, unlisted types): the linter's import report is silenced here.
import QtWebEngine // qmllint disable import
import Kestro.Shell

// The service's sign-in page inside the sign-in sheet, on the app's own
// profile; the sheet loads it only while it is open.
WebEngineView {
    objectName: "authView"
    // WebViews hands the profile out as a plain QObject; it is asserted to be
    // the web engine profile it is.
    profile: WebViews.profile as WebEngineProfile
    url: AuthSession.address
    // The page's own frames (a provider's widget) load; the page itself
    // stays on the service's origin.
    onNavigationRequested: request => {
        if (request.isMainFrame && AuthSession.navigated(request.url))
            request.reject()
    }
}
