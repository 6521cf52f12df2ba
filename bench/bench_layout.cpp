// Time to lay out the Markdown of a 200-message chat with the Markdown view,
// beside the same texts in plain wrapped Text items, in the same run.
// Runs on the offscreen platform: layout needs no display.

#include "richtext/RichTextTypes.h"
#include "shell/Fonts.h"
#include "shell/IconProvider.h"

#include "Median.h"

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QTextStream>

#include <memory>
#include <vector>

namespace {

QStringList messages()
{
    const char* const answers[] = {
        "## Launch e-mail\n\nHere is the second draft, with the **shorter** headline [1].\n\n"
        "- Subject: *Spring is here*\n- Send on Tuesday at 9:00\n- [ ] Check the link to `/pricing`",
        "| Tool | Price |\n|---|---|\n| Plausible | $9 |\n| Fathom | $14 |\n\nMy pick is **Plausible**.",
        "I fixed the footer link:\n\n```ts\nexport function footerLinks(): Link[] {\n  return [];\n}\n```",
        "Short answer: yes. The build is green again after ~~two~~ three retries.",
        "> Keep it under 150 words.\n\n1. Draft\n2. Review\n3. Send",
    };
    QStringList out;
    for (int i = 0; i < 200; ++i)
        out.append(QString::fromUtf8(answers[i % 5]));
    return out;
}

// Creates the items and reads the height, which makes every item lay out.
// The page is handed back so that tearing it down is not timed.
std::unique_ptr<QObject> layOut(QQmlEngine& engine, const QByteArray& qml, const QStringList& texts)
{
    QQmlComponent component(&engine);
    component.setData(qml, QUrl(QStringLiteral("qrc:/bench/Layout.qml")));
    std::unique_ptr<QObject> root(component.createWithInitialProperties({{QStringLiteral("texts"), texts}}));
    if (!root || root->property("implicitHeight").toDouble() <= 0) {
        QTextStream(stderr) << "The chat did not lay out: " << component.errorString();
        std::exit(1);
    }
    return root;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    Kestro::loadBundledFonts();
    QQmlEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/"));
    engine.addImageProvider(QStringLiteral("icon"), new Kestro::IconProvider);
    Kestro::addRichTextImageProviders(engine);
    const QStringList texts = messages();
    const QByteArray markdown =
        "import QtQuick\nimport Kestro.RichText\nColumn { property var texts; width: 700\n"
        "  Repeater { model: texts; Markdown { required property string modelData; "
        "width: 700; text: modelData } } }\n";
    const QByteArray plain =
        "import QtQuick\nColumn { property var texts; width: 700\n"
        "  Repeater { model: texts; Text { required property string modelData; width: 700; "
        "wrapMode: Text.Wrap; font.family: \"Geist\"; text: modelData } } }\n";
    std::vector<std::unique_ptr<QObject>> pages;
    const double b = medianMillis(5, [&] { pages.push_back(layOut(engine, plain, texts)); });
    pages.clear();
    const double m = medianMillis(5, [&] { pages.push_back(layOut(engine, markdown, texts)); });
    pages.clear();
    QTextStream(stdout) << "200 chat messages, 5 rounds each (medians)\n"
                        << "Markdown view: " << m << " ms, " << m / 200 << " ms per message\n"
                        << "plain Text:    " << b << " ms, " << b / 200 << " ms per message\n"
                        << "ratio: " << QString::number(m / b, 'f', 1) << "x the plain Text layout\n";
    return 0;
}
