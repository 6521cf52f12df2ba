#include "AnalyticsFormat.h"

#include <QHash>
#include <QList>
#include <QRegularExpression>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace Kestro::AnalyticsFormat {

namespace {

QRegularExpression compiled(const QString& pattern)
{
    QRegularExpression re(pattern, QRegularExpression::UseUnicodePropertiesOption);
    if (!re.isValid())
        qFatal("The analytics pattern %s does not compile: %s", qPrintable(pattern),
               qPrintable(re.errorString()));
    return re;
}

// One expression per source over its space-separated domains. Each domain
// is accepted bare or under any subdomain, so it must follow the start of
// the host or a dot: "t.co" is X's shortener, "microsoft.co" is not. A
// domain written "name.*" is the same name under any suffix, letters and
// dots, so two-part country suffixes ("google.co.uk") count as well.
QRegularExpression hostPattern(const char* domains)
{
    QStringList alternatives;
    for (const QString& domain : QString::fromLatin1(domains).split(u' ', Qt::SkipEmptyParts)) {
        if (domain.endsWith(QLatin1String(".*")))
            alternatives.append(QRegularExpression::escape(domain.chopped(2)) + u"\\.[a-z.]+"_s);
        else
            alternatives.append(QRegularExpression::escape(domain));
    }
    return compiled(u"(?:^|\\.)(?:"_s + alternatives.join(u'|') + u")$"_s);
}

struct Source {
    TrafficSource source;
    QRegularExpression hosts;
};

// Tested in order, the first match wins. The webmail rows come before the
// search engines of the same companies (Gmail before the catch-all Google,
// Yahoo Mail before Yahoo) so that a visit from a mailbox counts as email;
// Gemini likewise sits above Google.
const QList<Source>& sources()
{
    static const QList<Source> table = [] {
        struct Row {
            const char* name;
            const char* kind;
            const char* iconHost;
            const char* domains;
        };
        const Row rows[] = {
            {"ChatGPT", "ai", "chatgpt.com", "chatgpt.com chat.openai.com openai.com"},
            {"Perplexity", "ai", "perplexity.ai", "perplexity.ai"},
            {"Claude", "ai", "claude.ai", "claude.ai"},
            {"Gemini", "ai", "gemini.google.com", "gemini.google.com bard.google.com"},
            {"Copilot", "ai", "copilot.microsoft.com", "copilot.microsoft.com"},
            {"Grok", "ai", "grok.com", "grok.com"},
            {"DeepSeek", "ai", "deepseek.com", "deepseek.com"},
            {"Meta AI", "ai", "meta.ai", "meta.ai"},
            {"Mistral", "ai", "mistral.ai", "chat.mistral.ai"},
            {"You.com", "ai", "you.com", "you.com"},
            {"Phind", "ai", "phind.com", "phind.com"},
            {"Gmail", "email", "gmail.com", "mail.google.com"},
            {"Outlook", "email", "outlook.com", "outlook.live.com outlook.office.com outlook.office365.com"},
            {"Yahoo Mail", "email", "yahoo.com", "mail.yahoo.com"},
            {"Google", "search", "google.com", "google.*"},
            {"Bing", "search", "bing.com", "bing.com"},
            {"DuckDuckGo", "search", "duckduckgo.com", "duckduckgo.com"},
            {"Yahoo", "search", "yahoo.com", "search.yahoo.com yahoo.com"},
            {"Brave Search", "search", "brave.com", "search.brave.com"},
            {"Ecosia", "search", "ecosia.org", "ecosia.org"},
            {"Yandex", "search", "yandex.com", "yandex.*"},
            {"Baidu", "search", "baidu.com", "baidu.com"},
            {"Startpage", "search", "startpage.com", "startpage.com"},
            {"Qwant", "search", "qwant.com", "qwant.com"},
            {"X", "social", "x.com", "x.com twitter.com t.co"},
            {"Facebook", "social", "facebook.com",
             "facebook.com fb.com fb.me m.facebook.com l.facebook.com lm.facebook.com"},
            {"Instagram", "social", "instagram.com", "instagram.com l.instagram.com"},
            {"LinkedIn", "social", "linkedin.com", "linkedin.com lnkd.in"},
            {"Reddit", "social", "reddit.com", "reddit.com redd.it"},
            {"YouTube", "social", "youtube.com", "youtube.com youtu.be"},
            {"TikTok", "social", "tiktok.com", "tiktok.com"},
            {"Pinterest", "social", "pinterest.com", "pinterest.* pin.it"},
            {"Threads", "social", "threads.com", "threads.net threads.com"},
            {"Bluesky", "social", "bsky.app", "bsky.app"},
            {"Hacker News", "social", "news.ycombinator.com", "news.ycombinator.com"},
            {"Product Hunt", "social", "producthunt.com", "producthunt.com"},
            {"Discord", "social", "discord.com", "discord.com discord.gg discordapp.com"},
            {"Telegram", "social", "telegram.org", "t.me telegram.org web.telegram.org"},
            {"WhatsApp", "social", "whatsapp.com", "whatsapp.com wa.me"},
            {"Mastodon", "social", "mastodon.social", "mastodon.social"},
            {"Medium", "social", "medium.com", "medium.com"},
            {"Substack", "social", "substack.com", "substack.com"},
            {"Indie Hackers", "social", "indiehackers.com", "indiehackers.com"},
        };
        QList<Source> out;
        out.reserve(std::size(rows));
        for (const Row& row : rows)
            out.append({{QString::fromLatin1(row.name), QString::fromLatin1(row.kind),
                         QString::fromLatin1(row.iconHost)},
                        hostPattern(row.domains)});
        return out;
    }();
    return table;
}

bool isMissing(const QString& value)
{
    return value.isEmpty() || value == QLatin1String("(none)");
}

// Links read better as the bare host and path people type. Schemes and host
// names are case-insensitive, so "HTTPS://WWW." goes too.
QString bareLink(QString text)
{
    for (const QLatin1String scheme : {QLatin1String("https://"), QLatin1String("http://")}) {
        if (text.startsWith(scheme, Qt::CaseInsensitive)) {
            text.remove(0, scheme.size());
            break;
        }
    }
    if (text.startsWith(QLatin1String("www."), Qt::CaseInsensitive))
        text.remove(0, 4);
    if (text.endsWith(u'/'))
        text.chop(1);
    return text;
}

} // namespace

