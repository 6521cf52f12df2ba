#pragma once

#include "TestHttpServer.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QSet>

namespace KestroTest {

// The service's sign-in and action endpoints in miniature, for tests of the
// client side: PKCE-checked codes, refresh tokens that rotate, revocation,
// and a per-test handler for actions. Access tokens are "access-<n>".
class FakeService : public QObject {
    Q_OBJECT
public:
    using ActionHandler = std::function<TestHttpServer::Response(
        const QByteArray& module, const QByteArray& action, const QJsonValue& args,
        const TestHttpServer::Request& request)>;

    explicit FakeService(QObject* parent = nullptr);

    bool start() { return server.listen(); }
    QUrl origin() const { return server.origin(); }

    // Issues a code for a sign-in the way the consent page would; answers
    // the callback address the browser would be sent to.
    QUrl approve(const QUrl& authorizeUrl);
    // Makes a fresh token pair that the service accepts.
    QPair<QString, QString> issueTokens();

    void setActionHandler(ActionHandler handler) { m_actions = std::move(handler); }
    // Answers GET requests for other paths (files of the service), when set.
    using FileHandler = std::function<TestHttpServer::Response(const TestHttpServer::Request& request)>;
    void setFileHandler(FileHandler handler) { m_files = std::move(handler); }
    bool isValidAccess(const QByteArray& token) const { return m_access.contains(QString::fromUtf8(token)); }
    void expireAccess(const QString& token) { m_access.remove(token); }

    int tokenRequests = 0;
    int revocations = 0;
    std::optional<double> expiresIn = 3600; // absent: the answer leaves it out
    int tokenDelayMs = 0;
    int tokenStatus = 0; // non-zero: every token request answers this status
    TestHttpServer server;

private:
    TestHttpServer::Response handle(const TestHttpServer::Request& request);
    TestHttpServer::Response token(const TestHttpServer::Request& request);
    TestHttpServer::Response issue();

    struct Grant {
        QString challenge;
        QString redirect;
    };
    QHash<QString, Grant> m_codes;
    QSet<QString> m_access;
    QSet<QString> m_refresh;
    int m_counter = 0;
    ActionHandler m_actions;
    FileHandler m_files;
};

// Answers {"value": value} with optional extra members beside it.
TestHttpServer::Response jsonAnswer(const QJsonValue& value, const QJsonObject& effects = {});

} // namespace KestroTest
