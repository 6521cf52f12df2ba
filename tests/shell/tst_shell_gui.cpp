// The desktop side of the shell that needs no window: the place chords
// read on physical keys whatever the layout, and the teammates' faces,
// the same on every run and different from one teammate to the next.

#include "shell/Appearance.h"
#include "shell/PlaceChords.h"
#include "shell/ReturnActivates.h"
#include "shell/RobotFace.h"
#include "shell/WebAuthSession.h"
#include "shell/WebViews.h"

#include <QDir>
#include <QQuickItem>
#include <QQuickView>
#include <QSet>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Kestro;

class ShellGuiTest : public QObject {
    Q_OBJECT

private slots:
    void motionFollowsTheUserThenTheDesktop()
    {
        QStandardPaths::setTestModeEnabled(true);
        Appearance appearance(false);
        appearance.setMotion(u"system"_s);
        QVERIFY(!appearance.reduceMotion());
        // GNOME's animations off, KDE's factor at 0: each means reduced
        // where nothing more specific answers.
        appearance.setDesktopMotion(std::nullopt, false, std::nullopt);
        QVERIFY(appearance.reduceMotion());
        appearance.setDesktopMotion(std::nullopt, std::nullopt, 0.0);
        QVERIFY(appearance.reduceMotion());
        appearance.setDesktopMotion(std::nullopt, std::nullopt, 0.5);
        QVERIFY(!appearance.reduceMotion());
        // The portal's own answer comes first.
        appearance.setDesktopMotion(false, false, 0.0);
        QVERIFY(!appearance.reduceMotion());
        appearance.setDesktopMotion(true, true, 1.0);
        QVERIFY(appearance.reduceMotion());
        // The user's choice over the desktop's, kept for the next start.
        QSignalSpy changed(&appearance, &Appearance::changed);
        appearance.setMotion(u"full"_s);
        QVERIFY(!appearance.reduceMotion());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(Appearance(false).motion(), u"full"_s);
        appearance.setMotion(u"reduced"_s);
        appearance.setDesktopMotion(false, std::nullopt, std::nullopt);
        QVERIFY(appearance.reduceMotion());
        appearance.setMotion(u"sideways"_s);
        QCOMPARE(appearance.motion(), u"reduced"_s);
    }

    void chordsReadThePhysicalKey_data()
    {
        QTest::addColumn<quint32>("scanCode");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<int>("place");
        const int chord = int(Qt::ControlModifier | Qt::ShiftModifier);
        // What X sends for the top-row 3 and 4 with Shift on three layouts.
        QTest::newRow("US 4 is $") << 13u << int(Qt::Key_Dollar) << chord << 3;
        QTest::newRow("German 3 is section") << 12u << int(Qt::Key_section) << chord << 2;
        QTest::newRow("AZERTY 1 is 1 only with Shift") << 10u << int(Qt::Key_1) << chord << 0;
        QTest::newRow("the keypad flag is ignored")
            << 11u << int(Qt::Key_At) << (chord | int(Qt::KeypadModifier)) << 1;
        QTest::newRow("5 is no place") << 14u << int(Qt::Key_Percent) << chord << -1;
        QTest::newRow("without Shift") << 13u << int(Qt::Key_4) << int(Qt::ControlModifier) << -1;
        QTest::newRow("with Alt as well")
            << 13u << int(Qt::Key_Dollar) << (chord | int(Qt::AltModifier)) << -1;
        // A press made inside the program has no scan code.
        QTest::newRow("synthesized 2") << 0u << int(Qt::Key_2) << chord << 1;
        QTest::newRow("synthesized S") << 0u << int(Qt::Key_S) << chord << -1;
    }
    void chordsReadThePhysicalKey()
    {
        QFETCH(quint32, scanCode);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(int, place);
        QCOMPARE(PlaceChords::placeOf(scanCode, key, Qt::KeyboardModifiers(modifiers)), place);
    }

