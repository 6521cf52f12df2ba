// The kest room and the run page: the sentences a send leaves under the
// composer, the hint, where a send goes, the optimistic reaction, the
// cadence, and the pages against a real kestro-devservice (a reload that
// changes nothing moves no row, a reaction shows before the service
// answers and stays after, a thread opens beside the room, a run loads).

#include "DevServiceProcess.h"
#include "DevServiceSession.h"

#include "pages/DirectChatPage.h"
#include "pages/KestComposer.h"
#include "pages/KestRoomPage.h"
#include "pages/KestWords.h"
#include "pages/RunPage.h"
#include "shell/Drafts.h"
#include "shell/PageCatalog.h"
#include "shell/Router.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Kestro;
using Calls::app::PostKestMessageActionResult;
using Calls::kest::KestChatResultKest;

namespace {

QList<KestChatResultKest> kestOf(bool withLead)
{
    return {{u"nova"_s, u"Nova"_s, u"Lead"_s, {}, u"idle"_s, false, withLead},
            {u"quill"_s, u"Quill"_s, u"Writer"_s, {}, u"idle"_s, false, false},
            {u"atlas"_s, u"Atlas"_s, u"Research"_s, {}, u"idle"_s, false, false}};
}

} // namespace

class KestRoomTest : public QObject {
    Q_OBJECT

    KestroTest::DevServiceProcess m_service{QStringLiteral(DEVSERVICE_PATH)};
    std::unique_ptr<KestroTest::DevServiceSession> m_session;
    std::unique_ptr<Router> m_router;

    std::unique_ptr<KestRoomPage> openRoom(const QString& path)
    {
        auto page = std::make_unique<KestRoomPage>();
        page->setRouter(m_router.get());
        page->setRoute(Route::parse(path));
        page->start();
        [&] { QTRY_COMPARE_WITH_TIMEOUT(page->loader()->state(), Loaded::State::Content, 10000); }();
        return page;
    }

private slots:
    void initTestCase()
    {
        m_service.start({u"--auto-approve"_s, u"--time-scale"_s, u"20"_s});
        m_session = std::make_unique<KestroTest::DevServiceSession>(m_service.origin());
        m_router = std::make_unique<Router>(m_service.origin(), Route::parse(u"/kest"_s), [](const QUrl&) {});
    }
    void cleanupTestCase()
    {
        m_session.reset();
        m_service.stop();
    }

    void theNoteSaysWhoTookTheMessage_data()
    {
        QTest::addColumn<PostKestMessageActionResult>("result");
        QTest::addColumn<QString>("note");
        PostKestMessageActionResult twoAndOne;
        twoAndOne.started = QStringList{u"atlas"_s, u"quill"_s};
        twoAndOne.stopped = QStringList{u"nova"_s};
        // Names in the kest's order, whatever the order of the handles.
        QTest::newRow("two started, one stopped")
            << twoAndOne << u"Quill and Atlas are on it. Nova stopped."_s;
        PostKestMessageActionResult triage;
        triage.triaging = true;
        QTest::newRow("the lead triages") << triage << u"Nova is seeing who this is for."_s;
        PostKestMessageActionResult handed;
        handed.handed = QStringList{u"quill"_s};
        handed.skipped = QList<Calls::app::PostKestMessageActionResultSkipped>{
            {u"atlas"_s, u"It is paused in its settings."_s}};
        QTest::newRow("handed and skipped")
            << handed
            << u"Quill takes it into the answer in progress. Atlas can't answer now. It is paused in its settings."_s;
        PostKestMessageActionResult many;
        many.started = QStringList{u"nova"_s, u"quill"_s, u"atlas"_s, u"ghost"_s};
        QTest::newRow("three and an unknown handle") << many << u"Nova, Quill, Atlas and ghost are on it."_s;
        QTest::newRow("nothing to say") << PostKestMessageActionResult{} << QString();
    }
    void theNoteSaysWhoTookTheMessage()
    {
        QFETCH(PostKestMessageActionResult, result);
        QFETCH(QString, note);
        QCOMPARE(KestWords::noteOf(result, kestOf(true)), note);
    }

