// The Markdown view's model: which paragraphs carry embedded posts, and
// which text flows together into one block.

#include "richtext/MarkdownDocument.h"

#include <QTest>

using namespace Kestro;
using namespace Qt::Literals::StringLiterals;

class TestMarkdownDocument : public QObject {
    Q_OBJECT
private slots:
    void paragraphsListTheirPosts()
    {
        MarkdownDocument document;
        document.setText(u"See [it](https://mobile.twitter.com/northwind/statuses/17/photo/1) and "
                         "https://x.com/northwind/status/17 again, http://x.com/a/status/1, "
                         "https://x.com/abcdefghijklmnop/status/2.\n\n"
                         "- https://x.com/nova/status/9\n\n"
                         "Nothing here."_s);
        // Off unless asked for.
        QVERIFY(!document.blocks().at(0).toMap().contains(u"posts"_s));

        document.setEmbeds(true);
        const QVariantList posts = document.blocks().at(0).toMap().value(u"posts"_s).toList();
        QCOMPARE(posts.size(), 1); // the same post twice; plain http and a 16-letter name are not posts
        QCOMPARE(posts.at(0).toMap().value(u"address"_s).toString(), u"https://x.com/northwind/status/17"_s);
        QCOMPARE(posts.at(0).toMap().value(u"user"_s).toString(), u"northwind"_s);
        QCOMPARE(posts.at(0).toMap().value(u"id"_s).toString(), u"17"_s);
        // Inside a list item too.
        const QVariantMap item = document.blocks().at(1).toMap().value(u"items"_s).toList().at(0).toMap();
        QCOMPARE(item.value(u"blocks"_s).toList().at(0).toMap().value(u"posts"_s).toList().size(), 1);
        QVERIFY(document.blocks().at(2).toMap().value(u"posts"_s).toList().isEmpty());
    }

    // Text that reads as one run is one "flow" block (one text item); what
    // needs a view of its own breaks it.
    void flowingTextIsOneBlock_data()
    {
        QTest::addColumn<QString>("markdown");
        QTest::addColumn<QStringList>("kinds");
        QTest::newRow("heading, paragraph, plain list")
            << u"## Plan\n\nFirst this.\n\n- one\n- two\n  1. nested"_s << QStringList{u"flow"_s};
        QTest::newRow("code between")
            << u"Before\n\n```ts\nx()\n```\n\nAfter"_s << QStringList{u"flow"_s, u"code"_s, u"flow"_s};
        QTest::newRow("task list") << u"Intro\n\n- [x] done\n- [ ] not"_s
                                   << QStringList{u"flow"_s, u"list"_s};
        QTest::newRow("list counting from 3") << u"3. three\n4. four"_s << QStringList{u"list"_s};
        QTest::newRow("list from 1") << u"1. one\n2. two"_s << QStringList{u"flow"_s};
        QTest::newRow("item holding code") << u"- see\n\n  ```\n  x\n  ```"_s << QStringList{u"list"_s};
        QTest::newRow("table and rule") << u"a\n\n| A | B |\n|---|---|\n| 1 | 2 |\n\n---\n\nb"_s
                                        << QStringList{u"flow"_s, u"table"_s, u"rule"_s, u"flow"_s};
    }
    void flowingTextIsOneBlock()
    {
        QFETCH(QString, markdown);
        QFETCH(QStringList, kinds);
        MarkdownDocument document;
        document.setText(markdown);
        QStringList got;
        for (const QVariant& block : document.blocks())
            got.append(block.toMap().value(u"kind"_s).toString());
        QCOMPARE(got, kinds);
        // Text that is one run alone is shown as one text item.
        QCOMPARE(!document.soleHtml().isEmpty(), kinds == QStringList{u"flow"_s});
    }

    void flowKeepsWhatTheInlineTextMeans()
    {
        MarkdownDocument document;
        document.setCitations(1);
        document.setText(
            u"# Title\n\nSee [docs](https://example.com), [x](javascript:alert(1)) and `a<b`.\n\n"
            "- a source [1], not [2]\n\n> quoted *text*"_s);
        document.setLinkColor(QColor(u"#112233"_s));
        const QVariantList blocks = document.blocks();
        QCOMPARE(blocks.size(), 2);
        const QString flow = blocks.at(0).toMap().value(u"html"_s).toString();
        // Headings in the display face; links live in the given colour,
        // other schemes shown as text; citations inside a flowing list
        // item link to their source; markup in the text is escaped.
        QVERIFY2(flow.contains(u"font-family:'Plus Jakarta Sans'"_s), qPrintable(flow));
        QVERIFY(flow.contains(u"color:#112233"_s));
        QVERIFY(flow.contains(u"href=\"https://example.com\""_s));
        QVERIFY(!flow.contains(u"javascript"_s));
        QVERIFY(flow.contains(u"href=\"#source-1\""_s));
        QVERIFY(!flow.contains(u"#source-2"_s));
        QVERIFY(flow.contains(u"a&lt;b"_s));
        // A quote of plain text carries its text for one text item.
        const QVariantMap quote = blocks.at(1).toMap();
        QCOMPARE(quote.value(u"kind"_s).toString(), u"quote"_s);
        QVERIFY(quote.value(u"html"_s).toString().contains(u"<i>text</i>"_s));
        // A nested list that counts from 3 keeps the outer list out of the flow.
        document.setText(u"- one\n\n  3. three\n  4. four"_s);
        QCOMPARE(document.blocks().at(0).toMap().value(u"kind"_s).toString(), u"list"_s);
    }
};

QTEST_GUILESS_MAIN(TestMarkdownDocument)
#include "tst_markdown_document.moc"
