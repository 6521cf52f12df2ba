#pragma once

#include <QList>
#include <QRegularExpression>
#include <QString>

#include <functional>
#include <optional>

namespace Kestro {

// One row of an inline menu.
struct InlineOption {
    QString key;       // identity
    QString insert;    // replaces the trigger and the query when picked
    bool mono = false; // the label in the monospaced font
    QString hint;
    QString badge;
    QString tip;
    QString face;  // avatar address of a person or teammate
    QString label; // the row's text
    bool operator==(const InlineOption&) const = default;
};

// One trigger of the composer: the pattern matched against the text before
// the caret (group 1 is the typed query), the menu's heading and short name,
// and how the typed query picks its options.
struct InlineSource {
    QRegularExpression pattern;
    QString title;
    QString label;
    std::function<QList<InlineOption>(const QString& typed)> options;
    // A mention is followed by a space when picked.
    bool spaceAfter = false;
    // The owner's own name for the source (which list it loads, which
    // heading it shows).
    int tag = 0;
};

// What a text before the caret matched: the source, the query typed and
// the range (UTF-16 offsets) a pick replaces.
struct InlineHit {
    int source = -1;
    QString typed;
    int from = 0;
    int to = 0;
};

namespace InlineMenu {

// The three triggers, compiled once.
const QRegularExpression& skillPattern();
const QRegularExpression& documentPattern();
const QRegularExpression& mentionPattern();

// The first source whose pattern matches `beforeCaret` (at most one can:
// each needs its own trigger character right before the caret).
std::optional<InlineHit> match(const QList<InlineSource>& sources, const QString& beforeCaret);

// The text after a pick: the hit's range replaced, and where the caret goes.
struct Picked {
    QString text;
    int caret = 0;
};
Picked pick(const QString& text, const InlineHit& hit, const InlineOption& option, bool spaceAfter);

struct Mention {
    QString handle;
    QString name;
    QString avatar;
};
struct Document {
    QString slug;
    QString title;
};
struct Skill {
    QString id;
    QString name;
    QString description;
    QString agent; // the teammate who has it; empty for everyone's
};

// A handle that begins with the query, else a name that contains it; the
// supplied order, at most six; inserts "@handle".
QList<InlineOption> mentionOptions(const QList<Mention>& candidates, const QString& query);
// Titles that contain the query (any case), those that begin with it first;
// inserts a Markdown link to "/documents/<slug>".
QList<InlineOption> documentOptions(const QList<Document>& documents, const QString& query);
// Skill ids that contain the query (case as typed), those that begin with
// it first; inserts "/<id>".
QList<InlineOption> skillOptions(const QList<Skill>& skills, const QString& query);

// A title made safe as a Markdown link's text: brackets and backslashes are
// escaped so the link cannot end early.
QString linkText(const QString& title);

// At most this many rows of a long document or skill list are shown.
inline constexpr int maxRows = 8;
inline constexpr int maxMentions = 6;

} // namespace InlineMenu
} // namespace Kestro
