#pragma once

#include <QObject>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

namespace Kestro {

// The Markdown view's model: parses `text` into blocks and hands QML a tree
// of plain maps ({kind, level, html, posts, code, lang, blocks, items, head, rows}).
// Inline text arrives as Qt rich text built from the styled runs, so it is
// selectable and its links report through onLinkActivated.
class MarkdownDocument : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY changed)
    Q_PROPERTY(int citations READ citations WRITE setCitations NOTIFY changed)
    Q_PROPERTY(bool images READ images WRITE setImages NOTIFY changed)
    // Paragraphs that link to posts on X list them under "posts"
    // ({address, user, id}), for the embedded cards.
    Q_PROPERTY(bool embeds READ embeds WRITE setEmbeds NOTIFY changed)
    Q_PROPERTY(QVariantList blocks READ blocks NOTIFY changed)

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
    QVariantList blocks() const { return m_blocks; }

    // One block's inline Markdown as rich text (also for other views).
    Q_INVOKABLE static QString inlineHtml(const QString& markdown, int citations = 0, bool images = false);
    // Where a click on a link goes: "anchor", "app" or "system".
    Q_INVOKABLE QString linkTarget(const QString& address) const;

signals:
    void changed();

private:
    void rebuild();

    QString m_text;
    int m_citations = 0;
    bool m_images = false;
    bool m_embeds = false;
    QVariantList m_blocks;
};

} // namespace Kestro
