#pragma once

#include "InlineMenu.h"

#include "shell/KeyedListModel.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

namespace Kestro {

// The logic behind the composer's view: the inline menus over the text
// before the caret (what matches, its options, the active row, the keys a
// menu takes), the skills and documents loaded for them, and the paste of
// files and images. The view owns the text; this only reads it.
class PromptBarModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    // [{handle, name, avatar}], in the order the "@" menu lists them.
    Q_PROPERTY(QVariantList mentions READ mentions WRITE setMentions NOTIFY sourcesChanged)
    Q_PROPERTY(QString mentionLabel MEMBER m_mentionLabel NOTIFY sourcesChanged)
    Q_PROPERTY(QString skillsFor MEMBER m_skillsFor NOTIFY sourcesChanged)
    Q_PROPERTY(bool docLinks MEMBER m_docLinks NOTIFY sourcesChanged)
    // The caller's own sources: [{pattern, title, label, options: [{key,
    // insert, label, hint, badge, tip, face, mono}]}]; an option matches
    // when its label contains the query, in any case.
    Q_PROPERTY(QVariantList sources MEMBER m_extra NOTIFY sourcesChanged)

    Q_PROPERTY(bool menuOpen READ menuOpen NOTIFY menuChanged)
    Q_PROPERTY(QString menuTitle READ menuTitle NOTIFY menuChanged)
    Q_PROPERTY(QString menuLabel READ menuLabel NOTIFY menuChanged)
    Q_PROPERTY(Kestro::KeyedListModel* options READ options CONSTANT)
    Q_PROPERTY(int activeRow READ activeRow NOTIFY activeRowChanged)

public:
    // The keys the editor hands over before acting on them itself.
    enum class Key { Up, Down, Enter, Tab, Escape };
    Q_ENUM(Key)

    explicit PromptBarModel(QObject* parent = nullptr);

    QVariantList mentions() const { return m_mentionList; }
    void setMentions(const QVariantList& mentions);
    bool menuOpen() const { return m_hit.has_value(); }
    QString menuTitle() const;
    QString menuLabel() const;
    KeyedListModel* options() const { return m_options; }
    int activeRow() const { return m_active; }

    // The text and the caret (UTF-16), the input method's preedit text
    // counted as typed at the caret.
    Q_INVOKABLE void edited(const QString& text, int caret, const QString& preedit = {});
    // Handles `key` when a menu is open; false hands it back to the editor.
    Q_INVOKABLE bool key(Kestro::PromptBarModel::Key key);
    Q_INVOKABLE void hover(int row);
    // Picks a row: `picked` tells the view the new text and caret.
    Q_INVOKABLE void pick(int row);
    Q_INVOKABLE void close();
    // Lists the caller already holds, instead of loading them from the
    // service: [{id, name, description}] and [{slug, title}].
    Q_INVOKABLE void setSkills(const QVariantList& skills);
    Q_INVOKABLE void setDocuments(const QVariantList& documents);

    // What a paste brings as files, in this order: file addresses on the
    // clipboard; none when it holds text; else an image, written as a PNG
    // into a fresh temporary folder. Empty: let the editor paste text.
    Q_INVOKABLE QStringList pastedFiles() const;
    // The clipboard holds files or an image (the Paste action shows then
    // even with no text).
    Q_INVOKABLE bool clipboardHasFiles() const;
    // Local files among dropped addresses.
    Q_INVOKABLE static QStringList localFiles(const QVariantList& urls);
    // The line shown instead of the editor to a role that may not write,
    // or empty when `role` is among `allow`.
    Q_INVOKABLE static QString readOnlyNotice(const QString& role, const QStringList& allow);
    // The name a pasted image gets: "Pasted image 2026-11-22 14.03.png".
    static QString pastedImageName(const QDateTime& at);

signals:
    void sourcesChanged();
    void menuChanged();
    void activeRowChanged();
    void picked(const QString& text, int caret);

private:
    QList<InlineSource> buildSources() const;
    void rematch();
    void setActive(int row);
    void loadSkills();
    void loadDocuments();

    QVariantList m_mentionList;
    QList<InlineMenu::Mention> m_mentions;
    QString m_mentionLabel = QStringLiteral("Mention someone");
    QString m_skillsFor;
    bool m_docLinks = false;
    QVariantList m_extra;

    std::optional<QList<InlineMenu::Skill>> m_skills;
    std::optional<QList<InlineMenu::Document>> m_documents;
    bool m_loadingSkills = false;
    bool m_loadingDocuments = false;

    QString m_text;
    int m_caret = 0;
    QString m_beforeCaret;
    // Escape closed the menu for this text; it opens again once the text
    // before the caret changes.
    bool m_dismissed = false;
    QList<InlineSource> m_sources;
    std::optional<InlineHit> m_hit;
    KeyedList<InlineOption>* m_options;
    int m_active = 0;
};

} // namespace Kestro
