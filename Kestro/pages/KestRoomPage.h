#pragma once

#include "KestComposer.h"
#include "shell/KeyedListModel.h"
#include "shell/PageModel.h"

#include "calls/kest.h"

#include <QHash>
#include <QtQml/qqmlregistration.h>

namespace Kestro {

// A teammate answering right now, with its run's trace when the page has it.
struct KestAnswerRow {
    Model::KestAnswer answer;
    std::optional<Model::RunTrace> trace;
    bool operator==(const KestAnswerRow&) const = default;
};

// The kest room ("/kest") and, beside it, one of its threads
// ("/kest?thread=<id>"). Messages are listed newest first, so a view that
// lays them out bottom to top keeps its place when history grows, and each
// reload changes only the rows whose message changed.
class KestRoomPage : public Kestro::PageModel {
    Q_OBJECT
    QML_NAMED_ELEMENT(KestRoomModel)
    Q_PROPERTY(QString everyoneLine READ everyoneLine NOTIFY answered)
    Q_PROPERTY(QStringList needsYou READ needsYou NOTIFY answered)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY answered)
    Q_PROPERTY(QVariantList mentions READ mentions NOTIFY answered)
    Q_PROPERTY(Kestro::KeyedListModel* kest READ kest CONSTANT)
    Q_PROPERTY(Kestro::KeyedListModel* messages READ messages CONSTANT)
    Q_PROPERTY(Kestro::KeyedListModel* answering READ answering CONSTANT)
    Q_PROPERTY(QString threadId READ threadId NOTIFY routeChanged)
    Q_PROPERTY(bool threadShown READ threadShown NOTIFY answered)
    Q_PROPERTY(QString threadNote READ threadNote NOTIFY answered)
    Q_PROPERTY(Kestro::KeyedListModel* thread READ thread CONSTANT)
    Q_PROPERTY(Kestro::KeyedListModel* threadAnswering READ threadAnswering CONSTANT)
    Q_PROPERTY(Kestro::KestComposer* composer READ composer CONSTANT)
    Q_PROPERTY(Kestro::KestComposer* threadComposer READ threadComposer CONSTANT)
    Q_PROPERTY(QString reactionError READ reactionError NOTIFY reactionErrorChanged)
    // The thread panel's width as the user left it.
    Q_PROPERTY(int threadWidth READ threadWidth WRITE setThreadWidth NOTIFY threadWidthChanged)

public:
    explicit KestRoomPage(QObject* parent = nullptr, Timers& timers = Timers::system());

    static QCoro::Task<QVariant> fetch(Route route);

    const Calls::kest::KestChatResult& result() const { return m_result; }
    QString everyoneLine() const { return m_everyoneLine; }
    QStringList needsYou() const { return m_needsYou; }
    QString emptyText() const { return m_emptyText; }
    QVariantList mentions() const { return m_mentions; }
    KeyedListModel* kest() const;
    KeyedListModel* messages() const;
    KeyedListModel* answering() const;
    QString threadId() const;
    bool threadShown() const { return m_result.thread.has_value(); }
    QString threadNote() const { return m_threadNote; }
    KeyedListModel* thread() const;
    KeyedListModel* threadAnswering() const;
    KestComposer* composer() const { return m_composer; }
    KestComposer* threadComposer() const { return m_threadComposer; }
    QString reactionError() const { return m_reactionError; }
    int threadWidth() const;
    void setThreadWidth(int width);

    // Adds the user's reaction, or takes it back: shown at once, sent, and
    // put right by the next load (or undone with a sentence if refused).
    Q_INVOKABLE void react(const QString& messageId, const QString& emoji);
    Q_INVOKABLE void dismissReactionError();
    Q_INVOKABLE void closeThread();
    void reloadNow() { reloadAfterAction(); }

    // The user's reaction with `emoji` on or off.
    static QList<Model::ReactionView> toggled(QList<Model::ReactionView> reactions, const QString& emoji,
                                              const QString& me);
    // Seconds to the next load: quick while anyone answers.
    static double cadence(const Calls::kest::KestChatResult& result);

signals:
    void answered();
    void reactionErrorChanged();
    void threadWidthChanged();

protected:
    void apply(const QVariant& value) override;
    std::optional<double> every(const QVariant& value) const override;

private:
    struct Overlay {
        QList<Model::ReactionView> reactions;
        bool settled = false; // the service took it; the next load shows it
    };

    void show();
    void announceReactions(const QString& messageId);
    QCoro::Task<> sendReaction(QString messageId, QString emoji);
    QList<KeyedList<Model::KestRoomMessage>::Role> messageRoles();
    QList<KeyedList<KestAnswerRow>::Role> answerRoles();
    QVariantList reactionChips(const QList<Model::ReactionView>& reactions) const;
    QString nameOf(const QString& id) const;
    QString answeringLine(const QList<Model::KestAnswer>& answering) const;
    QList<KestAnswerRow> answerRows(const QList<Model::KestAnswer>& answering) const;
    const QList<Model::ReactionView>* reactionsOf(const QString& messageId) const;

    Calls::kest::KestChatResult m_result;
    QHash<QString, QString> m_names; // person id or teammate handle -> name
    QHash<QString, Overlay> m_overlay;
    KeyedList<Calls::kest::KestChatResultKest>* m_kest;
    KeyedList<Model::KestRoomMessage>* m_messages;
    KeyedList<Model::KestRoomMessage>* m_thread;
    KeyedList<KestAnswerRow>* m_answering;
    KeyedList<KestAnswerRow>* m_threadAnswering;
    KestComposer* m_composer;
    KestComposer* m_threadComposer;
    QString m_everyoneLine;
    QStringList m_needsYou;
    QString m_emptyText;
    QVariantList m_mentions;
    QString m_threadNote;
    QString m_reactionError;
    QString m_shownThread;
    bool m_threadShownBefore = false;
};

} // namespace Kestro

Q_DECLARE_METATYPE(Kestro::Calls::kest::KestChatResult)
