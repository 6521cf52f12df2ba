#pragma once

#include "SharedTask.h"
#include "Tokens.h"

#include <QCoroTask>
#include <QNetworkAccessManager>

#include <QObject>
#include <QUrl>
#include <chrono>

#include <functional>
#include <map>
#include <optional>

namespace Kestro {

class SecretStore;

// One started sign-in, kept by the caller between begin() and finish().
struct Authorization {
    QUrl url;
    QString verifier;
    QString state;
    QString redirect;
};

// The owner of the OAuth tokens: builds the authorization request (PKCE,
// S256), finishes it from the callback, hands the client a current access
// token, refreshes it before it expires or after the service refused it, and
// revokes it at sign-out. Lives on the GUI thread; every caller that needs a
// refresh awaits the same one.
class Auth : public QObject {
    Q_OBJECT
public:
    static constexpr QLatin1StringView clientId{"kestro-mac"};
    static constexpr QLatin1StringView redirectUri{"kestro://oauth/callback"};
    static constexpr QLatin1StringView callbackScheme{"kestro"};
    static constexpr QLatin1StringView keychainService{"kestro.mac"};
    static constexpr int refreshMarginSeconds = 300;
    static constexpr int defaultLifetimeSeconds = 3600;

    // The process's Auth for ServiceOrigin::current(), keeping its tokens in
    // the system's secret store.
    static Auth& shared();

    Auth(QUrl origin, SecretStore& store, QObject* parent = nullptr);

    QUrl origin() const { return m_origin; }
    SecretStore& secretStore() const { return m_store; }

    Authorization begin(const QString& redirect) const;
    QCoro::Task<Tokens> finish(QUrl callback, Authorization authorization);
    // The token to send now; absent when signed out. Refreshes a token that
    // expires within the margin first.
    QCoro::Task<std::optional<QString>> accessToken();
    // The service refused `after`; refreshes unless another call already did.
    QCoro::Task<> refresh(QString after);
    // Revokes the refresh token (best effort) and forgets the tokens.
    QCoro::Task<> signOut();
    QCoro::Task<> store(std::optional<Tokens> tokens);

    std::optional<Tokens> tokens() const { return m_tokens; }
    // Why the stored sign-in could not be read, as a sentence; empty when
    // it was (or there was none).
    QString storeProblem() const { return m_storeProblem; }
    // For tests: what "now" is, and how long the store may take to answer.
    void setClock(std::function<QDateTime()> clock) { m_clock = std::move(clock); }
    void setStoreDeadline(std::chrono::milliseconds deadline) { m_storeDeadline = deadline; }

signals:
    // The held tokens changed: signed in, refreshed, or signed out. The web
    // session cookie follows the access token through this.
    void tokensChanged();
    // The secret store answered the read of the stored sign-in.
    void storeAnswered();

private:
    using Form = std::map<QString, QString>; // sorted by name, as the form is written

    QString keychainKey() const;
    QCoro::Task<> load();
    QCoro::Task<std::optional<Tokens>> readStored();
    // The answer of a secret store job, or nothing when the store deadline
    // passed first.
    template <typename T> QCoro::Task<std::optional<T>> within(QCoro::Task<T> job);
    QCoro::Task<std::optional<Tokens>> sharedRefresh();
    QCoro::Task<std::optional<Tokens>> runRefresh(SharedTask<std::optional<Tokens>> self);
    QCoro::Task<Tokens> tokenRequest(Form form);
    QNetworkRequest formRequest(const QString& path) const;
    static QByteArray encodeForm(const Form& form);
    void adopt(std::optional<Tokens> tokens);
    QDateTime now() const { return m_clock(); }

    QUrl m_origin;
    SecretStore& m_store;
    QNetworkAccessManager m_network;
    std::function<QDateTime()> m_clock;

    std::optional<Tokens> m_tokens;
    // Long enough to type a keyring's password into its unlock prompt.
    std::chrono::milliseconds m_storeDeadline{60'000};
    QString m_storeProblem;
    bool m_loaded = false;
    std::optional<SharedTask<bool>> m_loading;
    std::optional<SharedTask<std::optional<Tokens>>> m_refreshing;
};

} // namespace Kestro
