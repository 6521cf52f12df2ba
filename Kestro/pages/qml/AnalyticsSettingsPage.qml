pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Kestro.Controls
import Kestro.Pages

// "/analytics/settings": a site's allowed host names, cookies, reports and
// alerts. Every change saves at once.
Item {
    id: page
    property alias router: settings.router
    property alias route: settings.route
    readonly property string title: "Site settings"
    readonly property bool loading: settings.loader.loading && settings.loader.state !== Loaded.Content
    objectName: "analyticsSettingsPage"

    AnalyticsSettingsModel {
        id: settings
        Component.onCompleted: settings.start()
    }

    Bones {
        visible: settings.loader.state === Loaded.Bones
        x: content.x
        y: 40
        width: content.width
    }
    PageFailure {
        anchors.fill: parent
        visible: settings.loader.state === Loaded.Failed
        message: settings.loader.error
        onRetry: settings.loader.reload()
    }

    Flickable {
        anchors.fill: parent
        visible: settings.loader.state === Loaded.Content
        contentHeight: content.implicitHeight + 80
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ScrollBar {}

        ColumnLayout {
            id: content
            width: Math.min(680, page.width - 64)
            x: (page.width - width) / 2
            y: 40
            spacing: 12

            PageHeader {
                Layout.fillWidth: true
                title: settings.domain
                subtitle: settings.canManage ? "Changes save as you make them."
                                             : "Your role in this workspace lets you read these settings, not change them."
            }

            Text {
                visible: settings.saveError.length > 0
                Layout.fillWidth: true
                text: settings.saveError
                textFormat: Text.PlainText
                wrapMode: Text.WordWrap
                font.family: Theme.sans
                font.pixelSize: 13
                color: Theme.danger
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }

            SectionHeader { Layout.fillWidth: true; Layout.topMargin: 8; text: "Allowed host names" }
            Text {
                Layout.fillWidth: true
                text: "Visits count from " + settings.domain + " and from these hosts. Leave the list empty to count the site's own domain only."
                textFormat: Text.PlainText
                wrapMode: Text.WordWrap
                font.family: Theme.sans
                font.pixelSize: 13
                color: Theme.muted
            }
            Repeater {
                model: settings.allowedHostnames
                delegate: RowLayout {
                    id: host
                    required property string modelData
                    Layout.fillWidth: true
                    Icon { name: "globe"; size: 14; color: Theme.muted }
                    Text {
                        Layout.fillWidth: true
                        text: host.modelData
                        textFormat: Text.PlainText
                        font.family: Theme.mono
                        font.pixelSize: 13
                        color: Theme.text
                    }
                    IconButton {
                        visible: settings.canManage
                        glyph: "x"
                        tip: "Remove " + host.modelData
                        Accessible.name: "Remove " + host.modelData
                        onClicked: settings.removeHost(host.modelData)
                    }
                }
            }
            RowLayout {
                visible: settings.canManage
                Layout.fillWidth: true
                spacing: 8
                TextField {
                    id: newHost
                    objectName: "newHost"
                    Layout.fillWidth: true
                    placeholderText: "www.example.com"
                    Accessible.name: "Host name to allow"
                    inputMethodHints: Qt.ImhNoAutoUppercase | Qt.ImhUrlCharactersOnly
                    // Said while typing only once the user has tried once.
                    onTextEdited: if (hostProblem.text.length > 0) hostProblem.text = settings.hostProblem(text)
                    onAccepted: addButton.clicked()
                }
                PrimaryButton {
                    id: addButton
                    objectName: "addHost"
                    text: "Allow"
                    onClicked: {
                        hostProblem.text = settings.addHost(newHost.text)
                        if (hostProblem.text.length === 0)
                            newHost.clear()
                    }
                }
            }
            Text {
                id: hostProblem
                objectName: "hostProblem"
                visible: text.length > 0
                Layout.fillWidth: true
                textFormat: Text.PlainText
                wrapMode: Text.WordWrap
                font.family: Theme.sans
                font.pixelSize: 12
                color: Theme.danger
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }

            SectionHeader { Layout.fillWidth: true; Layout.topMargin: 12; text: "Privacy, reports and alerts" }
            Repeater {
                model: [
                    { name: "cookieless", text: "Count visits without cookies", hint: "No cookie banner needed; returning visitors count as new after a day." },
                    { name: "weeklyReport", text: "Weekly report by e-mail", hint: "Every Monday morning." },
                    { name: "monthlyReport", text: "Monthly report by e-mail", hint: "On the first of the month." },
                    { name: "spikeAlerts", text: "Tell me about traffic spikes", hint: "When visits run well above the usual for the hour." },
                    { name: "dropAlerts", text: "Tell me when traffic drops", hint: "When visits stop or fall far below the usual." }
                ]
                delegate: RowLayout {
                    id: setting
                    required property var modelData
                    Layout.fillWidth: true
                    spacing: 12
                    ColumnLayout {
                        Layout.fillWidth: true
                        spacing: 2
                        Text {
                            text: setting.modelData.text
                            textFormat: Text.PlainText
                            font.family: Theme.sans
                            font.pixelSize: 14
                            color: Theme.text
                        }
                        Text {
                            Layout.fillWidth: true
                            text: setting.modelData.hint
                            textFormat: Text.PlainText
                            wrapMode: Text.WordWrap
                            font.family: Theme.sans
                            font.pixelSize: 12
                            color: Theme.muted
                        }
                    }
                    Switch {
                        objectName: "flag-" + setting.modelData.name
                        enabled: settings.canManage
                        checked: !!settings.flags[setting.modelData.name]
                        Accessible.name: setting.modelData.text
                        onToggled: settings.setFlag(setting.modelData.name, checked)
                    }
                }
            }

            SectionHeader { Layout.fillWidth: true; Layout.topMargin: 12; text: "More" }
            RowLayout {
                Layout.fillWidth: true
                spacing: 12
                Text {
                    Layout.fillWidth: true
                    text: "Exclusions, crawlers, replays and sharing are set on the service's own settings page."
                    textFormat: Text.PlainText
                    wrapMode: Text.WordWrap
                    font.family: Theme.sans
                    font.pixelSize: 13
                    color: Theme.muted
                }
                PrimaryButton {
                    quiet: true
                    text: "Open"
                    Accessible.name: "Open the other settings of " + settings.domain
                    onClicked: settings.open("/analytics/settings?tab=general&site=" + encodeURIComponent(settings.siteId))
                }
            }
        }
    }
}
