// Components here stay in this file's context: delegates name its ids, and
// take their model data only through required properties.
pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Pages
import Kestro.Visuals

// "/analytics": one site's traffic over a range. The site and the range
// live in the address, so Back steps through what the user looked at.
Item {
    id: page
    property alias router: analytics.router
    property alias route: analytics.route
    readonly property string title: "Analytics"
    readonly property bool loading: analytics.loader.loading && analytics.loader.state !== Loaded.Content
    // The breakdowns that did not load, by dimension.
    readonly property var failures: analytics.failed
    objectName: "analyticsPage"

    AnalyticsModel {
        id: analytics
        Component.onCompleted: analytics.start()
    }

    Bones {
        visible: analytics.loader.state === Loaded.Bones
        x: content.x
        y: 40
        width: content.width
    }
    PageFailure {
        anchors.fill: parent
        visible: analytics.loader.state === Loaded.Failed
        message: analytics.loader.error
        onRetry: analytics.loader.reload()
    }
    Sky {
        anchors.fill: parent
        visible: analytics.loader.state === Loaded.Content && !analytics.hasSites
    }
    EmptyState {
        anchors.centerIn: parent
        width: Math.min(420, page.width - 64)
        visible: analytics.loader.state === Loaded.Content && !analytics.hasSites
        glyph: "chart-line"
        title: "No sites yet"
        text: "Add your web site in the service's analytics settings; its visits show here from the first one on."
    }
    PrimaryButton {
        objectName: "openSettings"
        anchors.horizontalCenter: parent.horizontalCenter
        y: page.height / 2 + 70
        visible: analytics.loader.state === Loaded.Content && !analytics.hasSites
        text: "Open Settings"
        onClicked: analytics.open("/settings")
    }

    Flickable {
        id: flick
        objectName: "analyticsScroll"
        anchors.fill: parent
        visible: analytics.loader.state === Loaded.Content && analytics.hasSites
        contentHeight: content.implicitHeight + 80
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ScrollBar {}

        ColumnLayout {
            id: content
            width: Math.min(1040, page.width - 64)
            x: (page.width - width) / 2
            y: 32
            spacing: 16

            // The site, the range, and what is happening right now.
            RowLayout {
                Layout.fillWidth: true
                spacing: 8

                PrimaryButton {
                    id: sitePicker
                    objectName: "sitePicker"
                    quiet: true
                    text: analytics.domain + "  \u25be"
                    Accessible.name: "Site: " + analytics.domain
                    Accessible.description: "Choose another site"
                    onClicked: siteMenu.popup(sitePicker, 0, sitePicker.height + 4)
                    Menu {
                        id: siteMenu
                        Repeater {
                            model: analytics.sites
                            delegate: MenuItem {
                                required property var model
                                text: (model.key === analytics.siteId ? "\u2713  " : "") + model.domain
                                Accessible.name: model.domain + (model.key === analytics.siteId ? ", shown now" : "")
                                onTriggered: analytics.chooseSite(model.key)
                            }
                        }
                    }
                }

                Text {
                    visible: analytics.live.length > 0
                    text: "\u25cf " + analytics.live
                    textFormat: Text.PlainText
                    font.family: Theme.sans
                    font.pixelSize: 12
                    color: Theme.good
                }

                Item { Layout.fillWidth: true }

                Row {
                    id: ranges
                    spacing: 4
                    Accessible.role: Accessible.PageTabList
                    Accessible.name: "Range"
                    Repeater {
                        model: [
                            { key: "today", text: "Today" },
                            { key: "7d", text: "7 days" },
                            { key: "30d", text: "30 days" },
                            { key: "custom", text: "Custom\u2026" }
                        ]
                        delegate: AbstractButton {
                            id: rangeButton
                            required property var modelData
                            readonly property bool current: analytics.rangeKey === modelData.key
                            objectName: "range-" + modelData.key
                            text: modelData.text
                            checkable: false
                            hoverEnabled: true
                            focusPolicy: Qt.StrongFocus
                            implicitWidth: contentItem.implicitWidth + 22
                            implicitHeight: 30
                            Accessible.role: Accessible.PageTab
                            Accessible.name: modelData.key === "custom" ? "Custom range" : text
                            Accessible.selectable: true
                            Accessible.selected: current
                            Keys.onReturnPressed: clicked()
                            Keys.onEnterPressed: clicked()
                            onClicked: {
                                if (modelData.key === "custom")
                                    customRange.open()
                                else
                                    analytics.chooseRange(modelData.key)
                            }
                            background: Rectangle {
                                radius: 8
                                color: rangeButton.current ? Theme.selected : (rangeButton.hovered ? Theme.hover : "transparent")
                                border.color: rangeButton.visualFocus ? Theme.accent : "transparent"
                                border.width: 2
                            }
                            contentItem: Text {
                                text: rangeButton.text
                                textFormat: Text.PlainText
                                horizontalAlignment: Text.AlignHCenter
                                verticalAlignment: Text.AlignVCenter
                                font.family: Theme.sans
                                font.pixelSize: 13
                                font.weight: rangeButton.current ? Font.DemiBold : Font.Normal
                                color: Theme.text
                            }
                        }
                    }
                }

                IconButton {
                    objectName: "siteSettings"
                    glyph: "settings"
                    tip: "Site settings"
                    Accessible.name: "Settings of " + analytics.domain
                    onClicked: analytics.open("/analytics/settings?site=" + encodeURIComponent(analytics.siteId))
                }
            }

            Text {
                text: analytics.rangeLabel
                textFormat: Text.PlainText
                font.family: Theme.display
                font.pixelSize: 22
                font.weight: Font.Bold
                color: Theme.text
                Accessible.role: Accessible.Heading
                Accessible.name: text
            }

            // The headline figures, each against the range before.
            GridLayout {
                Layout.fillWidth: true
                columns: content.width > 760 ? 5 : 3
                columnSpacing: 10
                rowSpacing: 10
                Repeater {
                    model: analytics.headline
                    delegate: Rectangle {
                        id: tile
                        required property string label
                        required property string value
                        required property string change
                        required property int direction
                        required property bool good
                        Layout.fillWidth: true
                        Layout.preferredWidth: 1
                        implicitHeight: 86
                        radius: 12
                        color: Theme.raised
                        border.color: Theme.border
                        Accessible.role: Accessible.StaticText
                        Accessible.name: label + ": " + value + (change.length > 0 ? ", " + change + " against the range before" : "")
                        Column {
                            anchors.fill: parent
                            anchors.margins: 14
                            spacing: 4
                            Text {
                                text: tile.label
                                textFormat: Text.PlainText
                                font.family: Theme.sans
                                font.pixelSize: 12
                                color: Theme.muted
                            }
                            Text {
                                text: tile.value
                                textFormat: Text.PlainText
                                font.family: Theme.display
                                font.pixelSize: 22
                                font.weight: Font.Bold
                                color: Theme.text
                            }
                            Text {
                                visible: tile.change.length > 0
                                text: tile.change
                                textFormat: Text.PlainText
                                font.family: Theme.sans
                                font.pixelSize: 12
                                font.weight: Font.Medium
                                color: tile.direction === 0 ? Theme.muted : (tile.good ? Theme.good : Theme.danger)
                            }
                        }
                    }
                }
            }

            Rectangle {
                Layout.fillWidth: true
                implicitHeight: visitors.implicitHeight + 28
                radius: 12
                color: Theme.raised
                border.color: Theme.border
                VisitorsChart {
                    id: visitors
                    objectName: "visitorsChart"
                    anchors.fill: parent
                    anchors.margins: 14
                    points: analytics.chart
                    peak: analytics.chartPeak
                    start: analytics.chartStart
                    end: analytics.chartEnd
                    summary: analytics.chartSummary
                }
            }

            GridLayout {
                Layout.fillWidth: true
                columns: content.width > 700 ? 2 : 1
                columnSpacing: 12
                rowSpacing: 12
                BreakdownCard { objectName: "sources"; title: "Sources"; rows: analytics.referrers; failed: !!page.failures["referrers"]; Layout.fillWidth: true; Layout.alignment: Qt.AlignTop; Layout.preferredWidth: 1 }
                BreakdownCard { title: "Pages"; rows: analytics.pages; failed: !!page.failures["pages"]; Layout.fillWidth: true; Layout.alignment: Qt.AlignTop; Layout.preferredWidth: 1 }
                BreakdownCard { title: "Countries"; rows: analytics.countries; failed: !!page.failures["countries"]; Layout.fillWidth: true; Layout.alignment: Qt.AlignTop; Layout.preferredWidth: 1 }
                BreakdownCard { title: "Devices"; rows: analytics.devices; failed: !!page.failures["devices"]; Layout.fillWidth: true; Layout.alignment: Qt.AlignTop; Layout.preferredWidth: 1 }
                BreakdownCard { title: "Browsers"; rows: analytics.browsers; failed: !!page.failures["browsers"]; Layout.fillWidth: true; Layout.alignment: Qt.AlignTop; Layout.preferredWidth: 1 }
                BreakdownCard { title: "Systems"; rows: analytics.systems; failed: !!page.failures["os"]; Layout.fillWidth: true; Layout.alignment: Qt.AlignTop; Layout.preferredWidth: 1 }
                BreakdownCard { title: "Exit links"; rows: analytics.exits; failed: !!page.failures["exit_links"]; emptyText: "No visitor left by a link in this range."; Layout.fillWidth: true; Layout.alignment: Qt.AlignTop; Layout.preferredWidth: 1 }
            }
        }
    }

    // A range of the user's own: two days, checked before the page moves.
    Popup {
        id: customRange
        objectName: "customRange"
        anchors.centerIn: parent
        width: 340
        modal: true
        focus: true
        padding: 18
        onOpened: {
            fromField.text = analytics.rangeFrom
            toField.text = analytics.rangeTo
            problem.text = ""
            fromField.forceActiveFocus()
        }
        background: Rectangle { radius: 12; color: Theme.raised; border.color: Theme.border }
        ColumnLayout {
            spacing: 10
            Text {
                text: "Custom range"
                textFormat: Text.PlainText
                font.family: Theme.sans
                font.pixelSize: 15
                font.weight: Font.DemiBold
                color: Theme.text
            }
            Text {
                text: "From the first day to the last, both included (year-month-day)."
                textFormat: Text.PlainText
                wrapMode: Text.WordWrap
                Layout.fillWidth: true
                font.family: Theme.sans
                font.pixelSize: 12
                color: Theme.muted
            }
            RowLayout {
                spacing: 8
                TextField {
                    id: fromField
                    objectName: "rangeFrom"
                    Layout.fillWidth: true
                    placeholderText: "2026-11-01"
                    Accessible.name: "First day"
                    onAccepted: toField.forceActiveFocus()
                }
                Text { text: "\u2013"; color: Theme.muted; font.family: Theme.sans }
                TextField {
                    id: toField
                    objectName: "rangeTo"
                    Layout.fillWidth: true
                    placeholderText: "2026-11-25"
                    Accessible.name: "Last day"
                    onAccepted: showButton.clicked()
                }
            }
            Text {
                id: problem
                visible: text.length > 0
                Layout.fillWidth: true
                wrapMode: Text.WordWrap
                textFormat: Text.PlainText
                font.family: Theme.sans
                font.pixelSize: 12
                color: Theme.danger
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
            RowLayout {
                Layout.alignment: Qt.AlignRight
                PrimaryButton { quiet: true; text: "Cancel"; onClicked: customRange.close() }
                PrimaryButton {
                    id: showButton
                    objectName: "showRange"
                    text: "Show"
                    onClicked: {
                        problem.text = analytics.chooseDays(fromField.text, toField.text)
                        if (problem.text.length === 0)
                            customRange.close()
                    }
                }
            }
        }
    }
}
