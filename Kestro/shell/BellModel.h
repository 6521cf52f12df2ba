#pragma once

#include <QObject>
#include <QTimer>
#include <QVariantList>

#include <QCoroTask>

namespace Kestro {

// The header's bell: the unread count, polled every 30 seconds while the
// frame shows, and the list of notifications, loaded when the bell opens,
// with marking read and clearing. GUI thread only.
class BellModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(int unread READ unread NOTIFY unreadChanged)
    Q_PROPERTY(QVariantList items READ items NOTIFY itemsChanged)
    Q_PROPERTY(bool loading READ isLoading NOTIFY loadingChanged)
    Q_PROPERTY(QString error READ error NOTIFY errorChanged)
    Q_PROPERTY(bool active READ isActive WRITE setActive NOTIFY activeChanged)

public:
    static constexpr int pollMilliseconds = 30'000;

    explicit BellModel(QObject* parent = nullptr);

    int unread() const { return m_unread; }
    QVariantList items() const { return m_items; }
    bool isLoading() const { return m_loading; }
    QString error() const { return m_error; }
    // Polls while active (the signed-in frame is on screen).
    bool isActive() const { return m_active; }
    void setActive(bool active);

    // The unread count as another answer brought it (the frame's counts).
    void setUnread(int unread);
    Q_INVOKABLE void refreshCount();
    Q_INVOKABLE void load();
    Q_INVOKABLE void markRead(const QString& id);
    Q_INVOKABLE void markAllRead();
    Q_INVOKABLE void clear();

signals:
    void unreadChanged();
    void itemsChanged();
    void loadingChanged();
    void errorChanged();
    void activeChanged();
    // A poll of the count was answered: the desktop's turn.
    void polled();

private:
    QCoro::Task<> runCount();
    QCoro::Task<> runLoad();
    QCoro::Task<> runRead(QStringList ids);
    QCoro::Task<> runClear();
    void setError(const QString& error);
    void setLoading(bool on);

    int m_unread = 0;
    QVariantList m_items;
    bool m_loading = false;
    bool m_active = false;
    QString m_error;
    quint64 m_generation = 0;
    QTimer m_poll;
};

} // namespace Kestro
