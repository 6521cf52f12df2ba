#include "WebPolicy.h"

#include "WebScripts.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace Kestro::WebPolicy {

bool sameHost(const QUrl& a, const QUrl& b)
{
    return a.host(QUrl::FullyEncoded) == b.host(QUrl::FullyEncoded);
}

Decision decide(const QUrl& origin, const QUrl& url, bool mainFrame, bool linkClicked, bool newWindow)
{
    if (url.isEmpty())
        return Decision::Cancel;
    const QString scheme = url.scheme();
    if (scheme == QLatin1String("about") || scheme == QLatin1String("blob") ||
        scheme == QLatin1String("data"))
        return Decision::Allow;
    if (sameHost(url, origin)) {
        if (newWindow || !mainFrame || !linkClicked)
            return Decision::Allow;
        return Decision::Route;
    }
    if (!mainFrame && !newWindow)
        return Decision::Allow;
    return Decision::Browser;
}

Decision decideWindow(const QUrl& origin, const QUrl& url, bool userInitiated)
{
    if (!userInitiated)
        return Decision::Cancel;
    const Decision decision = decide(origin, url, true, true, true);
    return decision == Decision::Allow ? Decision::Route : decision;
}

bool opensOutside(const QUrl& url)
{
    const QString scheme = url.scheme();
    return url.isValid() && (scheme == QLatin1String("http") || scheme == QLatin1String("https") ||
                             scheme == QLatin1String("mailto"));
}

bool isSignInLanding(const QUrl& url)
{
    const QString path = url.path();
    return path == QLatin1String("/login") || path == QLatin1String("/signup");
}

std::optional<Message> readMessage(const QString& json, const QUrl& sender, const QUrl& origin)
{
    if (!sameHost(sender, origin))
        return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(json.toUtf8());
    if (!document.isObject())
        return std::nullopt;
    const QJsonObject body = document.object();
    const QJsonValue kind = body.value(QLatin1String("kind"));
    if (!kind.isString())
        return std::nullopt;
    if (kind.toString() == QLatin1String("title")) {
        const QJsonValue title = body.value(QLatin1String("title"));
        if (!title.isString())
            return std::nullopt;
        return Message{Message::Kind::Title, WebScripts::pageTitle(title.toString())};
    }
    if (kind.toString() == QLatin1String("open")) {
        const QJsonValue path = body.value(QLatin1String("path"));
        if (!path.isString())
            return std::nullopt;
        const QString text = path.toString();
        if (!text.startsWith(QLatin1Char('/')) || text.startsWith(QLatin1String("//")))
            return std::nullopt;
        return Message{Message::Kind::Open, text};
    }
    if (kind.toString() == QLatin1String("changed"))
        return Message{Message::Kind::Changed, {}};
    return std::nullopt; // "replay" belongs to the replay player; others are not ours
}

} // namespace Kestro::WebPolicy
