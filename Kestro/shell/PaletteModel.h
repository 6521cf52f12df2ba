#pragma once

#include <QObject>
#include <QTimer>
#include <QVariantList>
#include <QVariantMap>

#include <QCoroTask>

namespace Kestro {

// The command palette's list: the app's own places and the kest's teammates
// at once, then the service's matches for the query (pages, teammates,
// tasks, projects) as they arrive. Each item is {kind, title, subtitle,
// href, icon}; choosing one opens its href through the router.
class PaletteModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(QVariantList items READ items NOTIFY itemsChanged)
    Q_PROPERTY(bool searching READ isSearching NOTIFY searchingChanged)
    Q_PROPERTY(QString error READ error NOTIFY errorChanged)
    // The frame's teammates ({handle, name, title, ...}), offered offline.
    Q_PROPERTY(QVariantList teammates READ teammates WRITE setTeammates NOTIFY itemsChanged)

public:
    explicit PaletteModel(QObject* parent = nullptr);

    QString query() const { return m_query; }
    void setQuery(const QString& query);
    QVariantList items() const { return m_items; }
    bool isSearching() const { return m_searching; }
    QString error() const { return m_error; }
    QVariantList teammates() const { return m_teammates; }
    void setTeammates(const QVariantList& teammates);

    // Empties the query and forgets the last answer (the palette closed).
    Q_INVOKABLE void reset();

    // The local items matching `query`, before the service's answer.
    static QVariantList localItems(const QString& query, const QVariantList& teammates);
    // Local items first, then the service's, each address once.
    static QVariantList merge(const QVariantList& local, const QVariantList& remote);

signals:
    void queryChanged();
    void itemsChanged();
    void searchingChanged();
    void errorChanged();

private:
    QCoro::Task<> search(QString query, quint64 generation);
    void rebuild();
    void setSearching(bool on);

    QString m_query;
    QVariantList m_teammates;
    QVariantList m_remote;
    QVariantList m_items;
    bool m_searching = false;
    QString m_error;
    quint64 m_generation = 0;
    QTimer m_debounce;
};

} // namespace Kestro
