// The prompt bar as a user drives it: real key events on a QQuickView
// (Return, Shift+Return, the arrows, Tab, Escape, an input method's
// composition), the "@" menu, pastes of files, images and text, growth up to
// its cap, and the read-only roles.

#include "shell/IconProvider.h"

#include <QClipboard>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QProcess>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTemporaryDir>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(Kestro_ControlsPlugin)
Q_IMPORT_QML_PLUGIN(Kestro_PagesPlugin)
Q_IMPORT_QML_PLUGIN(Kestro_ComposerPlugin)

using namespace Qt::StringLiterals;

namespace {

const char* scene = R"QML(
import QtQuick
import Kestro.Composer
Item {
    id: root
    width: 640
    height: 560
    property int sent: 0
    property string lastSent
    property var lastFiles: []
    property int cancels: 0
    PromptBar {
        id: bar
        objectName: "bar"
        anchors.bottom: parent.bottom
        width: parent.width
        access: "member"
        acceptsFiles: true
        cancels: true
        mentions: [{ handle: "nova", name: "Nova" }, { handle: "quill", name: "Quill" },
                   { handle: "maya", name: "Maya Lindqvist" }]
        onSend: text => { root.sent++; root.lastSent = text }
        onFiles: paths => root.lastFiles = paths
        onCancel: root.cancels++
    }
}
)QML";

} // namespace

class PromptBarTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QQuickView> m_view;
    QQuickItem* m_bar = nullptr;
    QQuickItem* m_editor = nullptr;

    QObject* menus() const { return m_bar->property("model").value<QObject*>(); }
    QString value() const { return m_bar->property("value").toString(); }
    int caret() const { return m_editor->property("cursorPosition").toInt(); }
    int sent() const { return m_view->rootObject()->property("sent").toInt(); }
    void setValue(const QString& text)
    {
        m_bar->setProperty("value", text);
        m_editor->setProperty("cursorPosition", int(text.size()));
    }
    void type(const QString& text)
    {
        for (const QChar c : text)
            QTest::keyClick(m_view.get(), c.toLatin1());
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(m_view.get(), key, modifiers);
    }

