// Web analytics for the demo sites: five months of traffic that grows,
// dips at weekends and spiked once (a post on Hacker News), and the
// breakdowns of it. Every figure is a function of the site and the day, so
// every run shows the same numbers and a range always adds up.

#include "Actions.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <regex>

namespace devservice {

namespace {

constexpr double day = 86400;
constexpr int historyDays = 150; // the sites have counted this long
constexpr int spikeAge = 18;     // days ago the launch post did well

// A value of a breakdown and its weight among its kind.
struct Share {
    const char* value;
    double weight;
    const char* label = nullptr;
};

// Referrer hosts covering each kind of traffic source the client knows (AI
// assistants, webmail, search engines with country suffixes, social
// networks), hosts that are no known source, and no referrer at all.
const Share referrers[] = {
    {"", 30},
    {"https://www.google.com/", 24},
    {"https://news.ycombinator.com/", 9},
    {"https://chatgpt.com/", 6},
    {"https://www.google.co.uk/", 4},
    {"https://www.bing.com/", 3.5},
    {"https://duckduckgo.com/", 3},
    {"https://www.linkedin.com/", 3},
    {"https://t.co/", 2.6},
    {"https://x.com/", 2.2},
    {"https://www.reddit.com/", 2.1},
    {"https://perplexity.ai/", 1.9},
    {"https://mail.google.com/", 1.7},
    {"https://claude.ai/", 1.4},
    {"https://github.com/", 1.4},
    {"https://l.facebook.com/", 1.1},
    {"https://outlook.live.com/", 0.9},
    {"https://search.brave.com/", 0.8},
    {"https://www.ecosia.org/", 0.7},
    {"https://gemini.google.com/", 0.7},
    {"https://blog.northwind.example/", 0.6},
    {"https://copilot.microsoft.com/", 0.5},
    {"https://yandex.ru/", 0.4},
    {"https://mail.yahoo.com/", 0.4},
    {"https://search.yahoo.com/", 0.35},
    {"https://www.producthunt.com/", 0.35},
    {"https://partner-shop.example/", 0.3},
    {"https://lnkd.in/", 0.3},
    {"https://m.facebook.com/", 0.25},
    {"https://www.youtube.com/", 0.25},
    {"https://bsky.app/", 0.2},
    {"https://mastodon.social/", 0.15},
    {"https://www.baidu.com/", 0.1},
};
const Share pages[] = {
    {"/", 40},
    {"/pricing", 14},
    {"/blog/how-we-ship-on-fridays", 11},
    {"/features/scheduling", 7},
    {"/docs/getting-started", 6},
    {"/changelog", 4},
    {"/about", 3},
    {"/blog/spring-collection", 2.5},
    {"/careers", 1.5},
    {"/legal/privacy", 0.6},
};
const Share countries[] = {
    {"DE", 22, "Germany"},
    {"US", 21, "United States"},
    {"GB", 11, "United Kingdom"},
    {"FR", 7, "France"},
    {"NL", 6, "Netherlands"},
    {"SE", 4.5, "Sweden"},
    {"CH", 4, "Switzerland"},
    {"AT", 3.5, "Austria"},
    {"ES", 3, "Spain"},
    {"IT", 2.8, "Italy"},
    {"CA", 2.5, "Canada"},
    {"IN", 2.2, "India"},
    {"", 0.8},
};
const Share devices[] = {{"Desktop", 58}, {"Mobile", 37}, {"Tablet", 5}};
const Share browsers[] = {{"Chrome", 48}, {"Safari", 24},          {"Firefox", 9},
                          {"Edge", 8},    {"Samsung Internet", 3}, {"Opera", 2},
                          {"Brave", 2},   {"LinkedIn", 1},         {"", 0.5}};
const Share systems[] = {{"Windows", 34}, {"Mac OS", 26},     {"iOS", 19}, {"Android", 15},
                         {"Linux", 4},    {"Chrome OS", 1.2}, {"", 0.4}};
const Share languages[] = {{"en-US", 34}, {"de-DE", 24}, {"en-GB", 12}, {"fr-FR", 8},
                           {"nl-NL", 6},  {"sv-SE", 4},  {"es-ES", 3}};
const Share screens[] = {{"1920x1080", 28}, {"1440x900", 16}, {"390x844", 15}, {"2560x1440", 12},
                         {"1366x768", 9},   {"414x896", 8},   {"820x1180", 4}};
const Share exits[] = {
    {"https://github.com/northwind-studio", 30},
    {"https://x.com/northwindstudio", 18},
    {"https://www.linkedin.com/company/northwind-studio/", 15},
    {"https://news.ycombinator.com/item?id=41234567", 12},
    {"https://calendly.com/northwind/intro", 9},
    {"https://docs.northwind.example/", 8},
};

// The breakdown a kind names, in its singular or plural spelling.
std::pair<const Share*, size_t> sharesOf(const std::string& kind)
{
    auto of = [](const auto& list) { return std::pair<const Share*, size_t>(list, std::size(list)); };
    if (kind == "referrer" || kind == "referrers" || kind == "source")
        return of(referrers);
    if (kind == "page" || kind == "pages")
        return of(pages);
    if (kind == "country" || kind == "countries")
        return of(countries);
    if (kind == "device" || kind == "devices")
        return of(devices);
    if (kind == "browser" || kind == "browsers")
        return of(browsers);
    if (kind == "os")
        return of(systems);
    if (kind == "language" || kind == "languages")
        return of(languages);
    if (kind == "screen" || kind == "screens")
        return of(screens);
    if (kind == "exit" || kind == "exit_links")
        return of(exits);
    return {nullptr, 0};
}

double startOfToday()
{
    return std::floor(now() / day) * day;
}

// The site's visitors on the day `age` days before today (a whole day;
// today's share of it is for the caller to take).
double dailyVisitors(const std::string& siteId, int age)
{
    if (age < 0 || age >= historyDays)
        return 0;
    const double start = startOfToday() - age * day;
    const time_t seconds = time_t(start);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    static const double weekday[] = {0.58, 1.02, 1.08, 1.06, 1.04, 0.93, 0.62}; // Sunday first
    const double trend = 110 + (historyDays - age) * 1.2;
    const double noise = 0.86 + double(stableHash(siteId + std::to_string(int(start / day))) % 28) / 100;
    double spike = 1;
    if (age == spikeAge)
        spike = 3.4;
    else if (age == spikeAge - 1)
        spike = 1.7;
    const double scale = siteId == "s1" ? 1.0 : 0.45;
    return std::round(trend * weekday[parts.tm_wday] * noise * spike * scale);
}

// The days a range covers, as ages (days before today), oldest first. A
// range is {"days": N} (the last N days, today included) or {"from":
// "YYYY-MM-DD", "to": "YYYY-MM-DD"} (both included).
std::vector<int> agesOf(const json& range)
{
    int oldest = 6, newest = 0;
    if (range.is_object() && range.contains("from") && range["from"].is_string() && range.contains("to") &&
        range["to"].is_string()) {
        auto ageOf = [](const std::string& date) {
            std::tm parts{};
            if (!strptime(date.c_str(), "%Y-%m-%d", &parts))
                throw RequestError(400, "The range's dates read YYYY-MM-DD.");
            return int(std::lround((startOfToday() - double(timegm(&parts))) / day));
        };
        oldest = ageOf(range["from"].get<std::string>());
        newest = ageOf(range["to"].get<std::string>());
        if (newest > oldest)
            std::swap(newest, oldest);
        newest = std::max(newest, 0);
        oldest = std::clamp(oldest, newest, newest + 400);
    } else if (range.is_object() && range.contains("days") && range["days"].is_number()) {
        oldest = std::clamp(range["days"].get<int>(), 1, 400) - 1;
    }
    std::vector<int> ages;
    for (int age = oldest; age >= newest; --age)
        ages.push_back(age);
    return ages;
}

// How much of today has passed, so today's figures grow through the day.
double todaySoFar()
{
    return std::clamp((now() - startOfToday()) / day, 0.02, 1.0);
}

double visitorsOn(const std::string& siteId, int age)
{
    const double whole = dailyVisitors(siteId, age);
    return age == 0 ? std::round(whole * todaySoFar()) : whole;
}

json siteOf(ActionContext& ctx, const json& args)
{
    const std::string siteId = text(args, 0, "siteId");
    const auto site = ctx.own("site", siteId);
    if (!site)
        throw RequestError(404, "There is no site " + siteId + ".");
    return *site;
}

json rangeOf(const json& args, size_t at)
{
    return given(args, at) ? args[at] : json{{"days", 7}};
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
    const std::string siteId = site["siteId"].get<std::string>();
    const json range = rangeOf(args, 1);
    const std::vector<int> ages = agesOf(range);
    json series = json::array();
    double visitors = 0;
    if (ages.size() == 1 && ages.front() == 0) {
        // Today, hour by hour, up to the hour now running.
        static const double shape[24] = {0.6, 0.4, 0.3, 0.3, 0.4, 0.7, 1.2, 2.2, 3.4, 4.6, 5.1, 5.3,
                                         5.0, 5.2, 5.4, 5.3, 5.0, 4.6, 4.0, 3.6, 3.2, 2.6, 1.8, 1.1};
        const double whole = dailyVisitors(siteId, 0);
        const int hours = std::clamp(int((now() - startOfToday()) / 3600) + 1, 1, 24);
        double total = 0;
        for (const double s : shape)
            total += s;
        for (int h = 0; h < hours; ++h) {
            const double v = std::round(whole * shape[h] / total);
            visitors += v;
            series.push_back({{"at", iso(startOfToday() + h * 3600.0)},
                              {"visitors", v},
                              {"visits", std::round(v * 1.3)},
                              {"pageviews", std::round(v * 3.1)}});
        }
    } else {
        for (const int age : ages) {
            const double v = visitorsOn(siteId, age);
            visitors += v;
            series.push_back({{"at", iso(startOfToday() - age * day)},
                              {"visitors", v},
                              {"visits", std::round(v * 1.3)},
                              {"pageviews", std::round(v * 3.1)}});
        }
    }
    const unsigned h = stableHash(siteId + range.dump());
    return {{"range", range},
            {"site", site},
            {"totals",
             {{"visitors", visitors},
              {"visits", std::round(visitors * 1.3)},
              {"pageviews", std::round(visitors * 3.1)},
              {"bounceRate", 0.36 + double(h % 12) / 100},
              {"duration", 72.0 + double(h % 45)}}},
            {"series", series},
            {"live", visitors > 0 ? 2 + stableHash(isoNow().substr(0, 16)) % 9 : 0}};
}

json settings(ActionContext& ctx, const json& args)
{
    return {{"site", siteOf(ctx, args)}, {"canManage", ctx.caller.canWrite()}};
}

json breakdown(ActionContext& ctx, const json& args)
{
    const json site = siteOf(ctx, args);
    const std::string siteId = site["siteId"].get<std::string>();
    const std::string kind = text(args, 1, "kind");
    const json range = rangeOf(args, 2);
    const auto [shares, count] = sharesOf(kind);
    if (!shares)
        return {{"kind", kind}, {"rows", json::array()}, {"total", 0}, {"others", 0}};
    double visitors = 0;
    for (const int age : agesOf(range))
        visitors += visitorsOn(siteId, age);
    // Each range leans its own way a little: the same shares, give or take.
    double weights = 0;
    std::vector<double> leaning(count);
    for (size_t i = 0; i < count; ++i) {
        const unsigned h = stableHash(siteId + kind + shares[i].value + range.dump());
        leaning[i] = shares[i].weight * (0.85 + double(h % 30) / 100);
        weights += leaning[i];
    }
    std::vector<json> rows;
    double shown = 0;
    for (size_t i = 0; i < count; ++i) {
        const double v = std::round(visitors * leaning[i] / weights);
        if (v < 1)
            continue;
        shown += v;
        json row = {{"value", shares[i].value}, {"visitors", v}, {"visits", std::round(v * 1.25)}};
        if (shares[i].label)
            row["label"] = shares[i].label;
        rows.push_back(row);
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const json& a, const json& b) { return a["visitors"] > b["visitors"]; });
    json list = json::array();
    for (json& row : rows) {
        row["share"] = shown > 0 ? row["visitors"].get<double>() / shown : 0.0;
        list.push_back(row);
    }
    return {{"kind", kind}, {"rows", list}, {"total", shown}, {"others", 0}};
}

// The settings the site page changes: allowed host names, cookies, reports
// and alerts. Host names are checked as the client checks them.
json update(ActionContext& ctx, const json& args)
{
    if (auto refused = ctx.refuseReadOnly())
        return *refused;
    json site = siteOf(ctx, args);
    const json changes = object(args, 1, "changes");
    if (changes.contains("allowedHostnames")) {
        static const std::regex hostName(R"(^([a-z0-9]([a-z0-9-]{0,61}[a-z0-9])?\.)+[a-z]{2,63}$)");
        json names = json::array();
        if (!changes["allowedHostnames"].is_array())
            throw RequestError(400, "allowedHostnames is a list of host names.");
        for (const json& name : changes["allowedHostnames"]) {
            const std::string text = name.is_string() ? name.get<std::string>() : std::string();
            if (text.size() < 3 || text.size() > 253 || !std::regex_match(text, hostName))
                return {{"error", "\"" + text + "\" is not a host name. Use one like www.example.com."}};
            names.push_back(text);
        }
        site["allowedHostnames"] = names;
    }
    for (const char* flag : {"cookieless", "weeklyReport", "monthlyReport", "spikeAlerts", "dropAlerts"})
        if (changes.contains(flag)) {
            if (!changes[flag].is_boolean())
                throw RequestError(400, std::string(flag) + " is true or false.");
            site[flag] = changes[flag];
        }
    ctx.service.store.put("site", site["siteId"].get<std::string>(), ctx.caller.workspace, site);
    ctx.changed("/analytics");
    return json::object();
}

} // namespace

void addAnalyticsActions(ActionTable& table)
{
    table["analytics/sites"] = sites;
    table["analytics/dashboard"] = dashboard;
    table["analytics/settings"] = settings;
    table["app/analyticsBreakdownAction"] = breakdown;
    table["app/updateAnalyticsAction"] = update;
}

} // namespace devservice
