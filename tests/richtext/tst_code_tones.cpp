// The code tokenizer's tones, the 500-unit limit, which languages are
// tinted, and line backgrounds.

#include "richtext/CodeTones.h"

#include <QTest>

using namespace Kestro;
using namespace Kestro::CodeTones;
using namespace Qt::Literals::StringLiterals;

namespace {

// "text:tone" for each span, e.g. "const:keyword x:- ..." (untoned words left out).
QString describe(const QString& line)
{
    static const char* const names[] = {"string", "comment", "number", "keyword", "call"};
    QStringList parts;
    for (const Span& span : tones(line))
        parts.append(line.mid(span.start, span.length) + u":"_s + QLatin1String(names[int(span.tone)]));
    return parts.join(u" "_s);
}

} // namespace

class CodeTonesTest : public QObject {
    Q_OBJECT
private slots:
    void tones_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("expected");
        QTest::newRow("declaration") << u"const total = sum(a, 2.5);"_s
                                     << u"const:keyword sum:call 2.5:number"_s;
        QTest::newRow("call after spaces") << u"run   (x)"_s << u"run:call"_s;
        QTest::newRow("identifier at the end has none") << u"return value"_s << u"return:keyword"_s;
        QTest::newRow("strings of three kinds")
            << u"say(\"a\\\"b\", 'c', `d`)"_s << u"say:call \"a\\\"b\":string 'c':string `d`:string"_s;
        QTest::newRow("unclosed string is words") << u"x = \"open words"_s << u""_s;
        QTest::newRow("comment to the end") << u"a(); // note(1)"_s << u"a:call // note(1):comment"_s;
        QTest::newRow("number then bare point") << u"3. and 4.25"_s << u"3:number 4.25:number"_s;
        QTest::newRow("non-ASCII digits are numbers") << u"x = ٣٤"_s << u"٣٤:number"_s;
        QTest::newRow("json keys are strings")
            << u"{\"ok\": true, \"n\": null}"_s << u"\"ok\":string true:keyword \"n\":string null:keyword"_s;
        QTest::newRow("keywords are exact") << u"Const typeof undefined interface"_s
                                            << u"typeof:keyword undefined:keyword interface:keyword"_s;
        QTest::newRow("dollars inside identifiers") << u"_private(a$b())"_s << u"_private:call a$b:call"_s;
        // \b cannot stand between "$" and "(", so a trailing "$" is not part of a token.
        QTest::newRow("trailing dollar") << u"on$()"_s << u""_s;
    }
    void tones()
    {
        QFETCH(QString, line);
        QFETCH(QString, expected);
        QCOMPARE(describe(line), expected);
    }

    void longLinesAreLeftPlain()
    {
        const QString exactly = u"f()"_s + QString(497, QLatin1Char(' '));
        QCOMPARE(exactly.size(), 500);
        QCOMPARE(CodeTones::tones(exactly).size(), 1);
        QVERIFY(CodeTones::tones(exactly + u" "_s).isEmpty());
    }

    void whichCodeIsTinted()
    {
        for (const char* lang : {"js", "JSX", "ts", "tsx", "mjs", "cjs", "JavaScript", "typescript", "json"})
            QVERIFY2(isTinted(QString::fromLatin1(lang)), lang);
        for (const char* lang : {"python", "sh", "diff", "", "jsonc"})
            QVERIFY2(!isTinted(QString::fromLatin1(lang)), lang);
    }

    void lineBackgrounds()
    {
        const auto diff = std::optional<QString>(u"diff"_s);
        QCOMPARE(lineTint(u"+ added"_s, 3, std::nullopt, false, diff), LineTint::Added);
        QCOMPARE(lineTint(u"- gone"_s, 3, std::nullopt, false, diff), LineTint::Removed);
        QCOMPARE(lineTint(u"  same"_s, 3, std::nullopt, false, diff), LineTint::None);
        QCOMPARE(lineTint(u"+ added"_s, 3, std::nullopt, false, std::optional<QString>(u"Diff"_s)),
                 LineTint::None);
        QCOMPARE(lineTint(u"+ added"_s, 3, 3, false, diff), LineTint::Marked);
        QCOMPARE(lineTint(u"x"_s, 3, 3, true, std::nullopt), LineTint::None); // bare: no mark
    }
};

QTEST_GUILESS_MAIN(CodeTonesTest)
#include "tst_code_tones.moc"
