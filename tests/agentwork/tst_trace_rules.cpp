// The wording of teammates' work: elapsed times, the trace's summary and
// header, the tool icons' table order, and the folding of page reads.

#include "agentwork/Duration.h"
#include "agentwork/TraceRules.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Kestro;

namespace {

Model::TraceStep step(const QString& tool, const QString& status, bool chip = true)
{
    Model::TraceStep s;
    s.tool = tool;
    s.label = tool + u" call"_s;
    s.status = status;
    if (chip)
        s.chip = Model::TraceChip{u"example.com"_s, u"example.com"_s, u"https://example.com/"_s};
    return s;
}

Model::RunTrace trace(const QString& status, QList<QList<Model::TraceStep>> rounds,
                      std::optional<QString> ended = std::nullopt)
{
    Model::RunTrace t;
    t.id = u"r1"_s;
    t.status = status;
    t.startedAt = u"2026-11-23T10:00:00.000Z"_s;
    t.endedAt = ended;
    for (const auto& steps : rounds)
        t.rounds.append({std::nullopt, steps});
    return t;
}

} // namespace

class TraceRulesTest : public QObject {
    Q_OBJECT
private slots:
    void wordsDurations_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("words");
        QTest::newRow("under a second") << 0.4 << u"1 s"_s;
        QTest::newRow("negative") << -5.0 << u"1 s"_s;
        QTest::newRow("seconds") << 42.0 << u"42 s"_s;
        QTest::newRow("rounds up to a minute") << 59.5 << u"1 min"_s;
        QTest::newRow("minute and seconds") << 61.0 << u"1 min 1 s"_s;
        QTest::newRow("just under an hour") << 3599.0 << u"59 min 59 s"_s;
        QTest::newRow("an hour") << 3600.0 << u"1 h"_s;
        QTest::newRow("hour and minutes, no seconds") << 3725.0 << u"1 h 2 min"_s;
        QTest::newRow("a day") << 90000.0 << u"25 h"_s;
    }
    void wordsDurations()
    {
        QFETCH(double, seconds);
        QFETCH(QString, words);
        QCOMPARE(durationText(seconds), words);
    }

    void picksToolIconsInTableOrder_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<QString>("icon");
        QTest::newRow("browser before the rest") << u"browser"_s << u"mouse-pointer-2"_s;
        QTest::newRow("named search first") << u"search_news"_s << u"newspaper"_s;
        QTest::newRow("places") << u"search_places"_s << u"map-pin"_s;
        QTest::newRow("generic search") << u"search_web"_s << u"search"_s;
        QTest::newRow("web page before page") << u"read_web_page"_s << u"globe"_s;
        QTest::newRow("page") << u"save_page"_s << u"brain"_s;
        QTest::newRow("login anywhere") << u"site_login_form"_s << u"key-round"_s;
        QTest::newRow("list at the end") << u"lead_list"_s << u"table-2"_s;
        QTest::newRow("plan at the end only") << u"planner"_s << u"wrench"_s;
        QTest::newRow("code") << u"open_pull_request"_s << u"code-xml"_s;
        QTest::newRow("repl before support") << u"support_reply"_s << u"table-2"_s;
        QTest::newRow("no match") << u"x"_s << u"wrench"_s;
    }
    void picksToolIconsInTableOrder()
    {
        QFETCH(QString, tool);
        QFETCH(QString, icon);
        QCOMPARE(TraceRules::toolIcon(tool), icon);
    }

    // Every icon the rules name is drawn by the app's icon set.
    void namesOnlyIconsTheAppHas()
    {
        const QStringList tools = {u"login"_s,
                                   u"browser"_s,
                                   u"search_places"_s,
                                   u"search_news"_s,
                                   u"search_web"_s,
                                   u"capture_screen"_s,
                                   u"make_card"_s,
                                   u"make_image"_s,
                                   u"find_photo"_s,
                                   u"put_pictures"_s,
                                   u"read_web_page"_s,
                                   u"use_skill"_s,
                                   u"handoff"_s,
                                   u"stripe_charges"_s,
                                   u"open_incident"_s,
                                   u"run_test"_s,
                                   u"research"_s,
                                   u"canvas"_s,
                                   u"lead_list"_s,
                                   u"call_transcript"_s,
                                   u"send_email"_s,
                                   u"repo_diff"_s,
                                   u"create_task"_s,
                                   u"remember"_s,
                                   u"draft_post"_s,
                                   u"hire"_s,
                                   u"x"_s};
        QSet<QString> icons;
        for (const QString& tool : tools)
            icons.insert(TraceRules::toolIcon(tool));
        QCOMPARE(icons.size(), 27); // one tool per row of the table, and the fallback
        for (const QString& status : {u"done"_s, u"failed"_s, u"refused"_s})
            icons.insert(TraceRules::mark(status).icon);
        icons.insert(u"chevron-down"_s);
        icons.insert(u"arrow-up-right"_s);
        for (const QString& icon : std::as_const(icons))
            QVERIFY2(QFile::exists(u":/Kestro/assets/icons/"_s + icon + u".svg"_s), qPrintable(icon));
    }

    void summarisesAndHeadsTheTrace()
    {
        const QDateTime now = QDateTime::fromString(u"2026-11-23T10:05:00.000Z"_s, Qt::ISODateWithMs);
        const auto done = trace(u"done"_s, {{step(u"x"_s, u"done"_s)}, {step(u"y"_s, u"done"_s)}},
                                u"2026-11-23T10:02:05.000Z"_s);
        QCOMPARE(TraceRules::summary(done, now), u"Worked for 2 min 5 s · 2 steps"_s);
        QCOMPARE(TraceRules::header(done), QString());
        const auto stopped = trace(u"failed"_s, {{step(u"x"_s, u"failed"_s)}}, u"2026-11-23T10:00:40.000Z"_s);
        QCOMPARE(TraceRules::summary(stopped, now), u"Stopped after 40 s · 1 step"_s);
        QCOMPARE(TraceRules::summary(trace(u"failed"_s, {{step(u"x"_s, u"failed"_s)}}), now),
                 u"Stopped 1 step"_s);
        auto unknown = done;
        unknown.startedAt = u"not a time"_s;
        QCOMPARE(TraceRules::summary(unknown, now), u"2 steps"_s);

        auto running = trace(u"running"_s, {});
        QCOMPARE(TraceRules::header(running), u"Thinking"_s);
        running.doing = u"Reading the pricing page"_s;
        QCOMPARE(TraceRules::header(running), u"Reading the pricing page"_s);
        QCOMPARE(TraceRules::header(trace(u"queued"_s, {})), u"Waking the computer"_s);
        QCOMPARE(TraceRules::summary(running, now), u"Worked for 5 min · 0 steps"_s);
    }

    void foldsRunsOfPageReads()
    {
        // Three done reads with chips, across two rounds: one row.
        const auto three =
            trace(u"done"_s, {{step(u"browser"_s, u"done"_s), step(u"read_web_page"_s, u"done"_s)},
                              {step(u"browser"_s, u"done"_s)}});
        const auto folded = TraceRules::rows(three);
        QCOMPARE(folded.size(), 1);
        QCOMPARE(folded[0].label, u"Read 3 pages"_s);
        QCOMPARE(folded[0].icon, u"globe"_s);
        QCOMPARE(folded[0].steps.size(), 3);

        // A failed read, a read without a chip or another tool splits it.
        const auto split =
            trace(u"done"_s, {{step(u"browser"_s, u"done"_s), step(u"browser"_s, u"failed"_s),
                               step(u"browser"_s, u"done"_s), step(u"browser"_s, u"done"_s, false),
                               step(u"search_web"_s, u"done"_s), step(u"browser"_s, u"done"_s)}});
        QStringList labels;
        for (const auto& row : TraceRules::rows(split))
            labels.append(row.label);
        QCOMPARE(labels, (QStringList{u"Read 1 page"_s, u"browser call"_s, u"Read 1 page"_s,
                                      u"browser call"_s, u"search_web call"_s, u"Read 1 page"_s}));
    }

    void marksStepStatuses()
    {
        QCOMPARE(TraceRules::mark(u"done"_s).icon, u"check"_s);
        QCOMPARE(TraceRules::mark(u"failed"_s).icon, u"circle-x"_s);
        QCOMPARE(TraceRules::mark(u"refused"_s).icon, u"ban"_s);
        QCOMPARE(TraceRules::mark(u"waiting"_s).words, u"Waiting for you"_s);
        QVERIFY(TraceRules::mark(u"queued"_s).busy && TraceRules::mark(u"running"_s).busy);
        QVERIFY(!TraceRules::mark(u"done"_s).busy);
    }
};

QTEST_GUILESS_MAIN(TraceRulesTest)
#include "tst_trace_rules.moc"
