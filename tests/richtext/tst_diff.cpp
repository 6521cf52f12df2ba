// Comparing a file's text with a proposed one.

#include "richtext/Diff.h"

#include <QTest>

using namespace Kestro;
using namespace Qt::Literals::StringLiterals;

namespace {

// " a" kept, "+a" added, "-a" removed, joined with "|".
QString rows(const QString& oldText, const QString& newText)
{
    QStringList out;
    for (const Diff::Line& line : Diff::compare(oldText, newText))
        out.append((line.kind == Diff::Line::Kind::Kept    ? u" "_s
                    : line.kind == Diff::Line::Kind::Added ? u"+"_s
                                                           : u"-"_s) +
                   line.text);
    return out.join(u"|"_s);
}

} // namespace

class DiffTest : public QObject {
    Q_OBJECT
private slots:
    void compares_data()
    {
        QTest::addColumn<QString>("oldText");
        QTest::addColumn<QString>("newText");
        QTest::addColumn<QString>("expected");
        QTest::newRow("same") << u"a\nb"_s << u"a\nb"_s << u" a| b"_s;
        QTest::newRow("both empty") << u""_s << u""_s << u""_s;
        QTest::newRow("new file") << u""_s << u"a\nb"_s << u"+a|+b"_s;
        QTest::newRow("emptied") << u"a"_s << u""_s << u"-a"_s;
        QTest::newRow("changed line: removal first") << u"a\nb\nc"_s << u"a\nB\nc"_s << u" a|-b|+B| c"_s;
        QTest::newRow("insertion") << u"a\nc"_s << u"a\nb\nc"_s << u" a|+b| c"_s;
        QTest::newRow("deletion") << u"a\nb\nc"_s << u"a\nc"_s << u" a|-b| c"_s;
        QTest::newRow("tail added") << u"a"_s << u"a\nb"_s << u" a|+b"_s;
        QTest::newRow("moved line") << u"x\na\nb"_s << u"a\nb\nx"_s << u"-x| a| b|+x"_s;
    }
    void compares()
    {
        QFETCH(QString, oldText);
        QFETCH(QString, newText);
        QFETCH(QString, expected);
        QCOMPARE(rows(oldText, newText), expected);
    }

    void lineNumbers()
    {
        const QList<Diff::Line> lines = Diff::compare(u"a\nb\nc"_s, u"a\nB\nc"_s);
        QCOMPARE(lines[1], (Diff::Line{Diff::Line::Kind::Removed, u"b"_s, 2, 0}));
        QCOMPARE(lines[2], (Diff::Line{Diff::Line::Kind::Added, u"B"_s, 0, 2}));
        QCOMPARE(lines[3], (Diff::Line{Diff::Line::Kind::Kept, u"c"_s, 3, 3}));
    }

    void tooLargeForATable()
    {
        QStringList old, changed;
        for (int i = 0; i < 2001; ++i)
            old.append(u"line %1"_s.arg(i));
        changed = old;
        changed[1000] = u"different"_s;
        const QList<Diff::Line> lines = Diff::compare(old.join(u"\n"_s), changed.join(u"\n"_s));
        QCOMPARE(lines.size(), 4002);
        QCOMPARE(lines[2000].kind, Diff::Line::Kind::Removed);
        QCOMPARE(lines[2001].kind, Diff::Line::Kind::Added);
        QCOMPARE(lines[2001].text, u"line 0"_s);
        // Just inside the limit the table is used: one change, everything else kept.
        old.resize(2000);
        changed.resize(2000);
        QCOMPARE(Diff::compare(old.join(u"\n"_s), changed.join(u"\n"_s)).size(), 2001);
    }

    void noChange() { QCOMPARE(Diff::noChangeText(), u"No change: the new text is the same as the file."_s); }
};

QTEST_GUILESS_MAIN(DiffTest)
#include "tst_diff.moc"
