#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace Kestro::Inline {

// One run of styled inline text. The view maps `face` to the app's fonts:
// plain and strong/emphasis in Geist, code in Geist Mono.
struct Run {
    enum class Face { Plain, Code, Strong, Emphasis, StrongEmphasis };
    QString text;
    Face face = Face::Plain;
    bool strike = false;
    std::optional<QString> link;  // a live link (the allow-list passed)
    std::optional<QString> image; // an image's address; `text` is its description
    bool operator==(const Run&) const = default;
};

// Turns the raw inline Markdown of one block (a paragraph, heading, list
// item, quote line or table cell) into runs. `citations` is the number of
// sources that came with the text: "[n]" with 1 <= n <= citations links to
// "#source-n" (paragraph text only: pass 0 elsewhere).
QList<Run> style(const QString& text, int citations = 0);

// Which link schemes stay live: the web, mail and chat schemes, and "app:"
// for the app's own places; a link without a scheme (an app path, an
// anchor) is kept too.
bool isAllowedLink(const QString& address);

// Where a click on a link goes.
enum class Target { Anchor, AppPath, System };
Target targetOf(const QString& address);
// The path an app link opens: "/tasks" for "/tasks" and for "app:/tasks".
QString appPathOf(const QString& address);

// An image stored with a document of the service, fetched through the
// signed-in client rather than the open web.
bool isOwnImage(const QString& path);

// The canonical address of a link to a single post on X, or none.
std::optional<QString> postLink(const QString& address);

} // namespace Kestro::Inline
