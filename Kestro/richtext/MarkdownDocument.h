#pragma once

#include <QColor>
#include <QObject>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

namespace Kestro {

// The Markdown view's model: parses `text` into blocks and hands QML a tree
// of plain maps ({kind, level, html, posts, code, lang, blocks, items, head, rows};
// a quote's or list item's html is the text it holds when that is all it
// holds).
// Runs of headings, paragraphs and plain lists come as one "flow" block whose
// html holds them all.
// Inline text arrives as Qt rich text built from the styled runs, styled
// already (code face, link colour), so it is selectable and its links
// report through onLinkActivated.
class MarkdownDocument : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY changed)
    Q_PROPERTY(int citations READ citations WRITE setCitations NOTIFY changed)
    Q_PROPERTY(bool images READ images WRITE setImages NOTIFY changed)
    // Paragraphs that link to posts on X list them under "posts"
    // ({address, user, id}), for the embedded cards.
    Q_PROPERTY(bool embeds READ embeds WRITE setEmbeds NOTIFY changed)
    // The base text size and the document style, which set the spacing and
    // heading sizes of the text that flows together ("flow" blocks).
    Q_PROPERTY(double size READ size WRITE setSize NOTIFY changed)
    Q_PROPERTY(bool document READ document WRITE setDocument NOTIFY changed)
    // Links take the theme's colour ("#3b5bdb").
    Q_PROPERTY(QColor linkColor READ linkColor WRITE setLinkColor NOTIFY changed)
    Q_PROPERTY(QVariantList blocks READ blocks NOTIFY changed)
    // The html when the whole text is one run of flowing text (most
    // messages), else empty: the view then shows one text item and no
    // stack of blocks.
    Q_PROPERTY(QString soleHtml READ soleHtml NOTIFY changed)

public:
    using QObject::QObject;

    QString text() const { return m_text; }
    void setText(const QString& text);
    int citations() const { return m_citations; }
    void setCitations(int citations);
    bool images() const { return m_images; }
    void setImages(bool images);
    bool embeds() const { return m_embeds; }
    void setEmbeds(bool embeds);
    double size() const { return m_size; }
    void setSize(double size);
    bool document() const { return m_document; }
    QColor linkColor() const { return m_linkColor; }
    void setLinkColor(const QColor& color);
    void setDocument(bool document);
    QVariantList blocks() const;
    QString soleHtml() const;

    // Where a click on a link goes: "anchor", "app" or "system".
    Q_INVOKABLE QString linkTarget(const QString& address) const;
    // The path an "app" link opens ("app:/tasks" opens "/tasks").
    Q_INVOKABLE QString appPath(const QString& address) const;

signals:
    void changed();

private:
    // Marks the blocks stale; they are parsed again when next read.
    void rebuild();

    QString m_text;
    int m_citations = 0;
    bool m_images = false;
    bool m_embeds = false;
    double m_size = 14;
    bool m_document = false;
    QColor m_linkColor = QColor(0x3b, 0x5b, 0xdb);
    mutable QVariantList m_blocks;
    mutable bool m_dirty = false;
};

} // namespace Kestro
