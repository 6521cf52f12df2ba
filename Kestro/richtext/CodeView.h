#pragma once

#include <QObject>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

namespace Kestro {

// What the code and diff views show, line by line, as plain maps for QML:
// {number, html, tint} for code ("marked", "added", "removed" or ""), and
// {kind, text, oldNumber, newNumber} for a diff. Tone colours come from the
// theme the view passes in.
class CodeView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
public:
    using QObject::QObject;

    // `tones` maps "string", "comment", "number", "keyword", "call" to colours.
    Q_INVOKABLE static QVariantList lines(const QString& code, const QString& lang, int start, int mark,
                                          bool bare, const QVariantMap& tones);
    Q_INVOKABLE static QVariantList diff(const QString& oldText, const QString& newText);
    Q_INVOKABLE static QString noChangeText();
    // Puts the code on the clipboard as plain text.
    Q_INVOKABLE static void copy(const QString& text);
};

} // namespace Kestro
