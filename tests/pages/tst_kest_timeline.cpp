// The room's timeline on screen, fed by the room's model: a reload with
// nothing new keeps every delegate, a new message while the user reads
// older ones does not move what they read, one that arrives while they
// are at the newest message shows at once, and a citation in a message
// points at its source.

#include "pages/KestRoomPage.h"
#include "shell/IconProvider.h"

#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(Kestro_ControlsPlugin)
Q_IMPORT_QML_PLUGIN(Kestro_PagesPlugin)
Q_IMPORT_QML_PLUGIN(Kestro_AgentWorkPlugin)
Q_IMPORT_QML_PLUGIN(Kestro_RichTextPlugin)

using namespace Qt::StringLiterals;
using namespace Kestro;

namespace {

class Room : public KestRoomPage {
public:
    void take(const Calls::kest::KestChatResult& result) { apply(QVariant::fromValue(result)); }
};

Model::KestRoomMessage message(int i)
{
    Model::KestRoomMessage m;
    m.id = u"m%1"_s.arg(i, 4, 10, QLatin1Char('0'));
    m.from = u"person"_s;
    m.by = {u"u1"_s, u"person"_s, u"Maya"_s, std::nullopt, std::nullopt};
    // Heights differ from row to row, as real messages do.
    m.text = u"Message %1.%2"_s.arg(i).arg(QString(u"\n\nmore"_s).repeated(i % 4));
    m.at = u"2026-11-20T09:00:00Z"_s;
    if (i == 199)
        m.cites = {{u"page"_s, u"p1"_s, u"Pricing"_s, u"web"_s, std::nullopt},
                   {u"page"_s, u"p2"_s, u"Plans"_s, u"web"_s, std::nullopt}};
    return m;
}

Calls::kest::KestChatResult roomOf(int count)
{
    Calls::kest::KestChatResult result;
    result.me = u"u1"_s;
    for (int i = 0; i < count; ++i)
        result.messages.append(message(i));
    return result;
}

} // namespace

class KestTimelineTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QQuickView> m_view;
    std::unique_ptr<Room> m_room;
    QQuickItem* m_list = nullptr;

    QQuickItem* delegateFor(const QString& key) const
    {
        for (QQuickItem* item : m_list->property("contentItem").value<QQuickItem*>()->childItems())
            if (item->property("key").toString() == key)
                return item;
        return nullptr;
    }
    // Where a message shows in the view, or NaN when it has no delegate.
    qreal shownAt(const QString& key) const
    {
        QQuickItem* item = delegateFor(key);
        return item ? item->mapToItem(m_list, QPointF()).y() : qQNaN();
    }

private slots:
    void init()
    {
        m_room = std::make_unique<Room>();
        m_room->take(roomOf(200));
        m_view = std::make_unique<QQuickView>();
        m_view->engine()->addImportPath(u"qrc:/"_s);
        m_view->engine()->addImageProvider(u"icon"_s, new IconProvider);
        m_view->setInitialProperties({{u"model"_s, QVariant::fromValue<QObject*>(m_room->messages())}});
        m_view->setSource(QUrl(u"qrc:/Kestro/Pages/KestTimeline.qml"_s));
        QVERIFY2(m_view->status() == QQuickView::Ready, qPrintable(m_view->errors().value(0).toString()));
        m_view->setResizeMode(QQuickView::SizeRootObjectToView);
        m_view->resize(600, 500);
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));
        m_list = m_view->rootObject();
        // The newest message shows at the bottom.
        QTRY_VERIFY(!qIsNaN(shownAt(u"m0199"_s)));
        QTRY_VERIFY(shownAt(u"m0199"_s) > 300);
    }
    void cleanup()
    {
        m_view.reset();
        m_room.reset();
    }

    void aReloadWithNothingNewKeepsEveryDelegate()
    {
        QQuickItem* newest = delegateFor(u"m0199"_s);
        QQuickItem* older = delegateFor(u"m0197"_s);
        QVERIFY(newest && older);
        const qreal at = shownAt(u"m0197"_s);
        m_room->take(roomOf(200));
        QVERIFY(QMetaObject::invokeMethod(m_list, "forceLayout"));
        QCOMPARE(delegateFor(u"m0199"_s), newest);
        QCOMPARE(delegateFor(u"m0197"_s), older);
        QCOMPARE(shownAt(u"m0197"_s), at);
    }

    void aNewMessageDoesNotMoveWhatTheUserReads()
    {
        // Take the scroll bar's handle up into the history, as a reader does.
        const QPoint handle(m_list->width() - 4, m_list->height() - 10);
        QTest::mouseMove(m_view.get(), handle);
        QTest::mousePress(m_view.get(), Qt::LeftButton, {}, handle);
        for (int step = 1; step <= 10; ++step)
            QTest::mouseMove(m_view.get(), handle - QPoint(0, 12 * step));
        QTest::mouseRelease(m_view.get(), Qt::LeftButton, {}, handle - QPoint(0, 120));
        QVERIFY(!m_list->property("atYEnd").toBool());
        QVERIFY(!m_list->property("stuck").toBool());
        QVERIFY(QMetaObject::invokeMethod(m_list, "forceLayout"));
        // The message across the middle of the view is the one being read.
        QString read;
        const qreal middle = m_list->height() / 2;
        for (QQuickItem* item : m_list->property("contentItem").value<QQuickItem*>()->childItems()) {
            const qreal y = item->mapToItem(m_list, QPointF()).y();
            if (y <= middle && y + item->height() > middle && !item->property("key").toString().isEmpty())
                read = item->property("key").toString();
        }
        QVERIFY(!read.isEmpty());
        const qreal at = shownAt(read);
        auto more = roomOf(201);
        m_room->take(more);
        // Laid out first, so a check made before the view moved proves nothing.
        QVERIFY(QMetaObject::invokeMethod(m_list, "forceLayout"));
        // Within a pixel: the view may settle its bounds by a fraction.
        QTRY_VERIFY2(qAbs(shownAt(read) - at) < 1,
                     qPrintable(u"%1 moved to %2"_s.arg(at).arg(shownAt(read))));
        QVERIFY(m_list->property("atYEnd").toBool() == false);
    }

    void aCitationPointsAtItsSource()
    {
        QQuickItem* newest = delegateFor(u"m0199"_s);
        QVERIFY(newest);
        QObject* text = newest->findChild<QObject*>(u"messageText"_s);
        QVERIFY(text);
        QVERIFY(QMetaObject::invokeMethod(text, "anchorClicked", Q_ARG(QString, u"#source-2"_s)));
        QCOMPARE(newest->property("pointedCite").toInt(), 1);
        // Only a citation of a source the message has lights one.
        for (const QString& anchor : {u"#source-3"_s, u"#source-0"_s, u"#source-1x"_s, u"#top"_s}) {
            QVERIFY(QMetaObject::invokeMethod(text, "anchorClicked", Q_ARG(QString, anchor)));
            QCOMPARE(newest->property("pointedCite").toInt(), 1);
        }
    }

    void aNewMessageShowsWhenTheUserIsAtTheNewest()
    {
        m_room->take(roomOf(201));
        QTRY_VERIFY(!qIsNaN(shownAt(u"m0200"_s)));
        QTRY_VERIFY(shownAt(u"m0200"_s) > 300);
        QVERIFY(m_list->property("stuck").toBool());
    }
};

QTEST_MAIN(KestTimelineTest)
#include "tst_kest_timeline.moc"
