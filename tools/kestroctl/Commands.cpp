#include "Commands.h"

#include "service/ActionCatalog.h"
#include "service/Auth.h"
#include "service/AuthError.h"
#include "service/BlockingWait.h"
#include "service/CallError.h"
#include "service/Client.h"
#include "service/DecodingError.h"
#include "service/SecretStore.h"
#include "service/Wire.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTextStream>

#include <algorithm>
#include <iostream>
#include <string>

namespace Kestroctl {

using namespace Kestro;

namespace {

QTextStream& out()
{
    static QTextStream stream(stdout);
    return stream;
}

QTextStream& err()
{
    static QTextStream stream(stderr);
    return stream;
}

// Says why a sign-in could not be kept, when the secret store is the cause.
void explainSecretStore()
{
    const SecretStore::Outcome failure = Auth::shared().secretStore().lastFailure();
    if (!failure.ok())
        err() << failure.description() << Qt::endl;
}

bool hasDisplay()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

QString printable(const QJsonValue& value)
{
    if (value.isObject())
        return QString::fromUtf8(QJsonDocument(value.toObject()).toJson(QJsonDocument::Indented)).trimmed();
    if (value.isArray())
        return QString::fromUtf8(QJsonDocument(value.toArray()).toJson(QJsonDocument::Indented)).trimmed();
    return QString::fromUtf8(Wire::write(value));
}

int exitCodeFor(const CallError& error)
{
    switch (error.kind()) {
    case CallError::Kind::Http:
        return Http;
    case CallError::Kind::Decode:
        return Decode;
    case CallError::Kind::NotFound:
        return NotFound;
    case CallError::Kind::SignedOut:
        return SignedOut;
    case CallError::Kind::Redirect:
        return Redirect;
    }
    return Failed;
}

} // namespace

int signIn(const Options& options)
{
    Auth& auth = Auth::shared();
    const Authorization authorization = auth.begin(QString(Auth::redirectUri));
    err() << "Open this address in a browser and allow Kestro:" << Qt::endl;
    out() << authorization.url.toString(QUrl::FullyEncoded) << Qt::endl;
    if (options.openBrowser && hasDisplay())
        QProcess::startDetached(QStringLiteral("xdg-open"), {authorization.url.toString(QUrl::FullyEncoded)});
    err() << "Then paste the address the browser was sent to (it begins with kestro://oauth/callback):"
          << Qt::endl;

    std::string line;
    if (!std::getline(std::cin, line) || QString::fromStdString(line).trimmed().isEmpty()) {
        err() << "No sign-in address was given, so nothing changed." << Qt::endl;
        return Failed;
    }
    const QUrl callback(QString::fromStdString(line).trimmed());
    try {
        blockingWait(auth.finish(callback, authorization));
    } catch (const ServiceError& error) {
        err() << error.description() << Qt::endl;
        return Failed;
    }
    out() << "Signed in to " << auth.origin().toString() << "." << Qt::endl;
    const SecretStore::Outcome failure = auth.secretStore().lastFailure();
    if (!failure.ok())
        err() << "The sign-in lasts for this run only. " << failure.description() << Qt::endl;
    return Ok;
}

int signOut()
{
    Auth& auth = Auth::shared();
    blockingWait(auth.signOut());
    out() << "Signed out of " << auth.origin().toString() << "." << Qt::endl;
    return Ok;
}

int call(const QStringList& words)
{
    if (words.size() < 2) {
        err() << "Name the module and the action, for example: kestroctl call kest kestChat" << Qt::endl;
        return Failed;
    }
    QList<JSONValue> args;
    for (qsizetype i = 2; i < words.size(); ++i) {
        if (words[i] == QLatin1String("undefined")) {
            args.append(JSONValue::absent());
            continue;
        }
        try {
            args.append(JSONValue::fromQJsonValue(Wire::parse(words[i].toUtf8())));
        } catch (const JsonSyntaxError& error) {
            err() << "Argument " << (i - 1) << " is not JSON (" << error.detail()
                  << "). Write text in quotes, for example '\"hello\"'." << Qt::endl;
            return Failed;
        }
    }
    // A declared action decodes through its result record and prints the
    // record encoded again, so an answer of the wrong shape fails with its
    // path; an action the catalog does not know prints the answer as it is.
    const auto& catalog = actionCatalog();
    const auto entry = std::find_if(catalog.begin(), catalog.end(), [&](const ActionEntry& e) {
        return e.module == words[0] && e.action == words[1];
    });
    try {
        const QJsonValue value =
            entry != catalog.end()
                ? blockingWait(entry->call(words[0], words[1], args))
                : blockingWait(Client::shared().fetch<JSONValue>(words[0], words[1], args)).toQJsonValue();
        out() << printable(value) << Qt::endl;
        return Ok;
    } catch (const CallError& error) {
        err() << error.description() << Qt::endl;
        if (error.kind() == CallError::Kind::SignedOut) {
            explainSecretStore();
            err() << "Run kestroctl sign-in to sign in." << Qt::endl;
        } else if (error.kind() == CallError::Kind::Http && !error.body().isEmpty()) {
            err() << error.body() << Qt::endl;
        }
        return exitCodeFor(error);
    } catch (const DecodingError& error) {
        err() << CallError::decode(words[0] + "/" + words[1] + ": " + error.description()).description()
              << Qt::endl;
        return Decode;
    } catch (const JsonSyntaxError& error) {
        err() << error.description() << Qt::endl;
        return Decode;
    } catch (const TransportError& error) {
        err() << error.description() << Qt::endl;
        return Transport;
    } catch (const ServiceError& error) {
        err() << error.description() << Qt::endl;
        return Failed;
    }
}

int actions()
{
    // One line per action: module, action, result record.
    for (const ActionEntry& entry : actionCatalog())
        out() << entry.module << ' ' << entry.action << ' ' << entry.result << '\n';
    out().flush();
    return Ok;
}

int usage(bool asError)
{
    QTextStream& stream = asError ? err() : out();
    stream << "Usage: kestroctl [--origin URL] COMMAND\n"
              "\n"
              "Commands:\n"
              "  sign-in [--no-browser]   sign in; paste the kestro://oauth/callback address when asked\n"
              "  sign-out                 revoke and forget this service's sign-in\n"
              "  call MODULE ACTION [ARG ...]\n"
              "                           call an action; each ARG is one JSON value, `undefined`\n"
              "                           leaves an optional argument out; prints the answer's value\n"
              "  actions                  list the actions this build knows\n"
              "\n"
              "--origin URL talks to another service for this run only; the saved\n"
              "\"KestroOrigin\" setting is neither read nor changed.\n"
              "\n"
              "Exit codes of call: 0 done, 1 bad input, 2 HTTP status, 3 answer did not read,\n"
              "4 not found, 5 signed out, 6 redirected, 7 network failure.\n"
           << Qt::flush;
    return asError ? Failed : Ok;
}

} // namespace Kestroctl
