import QtQuick
import Kestro.Controls
import Kestro.RichText

// Every rich-text construct on one page, for looking at and for the render test.
Rectangle {
    id: page
    property bool dark: false
    property string sample
    width: 760
    height: content.height + 48
    color: Theme.background
    // The gallery draws each picture in one shade: it sets the palette.
    Component.onCompleted: Theme.dark = page.dark

    Column {
        id: content
        x: 32
        y: 24
        width: page.width - 64
        spacing: 20

        Markdown {
            width: parent.width
            document: true
            citations: 2
            embeds: true
            text: page.sample
        }
        DiffView {
            width: parent.width
            oldText: "let total = 0;\nfor (const x of items) total += x;\nreturn total;"
            newText: "let total = 0;\nfor (const x of items) total += x.price;\nreturn Math.round(total);"
        }
        DiffView {
            width: parent.width
            oldText: "same"
            newText: "same"
        }
        CodeBlock {
            width: parent.width
            title: "launch.ts"
            lang: "ts"
            numbers: true
            start: 41
            mark: 43
            code: "export async function launch(site: Site) {\n  const plan = await draft(site, { days: 7 });\n  if (!plan.ok) throw new Error(\"No plan\");\n  return publish(plan); // ship it\n}"
        }
        CodeBlock {
            width: parent.width
            bare: true
            danger: true
            lang: "sh"
            code: "Error: the build failed at step 3"
        }
    }
}
