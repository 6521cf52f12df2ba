// Inline styling on cmark-gfm: faces, breaks, links and their allow-list,
// citations, that block syntax is never read again, and the link rules.

#include "richtext/Inline.h"

#include <QTest>

using namespace Kestro;
using namespace Kestro::Inline;
using namespace Qt::Literals::StringLiterals;

namespace {

// Each run as text with marks: code `x`, strong *x*, emphasis _x_, both
// *_x_*, strike ~x~, link [x](address), image ![x](address); joined by "|".
QString describe(const QString& text, int citations = 0)
{
    QStringList parts;
    for (const Run& run : Inline::style(text, citations)) {
        QString t = run.text;
        t.replace(u"\n"_s, u"\\n"_s);
        switch (run.face) {
        case Run::Face::Code:
            t = u"`"_s + t + u"`"_s;
            break;
        case Run::Face::Strong:
            t = u"*"_s + t + u"*"_s;
            break;
        case Run::Face::Emphasis:
            t = u"_"_s + t + u"_"_s;
            break;
        case Run::Face::StrongEmphasis:
            t = u"*_"_s + t + u"_*"_s;
            break;
        case Run::Face::Plain:
            break;
        }
        if (run.strike)
            t = u"~"_s + t + u"~"_s;
        if (run.image)
            t = u"!["_s + t + u"]("_s + *run.image + u")"_s;
        else if (run.link)
            t = u"["_s + t + u"]("_s + *run.link + u")"_s;
        parts.append(t);
    }
    return parts.join(u"|"_s);
}

} // namespace

class InlineTest : public QObject {
    Q_OBJECT
private slots:
    void styles_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("citations");
        QTest::addColumn<QString>("runs");
        auto row = [](const char* name, const char* text, int citations, const char* runs) {
            QTest::newRow(name) << QString::fromUtf8(text) << citations << QString::fromUtf8(runs);
        };
        row("plain", "just words", 0, "just words");
        row("faces", "a **b** _c_ ***d*** `e`", 0, "a |*b*| |_c_| |*_d_*| |`e`");
        row("strikethrough", "~~gone~~ kept", 0, "~gone~| kept");
        row("hard break kept", "one\ntwo", 0, "one\\ntwo");
        row("spaces kept", "a   b", 0, "a   b");
        row("link", "see [docs](https://kestro.app/docs)", 0, "see |[docs](https://kestro.app/docs)");
        row("app path link", "[tasks](/tasks?mine=1)", 0, "[tasks](/tasks?mine=1)");
        row("app: link stays a link", "[revenue](app:/analytics/settings?tab=revenue)", 0,
            "[revenue](app:/analytics/settings?tab=revenue)");
        row("javascript is text", "[x](javascript:alert(1))", 0, "x");
        row("file is text", "[x](file:///etc/passwd)", 0, "x");
        row("MAILTO stays live", "[mail](MAILTO:a@b.c)", 0, "[mail](MAILTO:a@b.c)");
        row("autolink", "<https://a.example/x>", 0, "[https://a.example/x](https://a.example/x)");
        row("bare web address", "go to https://a.example now", 0,
            "go to |[https://a.example](https://a.example)| now");
        row("image", "![chart](/api/docs/x/images/1.png)", 0, "![chart](/api/docs/x/images/1.png)");
        // Block syntax inside a block's text stays text.
        row("hash", "# not a heading", 0, "# not a heading");
        row("bullet", "- not a list", 0, "- not a list");
        row("ordered", "1. not a list", 0, "1. not a list");
        row("quote", "> not a quote", 0, "> not a quote");
        row("after a break", "line\n# still text\n- and this", 0, "line\\n# still text\\n- and this");
        row("fence", "```not code", 0, "```not code");
        row("setext after a break", "a\n---", 0, "a\\n---");
        row("rule", "***", 0, "***");
        row("reference definition", "[x]: /url", 0, "[x]: /url");
        row("html block", "<div>raw</div>", 0, "<div>raw</div>");
        // Citations.
        row("citations in range", "as said [1] and [2]", 2,
            "as said |[[1]](#source-1)| and |[[2]](#source-2)");
        row("citation out of range", "see [3]", 2, "see [3]");
        row("three digits never", "see [100]", 200, "see [100]");
        row("no citations given", "see [1]", 0, "see [1]");
        row("not inside code", "`[1]`", 2, "`[1]`");
    }
    void styles()
    {
        QFETCH(QString, text);
        QFETCH(int, citations);
        QFETCH(QString, runs);
        QCOMPARE(describe(text, citations), runs);
    }

    void linkTargets()
    {
        QCOMPARE(targetOf(u"#source-2"_s), Target::Anchor);
        QCOMPARE(targetOf(u"/tasks/NOR-1?tab=activity"_s), Target::AppPath);
        QCOMPARE(targetOf(u"//evil.example/x"_s), Target::System);
        QCOMPARE(targetOf(u"/a\\b"_s), Target::System);
        QCOMPARE(targetOf(u"/a b"_s), Target::System);
        QCOMPARE(targetOf(u"https://kestro.app"_s), Target::System);
        // "app:" links are the app's places, not the system's.
        QCOMPARE(targetOf(u"app:/analytics/settings?tab=revenue"_s), Target::AppPath);
        QCOMPARE(appPathOf(u"app:/analytics/settings?tab=revenue"_s), u"/analytics/settings?tab=revenue"_s);
        // Never the desktop's opener: the router judges what follows.
        QCOMPARE(targetOf(u"app://evil.example"_s), Target::AppPath);
        QVERIFY(isAllowedLink(u"app:/tasks"_s));
        QVERIFY(!isAllowedLink(u"javascript:alert(1)"_s));
    }

    void ownImages()
    {
        const QString id = u"0123abcd-0123-4567-89ab-0123456789ab"_s;
        QVERIFY(isOwnImage(u"/api/docs/brand-voice/images/"_s + id + u".png"_s));
        QVERIFY(isOwnImage(u"/api/docs/x/images/"_s + id + u".webp?doc="_s + QString(24, u'a') +
                           u"&share="_s + QString(43, u'Z')));
        QVERIFY(!isOwnImage(u"/api/docs/x/images/"_s + id + u".svg"_s));
        QVERIFY(!isOwnImage(u"/api/docs/X/images/"_s + id + u".png"_s));
        QVERIFY(!isOwnImage(u"https://kestro.app/api/docs/x/images/"_s + id + u".png"_s));
    }

    void postLinks()
    {
        QCOMPARE(postLink(u"https://twitter.com/kestro/status/123"_s),
                 std::optional<QString>(u"https://x.com/kestro/status/123"_s));
        QCOMPARE(postLink(u"https://mobile.x.com/a_b/web/statuses/9/photo/1/"_s),
                 std::optional<QString>(u"https://x.com/a_b/status/9"_s));
        QCOMPARE(postLink(u"http://x.com/kestro/status/123"_s), std::nullopt);
        QCOMPARE(postLink(u"https://x.com/sixteen_letters_/status/1"_s), std::nullopt);
        QCOMPARE(postLink(u"https://example.com/kestro/status/1"_s), std::nullopt);
    }
};

QTEST_GUILESS_MAIN(InlineTest)
#include "tst_inline.moc"
