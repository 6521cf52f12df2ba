// Every text item of the views that shows something other than a fixed
// sentence says how to read it. A Text reads its string as rich text when
// it looks like markup (AutoText), so a teammate's or workspace's name, a
// page title or the service's error holding "<img src=...>" would fetch an
// image or restyle the view. This reads the QML sources as they stand.

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// The item's own part of a block: nested blocks (child items, grouped
// properties) folded away.
QString ownPart(const QString& body)
{
    QString out;
    int depth = 0;
    for (const QChar c : body) {
        if (c == QChar(0x7b))
            ++depth;
        else if (c == QChar(0x7d))
            --depth;
        else if (depth == 0)
            out.append(c);
    }
    return out;
}

} // namespace

class QmlTextFormatsTest : public QObject {
    Q_OBJECT
private slots:
    void textShowingDataIsPlainOrSaysOtherwise()
    {
        // (Plain strings: moc misreads braces inside raw string literals.)
        static const QRegularExpression item(QStringLiteral("\\b(Text|Label)\\s*\\x7b"));
        static const QRegularExpression textBinding(
            QStringLiteral("(?:^|[\\x7b;])[ \\t]*text:\\s*([^;\\n]*)"), QRegularExpression::MultilineOption);
        static const QRegularExpression literal(QStringLiteral("^\"[^\"]*\"$"));
        QStringList unsaid;
        int checked = 0;
        QDirIterator files(QStringLiteral(KESTRO_SOURCE_DIR "/Kestro"), {u"*.qml"_s}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString path = files.next();
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QString source = QString::fromUtf8(file.readAll());
            for (auto match = item.globalMatch(source); match.hasNext();) {
                const auto found = match.next();
                qsizetype end = found.capturedEnd();
                for (int depth = 1; depth > 0 && end < source.size(); ++end)
                    depth += source[end] == QChar(0x7b) ? 1 : source[end] == QChar(0x7d) ? -1 : 0;
                const QString own = ownPart(source.mid(found.capturedEnd(), end - found.capturedEnd() - 1));
                const auto text = textBinding.match(own);
                if (!text.hasMatch() || literal.match(text.captured(1).trimmed()).hasMatch())
                    continue;
                ++checked;
                if (!own.contains(u"textFormat"_s))
                    unsaid.append(u"%1:%2"_s.arg(path.mid(path.indexOf(u"/Kestro/"_s) + 1))
                                      .arg(source.left(found.capturedStart()).count(u'\n') + 1));
            }
        }
        QVERIFY2(checked > 20, "the sources were not found");
        QVERIFY2(unsaid.isEmpty(), qPrintable(u"text items without a textFormat: "_s + unsaid.join(u", "_s)));
    }
};

QTEST_GUILESS_MAIN(QmlTextFormatsTest)
#include "tst_qml_text_formats.moc"