private slots:
    void init()
    {
        m_view = std::make_unique<QQuickView>();
        m_view->engine()->addImportPath(u"qrc:/"_s);
        m_view->engine()->addImageProvider(u"icon"_s, new Kestro::IconProvider);
        QQmlComponent component(m_view->engine());
        component.setData(scene, QUrl());
        QVERIFY2(component.isReady(), qPrintable(component.errorString()));
        m_view->setContent(QUrl(), &component, component.create());
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
        m_bar = m_view->rootObject()->findChild<QQuickItem*>(u"bar"_s);
        m_editor = m_view->rootObject()->findChild<QQuickItem*>(u"promptEditor"_s);
        QVERIFY(m_bar && m_editor);
        m_editor->forceActiveFocus();
        QTRY_VERIFY(m_editor->hasActiveFocus());
    }

    void returnSendsAndShiftReturnBreaksTheLine()
    {
        type(u"hello"_s);
        key(Qt::Key_Return, Qt::ShiftModifier);
        type(u"there"_s);
        QCOMPARE(value(), u"hello\nthere"_s);
        QCOMPARE(sent(), 0);
        key(Qt::Key_Return);
        QCOMPARE(sent(), 1);
        QCOMPARE(m_view->rootObject()->property("lastSent").toString(), u"hello\nthere"_s);
        // Nothing to send, or a send under way: Return does nothing.
        setValue(u"   "_s);
        key(Qt::Key_Return);
        setValue(u"again"_s);
        m_bar->setProperty("pending", true);
        key(Qt::Key_Enter);
        QCOMPARE(sent(), 1);
    }

    // The same keys from the X server, as a keyboard sends them (the
    // platform's key mapping and focus take part).
    void sendsWhatIsTypedOnTheKeyboard()
    {
        const QString window = QString::number(m_view->winId());
        auto xdo = [&](const QStringList& args) {
            QCOMPARE(QProcess::execute(u"xdotool"_s, {u"windowfocus"_s, u"--sync"_s, window}), 0);
            QCOMPARE(QProcess::execute(u"xdotool"_s, args), 0);
        };
        xdo({u"type"_s, u"--delay"_s, u"15"_s, u"hi @qu"_s});
        QTRY_VERIFY(menus()->property("menuOpen").toBool());
        xdo({u"key"_s, u"Tab"_s});
        QTRY_COMPARE(value(), u"hi @quill "_s);
        xdo({u"key"_s, u"shift+Return"_s, u"x"_s});
        QTRY_COMPARE(value(), u"hi @quill \nx"_s);
        QCOMPARE(sent(), 0);
        xdo({u"key"_s, u"Return"_s});
        QTRY_COMPARE(sent(), 1);
        QCOMPARE(m_view->rootObject()->property("lastSent").toString(), u"hi @quill \nx"_s);
    }

    void returnWhileComposingDoesNotSend()
    {
        setValue(u"ni"_s);
        QInputMethodEvent composing(u"hao"_s, {});
        QGuiApplication::sendEvent(m_editor, &composing);
        QTRY_VERIFY(m_editor->property("inputMethodComposing").toBool());
        key(Qt::Key_Return);
        QCOMPARE(sent(), 0);
    }

    void menuKeysGoToTheOpenMenuFirst()
    {
        type(u"@"_s);
        QTRY_VERIFY(menus()->property("menuOpen").toBool());
        QCOMPARE(menus()->property("menuTitle").toString(), u"Mention someone. Enter picks"_s);
        const int at = caret();
        key(Qt::Key_Down);
        QCOMPARE(menus()->property("activeRow").toInt(), 1);
        QCOMPARE(caret(), at); // the caret stays
        key(Qt::Key_Up);
        key(Qt::Key_Up);
        QCOMPARE(menus()->property("activeRow").toInt(), 2); // wraps to the last row
        key(Qt::Key_Return);
        QCOMPARE(value(), u"@maya "_s);
        QCOMPARE(caret(), 6);
        QCOMPARE(sent(), 0); // the pick took Return
        QVERIFY(!menus()->property("menuOpen").toBool());

        // A name that contains the query; Tab picks too.
        type(u"@lind"_s);
        QTRY_VERIFY(menus()->property("menuOpen").toBool());
        key(Qt::Key_Tab);
        QCOMPARE(value(), u"@maya @maya "_s);

        // Escape closes the menu and leaves the text; the next Escape cancels.
        type(u"@no"_s);
        QTRY_VERIFY(menus()->property("menuOpen").toBool());
        key(Qt::Key_Escape);
        QVERIFY(!menus()->property("menuOpen").toBool());
        QCOMPARE(value(), u"@maya @maya @no"_s);
        QCOMPARE(m_view->rootObject()->property("cancels").toInt(), 0);
        key(Qt::Key_Escape);
        QCOMPARE(m_view->rootObject()->property("cancels").toInt(), 1);
        // A bar that does not cancel leaves Escape to the page.
        m_bar->setProperty("cancels", false);
        key(Qt::Key_Escape);
        QCOMPARE(m_view->rootObject()->property("cancels").toInt(), 1);
    }

    void aPickedSkillIsSentByTheNextReturn()
    {
        QMetaObject::invokeMethod(
            menus(), "setSkills",
            Q_ARG(QVariantList,
                  (QVariantList{QVariantMap{{u"id"_s, u"summarize"_s}, {u"name"_s, u"Summarize"_s}},
                                QVariantMap{{u"id"_s, u"review-pr"_s}, {u"agent"_s, u"forge"_s}}})));
        type(u"/su"_s);
        QTRY_VERIFY(menus()->property("menuOpen").toBool());
        key(Qt::Key_Return);
        QCOMPARE(value(), u"/summarize "_s);
        QVERIFY(!menus()->property("menuOpen").toBool());
        type(u"this"_s);
        key(Qt::Key_Return);
        QCOMPARE(sent(), 1);
        QCOMPARE(m_view->rootObject()->property("lastSent").toString(), u"/summarize this"_s);
        // Another teammate's skill is offered only when writing to them.
        setValue(u"/rev"_s);
        QVERIFY(!menus()->property("menuOpen").toBool());
        m_bar->setProperty("skillsFor", u"forge"_s);
        setValue(u"/re"_s);
        QTRY_VERIFY(menus()->property("menuOpen").toBool());
    }

    void arrowsMoveTheCaretWithNoMenu()
    {
        setValue(u"first line\nsecond"_s);
        const int end = caret();
        key(Qt::Key_Up);
        QVERIFY(caret() < 10);
        key(Qt::Key_Down);
        QCOMPARE(caret(), end);
    }

    void pastesFilesThenTextThenImages()
    {
        QClipboard* clipboard = QGuiApplication::clipboard();
        auto files = [&] { return m_view->rootObject()->property("lastFiles").toStringList(); };

        // Copied files: they are handed over, no text is pasted.
        QTemporaryDir dir;
        const QString report = dir.filePath(u"report.pdf"_s);
        QFile(report).open(QIODevice::WriteOnly);
        auto* copied = new QMimeData;
        copied->setUrls({QUrl::fromLocalFile(report)});
        copied->setText(report);
        clipboard->setMimeData(copied);
        key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(files(), QStringList{report});
        QCOMPARE(value(), QString());

        // A screenshot: one PNG file in a folder of its own, no text.
        QImage shot(40, 30, QImage::Format_RGB32);
        shot.fill(Qt::darkCyan);
        clipboard->setImage(shot);
        key(Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(files().size(), 1);
        const QFileInfo png(files().first());
        QVERIFY(png.fileName().startsWith(u"Pasted image "_s));
        QCOMPARE(png.suffix(), u"png"_s);
        QCOMPARE(QImage(png.filePath()).size(), shot.size());
        QCOMPARE(value(), QString());
        QDir(png.path()).removeRecursively();

        // Plain text is pasted as text.
        clipboard->setText(u"plain words"_s);
        m_view->rootObject()->setProperty("lastFiles", QVariant());
        key(Qt::Key_V, Qt::ControlModifier);
        QTRY_COMPARE(value(), u"plain words"_s);
        QVERIFY(files().isEmpty());
    }

    void growsToItsCapThenScrolls()
    {
        auto* scroll = m_view->rootObject()->findChild<QQuickItem*>(u"promptScroll"_s);
        QVERIFY(scroll);
        const qreal empty = scroll->height();
        // One line: the minimum, or the line's own height if a little more.
        const qreal min = m_bar->property("min").toReal();
        QVERIFY2(empty >= min && empty < min + 8, qPrintable(QString::number(empty)));
        QStringList lines;
        for (int i = 0; i < 300; ++i)
            lines.append(u"line %1"_s.arg(i));
        setValue(lines.join(u'\n'));
        QTRY_COMPARE(scroll->height(), 240.0);
        QVERIFY(scroll->property("contentHeight").toReal() > 240 * 10);
        // The caret, at the end, is in sight.
        QTRY_VERIFY(scroll->property("contentY").toReal() > 0);
    }

    void keepsToItsMaximumLength()
    {
        m_bar->setProperty("maxLength", 10);
        type(u"twelve chars"_s);
        QCOMPARE(value(), u"twelve cha"_s);
        auto* left = m_view->rootObject()->findChild<QQuickItem*>(u"lengthLeft"_s);
        QVERIFY(left && left->isVisible());
        QCOMPARE(left->property("text").toString(), u"0 left"_s);
        // Typed in the middle of a full text: what came in is cut, the end stays.
        m_editor->setProperty("cursorPosition", 3);
        type(u"XY"_s);
        QCOMPARE(value(), u"twelve cha"_s);
        QCOMPARE(caret(), 3);
    }

    void readOnlyRolesSeeTheirSentence_data()
    {
        QTest::addColumn<QString>("role");
        QTest::addColumn<QString>("notice");
        QTest::newRow("approver") << u"approver"_s
                                  << u"You're an approver here, so you decide what waits on people and write "
                                     "nothing else."_s;
        QTest::newRow("guest") << u"guest"_s
                               << u"You're a guest here, so you can read and comment on what someone shared "
                                  "with you."_s;
        QTest::newRow("viewer") << u"viewer"_s << u"You're a viewer here, so you can read but not write."_s;
        QTest::newRow("member") << u"member"_s << QString();
    }
    void readOnlyRolesSeeTheirSentence()
    {
        QFETCH(QString, role);
        QFETCH(QString, notice);
        m_bar->setProperty("access", role);
        QCOMPARE(m_bar->property("notice").toString(), notice);
        QCOMPARE(m_editor->isVisible(), notice.isEmpty());
    }
};

QTEST_MAIN(PromptBarTest)
#include "tst_prompt_bar.moc"