    void returnPressesTheFocusedButton()
    {
        ReturnActivates returns;
        qApp->installEventFilter(&returns);
        QQuickView view;
        QTemporaryFile qml(QDir::tempPath() + u"/returns-XXXXXX.qml"_s);
        QVERIFY(qml.open());
        qml.write("import QtQuick\nimport QtQuick.Controls.Basic\n"
                  "Column { property int clicks: 0; property int typed: 0\n"
                  "  Button { objectName: 'go'; text: 'Go'; onClicked: parent.clicks++ }\n"
                  "  TextField { objectName: 'field'; onAccepted: parent.typed++ } }\n");
        qml.close();
        view.setSource(QUrl::fromLocalFile(qml.fileName()));
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QQuickItem* root = view.rootObject();
        auto* go = root->findChild<QQuickItem*>(u"go"_s);
        go->forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&view, Qt::Key_Return);
        QTest::keyClick(&view, Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(root->property("clicks").toInt(), 2);
        QVERIFY(go->property("visualFocus").toBool());
        // A chord with Return is someone else's; a text field keeps its own.
        QTest::keyClick(&view, Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(root->property("clicks").toInt(), 2);
        root->findChild<QQuickItem*>(u"field"_s)->forceActiveFocus();
        QTest::keyClick(&view, Qt::Key_Return);
        QCOMPARE(root->property("typed").toInt(), 1);
        QCOMPARE(root->property("clicks").toInt(), 2);
        qApp->removeEventFilter(&returns);
    }

    void signInWaitsForItsOwnCallback()
    {
        // The browser is the default; a callback without this sign-in's
        // state neither ends it nor counts.
        QList<QUrl> browsed;
        bool browserOpens = true;
        int sheets = 0;
        WebAuthSession session(
            [&](const QUrl& url) {
                browsed.append(url);
                return browserOpens;
            },
            [&] {
                ++sheets;
                return true;
            });
        const QUrl authorize(u"https://kestro.app/oauth/authorize?client_id=kestro-mac&state=s1"_s);
        std::optional<std::optional<QUrl>> outcome;
        auto wait = [&]() -> QCoro::Task<> { outcome = co_await session.authenticate(authorize); };
        auto first = wait();
        QVERIFY(session.inBrowser());
        QCOMPARE(browsed, QList<QUrl>{authorize});
        QCOMPARE(sheets, 0); // no web engine for a browser sign-in
        session.deliver(QUrl(u"kestro://oauth/callback?code=stolen&state=other"_s));
        session.deliver(QUrl(u"kestro://oauth/callback?code=nostate"_s));
        QVERIFY(session.isOpen() && !outcome);
        // "Sign in here instead": the sheet, kept to the service's origin.
        session.useSheet();
        QVERIFY(!session.inBrowser());
        QCOMPARE(session.address(), authorize);
        QVERIFY(!session.navigated(QUrl(u"https://kestro.app/login"_s)));
        QVERIFY(session.navigated(QUrl(u"https://elsewhere.example/help"_s)));
        QCOMPARE(browsed.last(), QUrl(u"https://elsewhere.example/help"_s));
        QVERIFY(session.navigated(QUrl(u"kestro://oauth/callback?code=x&state=wrong"_s)));
        QVERIFY(session.isOpen());
        QVERIFY(session.navigated(QUrl(u"kestro://oauth/callback?code=good&state=s1"_s)));
        QTRY_VERIFY(outcome.has_value());
        QCOMPARE(**outcome, QUrl(u"kestro://oauth/callback?code=good&state=s1"_s));
        QVERIFY(!session.isOpen());

        // Where no browser opens, the sheet shows at once.
        browserOpens = false;
        outcome.reset();
        auto second = wait();
        QVERIFY(!session.inBrowser());
        QCOMPARE(sheets, 2);
        session.cancel();
        QTRY_VERIFY(outcome.has_value());
        QCOMPARE(*outcome, std::nullopt);

        // Where neither opens, a sentence says what to do.
        WebAuthSession stranded([](const QUrl&) { return false; }, [] { return false; });
        QString said;
        auto third = [&]() -> QCoro::Task<> {
            try {
                co_await stranded.authenticate(authorize);
            } catch (const ServiceError& error) {
                said = error.description();
            }
        }();
        QTRY_VERIFY(said.startsWith(u"Kestro could open neither your web browser"_s));
        QVERIFY(!stranded.isOpen());
    }

    void aPageCanOnlyPostToTheBridge()
    {
        // A page sees the bridge through the web channel, which publishes
        // every property and method: it may post, and set nothing that
        // would change who it says it is (the sender is the view's address).
        const QMetaObject& bridge = WebBridge::staticMetaObject;
        QCOMPARE(bridge.propertyCount(), QObject::staticMetaObject.propertyCount());
        QStringList methods;
        for (int i = bridge.methodOffset(); i < bridge.methodCount(); ++i)
            methods << QString::fromLatin1(bridge.method(i).methodSignature());
        QCOMPARE(methods, QStringList{u"post(QString)"_s});
    }

    void everyTeammateHasItsOwnFace()
    {
        const QStringList kest{u"nova"_s, u"quill"_s, u"atlas"_s, u"forge"_s, u"pixel"_s, u"ledger"_s};
        QSet<QString> looks;
        for (const QString& handle : kest) {
            const RobotFace face = RobotFace::of(handle);
            QCOMPARE(RobotFace::of(handle.toUpper()), face);
            looks.insert(u"%1/%2/%3/%4/%5"_s.arg(face.hue)
                             .arg(face.head)
                             .arg(face.eyes)
                             .arg(face.mouth)
                             .arg(face.antenna));
        }
        QCOMPARE(looks.size(), kest.size());
        // The same on every machine and every run (no seeded hash): these
        // faces are the demo's, as users know them.
        QCOMPARE(RobotFace::of(u"atlas"_s), (RobotFace{216, 1, 3, 0, 0}));
        QCOMPARE(RobotFace::of(u"nova"_s), (RobotFace{120, 2, 0, 1, 2}));

        // Drawn at the size asked, light and dark differently, with a
        // transparent corner (a round face).
        const QImage light = RobotFace::of(u"atlas"_s).draw(40, false);
        const QImage dark = RobotFace::of(u"atlas"_s).draw(40, true);
        QCOMPARE(light.size(), QSize(40, 40));
        QVERIFY(light != dark);
        QCOMPARE(qAlpha(light.pixel(0, 0)), 0);
        QVERIFY(qAlpha(light.pixel(20, 20)) > 0);
    }
};

QTEST_MAIN(ShellGuiTest)
#include "tst_shell_gui.moc"
