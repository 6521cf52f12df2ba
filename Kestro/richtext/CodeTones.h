#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include <optional>

namespace Kestro::CodeTones {

// The light colouring of JavaScript, TypeScript and JSON: a one-pattern
// tokenizer applied line by line. Positions are UTF-16 units.
enum class Tone { String, Comment, Number, Keyword, Call };

struct Span {
    qsizetype start = 0;
    qsizetype length = 0;
    Tone tone = Tone::String;
    bool operator==(const Span&) const = default;
};

// Lines longer than this get no tones at all.
inline constexpr qsizetype maximumLineLength = 500;

// Whether a fence's language tag is coloured ("js", "ts", "json", ...).
bool isTinted(const QString& lang);
// The tones of one line, in order of position.
QList<Span> tones(QStringView line);
// The tone of one token given the rest of its line; none for plain words.
std::optional<Tone> toneOf(QStringView token, QStringView rest);

// How a line's background is tinted in a code block.
enum class LineTint { None, Marked, Added, Removed };
LineTint lineTint(QStringView line, int number, std::optional<int> mark, bool bare,
                  const std::optional<QString>& lang);

} // namespace Kestro::CodeTones
