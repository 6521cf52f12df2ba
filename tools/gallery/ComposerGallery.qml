import QtQuick
import Kestro.Controls
import Kestro.Composer

// One prompt bar in one state, for the composer's gallery sheet.
Rectangle {
    id: page
    property bool dark: false
    property string state: "empty"
    // The state's text typed into the editor once it shows (menus open on it).
    readonly property var typed: ({
        "text": "Could you draft the launch e-mail for Thursday?\nKeep it short.",
        "mention": "Ask @",
        "document": "See #launch",
        "skill": "@quill /",
        "caller": "Add to :",
        "pending": "Sending this now",
        "disabled": "",
        "stacked": "Notes for the review",
    })
    width: 640
    height: 300
    color: Theme.background
    Component.onCompleted: Theme.dark = page.dark

    Text {
        x: 20
        y: 14
        text: page.state
        color: Theme.muted
        font.family: Theme.mono
        font.pixelSize: 12
    }

    PromptBar {
        id: bar
        objectName: "bar"
        x: 20
        width: parent.width - 40
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 20
        placeholder: "Ask the kest for anything"
        label: "Message the kest"
        access: ["approver", "guest", "viewer"].indexOf(page.state) >= 0 ? page.state : "member"
        pending: page.state === "pending"
        disabled: page.state === "disabled"
        stacked: page.state === "stacked"
        quiet: page.state === "quiet"
        docLinks: true
        mentions: [{ handle: "nova", name: "Nova" }, { handle: "quill", name: "Quill" },
                   { handle: "atlas", name: "Atlas" }, { handle: "maya", name: "Maya Lindqvist" }]
        sources: [{ pattern: "(?:^|\\s):([a-z]*)$", title: "Priority. Enter picks", label: "Priority",
                    options: [{ key: "urgent", insert: "!urgent", label: "Urgent", hint: "today" },
                              { key: "high", insert: "!high", label: "High", hint: "this week" }] }]
        IconButton { glyph: "paperclip"; tip: "Attach a file" }
        IconButton { glyph: "at-sign"; tip: "Mention someone" }
    }

    function prepare() {
        bar.model.setSkills([{ id: "summarize", name: "Summarize", description: "Boil a long text down." },
                             { id: "research", name: "Research", description: "Look it up and cite." },
                             { id: "draft-email", name: "Draft an e-mail", description: "In our voice." }])
        bar.model.setDocuments([{ slug: "brand-voice", title: "Brand voice" },
                                { slug: "launch-checklist", title: "Launch checklist" },
                                { slug: "launch-plan", title: "Plan the [beta] launch" }])
        bar.focusEditor()
        const text = page.typed[page.state] || ""
        bar.value = text
        bar.editor.cursorPosition = text.length
    }
}
