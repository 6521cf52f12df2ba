#include "Client.h"

#include "Auth.h"
#include "HttpExchange.h"
#include "ServiceOrigin.h"
#include "UserAgent.h"
#include "Wire.h"

#include <QLocale>
#include <QNetworkCookie>
#include <QNetworkReply>
#include <QUuid>

#include <cmath>

namespace Kestro {

namespace {
Client* replacement = nullptr;
}

Client& Client::shared()
{
    if (replacement)
        return *replacement;
    static Client* client = new Client(ServiceOrigin::current(), Auth::shared());
    return *client;
}

void Client::setShared(Client* client)
{
    replacement = client;
}

Client::Client(QUrl origin, Auth& auth, QObject* parent)
    : QObject(parent), m_origin(std::move(origin)), m_auth(auth), m_cookies(new CookieStore(&m_network)),
      m_languages(QLocale::system().uiLanguages()), m_clock([] { return QDateTime::currentDateTimeUtc(); })
{
    m_network.setCookieJar(m_cookies);
    m_network.setTransferTimeout(60'000);
    // A redirect is an answer (an HTTP status like any other of 300 and
    // up): followed, it would carry the bearer token to another origin.
    m_network.setRedirectPolicy(QNetworkRequest::ManualRedirectPolicy);
}

QUrl Client::actionUrl(const QString& module, const QString& action) const
{
    return appendPath(m_origin, QStringLiteral("api/app/") + module + QLatin1Char('/') + action);
}

QNetworkRequest Client::actionRequest(const QString& module, const QString& action,
                                      const QString& token) const
{
    QNetworkRequest request(actionUrl(module, action));
    request.setTransferTimeout(60'000);
    request.setRawHeader("Content-Type", "application/json");
    request.setRawHeader("Authorization", "Bearer " + token.toUtf8());
    request.setRawHeader("Accept-Language", m_languages.mid(0, 3).join(QLatin1Char(',')).toUtf8());
    request.setRawHeader("X-Request-Id", QUuid::createUuid().toByteArray(QUuid::WithoutBraces).toLower());
    request.setRawHeader("User-Agent", clientUserAgent());
    return request;
}

QCoro::Task<QByteArray> Client::call(QString module, QString action, QList<JSONValue> args, bool retry)
{
    const QJsonValue answer =
        co_await callAnswer(std::move(module), std::move(action), std::move(args), retry);
    co_return Wire::write(Wire::unwire(answer));
}

QCoro::Task<QJsonValue> Client::callAnswer(QString module, QString action, QList<JSONValue> args, bool retry)
{
    const std::optional<QString> token = co_await m_auth.accessToken();
    if (!token) {
        appSignOut();
        throw CallError::signedOut();
    }

    QJsonArray argList;
    for (const JSONValue& arg : args)
        argList.append(arg.toQJsonValue());
    const QByteArray body = Wire::write(QJsonObject{{QStringLiteral("args"), argList}});

    const HttpAnswer answer = co_await exchange(m_network.post(actionRequest(module, action, *token), body));

    if (answer.status == 401) {
        if (!retry) {
            appSignOut();
            throw CallError::signedOut();
        }
        co_await m_auth.refresh(*token);
        co_return co_await callAnswer(module, action, args, false);
    }
    if (answer.status < 200 || answer.status > 299)
        throw CallError::http(answer.status, QString::fromUtf8(answer.body.left(500)));

    const QJsonValue value = Wire::parse(answer.body);
    const CallEffects effects = decodeValue<CallEffects>(value);

    if (effects.redirectsToSignIn()) {
        if (retry) {
            co_await m_auth.refresh(*token);
            co_return co_await callAnswer(module, action, args, false);
        }
        appSignOut();
        throw CallError::signedOut();
    }
    if (effects.cookies) {
        for (const CallEffects::Cookie& cookie : *effects.cookies)
            applyCookie(cookie);
    }
    if (effects.revalidate && !effects.revalidate->isEmpty() && m_app)
        m_app->restartDataRefresh();
    if (effects.redirect) {
        if (m_app) {
            if (effects.redirect->startsWith(QLatin1String("/setup")))
                m_app->startSetup(*effects.redirect);
            else
                m_app->openAppPath(*effects.redirect);
        }
        throw CallError::redirect(*effects.redirect);
    }
    if (effects.notFound.value_or(false))
        throw CallError::notFound();
    co_return value;
}

QCoro::Task<QByteArray> Client::download(QString path, bool retry)
{
    const std::optional<QString> token = co_await m_auth.accessToken();
    if (!token) {
        appSignOut();
        throw CallError::signedOut();
    }
    QUrl url = m_origin;
    url.setPath(QString(), QUrl::TolerantMode);
    url = url.resolved(QUrl(path));
    if (url.host() != m_origin.host())
        throw CallError::notFound(); // only the service's own files carry the token
    QNetworkRequest request(url);
    request.setTransferTimeout(60'000);
    request.setRawHeader("Authorization", "Bearer " + token->toUtf8());
    request.setRawHeader("User-Agent", clientUserAgent());
    const HttpAnswer answer = co_await exchange(m_network.get(request));
    if (answer.status == 401) {
        if (!retry) {
            appSignOut();
            throw CallError::signedOut();
        }
        co_await m_auth.refresh(*token);
        co_return co_await download(path, false);
    }
    if (answer.status < 200 || answer.status > 299)
        throw CallError::http(answer.status, QString::fromUtf8(answer.body.left(500)));
    co_return answer.body;
}

void Client::applyCookie(const CallEffects::Cookie& cookie)
{
    const JSONValue& options = cookie.options.value_or(JSONValue());
    const JSONValue& maxAge = options[QStringLiteral("maxAge")];
    const bool hasMaxAge = maxAge.kind() == JSONValue::Kind::Number;
    if (cookie.value.isEmpty() || (hasMaxAge && !(maxAge.toNumber() > 0))) {
        m_cookies->removeNamed(cookie.name);
        return;
    }
    QNetworkCookie made(cookie.name.toUtf8(), cookie.value.toUtf8());
    if (made.name().isEmpty())
        return; // a cookie without a name cannot be made
    made.setDomain(m_origin.host());
    const JSONValue& path = options[QStringLiteral("path")];
    made.setPath(path.kind() == JSONValue::Kind::String ? path.toString() : QStringLiteral("/"));
    made.setSecure(m_origin.scheme() == QLatin1String("https"));
    if (hasMaxAge) {
        // Qt's cookies carry an expiry date rather than a maximum age.
        const double seconds = std::trunc(std::min(maxAge.toNumber(), 1e12));
        made.setExpirationDate(m_clock().addSecs(qint64(seconds)));
    }
    m_cookies->put(made);
}

void Client::appSignOut()
{
    if (m_app)
        m_app->signOutFromService();
}

} // namespace Kestro
