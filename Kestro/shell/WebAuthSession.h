#pragma once

#include <QCoroTask>
#include <QObject>
#include <QUrl>

#include <optional>

namespace Kestro {

// The web sign-in: a sheet in the window shows the service's authorization
// page in a web view on the app's persistent profile (so the service's own
// session is shared) and ends when the page navigates to a "kestro:"
// address. "Use my browser" opens the system browser instead and waits for
// that address to come back as a deep link. Closing the sheet gives up.
class WebAuthSession : public QObject {
    Q_OBJECT
    // The authorization address while the sheet is open; empty otherwise.
    Q_PROPERTY(QUrl address READ address NOTIFY stateChanged)
    Q_PROPERTY(bool inBrowser READ inBrowser NOTIFY stateChanged)

public:
    explicit WebAuthSession(QObject* parent = nullptr);

    QUrl address() const { return m_inBrowser ? QUrl() : m_address; }
    bool inBrowser() const { return m_inBrowser; }
    bool isOpen() const { return !m_address.isEmpty(); }

    // Shows `authorize` and hands back the "kestro:" address it ended on;
    // absent when the user gave up.
    QCoro::Task<std::optional<QUrl>> authenticate(QUrl authorize);

    // A navigation in the sheet: true when it was the callback (the view
    // must not follow it).
    Q_INVOKABLE bool navigated(const QUrl& url);
    Q_INVOKABLE void useBrowser();
    Q_INVOKABLE void cancel();
    // The callback, arriving as a deep link after "Use my browser".
    void deliver(const QUrl& callback);

signals:
    void stateChanged();
    void ended(const QUrl& callback); // empty when given up

private:
    void end(const QUrl& callback);

    QUrl m_address;
    bool m_inBrowser = false;
};

} // namespace Kestro
