import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.RichText

// One row of a trace: the tool's icon, the step's label, the page it read
// (with the site's icon), and its status mark. Opening it shows why the
// teammate took the step, what it sent and what came back; opening a fold
// of page reads lists the pages.
ColumnLayout {
    id: row
    required property bool fold
    required property string icon
    required property string label
    required property string status
    required property string markIcon
    required property string markWords
    required property bool busy
    required property string chipText
    required property string chipHost
    required property string chipUrl
    required property string why
    required property string input
    required property bool inputJson
    required property string result
    required property bool failed
    required property var pages
    property bool opened: false
    readonly property bool opens: fold || why.length > 0 || input.length > 0 || result.length > 0
    spacing: 2

    component Chip: AbstractButton {
        id: chip
        property string host
        property string url
        property string words
        // The site's icon, fetched once a run; the globe stands in meanwhile.
        readonly property string iconSource: host.length > 0 ? "image://site/" + host : ""
        property bool iconReady: false
        implicitWidth: chip.contentItem.implicitWidth
        implicitHeight: 22
        hoverEnabled: true
        focusPolicy: url.length > 0 ? Qt.StrongFocus : Qt.NoFocus
        enabled: url.length > 0
        Accessible.role: Accessible.Link
        Accessible.name: words + ", opens in the browser"
        Accessible.onPressAction: chip.clicked()
        Keys.onReturnPressed: chip.clicked()
        // Only web addresses leave the app from a step's chip.
        onClicked: if (/^https?:\/\//i.test(chip.url)) Qt.openUrlExternally(chip.url)
        ToolTip.visible: hovered && url.length > 0
        ToolTip.delay: 600
        ToolTip.text: "Opens in the browser"
        background: Rectangle {
            radius: 11
            color: chip.hovered ? Theme.selected : Theme.well
            border.width: chip.visualFocus ? 2 : 0
            border.color: Theme.accent
        }
        contentItem: Row {
            leftPadding: 6
            rightPadding: 6
            spacing: 4
            Item {
                width: 12
                height: 12
                anchors.verticalCenter: parent.verticalCenter
                Image {
                    anchors.fill: parent
                    visible: status === Image.Ready
                    source: chip.iconSource
                    sourceSize.width: 24
                    sourceSize.height: 24
                    asynchronous: true
                    onStatusChanged: chip.iconReady = status === Image.Ready
                }
                // The neutral mark while the icon loads or when it failed.
                Icon {
                    anchors.fill: parent
                    visible: !chip.iconReady
                    name: "globe"
                    size: 12
                    color: Theme.muted
                }
            }
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: chip.words
                textFormat: Text.PlainText
                color: Theme.text
                font.family: Theme.sans
                font.pixelSize: 11
            }
            Icon {
                visible: chip.url.length > 0
                anchors.verticalCenter: parent.verticalCenter
                name: "arrow-up-right"
                size: 11
                color: Theme.muted
            }
            }
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 6

        AbstractButton {
            id: opener
            Layout.fillWidth: true
            // Fixed, so the label's cap below cannot feed back into it.
            implicitWidth: 200
            implicitHeight: 26
            hoverEnabled: row.opens
            // Never disabled: the page's chip inside stays a link.
            focusPolicy: row.opens ? Qt.StrongFocus : Qt.NoFocus
            Accessible.role: Accessible.Button
            Accessible.name: row.label
            Accessible.description: row.opens ? (row.opened ? "expanded" : "collapsed") : ""
            Accessible.onPressAction: opener.clicked()
            Keys.onReturnPressed: opener.clicked()
            Keys.onEnterPressed: opener.clicked()
            onClicked: if (row.opens) row.opened = !row.opened
            background: Rectangle {
                radius: 6
                color: opener.hovered ? Theme.hover : "transparent"
                border.width: opener.visualFocus ? 2 : 0
                border.color: Theme.accent
            }
            contentItem: Item {
                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: 4
                    anchors.rightMargin: 4
                    spacing: 6
                    Icon {
                        name: row.icon
                        size: 14
                        color: Theme.muted
                    }
                    Text {
                        Layout.fillWidth: row.chipText.length === 0
                        Layout.maximumWidth: opener.width - 160
                        text: row.label
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        color: Theme.text
                        font.family: Theme.sans
                        font.pixelSize: 12
                    }
                    Chip {
                        visible: row.chipText.length > 0
                        host: row.chipHost
                        url: row.chipUrl
                        words: row.chipText
                    }
                    Item { Layout.fillWidth: row.chipText.length > 0 }
                    Icon {
                        visible: row.opens
                        name: "chevron-down"
                        size: 12
                        color: Theme.muted
                        rotation: row.opened ? 0 : -90
                    }
                }
            }
        }

        // The status mark.
        Item {
            implicitWidth: Math.max(16, words.implicitWidth)
            implicitHeight: 16
            Icon {
                anchors.centerIn: parent
                visible: row.markIcon.length > 0
                name: row.markIcon
                size: 14
                color: row.status === "failed" ? Theme.danger
                     : row.status === "refused" ? Theme.muted : Theme.good
            }
            Text {
                id: words
                anchors.centerIn: parent
                visible: row.markWords.length > 0
                textFormat: Text.PlainText
                text: row.markWords
                color: Theme.busy
                font.family: Theme.sans
                font.pixelSize: 11
                font.weight: Font.DemiBold
            }
            SpinningIcon {
                id: spinner
                anchors.centerIn: parent
                visible: row.busy
                name: "loader-circle"
                size: 14
                color: Theme.accent
                spinning: true
            }
            Accessible.role: Accessible.StaticText
            Accessible.name: row.markWords.length > 0 ? row.markWords
                           : row.busy ? "In progress"
                           : row.status === "failed" ? "Failed"
                           : row.status === "refused" ? "Refused" : "Done"
        }
    }

    // What a step did, opened.
    ColumnLayout {
        visible: row.opened && !row.fold
        Layout.fillWidth: true
        Layout.leftMargin: 26
        Layout.bottomMargin: 6
        spacing: 6
        Text {
            visible: row.why.length > 0
            Layout.fillWidth: true
            text: row.why
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            color: Theme.muted
            font.family: Theme.sans
            font.pixelSize: 12
            font.italic: true
        }
        CodeBlock {
            visible: row.opened && row.inputJson
            Layout.fillWidth: true
            code: visible ? row.input : ""
            lang: "json"
        }
        Text {
            visible: row.input.length > 0 && !row.inputJson
            Layout.fillWidth: true
            text: row.input
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            color: Theme.text
            font.family: Theme.mono
            font.pixelSize: 12
        }
        Text {
            visible: row.result.length > 0
            textFormat: Text.PlainText
            text: row.failed ? "What went wrong" : "Came back"
            color: row.failed ? Theme.danger : Theme.muted
            font.family: Theme.sans
            font.pixelSize: 11
            font.weight: Font.DemiBold
        }
        Text {
            visible: row.result.length > 0
            Layout.fillWidth: true
            text: row.result
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            color: Theme.text
            font.family: Theme.sans
            font.pixelSize: 12
        }
    }

    // A fold opened: each page it read.
    Flow {
        visible: row.opened && row.fold
        Layout.fillWidth: true
        Layout.leftMargin: 26
        Layout.bottomMargin: 6
        spacing: 6
        Repeater {
            model: row.opened && row.fold ? row.pages : []
            delegate: Chip {
                required property var modelData
                host: modelData.host
                url: modelData.url
                words: modelData.text
            }
        }
    }
}
