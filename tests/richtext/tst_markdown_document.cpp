// The Markdown view's model: which paragraphs carry embedded posts.

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
};

QTEST_GUILESS_MAIN(TestMarkdownDocument)
#include "tst_markdown_document.moc"
