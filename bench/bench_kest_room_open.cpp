// Opening the kest room: from loading the timeline with a 500-message room
// to its first painted frame, against a plain ListView of the same 500
// texts laid out the same way (newest at the bottom), in the same run.

#include "pages/KestRoomPage.h"
#include "shell/Fonts.h"
#include "shell/IconProvider.h"
#include "shell/RobotFace.h"

#include "Median.h"

#include <QDir>
#include <QEventLoop>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickView>
#include <QStringListModel>
#include <QTemporaryFile>
#include <QTextStream>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(Kestro_ControlsPlugin)
Q_IMPORT_QML_PLUGIN(Kestro_PagesPlugin)
Q_IMPORT_QML_PLUGIN(Kestro_AgentWorkPlugin)
Q_IMPORT_QML_PLUGIN(Kestro_RichTextPlugin)

using namespace Kestro;

namespace {

constexpr int messages = 500;

class Room : public KestRoomPage {
public:
    void take(const Calls::kest::KestChatResult& result) { apply(QVariant::fromValue(result)); }
};

Calls::kest::KestChatResult room()
{
    const char* const texts[] = {
        "Short answer: yes. The build is green again.",
        "## Launch e-mail\n\nHere is the second draft, with the **shorter** headline.\n\n- Send on "
        "Tuesday\n- Check the link",
        "@atlas what do people say about our new pricing?",
        "| Tool | Price |\n|---|---|\n| Plausible | $9 |\n| Fathom | $14 |",
    };
    Calls::kest::KestChatResult result;
    result.me = QStringLiteral("u1");
    for (int i = 0; i < messages; ++i) {
        Model::KestRoomMessage m;
        m.id = QStringLiteral("m%1").arg(i);
        const bool agent = i % 3 == 0;
        m.from = agent ? QStringLiteral("agent") : QStringLiteral("person");
        m.by = {agent ? QStringLiteral("atlas") : QStringLiteral("u1"), m.from,
                agent ? QStringLiteral("Atlas") : QStringLiteral("Maya"), std::nullopt, std::nullopt};
        if (agent)
            m.agent = QStringLiteral("atlas");
        m.text = QString::fromUtf8(texts[i % 4]);
        m.at = QStringLiteral("2026-11-20T09:00:00Z");
        result.messages.append(m);
    }
    return result;
}

// Loads `source` with `model` and waits for the first frame that shows it.
double openMillis(QQmlEngine* engine, const QUrl& source, QObject* model)
{
    QQuickView view(engine, nullptr);
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.resize(760, 800);
    view.show();
    QEventLoop settle;
    QTimer::singleShot(50, &settle, &QEventLoop::quit);
    settle.exec();
    return medianMillis(1, [&] {
        QEventLoop painted;
        auto once = QObject::connect(&view, &QQuickWindow::frameSwapped, &painted, &QEventLoop::quit);
        view.setInitialProperties({{QStringLiteral("model"), QVariant::fromValue(model)}});
        view.setSource(source);
        if (view.status() != QQuickView::Ready) {
            QTextStream(stderr) << "The view did not load: " << view.errors().value(0).toString() << "\n";
            std::exit(1);
        }
        painted.exec();
        QObject::disconnect(once);
    });
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    loadBundledFonts();
    QQmlEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/"));
    engine.addImageProvider(QStringLiteral("icon"), new IconProvider);
    engine.addImageProvider(QStringLiteral("robot"), new RobotFaceProvider);

    Room model;
    model.take(room());
    QStringListModel plainTexts;
    // The same texts, newest first, as the timeline's model holds them.
    QStringList texts;
    for (int row = 0; row < model.messages()->count(); ++row)
        texts.append(model.messages()->valueAt(row, QStringLiteral("text")).toString());
    plainTexts.setStringList(texts);

    QTemporaryFile plain(QDir::tempPath() + QStringLiteral("/plain-XXXXXX.qml"));
    plain.open();
    plain.write("import QtQuick\nListView { verticalLayoutDirection: ListView.BottomToTop; clip: true\n"
                "  delegate: Text { required property string display; width: ListView.view.width;\n"
                "    wrapMode: Text.Wrap; font.family: \"Geist\"; text: display } }\n");
    plain.close();

    std::vector<double> timeline, baseline;
    for (int round = 0; round < 5; ++round) {
        baseline.push_back(openMillis(&engine, QUrl::fromLocalFile(plain.fileName()), &plainTexts));
        timeline.push_back(openMillis(&engine, QUrl(QStringLiteral("qrc:/Kestro/Pages/KestTimeline.qml")),
                                      model.messages()));
    }
    std::sort(timeline.begin(), timeline.end());
    std::sort(baseline.begin(), baseline.end());
    const double t = timeline[2], b = baseline[2];
    QTextStream(stdout) << messages << " messages, 5 rounds each (medians), to the first painted frame\n"
                        << "kest timeline:    " << t << " ms\n"
                        << "plain ListView:   " << b << " ms\n"
                        << "ratio: " << QString::number(t / b, 'f', 2) << "x (goal: at most 3x)\n";
    return 0;
}
