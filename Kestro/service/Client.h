#pragma once

#include "AppLink.h"
#include "CallEffects.h"
#include "CallError.h"
#include "Codec.h"
#include "CookieStore.h"
#include "JSONValue.h"

#include <QCoroTask>
#include <QNetworkAccessManager>
#include <QPointer>
#include <QUrl>

#include <functional>

namespace Kestro {

class Auth;

// The one client of the service. Every action call goes through call():
// POST <origin>/api/app/<module>/<action> with {"args": [...]}, the bearer
// token from Auth, one refresh-and-repeat when the session expired, and the
// answer's effects (cookies, revalidation, redirects, not found) applied
// before the value is handed back. Lives on the GUI thread.
class Client : public QObject {
    Q_OBJECT
public:
    // The process's client for ServiceOrigin::current(), over Auth::shared().
    static Client& shared();
    // Makes another client the process's own (tests, tools with their own
    // service); nullptr goes back to the default one.
    static void setShared(Client* client);

    Client(QUrl origin, Auth& auth, QObject* parent = nullptr);

    QUrl origin() const { return m_origin; }
    Auth& auth() const { return m_auth; }
    CookieStore& cookies() const { return *m_cookies; }

    // The app model, held weakly; effects that need it are skipped without one.
    void setAppLink(AppLink* link) { m_app = link; }

    // The raw call: the answer's normalised JSON bytes, effects applied.
    QCoro::Task<QByteArray> call(QString module, QString action, QList<JSONValue> args, bool retry = true);

    // The same call, handing back the parsed answer rather than its bytes, so
    // the typed layer decodes without writing and reading it again. The
    // answer is as sent: decoding reads its wire markers as it goes (Codec.h);
    // Wire::unwire() gives the normalised form.
    QCoro::Task<QJsonValue> callAnswer(QString module, QString action, QList<JSONValue> args,
                                       bool retry = true);

    // Fetches a file of the service (an image stored with a document) with
    // the user's token: one refresh-and-repeat on a 401, CallError::http for
    // any other failing status.
    QCoro::Task<QByteArray> download(QString path, bool retry = true);

    // A typed call: decodes the answer's "value" as T. A shape problem
    // becomes CallError::decode with "<module>/<action>: <where and what>".
    template <typename T> QCoro::Task<T> fetch(QString module, QString action, QList<JSONValue> args);

    // For tests: the preferred languages and the clock used for cookie ages.
    void setPreferredLanguages(QStringList languages) { m_languages = std::move(languages); }
    void setClock(std::function<QDateTime()> clock) { m_clock = std::move(clock); }

    QUrl actionUrl(const QString& module, const QString& action) const;
    // Sets or deletes one cookie as an answer asks.
    void applyCookie(const CallEffects::Cookie& cookie);

private:
    QNetworkRequest actionRequest(const QString& module, const QString& action, const QString& token) const;
    void appSignOut();

    QUrl m_origin;
    Auth& m_auth;
    QNetworkAccessManager m_network;
    CookieStore* m_cookies;
    QPointer<AppLink> m_app;
    QStringList m_languages;
    std::function<QDateTime()> m_clock;
};

template <typename T> QCoro::Task<T> Client::fetch(QString module, QString action, QList<JSONValue> args)
{
    try {
        const QJsonValue answer = co_await callAnswer(module, action, std::move(args), true);
        co_return decodeValue<Answer<T>>(answer).value;
    } catch (const DecodingError& error) {
        throw CallError::decode(module + QLatin1Char('/') + action + QLatin1String(": ") +
                                error.description());
    }
}

} // namespace Kestro
