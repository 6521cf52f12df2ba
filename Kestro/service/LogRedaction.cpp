#include "LogRedaction.h"

#include <QMutex>
#include <QRegularExpression>
#include <QSet>

#include <cstdio>

namespace Kestro::LogRedaction {

namespace {

QMutex& mutex()
{
    static QMutex m;
    return m;
}

QSet<QString>& secrets()
{
    static QSet<QString> s;
    return s;
}

QtMessageHandler& previousHandler()
{
    static QtMessageHandler handler = nullptr;
    return handler;
}

void handler(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (QtMessageHandler previous = previousHandler())
        previous(type, context, redact(message));
    else
        fprintf(stderr, "%s\n", qPrintable(redact(message)));
}

} // namespace

void remember(const QString& secret)
{
    if (secret.size() < 8)
        return; // too short to be a token; hiding it would mangle ordinary words
    QMutexLocker lock(&mutex());
    secrets().insert(secret);
}

QString redact(QString line)
{
    {
        QMutexLocker lock(&mutex());
        for (const QString& secret : std::as_const(secrets()))
            line.replace(secret, QLatin1String("[redacted]"));
    }
    static const QRegularExpression bearer(QStringLiteral(R"((Bearer\s+)[A-Za-z0-9._~+/=-]+)"),
                                           QRegularExpression::CaseInsensitiveOption);
    // A name standing alone ("code=", not "zipcode="), then its value in a
    // query, a form, a cookie or JSON.
    static const QRegularExpression named(QString::fromLatin1(
        R"re(((?<![A-Za-z0-9_-])(?:access_token|refresh_token|code_verifier|code|token|__Host-kestro_app_token|kestro_app_token|"access"|"refresh")"?\s*[=:]\s*"?)[^"&;\s,}]+)re"));
    if (!bearer.isValid() || !named.isValid())
        qFatal("The log redaction patterns do not compile.");
    line.replace(bearer, QStringLiteral("\\1[redacted]"));
    line.replace(named, QStringLiteral("\\1[redacted]"));
    return line;
}

void install()
{
    static bool installed = false;
    if (installed)
        return;
    installed = true;
    previousHandler() = qInstallMessageHandler(handler);
}

} // namespace Kestro::LogRedaction
