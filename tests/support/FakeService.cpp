#include "FakeService.h"

#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrlQuery>

namespace KestroTest {

namespace {

TestHttpServer::Response oauthError(int status, const QString& error, const QString& description = {})
{
    QJsonObject body{{QStringLiteral("error"), error}};
    if (!description.isEmpty())
        body.insert(QStringLiteral("error_description"), description);
    return {status, QJsonDocument(body).toJson(QJsonDocument::Compact)};
}

} // namespace

TestHttpServer::Response jsonAnswer(const QJsonValue& value, const QJsonObject& effects)
{
    QJsonObject object = effects;
    object.insert(QStringLiteral("value"), value);
    return {200, QJsonDocument(object).toJson(QJsonDocument::Compact)};
}

FakeService::FakeService(QObject* parent) : QObject(parent)
{
    server.setHandler([this](const TestHttpServer::Request& request) { return handle(request); });
}

QUrl FakeService::approve(const QUrl& authorizeUrl)
{
    const QUrlQuery query(authorizeUrl);
    const QString code = QStringLiteral("code-%1").arg(++m_counter);
    m_codes.insert(code, {query.queryItemValue(QStringLiteral("code_challenge")),
                          query.queryItemValue(QStringLiteral("redirect_uri"), QUrl::FullyDecoded)});
    QUrl callback(query.queryItemValue(QStringLiteral("redirect_uri"), QUrl::FullyDecoded));
    QUrlQuery back;
    back.addQueryItem(QStringLiteral("code"), code);
    back.addQueryItem(QStringLiteral("state"), query.queryItemValue(QStringLiteral("state")));
    callback.setQuery(back);
    return callback;
}

QPair<QString, QString> FakeService::issueTokens()
{
    ++m_counter;
    const QString access = QStringLiteral("access-%1-abcdef").arg(m_counter);
    const QString refresh = QStringLiteral("refresh-%1-abcdef").arg(m_counter);
    m_access.insert(access);
    m_refresh.insert(refresh);
    return {access, refresh};
}

TestHttpServer::Response FakeService::issue()
{
    const auto [access, refresh] = issueTokens();
    QJsonObject body{{QStringLiteral("access_token"), access},
                     {QStringLiteral("refresh_token"), refresh},
                     {QStringLiteral("token_type"), QStringLiteral("Bearer")}};
    if (expiresIn)
        body.insert(QStringLiteral("expires_in"), *expiresIn);
    TestHttpServer::Response response{200, QJsonDocument(body).toJson(QJsonDocument::Compact)};
    response.delayMs = tokenDelayMs;
    return response;
}

TestHttpServer::Response FakeService::token(const TestHttpServer::Request& request)
{
    ++tokenRequests;
    if (tokenStatus != 0)
        return {tokenStatus, "<html>busy</html>", "text/html"};
    const QUrlQuery form(QString::fromUtf8(request.body));
    auto value = [&](const char* name) {
        return form.queryItemValue(QString::fromLatin1(name), QUrl::FullyDecoded);
    };
    if (value("client_id") != QLatin1String("kestro-mac"))
        return oauthError(400, QStringLiteral("invalid_client"));
    const QString grant = value("grant_type");
    if (grant == QLatin1String("authorization_code")) {
        const auto it = m_codes.constFind(value("code"));
        if (it == m_codes.constEnd())
            return oauthError(400, QStringLiteral("invalid_grant"),
                              QStringLiteral("The sign-in code expired."));
        const QString expected = QString::fromLatin1(
            QCryptographicHash::hash(value("code_verifier").toUtf8(), QCryptographicHash::Sha256)
                .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
        if (expected != it->challenge || value("redirect_uri") != it->redirect)
            return oauthError(400, QStringLiteral("invalid_grant"),
                              QStringLiteral("The sign-in did not match."));
        m_codes.erase(it);
        return issue();
    }
    if (grant == QLatin1String("refresh_token")) {
        if (!m_refresh.remove(value("refresh_token")))
            return oauthError(400, QStringLiteral("invalid_grant"));
        return issue();
    }
    return oauthError(400, QStringLiteral("unsupported_grant_type"));
}

TestHttpServer::Response FakeService::handle(const TestHttpServer::Request& request)
{
    const QByteArray path = request.path();
    if (path == "/api/oauth/token")
        return token(request);
    if (path == "/api/oauth/revoke") {
        ++revocations;
        const QUrlQuery form(QString::fromUtf8(request.body));
        m_refresh.remove(form.queryItemValue(QStringLiteral("token"), QUrl::FullyDecoded));
        return {200, "{}"};
    }
    if (path.startsWith("/api/app/")) {
        const QList<QByteArray> parts = path.mid(9).split('/');
        const QByteArray auth = request.header("authorization");
        if (!auth.startsWith("Bearer ") || !isValidAccess(auth.mid(7)))
            return {401, R"({"error":"unauthorized"})"};
        const QJsonValue args = QJsonDocument::fromJson(request.body).object().value(QStringLiteral("args"));
        if (m_actions)
            return m_actions(parts.value(0), parts.value(1), args, request);
        return jsonAnswer(QJsonObject{{QStringLiteral("module"), QString::fromUtf8(parts.value(0))},
                                      {QStringLiteral("action"), QString::fromUtf8(parts.value(1))},
                                      {QStringLiteral("args"), args}});
    }
    if (m_files && request.method == "GET") {
        const QByteArray auth = request.header("authorization");
        if (!auth.startsWith("Bearer ") || !isValidAccess(auth.mid(7)))
            return {401, "{}"};
        return m_files(request);
    }
    return {404, R"({"error":"no such path"})"};
}

} // namespace KestroTest