    void theHintFollowsTheMentions_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("lead");
        QTest::addColumn<QString>("hint");
        QTest::newRow("no mention, a lead")
            << u"what now?"_s << true
            << u"Nova sees who it's for · @ calls on a teammate · @all calls on everyone"_s;
        QTest::newRow("no mention, no lead") << u"what now?"_s << false << u"@ calls on a teammate"_s;
        QTest::newRow("two teammates")
            << u"@atlas and @Quill, look"_s << true << u"Goes to Quill and Atlas"_s;
        QTest::newRow("everyone wins") << u"@atlas @everyone"_s << true << u"Goes to everyone"_s;
        QTest::newRow("an address is no mention")
            << u"mail maya@atlas.com"_s << false << u"@ calls on a teammate"_s;
        QTest::newRow("an unknown handle") << u"@nobody hi"_s << false << u"@ calls on a teammate"_s;
    }
    void theHintFollowsTheMentions()
    {
        QFETCH(QString, text);
        QFETCH(bool, lead);
        QFETCH(QString, hint);
        QCOMPARE(KestWords::hintOf(text, kestOf(lead)), hint);
    }

    void theEmptyRoomNamesWhoAnswersTheUnaddressed()
    {
        QVERIFY(KestWords::emptyText(kestOf(true))
                    .contains(u"Name no one and Nova sees whether it's for the kest."_s));
        QVERIFY(KestWords::emptyText(kestOf(false))
                    .contains(u"Name no one and Nova answers what names no one."_s));
        QCOMPARE(KestWords::everyoneLine(kestOf(true)), u"Everyone: your team, 3 teammates"_s);
        QCOMPARE(KestWords::approvals(1), u"An approval waits for you in Needs you"_s);
        QCOMPARE(KestWords::approvals(3), u"3 approvals wait for you in Needs you"_s);
        QCOMPARE(KestWords::approvals(0), QString());
    }

    void onlyTheRoomOpensTheNewThread()
    {
        PostKestMessageActionResult result;
        result.threadId = u"m_1"_s;
        QCOMPARE(KestComposer::outcomeOf(result, kestOf(true), false).open, u"/kest?thread=m_1"_s);
        QCOMPARE(KestComposer::outcomeOf(result, kestOf(true), true).open, QString());
    }

    void halfTypedWordsStayWithTheirPlace()
    {
        // Each thread keeps its own unsent words; another thread starts
        // empty, coming back gives them back, and so does a rebuilt room.
        {
            KestRoomPage room;
            room.setRouter(m_router.get());
            room.setRoute(Route::parse(u"/kest?thread=a"_s));
            room.composer()->setText(u"for the room"_s);
            room.threadComposer()->setText(u"for thread a"_s);
            room.setRoute(Route::parse(u"/kest?thread=b"_s));
            QCOMPARE(room.threadComposer()->text(), QString());
            room.threadComposer()->setText(u"for thread b"_s);
            room.setRoute(Route::parse(u"/kest"_s));
            room.setRoute(Route::parse(u"/kest?thread=a"_s));
            QCOMPARE(room.threadComposer()->text(), u"for thread a"_s);
        }
        KestRoomPage again;
        again.setRouter(m_router.get());
        again.setRoute(Route::parse(u"/kest?thread=b"_s));
        QCOMPARE(again.composer()->text(), u"for the room"_s);
        QCOMPARE(again.threadComposer()->text(), u"for thread b"_s);
        // An emptied text is forgotten.
        again.composer()->setText(u"  "_s);
        KestRoomPage third;
        QCOMPARE(third.composer()->text(), QString());
        // Signing out or switching workspace forgets them all.
        Drafts::clear();
        KestRoomPage fourth;
        fourth.setRouter(m_router.get());
        fourth.setRoute(Route::parse(u"/kest?thread=b"_s));
        QCOMPARE(fourth.threadComposer()->text(), QString());

        // The one-to-one chat keeps the new-thread words apart from a thread's.
        DirectChatPage chat;
        chat.setRouter(m_router.get());
        chat.setRoute(Route::parse(u"/kest/quill/chat"_s));
        chat.setText(u"a new thread"_s);
        chat.setRoute(Route::parse(u"/kest/quill/chat/t1"_s));
        QCOMPARE(chat.text(), QString());
        chat.setRoute(Route::parse(u"/kest/quill/chat"_s));
        QCOMPARE(chat.text(), u"a new thread"_s);
        chat.setText({});
    }

    void aSendLandsWhereItWasSentFrom()
    {
        // A send outlives the user's move and its page: its sentence and
        // its words stay with the thread it came from, not the one on screen.
        const QString gone = u"kest/thread/gone"_s;
        {
            KestRoomPage room;
            room.setRouter(m_router.get());
            room.setRoute(Route::parse(u"/kest?thread=gone"_s));
            room.threadComposer()->setText(u"still there?"_s);
            room.threadComposer()->send();
            QVERIFY(room.threadComposer()->pending());
            room.setRoute(Route::parse(u"/kest?thread=other"_s));
            QVERIFY(!room.threadComposer()->pending());
            QCOMPARE(room.threadComposer()->text(), QString());
        }
        QTRY_VERIFY_WITH_TIMEOUT(!Drafts::of(gone).pending, 10000);
        QCOMPARE(Drafts::of(gone).error, u"That thread is gone. Start a new message instead."_s);
        QCOMPARE(Drafts::of(gone).text, u"still there?"_s);
        // Typing again has the sentence go.
        Drafts::keepText(gone, u"still there? Anyone?"_s);
        QCOMPARE(Drafts::of(gone).error, QString());
        Drafts::keepText(gone, {});
        QCOMPARE(Drafts::of(gone), Draft{});

        // A good send whose page is gone still takes its words away.
        {
            auto room = openRoom(u"/kest"_s);
            room->composer()->setText(u"@quill one line for the launch post"_s);
            room->composer()->send();
        }
        QTRY_VERIFY_WITH_TIMEOUT(!Drafts::of(u"kest"_s).pending, 10000);
        QCOMPARE(Drafts::of(u"kest"_s).text, QString());
        QCOMPARE(Drafts::of(u"kest"_s).note, u"Quill is on it."_s);

        // The room opens the new thread only while the user is still where
        // they sent from.
        const QString before = m_router->route().text();
        KestRoomPage room;
        room.setRouter(m_router.get());
        room.setRoute(Route::parse(u"/kest"_s));
        room.composer()->setText(u"@quill and a second line"_s);
        room.composer()->send();
        room.setRoute(Route::parse(u"/kest?thread=elsewhere"_s));
        QTRY_VERIFY_WITH_TIMEOUT(!room.composer()->pending(), 10000);
        QCOMPARE(room.composer()->text(), QString());
        QCOMPARE(m_router->route().text(), before);
        Drafts::clear();
    }

    void aReactionTogglesTheUsersOwn()
    {
        QList<Model::ReactionView> reactions{{u"👍"_s, {u"u2"_s}}};
        reactions = KestRoomPage::toggled(reactions, u"👍"_s, u"u1"_s);
        QCOMPARE(reactions.first().by, (QStringList{u"u2"_s, u"u1"_s}));
        reactions = KestRoomPage::toggled(reactions, u"🎉"_s, u"u1"_s);
        QCOMPARE(reactions.size(), 2);
        reactions = KestRoomPage::toggled(reactions, u"🎉"_s, u"u1"_s);
        QCOMPARE(reactions.size(), 1); // the last one out takes the chip along
        reactions = KestRoomPage::toggled(reactions, u"👍"_s, u"u2"_s);
        QCOMPARE(reactions.first().by, QStringList{u"u1"_s});
    }

    void quickWhileAnyoneAnswers()
    {
        Calls::kest::KestChatResult result;
        QCOMPARE(KestRoomPage::cadence(result), 10.0);
        result.answering.append({u"atlas"_s, u"run_1"_s, std::nullopt, std::nullopt});
        QCOMPARE(KestRoomPage::cadence(result), 2.0);
    }

    void theOneToOneChatGoesQuietWhenNothingIsWritten()
    {
        ChatData data;
        QCOMPARE(DirectChatPage::cadence(data), std::nullopt);
        Model::ThreadSummary idle;
        idle.status = u"idle"_s;
        Model::ThreadSummary replying;
        replying.status = u"replying"_s;
        data.threads = {idle};
        QCOMPARE(DirectChatPage::cadence(data), std::nullopt);
        data.threads = {idle, replying};
        QCOMPARE(DirectChatPage::cadence(data), 2.0);
        // An open thread that is done: another thread being written still
        // brings its answer in.
        data.thread = Model::ThreadView{};
        data.thread->status = u"idle"_s;
        QCOMPARE(DirectChatPage::cadence(data), 2.0);
        data.threads = {idle};
        QCOMPARE(DirectChatPage::cadence(data), std::nullopt);
        data.thread->status = u"replying"_s;
        QCOMPARE(DirectChatPage::cadence(data), 2.0);
        // Working on something else than a reply is no reason to reload.
        data.thread->status = u"working"_s;
        QCOMPARE(DirectChatPage::cadence(data), std::nullopt);
    }

    void aMessageStartsAThreadWithTheTeammate()
    {
        DirectChatPage chat;
        chat.setRouter(m_router.get());
        chat.setRoute(Route::parse(u"/kest/quill/chat"_s));
        chat.start();
        QTRY_COMPARE_WITH_TIMEOUT(chat.loader()->state(), Loaded::State::Content, 10000);
        QCOMPARE(chat.name(), u"Quill"_s);
        QCOMPARE(chat.label(), u"Message Quill (new thread)..."_s);
        QVERIFY(!chat.threadOpen());
        chat.send();
        QCOMPARE(chat.error(), u"Tell us what you need first, then press Send."_s);
        chat.setText(u"Draft a two-line welcome e-mail"_s);
        chat.send();
        QVERIFY(chat.pending());
        QTRY_VERIFY_WITH_TIMEOUT(!chat.pending(), 10000);
        QVERIFY2(chat.error().isEmpty(), qPrintable(chat.error()));
        QCOMPARE(chat.text(), QString());
        // The new thread opens.
        QTRY_VERIFY(m_router->route().path.startsWith(u"/kest/quill/chat/"_s));
    }

    void theRouteTableSendsKestHere()
    {
        const auto room = PageCatalog::pageOf(Route::parse(u"/kest"_s));
        QCOMPARE(room.component, u"qrc:/Kestro/Pages/KestRoomPage.qml"_s);
        // A thread beside the room is the same page.
        QCOMPARE(PageCatalog::pageOf(Route::parse(u"/kest?thread=m_1"_s)).identity, room.identity);
        QCOMPARE(PageCatalog::pageOf(Route::parse(u"/kest/atlas/runs/r1"_s)).component,
                 u"qrc:/Kestro/Pages/RunPage.qml"_s);
        QCOMPARE(PageCatalog::pageOf(Route::parse(u"/kest/atlas/chat"_s)).component,
                 u"qrc:/Kestro/Pages/DirectChatPage.qml"_s);
        // Threads of one chat are one page; another teammate's chat is not.
        QCOMPARE(PageCatalog::pageOf(Route::parse(u"/kest/atlas/chat/th_1"_s)).identity,
                 PageCatalog::pageOf(Route::parse(u"/kest/atlas/chat"_s)).identity);
        QVERIFY(PageCatalog::pageOf(Route::parse(u"/kest/quill/chat"_s)).identity !=
                PageCatalog::pageOf(Route::parse(u"/kest/atlas/chat"_s)).identity);
    }

    void aReloadWithNothingNewMovesNoRow()
    {
        auto room = openRoom(u"/kest"_s);
        KeyedListModel* messages = room->messages();
        QVERIFY(messages->count() > 1);
        // Newest first: the view lays the rows out bottom to top.
        const auto& result = room->result();
        QCOMPARE(messages->keyAt(0), result.messages.last().id);
        QVERIFY(!room->everyoneLine().isEmpty());

        QSignalSpy inserted(messages, &QAbstractItemModel::rowsInserted);
        QSignalSpy removed(messages, &QAbstractItemModel::rowsRemoved);
        QSignalSpy moved(messages, &QAbstractItemModel::rowsMoved);
        QSignalSpy reset(messages, &QAbstractItemModel::modelReset);
        QSignalSpy changed(messages, &QAbstractItemModel::dataChanged);
        const int loads = room->loader()->loads();
        room->reloadNow();
        QTRY_COMPARE(room->loader()->loads(), loads + 1);
        QCOMPARE(inserted.size() + removed.size() + moved.size() + reset.size(), 0);
        QCOMPARE(changed.size(), 0);
    }

    void aReactionShowsAtOnceAndStays()
    {
        auto room = openRoom(u"/kest"_s);
        KeyedListModel* messages = room->messages();
        const QString id = messages->keyAt(0);
        auto mine = [&] {
            for (const QVariant& chip : messages->valueAt(0, u"reactions"_s).toList())
                if (chip.toMap().value(u"emoji"_s) == u"🚀"_s)
                    return chip.toMap().value(u"mine"_s).toBool();
            return false;
        };
        QVERIFY(!mine());
        QSignalSpy changed(messages, &QAbstractItemModel::dataChanged);
        room->react(id, u"🚀"_s);
        // Shown before the service has answered, and named for the user.
        QVERIFY(mine());
        for (const QVariant& chip : messages->valueAt(0, u"reactions"_s).toList())
            if (chip.toMap().value(u"emoji"_s) == u"🚀"_s)
                QCOMPARE(chip.toMap().value(u"who"_s).toString(), u"You"_s);
        // No chip names anyone by a bare id.
        for (int row = 0; row < messages->count(); ++row)
            for (const QVariant& chip : messages->valueAt(row, u"reactions"_s).toList())
                QVERIFY2(
                    !chip.toMap().value(u"who"_s).toString().contains(QRegularExpression(u"\\bu\\d+\\b"_s)),
                    qPrintable(chip.toMap().value(u"who"_s).toString()));
        QCOMPARE(changed.size(), 1);
        const int loads = room->loader()->loads();
        QTRY_VERIFY(room->loader()->loads() > loads);
        QVERIFY(mine());
        QVERIFY(room->reactionError().isEmpty());
        // And taken back the same way.
        room->react(id, u"🚀"_s);
        QVERIFY(!mine());
        QTRY_VERIFY(room->loader()->loads() > loads + 1);
        QVERIFY(!mine());
    }

    void aThreadOpensBesideTheRoomAndARunLoads()
    {
        auto room = openRoom(u"/kest"_s);
        // The newest message with replies has a thread to open.
        QString thread;
        QString runHref;
        for (const auto& m : room->result().messages)
            if (m.replies > 0)
                thread = m.id;
        QVERIFY(!thread.isEmpty());
        room->setRoute(Route::parse(u"/kest?thread="_s + thread));
        QTRY_VERIFY_WITH_TIMEOUT(room->threadShown(), 10000);
        QVERIFY(room->thread()->count() >= 2);
        // The thread's first message is its oldest row.
        QCOMPARE(room->thread()->keyAt(room->thread()->count() - 1), thread);
        for (int row = 0; row < room->thread()->count() && runHref.isEmpty(); ++row)
            runHref = room->thread()->valueAt(row, u"runHref"_s).toString();
        QVERIFY(!runHref.isEmpty());

        RunPage run;
        run.setRouter(m_router.get());
        run.setRoute(Route::parse(runHref));
        run.start();
        QTRY_COMPARE_WITH_TIMEOUT(run.loader()->state(), Loaded::State::Content, 10000);
        QVERIFY(run.title().endsWith(u"'s run"_s));
        QVERIFY(run.roundCount() > 0);
        QVERIFY(run.calls()->count() >= run.roundCount());
        // Each round's first row carries its heading.
        QCOMPARE(run.calls()->valueAt(0, u"heading"_s).toString(), u"Round 1"_s);
        QVERIFY(!run.inProgress());
    }
};

QTEST_GUILESS_MAIN(KestRoomTest)
#include "tst_kest_room.moc"
