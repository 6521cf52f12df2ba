// The analytics wording: the traffic-source table's order and host matching,
// the labels of raw breakdown values, and the typed site-domain check.

#include "analytics/AnalyticsFormat.h"
#include "analytics/AnalyticsNumbers.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace Kestro;

class AnalyticsFormatTest : public QObject {
    Q_OBJECT
private slots:
    void classifiesReferrerHosts_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("iconHost");
        QTest::newRow("webmail before Google")
            << u"mail.google.com"_s << u"Gmail"_s << u"email"_s << u"gmail.com"_s;
        QTest::newRow("Gemini before Google")
            << u"gemini.google.com"_s << u"Gemini"_s << u"ai"_s << u"gemini.google.com"_s;
        QTest::newRow("other Google host")
            << u"docs.google.com"_s << u"Google"_s << u"search"_s << u"google.com"_s;
        QTest::newRow("country suffix")
            << u"www.google.de"_s << u"Google"_s << u"search"_s << u"google.com"_s;
        QTest::newRow("two-part suffix")
            << u"www.google.co.uk"_s << u"Google"_s << u"search"_s << u"google.com"_s;
        QTest::newRow("two-part suffix, Yandex")
            << u"yandex.com.tr"_s << u"Yandex"_s << u"search"_s << u"yandex.com"_s;
        QTest::newRow("webmail before Yahoo")
            << u"uk.mail.yahoo.com"_s << u"Yahoo Mail"_s << u"email"_s << u"yahoo.com"_s;
        QTest::newRow("Yahoo search") << u"search.yahoo.com"_s << u"Yahoo"_s << u"search"_s << u"yahoo.com"_s;
        QTest::newRow("chat host, main icon")
            << u"chat.mistral.ai"_s << u"Mistral"_s << u"ai"_s << u"mistral.ai"_s;
        QTest::newRow("second domain") << u"chat.openai.com"_s << u"ChatGPT"_s << u"ai"_s << u"chatgpt.com"_s;
        QTest::newRow("shortener") << u"t.co"_s << u"X"_s << u"social"_s << u"x.com"_s;
        QTest::newRow("redirect host")
            << u"lm.facebook.com"_s << u"Facebook"_s << u"social"_s << u"facebook.com"_s;
        QTest::newRow("not You.com") << u"m.youtube.com"_s << u"YouTube"_s << u"social"_s << u"youtube.com"_s;
        QTest::newRow("upper case") << u"WWW.LinkedIn.COM"_s << u"LinkedIn"_s << u"social"_s
                                    << u"linkedin.com"_s;
        QTest::newRow("Office 365 webmail")
            << u"outlook.office365.com"_s << u"Outlook"_s << u"email"_s << u"outlook.com"_s;
        QTest::newRow("longer domain, same ending")
            << u"microsoft.co"_s << QString() << QString() << QString();
        QTest::newRow("longer domain, X") << u"dropbox.com"_s << QString() << QString() << QString();
        QTest::newRow("longer domain, Reddit") << u"notreddit.com"_s << QString() << QString() << QString();
        QTest::newRow("parent of a listed host")
            << u"ycombinator.com"_s << QString() << QString() << QString();
        QTest::newRow("listed domain not at end")
            << u"claude.ai.example.com"_s << QString() << QString() << QString();
        QTest::newRow("empty") << QString() << QString() << QString() << QString();
    }
    void classifiesReferrerHosts()
    {
        QFETCH(QString, host);
        QFETCH(QString, name);
        QFETCH(QString, kind);
        QFETCH(QString, iconHost);
        const auto source = AnalyticsFormat::trafficSource(host);
        QCOMPARE(source.has_value(), !name.isEmpty());
        if (!source)
            return;
        QCOMPARE(source->name, name);
        QCOMPARE(source->kind, kind);
        QCOMPARE(source->iconHost, iconHost);
    }

    void looksUpIconHosts()
    {
        QCOMPARE(AnalyticsFormat::browserIconHost(u"Twitter"_s), u"x.com"_s);
        QCOMPARE(AnalyticsFormat::browserIconHost(u"Samsung Internet"_s), u"samsung.com"_s);
        QCOMPARE(AnalyticsFormat::osIconHost(u"Mac OS"_s), u"apple.com"_s);
        QVERIFY(AnalyticsFormat::browserIconHost(u"Netscape"_s).isEmpty());
        QVERIFY(AnalyticsFormat::osIconHost(u"Chrome"_s).isEmpty());
    }

    void labelsValues_data()
    {
        QTest::addColumn<QString>("dimension");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("label");
        QTest::newRow("full referrer") << u"referrers"_s << u"https://www.example.com/"_s << u"example.com"_s;
        QTest::newRow("empty referrer") << u"referrer"_s << QString() << u"Direct/None"_s;
        QTest::newRow("none referrer") << u"referrers"_s << u"(none)"_s << u"Direct/None"_s;
        QTest::newRow("scheme only") << u"referrers"_s << u"https://"_s << u"Direct/None"_s;
        QTest::newRow("upper-case prefix")
            << u"referrers"_s << u"HTTP://WWW.Example.com"_s << u"Example.com"_s;
        QTest::newRow("exit link keeps path")
            << u"exit_links"_s << u"http://docs.example.com/guide/"_s << u"docs.example.com/guide"_s;
        QTest::newRow("other scheme kept")
            << u"exit_links"_s << u"ftp://example.com/"_s << u"ftp://example.com"_s;
        QTest::newRow("empty exit link") << u"exit_links"_s << QString() << u"Unknown"_s;
        QTest::newRow("empty country") << u"countries"_s << QString() << u"Unknown"_s;
        QTest::newRow("none os") << u"os"_s << u"(none)"_s << u"Unknown"_s;
        QTest::newRow("country unchanged") << u"country"_s << u"DE"_s << u"DE"_s;
        QTest::newRow("only links lose www")
            << u"screens"_s << u"www.example.com/"_s << u"www.example.com/"_s;
    }
    void labelsValues()
    {
        QFETCH(QString, dimension);
        QFETCH(QString, value);
        QFETCH(QString, label);
        QCOMPARE(AnalyticsFormat::displayLabel(dimension, value), label);
    }

    void checksHostNames_data()
    {
        const QString label63(63, u'a');
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("valid");
        QTest::newRow("plain") << u"example.com"_s << true;
        QTest::newRow("two two-letter labels") << u"ab.cd"_s << true;
        QTest::newRow("digits and inner hyphen") << u"my-site2.co.uk"_s << true;
        QTest::newRow("one-letter last label") << u"a.b"_s << false;
        QTest::newRow("digit in last label") << u"example.c0m"_s << false;
        QTest::newRow("one label") << u"localhost"_s << false;
        QTest::newRow("leading hyphen") << u"-example.com"_s << false;
        QTest::newRow("label ends in hyphen") << u"example-.com"_s << false;
        QTest::newRow("upper case") << u"Example.com"_s << false;
        QTest::newRow("empty label") << u"example..com"_s << false;
        QTest::newRow("trailing dot") << u"example.com."_s << false;
        QTest::newRow("trailing newline") << u"example.com\n"_s << false;
        QTest::newRow("63-character label") << label63 + u".com"_s << true;
        QTest::newRow("64-character label") << label63 + u"a.com"_s << false;
        const QString head = label63 + u'.' + label63 + u'.' + label63 + u'.';
        QTest::newRow("253 characters") << head + QString(61, u'b') << true;
        QTest::newRow("254 characters") << head + QString(62, u'b') << false;
    }
    void checksHostNames()
    {
        QFETCH(QString, name);
        QFETCH(bool, valid);
        QCOMPARE(AnalyticsFormat::isValidHostName(name), valid);
    }

    void writesFigures()
    {
        using namespace Kestro::AnalyticsNumbers;
        QCOMPARE(count(987), u"987"_s);
        QCOMPARE(count(1234.4), u"1,234"_s);
        QCOMPARE(count(9999), u"9,999"_s);
        QCOMPARE(count(12345), u"12.3k"_s);
        QCOMPARE(count(120000), u"120k"_s);
        QCOMPARE(count(999999), u"1M"_s); // not "1000k"
        QCOMPARE(count(1250000), u"1.3M"_s);
        QCOMPARE(duration(48.4), u"48 s"_s);
        QCOMPARE(duration(60), u"1 min"_s);
        QCOMPARE(duration(95), u"1 min 35 s"_s);
        QCOMPARE(duration(3720), u"1 h 2 min"_s);
        QCOMPARE(duration(-3), u"0 s"_s);
        QCOMPARE(percent(0.424), u"42%"_s);
        QCOMPARE(percent(0.003), u"<1%"_s);
        QCOMPARE(percent(0), u"0%"_s);
        QCOMPARE(change(112, 100).text, u"+12%"_s);
        QCOMPARE(change(92, 100).text, u"\u22128%"_s);
        QCOMPARE(change(92, 100).direction, -1);
        QCOMPARE(change(1002, 1000).text, u"\u00b10%"_s);
        QCOMPARE(change(5, 0).text, QString()); // nothing before to compare with
        QCOMPARE(pointsChange(0.45, 0.40).text, u"+5 pts"_s);
        QCOMPARE(pointsChange(0.38, 0.40).direction, -1);
    }
};

QTEST_GUILESS_MAIN(AnalyticsFormatTest)
#include "tst_analytics_format.moc"
