import QtQuick
import Kestro.Controls
import Kestro.Shell

// An in-app path with no page behind it.
PageFailure {
    objectName: "missingPage"
    message: "It may have been moved, or it belongs to another workspace."
    retryText: "Go to Home"
    onRetry: App.router.open("/activity")
}
