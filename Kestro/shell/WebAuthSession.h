#pragma once

#include "service/ServiceError.h"

#include <QCoroTask>
#include <QObject>
#include <QUrl>

#include <functional>
#include <optional>

namespace Kestro {

// The web sign-in, as native apps do it: the system browser opens the
// service's authorization page and the sign-in ends when the browser hands
// the "kestro://oauth/callback" address back (a deep link). Where no
// browser opens, or when the user asks ("Sign in here instead"), a sheet in
// the window shows the page instead, kept to the service's own origin.
// Only the callback that carries this sign-in's state ends it.
// Neither the browser nor the sheet could open: the sign-in card says so.
class NoSignInWindow : public ServiceError {
public:
    QString description() const override
    {
        return QStringLiteral("Kestro could open neither your web browser nor its own sign-in window. Set a "
                              "default web browser in your desktop's settings, then try again.");
    }
};

class WebAuthSession : public QObject {
    Q_OBJECT
    // The authorization address while the sheet is open; empty otherwise.
    Q_PROPERTY(QUrl address READ address NOTIFY stateChanged)
    Q_PROPERTY(bool inBrowser READ inBrowser NOTIFY stateChanged)

public:
    // `openBrowser` opens an address in the system browser (false when
    // none opened); `sheetReady` starts what the sheet needs (the web
    // engine) and says whether it can show.
    WebAuthSession(std::function<bool(const QUrl&)> openBrowser, std::function<bool()> sheetReady,
                   QObject* parent = nullptr);

    QUrl address() const { return m_inBrowser ? QUrl() : m_address; }
    bool inBrowser() const { return m_inBrowser; }
    bool isOpen() const { return !m_address.isEmpty(); }

    // Opens `authorize` and hands back the "kestro:" address it ended on;
    // absent when the user gave up.
    QCoro::Task<std::optional<QUrl>> authenticate(QUrl authorize);

    // A navigation in the sheet: true when the view must not follow it (a
    // "kestro:" address, or another origin's page, which opens in the
    // browser instead).
    Q_INVOKABLE bool navigated(const QUrl& url);
    Q_INVOKABLE void useBrowser();
    Q_INVOKABLE void useSheet();
    Q_INVOKABLE void cancel();
    // A "kestro://oauth/..." address from outside (the browser's deep link).
    void deliver(const QUrl& callback);

signals:
    void stateChanged();
    void ended(const QUrl& callback); // empty when given up

private:
    bool isOurs(const QUrl& callback) const;
    void end(const QUrl& callback);

    std::function<bool(const QUrl&)> m_openBrowser;
    std::function<bool()> m_sheetReady;
    QUrl m_address;
    QString m_state;
    bool m_inBrowser = false;
};

} // namespace Kestro
