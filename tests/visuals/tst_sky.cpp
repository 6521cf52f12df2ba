// The sky's host side (what it hands the shader, frame by frame, driven by
// a clock the test turns) and its drawing: it draws the theme's sky with
// clouds along the bottom, stands still under reduce motion, and moves
// otherwise.

#include "visuals/SkyView.h"

#include <QDir>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QTemporaryFile>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(Kestro_ControlsPlugin)
Q_IMPORT_QML_PLUGIN(Kestro_VisualsPlugin)

using namespace Kestro;
using namespace Qt::Literals::StringLiterals;

namespace {

struct Sky {
    double now = 100.0;
    SkyView view;

    explicit Sky(bool dark)
    {
        view.setClock([this] { return now; });
        view.setDark(dark);
        view.setSky(dark ? QColor(u"#101522"_s) : QColor(u"#dde8f8"_s));
        view.setCloud(QColor(u"#eef1f6"_s));
        view.componentComplete();
    }
    // One frame, `seconds` after the last.
    void frameAfter(double seconds)
    {
        now += seconds;
        view.frame();
    }
};

int lightness(QRgb pixel)
{
    return QColor(pixel).lightness();
}

} // namespace

class TestSky : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Llvmpipe would make every sky still; here only reduce motion may.
        qputenv("KESTRO_SKY_FPS", "0");
    }

    void appearsInItsThemeAndBlendsLater()
    {
        Sky sky(true);
        QCOMPARE(sky.view.theme(), 1.0);
        QCOMPARE(sky.view.skyD(), QColor(u"#101522"_s));

        // To light, the new colour first (as bindings may send it): the
        // light colours arrive, the dark ones stay for the blend, and the
        // theme eases over, 8% of the gap per 60th of a second.
        sky.view.setSky(QColor(u"#dde8f8"_s));
        sky.view.setDark(false);
        QCoreApplication::processEvents();
        QCOMPARE(sky.view.skyL(), QColor(u"#dde8f8"_s));
        QCOMPARE(sky.view.skyD(), QColor(u"#101522"_s));
        QVERIFY(sky.view.blending());
        sky.frameAfter(0);
        sky.frameAfter(1.0 / 60);
        QVERIFY(qAbs(sky.view.theme() - 0.92) < 1e-9);
        sky.frameAfter(1.0 / 60);
        QVERIFY(qAbs(sky.view.theme() - 0.92 * 0.92) < 1e-9);
        // A slower display closes the same share per second.
        sky.frameAfter(1.0 / 30);
        QVERIFY(qAbs(sky.view.theme() - std::pow(0.92, 4)) < 1e-9);
        // Two seconds on, the blend is over (a calm sky stops there).
        for (int i = 0; i < 120; ++i)
            sky.frameAfter(1.0 / 60);
        QVERIFY(!sky.view.blending());
    }

    void longGapsAndPausesDoNotJump()
    {
        Sky sky(false);
        QCOMPARE(sky.view.theme(), 0.0);
        sky.frameAfter(0);
        sky.frameAfter(0.02);
        QVERIFY(qAbs(sky.view.time() - 0.02) < 1e-9);
        // Asleep for ten seconds: the clouds move by one long step only.
        sky.frameAfter(10);
        QVERIFY(qAbs(sky.view.time() - 0.07) < 1e-9);

        // Stopped and started again: the first frame after moves nothing,
        // however long the pause.
        sky.view.setStopped(true);
        QVERIFY(sky.view.paused());
        sky.view.setStopped(false);
        sky.frameAfter(30);
        QVERIFY(qAbs(sky.view.time() - 0.07) < 1e-9);
        sky.frameAfter(0.01);
        QVERIFY(qAbs(sky.view.time() - 0.08) < 1e-9);
    }

    void stillShowsOneMomentInTheCurrentTheme()
    {
        Sky sky(false);
        sky.frameAfter(0);
        sky.frameAfter(0.03);
        sky.view.setStill(true);
        QCoreApplication::processEvents();
        QVERIFY(sky.view.paused());
        QCOMPARE(sky.view.time(), SkyView::stillTime);
        // A theme change under reduce motion is a cut, not a blend.
        sky.view.setSky(QColor(u"#101522"_s));
        sky.view.setDark(true);
        QCoreApplication::processEvents();
        QCOMPARE(sky.view.theme(), 1.0);
        QCOMPARE(sky.view.time(), SkyView::stillTime);
    }

    void drawsAtAThirdOfTheSizeAndNeverNothing()
    {
        QCOMPARE(SkyView::drawableSize(QSizeF(1440, 900)), QSize(518, 324));
        QCOMPARE(SkyView::drawableSize(QSizeF(0, 0)), QSize(1, 1));
        QCOMPARE(SkyView::drawableSize(QSizeF(1, 3000)), QSize(1, 1080));
        SkyView view;
        QSignalSpy resized(&view, &SkyView::resChanged);
        view.setViewSize(QSizeF(100, 50));
        QCOMPARE(view.res(), QSize(36, 18));
        view.setViewSize(QSizeF(100.4, 50.4)); // the same drawable
        QCOMPARE(resized.count(), 1);
    }

    void drawsStillOrMovingClouds()
    {
        // Two skies side by side: one under reduce motion, one moving.
        QTemporaryFile qml(QDir::tempPath() + u"/sky-XXXXXX.qml"_s);
        QVERIFY(qml.open());
        qml.write("import QtQuick\nimport Kestro.Controls\nimport Kestro.Visuals\n"
                  "Row { width: 800; height: 300; property bool dark: false\n"
                  "  Binding { target: Theme; property: 'reduceMotion'; value: true }\n"
                  "  Binding { target: Theme; property: 'dark'; value: dark }\n"
                  "  Sky { objectName: 'still'; width: 400; height: 300 }\n"
                  "  SkySurface { objectName: 'moving'; width: 400; height: 300\n"
                  "    dark: Theme.dark; sky: Theme.skyColor; cloud: Theme.cloudColor } }\n");
        qml.close();
        QQuickView window;
        window.engine()->addImportPath(u"qrc:/"_s);
        window.setSource(QUrl::fromLocalFile(qml.fileName()));
        QVERIFY2(window.status() == QQuickView::Ready, qPrintable(window.errors().value(0).toString()));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QObject* root = window.rootObject();
        auto* moving = root->findChild<QQuickItem*>(u"moving"_s)->property("view").value<SkyView*>();
        QVERIFY(moving);
        const QString shots = QStringLiteral(KESTRO_SCREENSHOT_DIR);
        QDir().mkpath(shots);

        // The moving sky has drawn a few frames; then seconds pass.
        QTRY_VERIFY(moving->time() > 0.1);
        const QImage first = window.grabWindow();
        QTest::qWait(1500);
        const QImage second = window.grabWindow();
        first.save(shots + u"/sky-light.png"_s);
        const QRect still(0, 0, 400, 300);
        const QRect moved(400, 0, 400, 300);
        QCOMPARE(first.copy(still), second.copy(still));
        QVERIFY(first.copy(moved) != second.copy(moved));
        expectSky(first, root->findChild<QQuickItem*>(u"still"_s)->property("sky").value<QColor>(), true);

        // To dark: the still sky cuts over, the moving one blends.
        root->setProperty("dark", true);
        QTRY_VERIFY(moving->theme() > 0.2);
        window.grabWindow().save(shots + u"/sky-blend.png"_s);
        QTRY_VERIFY(moving->theme() > 0.995);
        const QImage dark = window.grabWindow();
        dark.save(shots + u"/sky-dark.png"_s);
        expectSky(dark, root->findChild<QQuickItem*>(u"still"_s)->property("sky").value<QColor>(), false);
    }

private:
    // The top row is the sky's colour; the clouds along the bottom differ
    // from it, lighter in light mode.
    static void expectSky(const QImage& image, const QColor& expected, bool lighterClouds)
    {
        for (const int x : {200, 600}) {
            const QColor top = image.pixelColor(x, 2);
            QVERIFY2(qAbs(top.red() - expected.red()) <= 3 && qAbs(top.green() - expected.green()) <= 3 &&
                         qAbs(top.blue() - expected.blue()) <= 3,
                     qPrintable(top.name() + u" against "_s + expected.name()));
        }
        int furthest = 0;
        for (int x = 0; x < 400; x += 4) {
            const int off = lightness(image.pixel(x, 290)) - expected.lightness();
            furthest = std::max(furthest, lighterClouds ? off : std::abs(off));
        }
        QVERIFY2(furthest > 6, qPrintable(QString::number(furthest)));
    }
};

QTEST_MAIN(TestSky)
#include "tst_sky.moc"
