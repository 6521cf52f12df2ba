pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls

// One breakdown of the visits (sources, pages, countries, ...): its rows
// with their icons, a bar for each row's share, and the visitors. The first
// eight show; the rest behind "Show all".
Rectangle {
    id: card
    property string title
    property var rows
    property string emptyText: "No visits in this range."
    // The service did not answer for this breakdown (the rest of the page
    // did): said in its place.
    property bool failed: false
    property bool expanded: false
    readonly property int shown: expanded ? rowList.count : Math.min(rowList.count, 8)

    implicitHeight: column.implicitHeight + 28
    radius: 12
    color: Theme.raised
    border.color: Theme.border
    Accessible.role: Accessible.Grouping
    Accessible.name: title

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 14
        spacing: 2

        RowLayout {
            Layout.fillWidth: true
            Layout.bottomMargin: 6
            Text {
                Layout.fillWidth: true
                text: card.title
                textFormat: Text.PlainText
                font.family: Theme.sans
                font.pixelSize: 14
                font.weight: Font.DemiBold
                color: Theme.text
            }
            Text {
                text: "Visitors"
                textFormat: Text.PlainText
                font.family: Theme.sans
                font.pixelSize: 12
                color: Theme.muted
            }
        }

        Repeater {
            id: rowList
            model: card.rows
            delegate: Item {
                id: row
                required property int index
                required property string label
                required property string detail
                required property string kind
                required property string icon
                required property string visitors
                required property real share
                required property string shareText
                visible: index < card.shown
                Layout.fillWidth: true
                implicitHeight: 30
                Accessible.role: Accessible.StaticText
                Accessible.name: label + (detail.length > 0 ? " (" + detail + ")" : "") + (kind.length > 0 ? ", " + kind : "")
                                 + ": " + visitors + " visitors, " + shareText

                Rectangle {
                    // The row's share of the visits, behind its words.
                    height: parent.height - 4
                    anchors.verticalCenter: parent.verticalCenter
                    width: Math.max(4, (parent.width - 70) * row.share)
                    radius: 6
                    color: Theme.dark ? Qt.rgba(0.55, 0.62, 1, 0.14) : Qt.rgba(0.26, 0.34, 0.88, 0.08)
                }
                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: 8
                    spacing: 8
                    Item {
                        visible: row.icon.length > 0
                        implicitWidth: 16
                        implicitHeight: 16
                        Image {
                            id: picture
                            anchors.fill: parent
                            source: row.icon
                            sourceSize.width: 32
                            sourceSize.height: 32
                            asynchronous: true
                            fillMode: Image.PreserveAspectFit
                            smooth: true
                        }
                        // A neutral mark while the icon loads, and for good
                        // when the service has none.
                        Rectangle {
                            anchors.fill: parent
                            visible: picture.status !== Image.Ready
                            radius: 4
                            color: Theme.bone
                        }
                    }
                    Text {
                        text: row.label
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        Layout.preferredWidth: implicitWidth
                        Layout.minimumWidth: Math.min(implicitWidth, 60)
                        font.family: Theme.sans
                        font.pixelSize: 13
                        color: Theme.text
                    }
                    Text {
                        visible: row.detail.length > 0
                        text: row.detail
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        Layout.preferredWidth: implicitWidth
                        Layout.minimumWidth: 0
                        font.family: Theme.sans
                        font.pixelSize: 12
                        color: Theme.muted
                    }
                    Rectangle {
                        visible: row.kind.length > 0
                        implicitWidth: kindText.implicitWidth + 10
                        implicitHeight: 18
                        radius: 9
                        color: Theme.hover
                        Text {
                            id: kindText
                            anchors.centerIn: parent
                            text: row.kind
                            textFormat: Text.PlainText
                            font.family: Theme.sans
                            font.pixelSize: 11
                            color: Theme.muted
                        }
                    }
                    Item { Layout.fillWidth: true }
                    Text {
                        text: row.visitors
                        textFormat: Text.PlainText
                        horizontalAlignment: Text.AlignRight
                        Layout.preferredWidth: 56
                        font.family: Theme.sans
                        font.pixelSize: 13
                        color: Theme.text
                    }
                }
            }
        }

        Text {
            visible: rowList.count === 0
            Layout.topMargin: 6
            Layout.fillWidth: true
            wrapMode: Text.WordWrap
            text: card.failed ? "These figures did not load. They are asked for again in a minute." : card.emptyText
            textFormat: Text.PlainText
            font.family: Theme.sans
            font.pixelSize: 13
            color: Theme.muted
        }

        PrimaryButton {
            visible: rowList.count > 8
            Layout.topMargin: 6
            quiet: true
            text: card.expanded ? "Show fewer" : "Show all " + rowList.count
            Accessible.name: (card.expanded ? "Show fewer " : "Show all " + rowList.count + " ") + card.title.toLowerCase()
            onClicked: card.expanded = !card.expanded
        }
    }
}
