#include "ServiceOrigin.h"

#include <cstdio>
#include <cstdlib>

namespace Kestro {

namespace {
std::optional<QUrl>& overrideSlot()
{
    static std::optional<QUrl> slot;
    return slot;
}

[[noreturn]] void stopOnBadOrigin(const QString& source, const QString& value)
{
    const QByteArray message =
        QStringLiteral(
            "Kestro cannot start: %1 holds \"%2\", which is not a web address. Set it to an address "
            "such as https://kestro.app, or remove it.\n")
            .arg(source, value)
            .toUtf8();
    std::fputs(message.constData(), stderr);
    std::exit(EXIT_FAILURE);
}
} // namespace

std::optional<QUrl> ServiceOrigin::parse(const QString& text)
{
    const QUrl url(text.trimmed(), QUrl::StrictMode);
    if (!url.isValid() || url.host().isEmpty() ||
        (url.scheme() != QLatin1String("http") && url.scheme() != QLatin1String("https")))
        return std::nullopt;
    return url;
}

QUrl ServiceOrigin::resolve(const QSettings& settings, const QString& buildSetting, const QString& builtIn)
{
    const QString fromSettings = settings.value(settingsKey).toString();
    if (!fromSettings.isEmpty()) {
        if (const auto url = parse(fromSettings))
            return *url;
        stopOnBadOrigin(QStringLiteral("The setting \"%1\"").arg(settingsKey), fromSettings);
    }
    if (!buildSetting.isEmpty()) {
        if (const auto url = parse(buildSetting))
            return *url;
        stopOnBadOrigin(QStringLiteral("The build setting \"%1\"").arg(settingsKey), buildSetting);
    }
    if (const auto url = parse(builtIn))
        return *url;
    stopOnBadOrigin(QStringLiteral("The built-in service address"), builtIn);
}

QString ServiceOrigin::buildSetting()
{
    return QStringLiteral(KESTRO_BUILD_ORIGIN);
}

QString ServiceOrigin::builtIn()
{
    return QStringLiteral(KESTRO_BUILTIN_ORIGIN);
}

void ServiceOrigin::setOverride(const QUrl& origin)
{
    overrideSlot() = origin;
}

QUrl ServiceOrigin::current()
{
    static const QUrl origin = [] {
        if (overrideSlot())
            return *overrideSlot();
        const QSettings settings(QStringLiteral("Kestro"), QStringLiteral("Kestro"));
        return resolve(settings, buildSetting(), builtIn());
    }();
    return origin;
}

QUrl appendPath(const QUrl& base, const QString& path)
{
    QUrl url = base;
    QString joined = base.path();
    if (!joined.endsWith(QLatin1Char('/')))
        joined += QLatin1Char('/');
    joined += path.startsWith(QLatin1Char('/')) ? path.mid(1) : path;
    url.setPath(joined);
    return url;
}

} // namespace Kestro
