import QtQuick
import QtWebEngine
import Kestro.Shell

// The service's sign-in page inside the sign-in sheet, on the app's own
// profile; the sheet loads it only while it is open.
WebEngineView {
    objectName: "authView"
    profile: WebViews.profile
    url: AuthSession.address
    onNavigationRequested: request => {
        if (AuthSession.navigated(request.url))
            request.reject()
    }
}
