#include "Auth.h"

#include "AuthError.h"
#include "CallError.h"
#include "HttpExchange.h"
#include "KeychainStore.h"
#include "LogRedaction.h"
#include "ServiceOrigin.h"
#include "TokenAnswer.h"
#include "UserAgent.h"

#include <QCoroSignal>
#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkCookie>
#include <QNetworkCookieJar>
#include <QNetworkReply>
#include <QPointer>
#include <QRandomGenerator>
#include <QUrlQuery>

namespace Kestro {

namespace {

QString urlSafeBase64(const QByteArray& bytes)
{
    return QString::fromLatin1(
        bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
}

QByteArray secureRandomBytes(int count)
{
    QByteArray bytes(count, Qt::Uninitialized);
    QRandomGenerator::system()->generate(reinterpret_cast<quint32*>(bytes.data()),
                                         reinterpret_cast<quint32*>(bytes.data() + count));
    return bytes;
}

// The sign-in's requests carry no cookies at all, in either direction.
class NoCookies final : public QNetworkCookieJar {
public:
    using QNetworkCookieJar::QNetworkCookieJar;
    QList<QNetworkCookie> cookiesForUrl(const QUrl&) const override { return {}; }
    bool setCookiesFromUrl(const QList<QNetworkCookie>&, const QUrl&) override { return false; }
};

} // namespace

Auth& Auth::shared()
{
    static KeychainStore keychain{QString(keychainService)};
    static Auth* auth = new Auth(ServiceOrigin::current(), keychain);
    return *auth;
}

Auth::Auth(QUrl origin, SecretStore& store, QObject* parent)
    : QObject(parent), m_origin(std::move(origin)), m_store(store),
      m_clock([] { return QDateTime::currentDateTimeUtc(); })
{
    m_network.setCookieJar(new NoCookies(&m_network));
    m_network.setTransferTimeout(30'000);
    // A redirect is an answer: the form carries the verifier or refresh
    // token, which must never be posted to whatever address a 307 names.
    m_network.setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
}

QString Auth::keychainKey() const
{
    return m_origin.toString(QUrl::FullyEncoded);
}

Authorization Auth::begin(const QString& redirect) const
{
    Authorization authorization;
    authorization.verifier = urlSafeBase64(secureRandomBytes(48));
    const QString challenge =
        urlSafeBase64(QCryptographicHash::hash(authorization.verifier.toUtf8(), QCryptographicHash::Sha256));
    authorization.state = urlSafeBase64(secureRandomBytes(24));
    authorization.redirect = redirect;

    QUrlQuery query;
    query.addQueryItem(QStringLiteral("client_id"), clientId);
    query.addQueryItem(QStringLiteral("redirect_uri"), redirect);
    query.addQueryItem(QStringLiteral("response_type"), QStringLiteral("code"));
    query.addQueryItem(QStringLiteral("code_challenge"), challenge);
    query.addQueryItem(QStringLiteral("code_challenge_method"), QStringLiteral("S256"));
    query.addQueryItem(QStringLiteral("state"), authorization.state);
    authorization.url = appendPath(m_origin, QStringLiteral("oauth/authorize"));
    authorization.url.setQuery(query);
    return authorization;
}

QCoro::Task<Tokens> Auth::finish(QUrl callback, Authorization authorization)
{
    const QUrlQuery query(callback);
    auto item = [&](const QString& name) -> std::optional<QString> {
        if (!query.hasQueryItem(name))
            return std::nullopt;
        return query.queryItemValue(name, QUrl::FullyDecoded);
    };
    if (const auto error = item(QStringLiteral("error"))) {
        const auto description = item(QStringLiteral("error_description"));
        throw AuthError::refused(description ? *description : *error);
    }
    const auto state = item(QStringLiteral("state"));
    if (!state || *state != authorization.state)
        throw AuthError::badCallback();
    const auto code = item(QStringLiteral("code"));
    if (!code)
        throw AuthError::badCallback();

    // Built before the co_await: GCC 12 cannot keep a braced list alive across one.
    Form form;
    form[QStringLiteral("grant_type")] = QStringLiteral("authorization_code");
    form[QStringLiteral("code")] = *code;
    form[QStringLiteral("redirect_uri")] = authorization.redirect;
    form[QStringLiteral("client_id")] = clientId;
    form[QStringLiteral("code_verifier")] = authorization.verifier;
    const Tokens tokens = co_await tokenRequest(std::move(form));
    co_await store(tokens);
    co_return tokens;
}

QCoro::Task<std::optional<QString>> Auth::accessToken()
{
    co_await load();
    if (!m_tokens)
        co_return std::nullopt;
    if (now().secsTo(m_tokens->expiresAt) > refreshMarginSeconds)
        // Copied explicitly: QCoro 0.8's co_return moves from an lvalue of
        // another type, which would empty the token held here.
        co_return std::optional<QString>(m_tokens->access);
    const std::optional<Tokens> fresh = co_await sharedRefresh();
    co_return fresh ? std::optional<QString>(fresh->access) : std::nullopt;
}

QCoro::Task<> Auth::refresh(QString after)
{
    co_await load();
    if (m_tokens && m_tokens->access != after)
        co_return; // another call refreshed already
    co_await sharedRefresh();
}

QCoro::Task<std::optional<Tokens>> Auth::sharedRefresh()
{
    if (m_refreshing) {
        const SharedTask<std::optional<Tokens>> joined = *m_refreshing;
        co_return co_await joined.result();
    }
    // Registered before the work starts, so callers arriving while it waits
    // on the secret store or the network join it. The work may end (and
    // unregister) before run() returns, hence the local copy.
    const SharedTask<std::optional<Tokens>> refreshing;
    m_refreshing = refreshing;
    refreshing.run(runRefresh(refreshing));
    co_return co_await refreshing.result();
}

QCoro::Task<std::optional<Tokens>> Auth::runRefresh(SharedTask<std::optional<Tokens>> self)
{
    auto finished = [this, &self] {
        if (m_refreshing && m_refreshing->isSameAs(self))
            m_refreshing.reset();
    };
    // Another running copy of the app may have refreshed already.
    const std::optional<Tokens> stored = co_await readStored();
    if (stored && stored != m_tokens && now().secsTo(stored->expiresAt) > refreshMarginSeconds) {
        adopt(stored);
        finished();
        co_return stored;
    }
    if (!m_tokens) {
        finished();
        co_return std::nullopt;
    }
    std::optional<Tokens> result;
    try {
        Form form;
        form[QStringLiteral("grant_type")] = QStringLiteral("refresh_token");
        form[QStringLiteral("refresh_token")] = m_tokens->refresh;
        form[QStringLiteral("client_id")] = clientId;
        result = co_await tokenRequest(std::move(form));
    } catch (const AuthError&) {
        result = std::nullopt; // the service refused the refresh token: signed out
    } catch (...) {
        finished(); // network or unexpected status: every waiter sees it, tokens stay
        throw;
    }
    finished();
    co_await store(result);
    co_return result;
}

QNetworkRequest Auth::formRequest(const QString& path) const
{
    QNetworkRequest request(appendPath(m_origin, path));
    request.setRawHeader("Content-Type", "application/x-www-form-urlencoded");
    request.setRawHeader("User-Agent", authUserAgent());
    request.setTransferTimeout(60'000);
    return request;
}

QByteArray Auth::encodeForm(const Form& form)
{
    // Only ASCII letters, digits and "-._~" stay as they are.
    QByteArrayList pairs;
    for (const auto& [name, value] : form)
        pairs.append(QUrl::toPercentEncoding(name) + '=' + QUrl::toPercentEncoding(value));
    return pairs.join('&');
}

QCoro::Task<Tokens> Auth::tokenRequest(Form form)
{
    const HttpAnswer answer =
        co_await exchange(m_network.post(formRequest(QStringLiteral("api/oauth/token")), encodeForm(form)));
    const TokenAnswer body = TokenAnswer::read(answer.body);
    if (answer.status == 400 || answer.status == 401) {
        throw AuthError::refused(body.errorDescription ? *body.errorDescription
                                 : body.error          ? *body.error
                                                       : QStringLiteral("Sign in again."));
    }
    if (answer.status == 200 && body.accessToken && body.refreshToken) {
        if (!usableToken(*body.accessToken) || !usableToken(*body.refreshToken))
            throw CallError::decode(QStringLiteral("the sign-in answer holds a token no request can carry"));
        co_return Tokens{*body.accessToken, *body.refreshToken,
                         now().addMSecs(lifetimeMs(body.expiresIn, defaultLifetimeSeconds))};
    }
    throw CallError::http(answer.status, {});
}

QCoro::Task<> Auth::load()
{
    if (m_loaded)
        co_return;
    if (!m_loading) {
        const SharedTask<bool> loading;
        m_loading = loading;
        loading.run([](Auth* self) -> QCoro::Task<bool> {
            std::optional<Tokens> stored = co_await self->readStored();
            if (!self->m_loaded) // a store() meanwhile is newer than what was read
                self->adopt(std::move(stored));
            self->m_loaded = true;
            co_return true;
        }(this));
    }
    const SharedTask<bool> loading = *m_loading;
    co_await loading.result();
}

template <typename T> QCoro::Task<std::optional<T>> Auth::within(QCoro::Task<T> job)
{
    // The job goes on by itself; this waits for its answer until the
    // deadline. Another job's answer wakes this one too, so it waits on
    // until its own is in.
    QPointer<Auth> self(this);
    auto answer = std::make_shared<std::optional<T>>();
    [](QPointer<Auth> auth, QCoro::Task<T> job, std::shared_ptr<std::optional<T>> into) -> QCoro::Task<> {
        *into = co_await std::move(job);
        if (auth)
            emit auth->storeAnswered();
    }(self, std::move(job), answer);
    const QDeadlineTimer deadline(m_storeDeadline);
    while (!*answer && self && !deadline.hasExpired()) {
        const auto left = std::chrono::milliseconds(std::max<qint64>(1, deadline.remainingTime()));
        co_await qCoro(this, &Auth::storeAnswered, left);
    }
    co_return *answer;
}

QCoro::Task<std::optional<Tokens>> Auth::readStored()
{
    // A failed read or an item that does not decode means signed out. A
    // store that never answers (a hung keyring daemon) means the same once
    // the deadline passes, rather than an endless launch.
    QPointer<Auth> self(this);
    const std::optional<SecretStore::ReadResult> read = co_await within(m_store.read(keychainKey()));
    if (!self)
        co_return std::nullopt;
    if (!read) {
        m_storeProblem = QStringLiteral("The secret store did not answer, so Kestro could not read your "
                                        "sign-in. Check that GNOME Keyring or KWallet is running and "
                                        "unlocked, then sign in.");
        co_return std::nullopt;
    }
    m_storeProblem = read->outcome.description();
    if (!read->data)
        co_return std::nullopt;
    co_return Tokens::fromJson(*read->data);
}

void Auth::adopt(std::optional<Tokens> tokens)
{
    if (tokens) {
        LogRedaction::remember(tokens->access);
        LogRedaction::remember(tokens->refresh);
    }
    const bool changed = m_tokens != tokens;
    m_tokens = std::move(tokens);
    if (changed)
        emit tokensChanged();
}

QCoro::Task<> Auth::store(std::optional<Tokens> tokens)
{
    m_loaded = true;
    adopt(tokens);
    // Write failures are not the caller's problem: the tokens still work for
    // this run, and the store remembers why it failed for whoever asks. A
    // store that does not answer holds up neither sign-in nor sign-out.
    QPointer<Auth> self(this);
    std::optional<SecretStore::Outcome> outcome;
    if (tokens)
        outcome = co_await within(m_store.write(keychainKey(), tokens->toJson()));
    else
        outcome = co_await within(m_store.remove(keychainKey()));
    if (self && !outcome)
        qWarning("The secret store did not answer, so Kestro could not %s your sign-in there.",
                 tokens ? "keep" : "remove");
}

QCoro::Task<> Auth::signOut()
{
    co_await load();
    if (m_tokens) {
        Form form;
        form[QStringLiteral("token")] = m_tokens->refresh;
        form[QStringLiteral("client_id")] = clientId;
        try {
            co_await exchange(
                m_network.post(formRequest(QStringLiteral("api/oauth/revoke")), encodeForm(form)));
        } catch (const std::exception&) {
            // No network: the tokens are forgotten all the same.
        }
    }
    co_await store(std::nullopt);
}

} // namespace Kestro
