// The inline menus' rules: which trigger the text before the caret opens,
// which options a query keeps and in what order, and what a pick writes.

#include "composer/InlineMenu.h"
#include "composer/PromptBarModel.h"

#include "DevServiceProcess.h"
#include "DevServiceSession.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace Kestro;

namespace {

QList<InlineSource> allSources()
{
    const auto none = [](const QString&) { return QList<InlineOption>(); };
    return {{InlineMenu::skillPattern(), {}, u"skill"_s, none},
            {InlineMenu::documentPattern(), {}, u"document"_s, none},
            {InlineMenu::mentionPattern(), {}, u"mention"_s, none}};
}

QStringList keysOf(const QList<InlineOption>& options)
{
    QStringList keys;
    for (const InlineOption& o : options)
        keys.append(o.key);
    return keys;
}

} // namespace

class InlineMenuTest : public QObject {
    Q_OBJECT
private slots:
    // The bar loads skills and documents from the service once, the first
    // time their menu is needed, and shows a loading heading meanwhile.
    void loadsSkillsAndDocumentsFromTheService()
    {
        KestroTest::DevServiceProcess service{QStringLiteral(DEVSERVICE_PATH)};
        service.start({u"--auto-approve"_s});
        KestroTest::DevServiceSession session(service.origin());

        PromptBarModel bar;
        bar.setProperty("skillsFor", u"quill"_s);
        bar.setProperty("docLinks", true);
        bar.edited(u"@quill /dr"_s, 10);
        QVERIFY(bar.menuOpen());
        QCOMPARE(bar.menuTitle(), u"Loading the skills"_s);
        QTRY_COMPARE(bar.menuTitle(), u"Skills. Keep typing to filter. Enter picks"_s);
        // Quill's own skill and the shared ones; not Forge's.
        QCOMPARE(bar.options()->keyAt(0), u"draft-email"_s);
        bar.edited(u"/review"_s, 7);
        QVERIFY(!bar.menuOpen());

        bar.edited(u"see #launch"_s, 11);
        QCOMPARE(bar.menuTitle(), u"Loading the docs"_s);
        QTRY_COMPARE(bar.menuTitle(), u"Link a doc. Keep typing to filter. Enter picks"_s);
        QSignalSpy picked(&bar, &PromptBarModel::picked);
        QVERIFY(bar.key(PromptBarModel::Key::Enter));
        QCOMPARE(picked.size(), 1);
        QCOMPARE(picked[0][0].toString(), u"see [Launch checklist](/documents/launch-checklist)"_s);
    }