std::optional<TrafficSource> trafficSource(const QString& host)
{
    // The expressions are lower-case; referrers arrive as the browser sent
    // them.
    const QString lower = host.toLower();
    if (lower.isEmpty())
        return std::nullopt;
    for (const Source& row : sources())
        if (row.hosts.match(lower).hasMatch())
            return row.source;
    return std::nullopt;
}

QString browserIconHost(const QString& browser)
{
    static const QHash<QString, QString> hosts = {
        {u"Chrome"_s, u"google.com"_s},     {u"Safari"_s, u"apple.com"_s},
        {u"Firefox"_s, u"mozilla.org"_s},   {u"Edge"_s, u"microsoftedge.microsoft.com"_s},
        {u"Opera"_s, u"opera.com"_s},       {u"Samsung Internet"_s, u"samsung.com"_s},
        {u"Yandex"_s, u"yandex.com"_s},     {u"UC Browser"_s, u"ucweb.com"_s},
        {u"Vivo Browser"_s, u"vivo.com"_s}, {u"Instagram"_s, u"instagram.com"_s},
        {u"Facebook"_s, u"facebook.com"_s}, {u"LinkedIn"_s, u"linkedin.com"_s},
        {u"Twitter"_s, u"x.com"_s},         {u"WeChat"_s, u"wechat.com"_s},
    };
    return hosts.value(browser);
}

QString osIconHost(const QString& os)
{
    static const QHash<QString, QString> hosts = {
        {u"Windows"_s, u"windows.com"_s}, {u"Mac OS"_s, u"apple.com"_s},     {u"iOS"_s, u"apple.com"_s},
        {u"Android"_s, u"android.com"_s}, {u"Chrome OS"_s, u"chrome.com"_s}, {u"Linux"_s, u"kernel.org"_s},
    };
    return hosts.value(os);
}

QString iconPath(const QString& host)
{
    return u"api/icons/"_s + host;
}

QString flagPath(const QString& countryCode)
{
    return u"api/flags/"_s + countryCode;
}

QString displayLabel(const QString& dimension, const QString& value)
{
    const bool referrer = dimension == QLatin1String("referrer") || dimension == QLatin1String("referrers");
    const bool link = referrer || dimension == QLatin1String("exit_links");
    const QString missing = referrer ? u"Direct/None"_s : u"Unknown"_s;
    if (isMissing(value))
        return missing;
    if (!link)
        return value;
    // A link of nothing but a scheme and "www." would otherwise show as a
    // blank row.
    const QString bare = bareLink(value);
    return bare.isEmpty() ? missing : bare;
}

bool isValidHostName(const QString& name)
{
    static const QRegularExpression hostName =
        compiled(u"^(?=.{3,253}$)([a-z0-9](?:[a-z0-9-]{0,61}[a-z0-9])?\\.)+[a-z]{2,63}$"_s);
    // "$" also matches before a final newline; a pasted name must not carry
    // one into the site's settings.
    const QRegularExpressionMatch match = hostName.match(name);
    return match.hasMatch() && match.capturedLength() == name.size();
}

} // namespace Kestro::AnalyticsFormat
