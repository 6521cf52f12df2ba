// Web analytics for the demo site: the dashboard and breakdowns, from
// deterministic numbers so every run shows the same figures.

#include "Actions.h"

#include <cmath>

namespace devservice {

namespace {

// Referrer hosts that cover each kind of traffic source the client knows:
// AI assistants, webmail, search engines (with country suffixes), social
// networks, and hosts that are no known source at all.
const char* const referrers[] = {"chatgpt.com",
                                 "chat.openai.com",
                                 "perplexity.ai",
                                 "claude.ai",
                                 "gemini.google.com",
                                 "copilot.microsoft.com",
                                 "grok.com",
                                 "chat.deepseek.com",
                                 "meta.ai",
                                 "chat.mistral.ai",
                                 "you.com",
                                 "phind.com",
                                 "mail.google.com",
                                 "outlook.live.com",
                                 "mail.yahoo.com",
                                 "www.google.com",
                                 "google.co.uk",
                                 "www.bing.com",
                                 "duckduckgo.com",
                                 "search.yahoo.com",
                                 "search.brave.com",
                                 "www.ecosia.org",
                                 "yandex.ru",
                                 "www.baidu.com",
                                 "www.startpage.com",
                                 "www.qwant.com",
                                 "x.com",
                                 "t.co",
                                 "www.facebook.com",
                                 "l.facebook.com",
                                 "m.facebook.com",
                                 "www.linkedin.com",
                                 "lnkd.in",
                                 "www.reddit.com",
                                 "news.ycombinator.com",
                                 "github.com",
                                 "blog.northwind.example",
                                 "partner-shop.example"};

const char* const countries[] = {"DE", "US", "GB", "FR", "SE", "NL", "CH", "AT", "ES", "IT"};
const char* const devices[] = {"desktop", "mobile", "tablet"};
const char* const browsers[] = {"Chrome", "Safari", "Firefox", "Edge", "Samsung Internet", "Opera", "Brave"};
const char* const systems[] = {"Windows", "macOS", "iOS", "Android", "Linux", "ChromeOS"};
const char* const languages[] = {"en-US", "de-DE", "en-GB", "fr-FR", "sv-SE", "nl-NL"};
const char* const screens[] = {"1920x1080", "1440x900", "390x844", "2560x1440", "1366x768"};

json siteOf(ActionContext& ctx, const json& args)
{
    const std::string siteId = text(args, 0, "siteId");
    const auto site = ctx.own("site", siteId);
    if (!site)
        throw RequestError(404, "There is no site " + siteId + ".");
    return *site;
}

json sites(ActionContext& ctx, const json&)
{
    json list = json::array();
    for (const json& site : ctx.service.store.list("site", ctx.caller.workspace))
        list.push_back(site);
    return {{"sites", list}, {"canManage", ctx.caller.canWrite()}};
}

json dashboard(ActionContext& ctx, const json& args)
{
    const json site = siteOf(ctx, args);
    const json range = given(args, 1) ? args[1] : json{{"days", 7}};
    const int days = range.is_object() && range.contains("days") && range["days"].is_number()
                         ? range["days"].get<int>()
                         : 7;
    json series = json::array();
    double visitors = 0, visits = 0, pageviews = 0;
    const double today = std::floor(now() / 86400) * 86400;
    for (int d = days - 1; d >= 0; --d) {
        const double day = today - d * 86400.0;
        const unsigned h = stableHash(site["siteId"].get<std::string>() + std::to_string(int(day)));
        const double v = 180 + h % 90, s = v * 1.3, p = s * 2.4;
        visitors += v;
        visits += s;
        pageviews += p;
        series.push_back({{"at", iso(day)}, {"visitors", v}, {"visits", s}, {"pageviews", std::round(p)}});
    }
    return {{"range", range},
            {"site", site},
            {"totals",
             {{"visitors", visitors},
              {"visits", visits},
              {"pageviews", std::round(pageviews)},
              {"bounceRate", 0.42},
              {"duration", 94.5}}},
            {"series", series},
            {"live", 3 + stableHash(isoNow().substr(0, 16)) % 9}};
}

json settings(ActionContext& ctx, const json& args)
{
    return {{"site", siteOf(ctx, args)}, {"canManage", ctx.caller.canWrite()}};
}

json breakdown(ActionContext& ctx, const json& args)
{
    const json site = siteOf(ctx, args);
    const std::string kind = text(args, 1, "kind");
    std::vector<std::string> values;
    auto take = [&](auto& list) {
        for (const char* v : list)
            values.emplace_back(v);
    };
    if (kind == "referrer" || kind == "source")
        take(referrers);
    else if (kind == "country")
        take(countries);
    else if (kind == "device")
        take(devices);
    else if (kind == "browser")
        take(browsers);
    else if (kind == "os")
        take(systems);
    else if (kind == "language")
        take(languages);
    else if (kind == "screen")
        take(screens);
    else if (kind == "exit")
        values = {"https://github.com/northwind", "https://x.com/northwind",
                  "mailto:hello@northwind.example"};
    else
        return {{"kind", kind}, {"rows", json::array()}, {"total", 0}, {"others", 0}};
    json rows = json::array();
    double total = 0;
    std::vector<double> counts;
    for (const std::string& value : values) {
        const double n = 5 + stableHash(site["siteId"].get<std::string>() + kind + value) % 400;
        counts.push_back(n);
        total += n;
    }
    for (size_t i = 0; i < values.size(); ++i) {
        json row = {{"value", values[i]},
                    {"visitors", counts[i]},
                    {"visits", std::round(counts[i] * 1.2)},
                    {"share", counts[i] / total}};
        if (kind == "country")
            row["label"] = values[i];
        rows.push_back(row);
    }
    return {{"kind", kind}, {"rows", rows}, {"total", total}, {"others", 0}};
}

} // namespace

void addAnalyticsActions(ActionTable& table)
{
    table["analytics/sites"] = sites;
    table["analytics/dashboard"] = dashboard;
    table["analytics/settings"] = settings;
    table["app/analyticsBreakdownAction"] = breakdown;
}

} // namespace devservice