    void matchesTheTextBeforeTheCaret_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("source"); // empty: no menu
        QTest::addColumn<QString>("typed");
        QTest::newRow("slash at the start") << u"/"_s << u"skill"_s << QString();
        QTest::newRow("slash with a query") << u"  /draft-em"_s << u"skill"_s << u"draft-em"_s;
        QTest::newRow("mentions then slash") << u"@nova, @quill: /"_s << u"skill"_s << QString();
        QTest::newRow("letter before the slash") << u"a/"_s << QString() << QString();
        QTest::newRow("slash mid-sentence") << u"please /sum"_s << QString() << QString();
        QTest::newRow("upper case after slash") << u"/Draft"_s << QString() << QString();
        QTest::newRow("mention at the start") << u"@"_s << u"mention"_s << QString();
        QTest::newRow("mention after a space") << u"ask @qu"_s << u"mention"_s << u"qu"_s;
        QTest::newRow("mention in any script") << u"hi @Zoë"_s << u"mention"_s << u"Zoë"_s;
        QTest::newRow("an e-mail address") << u"write to maya@north"_s << QString() << QString();
        QTest::newRow("mention ended by a space") << u"@quill "_s << QString() << QString();
        QTest::newRow("document") << u"see #launch"_s << u"document"_s << u"launch"_s;
        QTest::newRow("document of 40") << u"#"_s + QString(40, u'a') << u"document"_s << QString(40, u'a');
        QTest::newRow("document of 41") << u"#"_s + QString(41, u'a') << QString() << QString();
        QTest::newRow("hash in a word") << u"issue#12"_s << QString() << QString();
    }
    void matchesTheTextBeforeTheCaret()
    {
        QFETCH(QString, before);
        QFETCH(QString, source);
        QFETCH(QString, typed);
        const QList<InlineSource> sources = allSources();
        const std::optional<InlineHit> hit = InlineMenu::match(sources, before);
        QCOMPARE(hit ? sources[hit->source].label : QString(), source);
        if (hit) {
            QCOMPARE(hit->typed, typed);
            QCOMPARE(hit->to, int(before.size()));
            // The range starts at the trigger character.
            QVERIFY(QStringLiteral("/#@").contains(before.at(hit->from)));
        }
    }

    void skipsACallerPatternWithoutAQuery()
    {
        // No group 1: nothing a pick could replace safely, so no menu.
        const QList<InlineSource> sources = {
            {QRegularExpression(u":[a-z]*\\z"_s), {}, u"bad"_s, {}},
            {QRegularExpression(u"(?:^|\\s):([a-z]*)\\z"_s), {}, u"good"_s, {}}};
        const auto hit = InlineMenu::match(sources, u"add :ur"_s);
        QVERIFY(hit);
        QCOMPARE(sources[hit->source].label, u"good"_s);
        QCOMPARE(hit->from, 4);
    }

    void keepsMentionsInTheSuppliedOrder()
    {
        const QList<InlineMenu::Mention> people = {
            {u"nova"_s, u"Nova"_s, {}},    {u"quill"_s, u"Quill"_s, {}}, {u"maya"_s, u"Maya Lindqvist"_s, {}},
            {u"atlas"_s, u"Atlas"_s, {}},  {u"forge"_s, u"Forge"_s, {}}, {u"pixel"_s, u"Pixel"_s, {}},
            {u"ledger"_s, u"Ledger"_s, {}}};
        // An empty query: the first six as supplied.
        QCOMPARE(keysOf(InlineMenu::mentionOptions(people, {})),
                 (QStringList{u"nova"_s, u"quill"_s, u"maya"_s, u"atlas"_s, u"forge"_s, u"pixel"_s}));
        // "l": handles that begin with it and names that contain it, in the
        // supplied order, not grouped by the rule that matched.
        QCOMPARE(keysOf(InlineMenu::mentionOptions(people, u"L"_s)),
                 (QStringList{u"quill"_s, u"maya"_s, u"atlas"_s, u"pixel"_s, u"ledger"_s}));
        const InlineOption quill = InlineMenu::mentionOptions(people, u"qu"_s).first();
        QCOMPARE(quill.insert, u"@quill"_s);
        QCOMPARE(quill.label, u"Quill"_s);
    }

    void putsPrefixMatchesFirstForDocumentsAndSkills()
    {
        const QList<InlineMenu::Document> docs = {{u"pricing-notes"_s, u"Pricing notes"_s},
                                                  {u"launch"_s, u"Launch checklist"_s},
                                                  {u"brand"_s, u"Brand [voice] \\ tone"_s},
                                                  {u"plan"_s, u"Plan the launch"_s}};
        QCOMPARE(keysOf(InlineMenu::documentOptions(docs, u"LAUNCH"_s)),
                 (QStringList{u"launch"_s, u"plan"_s}));
        QCOMPARE(keysOf(InlineMenu::documentOptions(docs, {})).size(), 4);
        // Brackets in a title cannot end the link's text early.
        QCOMPARE(InlineMenu::documentOptions(docs, u"brand"_s).first().insert,
                 u"[Brand \\[voice\\] \\\\ tone](/documents/brand)"_s);

        const QList<InlineMenu::Skill> skills = {{u"summarize"_s, u"Summarize"_s, {}},
                                                 {u"draft-email"_s, u"Draft an e-mail"_s, {}},
                                                 {u"redraft"_s, u"Redraft"_s, {}}};
        QCOMPARE(keysOf(InlineMenu::skillOptions(skills, u"draft"_s)),
                 (QStringList{u"draft-email"_s, u"redraft"_s}));
        QVERIFY(InlineMenu::skillOptions(skills, u"Draft"_s).isEmpty()); // no case folding
        QCOMPARE(InlineMenu::skillOptions(skills, u"sum"_s).first().insert, u"/summarize"_s);
    }

    void picksReplaceTheTriggerAndQuery()
    {
        const QString text = u"ask @qu about it"_s;
        const InlineHit hit{2, u"qu"_s, 4, 7};
        const InlineOption quill{u"quill"_s, u"@quill"_s};
        // One space after a mention, not two when one follows already.
        const InlineMenu::Picked picked = InlineMenu::pick(text, hit, quill, true);
        QCOMPARE(picked.text, u"ask @quill about it"_s);
        QCOMPARE(picked.caret, 11);
        const InlineMenu::Picked atEnd = InlineMenu::pick(u"@qu"_s, {2, u"qu"_s, 0, 3}, quill, true);
        QCOMPARE(atEnd.text, u"@quill "_s);
        QCOMPARE(atEnd.caret, 7);
        const InlineMenu::Picked skill =
            InlineMenu::pick(u"@nova /dr"_s, {0, u"dr"_s, 6, 9}, {u"draft"_s, u"/draft"_s}, false);
        QCOMPARE(skill.text, u"@nova /draft"_s);
        QCOMPARE(skill.caret, 12);
    }
};

QTEST_MAIN(InlineMenuTest)
#include "tst_inline_menu.moc"
