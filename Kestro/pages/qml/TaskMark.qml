import QtQuick
import Kestro.Controls

// A task's status as a mark: dashed (backlog), open (to do), half (in
// progress), most (in review), alert (needs you), pause (waits on others),
// check (done), cross (canceled), in the status's colour.
Icon {
    id: mark
    property string shape: "open"
    property string tone: "muted"
    size: 16
    name: ({
        "dashed": "circle-dashed", "open": "circle", "half": "contrast", "most": "circle-dot",
        "alert": "circle-alert", "pause": "circle-pause", "check": "circle-check", "cross": "circle-x"
    })[shape] || "circle"
    color: ({
        "muted": Theme.muted, "text": Theme.text, "busy": Theme.busy, "accent": Theme.accent,
        "badge": Theme.badge, "good": Theme.good
    })[tone] || Theme.muted
}
