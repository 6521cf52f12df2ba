#include "Pages.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Html.h"
#include "OAuth.h"

#include <httplib.h>

namespace devservice {

namespace {

struct Known {
    const char* path;
    const char* title;
    const char* text;
};

const Known knownPages[] = {
    {"/activity", "Home", "What your kest did today, and what waits for you."},
    {"/tasks", "Tasks", "Everything in progress, by status."},
    {"/analytics/settings", "Analytics settings",
     "Choose what the tracker counts, who gets reports, and which hosts belong to the site."},
    {"/settings", "Settings", "The workspace's name, members, billing and connected apps."},
    {"/crm/customers", "Customers", "Everyone who bought from you, with their plan and last contact."},
    {"/incidents", "Incidents", "What broke, who is on it, and what was done."},
    {"/tests", "Tests", "The QA teammate's test runs and their findings."},
    {"/surveys", "Surveys", "Questions for your customers and what they answered."},
};

std::string titleFor(const std::string& path)
{
    for (const Known& k : knownPages)
        if (path == k.path)
            return k.title;
    // Any other in-app path: its last segment, capitalised.
    std::string last = path.substr(path.find_last_of('/') + 1);
    if (last.empty())
        return "Kestro";
    for (char& c : last)
        if (c == '-' || c == '_')
            c = ' ';
    last[0] = char(std::toupper(static_cast<unsigned char>(last[0])));
    return last;
}

std::string appPage(const std::string& path, const json& user)
{
    std::string text = "This page is part of the local Kestro service.";
    for (const Known& k : knownPages)
        if (path == k.path)
            text = k.text;
    const std::string title = titleFor(path);
    std::string nav = "<nav>";
    for (const Known& k : knownPages)
        nav += "<a href=\"" + std::string(k.path) + "\">" + k.title + "</a>";
    nav += "<a href=\"/analytics/settings?tab=crawlers\">Crawlers</a>"
           "<a href=\"https://example.com/help\">Help (outside)</a>"
           "<button data-theme-switch onclick=\"toggleTheme()\">Theme</button></nav>";
    const std::string body =
        nav + "<main><h1>" + escapeHtml(title) + "</h1><p class=\"muted\">" + escapeHtml(text) + "</p>" +
        "<p>Signed in as <strong>" + escapeHtml(user.value("name", "")) + "</strong>.</p>" +
        "<p><button class=\"primary\" id=\"save\" onclick=\"save()\">Save changes</button> "
        "<span id=\"saved\" class=\"muted\"></span></p>"
        "<table><tr><th>Setting</th><th>Value</th></tr><tr><td>Time zone</td><td>Europe/Berlin</td></tr>"
        "<tr><td>Weekly report</td><td>On</td></tr></table></main>"
        "<script>function save(){document.getElementById('saved').textContent='Saved.';"
        "document.dispatchEvent(new Event('kestro:changed'));window.dispatchEvent(new "
        "Event('kestro:changed'));}"
        "function toggleTheme(){var d=document.documentElement.classList.contains('dark');"
        "try{localStorage.setItem('theme',d?'light':'dark')}catch(e){}location.reload();}</script>";
    return page(title, body);
}

// "#rrggbb" for a hue, saturation and lightness (the icons' renderers read
// no hsl() colours).
std::string hslHex(double hue, double saturation, double lightness)
{
    auto channel = [&](double n) {
        const double k = std::fmod(n + hue / 30.0, 12.0);
        const double a = saturation * std::min(lightness, 1.0 - lightness);
        return int(std::lround(255 * (lightness - a * std::max(-1.0, std::min({k - 3.0, 9.0 - k, 1.0})))));
    };
    char hex[8];
    std::snprintf(hex, sizeof hex, "#%02x%02x%02x", channel(0), channel(8), channel(4));
    return hex;
}

// A small round badge with the host's initial in a colour of its own.
std::string iconSvg(const std::string& name)
{
    const unsigned h = stableHash(name);
    const int hue = int(h % 360);
    const char initial = name.empty() ? '?' : char(std::toupper(static_cast<unsigned char>(name[0])));
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"32\" height=\"32\" viewBox=\"0 0 32 32\">"
           "<circle cx=\"16\" cy=\"16\" r=\"16\" fill=\"" +
           hslHex(hue, 0.6, 0.48) +
           "\"/>"
           "<text x=\"16\" y=\"21\" font-family=\"sans-serif\" font-size=\"15\" font-weight=\"600\" "
           "fill=\"#fff\""
           " text-anchor=\"middle\">" +
           std::string(1, initial) + "</text></svg>";
}

// Three stripes whose colours come from the country code.
// A made-up tricolour per country: the same code, the same flag.
std::string flagSvg(const std::string& code)
{
    const unsigned h = stableHash(code);
    std::string svg =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"24\" height=\"16\" viewBox=\"0 0 24 16\">";
    for (int i = 0; i < 3; ++i)
        svg += "<rect x=\"" + std::to_string(i * 8) + "\" y=\"0\" width=\"8\" height=\"16\" fill=\"" +
               hslHex((h >> (i * 8)) % 360, 0.65, (35 + i * 15) / 100.0) + "\"/>";
    return svg + "</svg>";
}

// The two steps of a workspace's setup: its business, then its kest. The
// last one finishes the setup and sends the app to Home through the
// page's history, as the service's own pages do.
std::string setupPage(const std::string& step, const json& user, const json& space)
{
    const std::string progress = step == "business" ? "Step 1 of 2" : "Step 2 of 2";
    std::string body = "<main class=\"card\"><p class=\"muted\">" + progress + "</p>";
    if (step == "business") {
        body += "<h1>Tell Kestro about your business</h1>"
                "<p class=\"muted\">Your teammates read this before their first task, so they start "
                "out knowing what you sell and to whom.</p>"
                "<p><label>Business name<br><input id=\"name\" value=\"" +
                escapeHtml(space.value("name", "")) +
                "\"></label></p>"
                "<p><label>What you sell<br><input id=\"what\" value=\"Design and build of small "
                "shops on the web\"></label></p>"
                "<p><a class=\"button primary\" id=\"continue\" href=\"/setup/launch\">Continue</a></p>";
    } else {
        body +=
            "<h1>Meet your kest</h1>"
            "<p class=\"muted\">Quill writes, Forge builds and Scout looks things up. They are "
            "ready when you are, " +
            escapeHtml(user.value("name", "")) +
            ".</p>"
            "<p><button class=\"primary\" id=\"finish\" onclick=\"finish()\">Finish setup</button> "
            "<span id=\"status\" class=\"muted\"></span></p>"
            "<script>function finish(){var s=document.getElementById('status');s.textContent='Finishing…';"
            "fetch('/setup/complete',{method:'POST'}).then(function(r){if(!r.ok)throw r.status;"
            "history.pushState({},'','/activity')}).catch(function(){s.textContent='That did not go "
            "through. Try again.'})}</script>";
    }
    return page("Set up " + space.value("name", std::string("your workspace")), body + "</main>");
}

} // namespace

void installPages(httplib::Server& server, Service& service)
{
    server.Get("/login", [](const httplib::Request&, httplib::Response& response) {
        response.set_content(page("Log in",
                                  "<main class=\"card\"><h1>Log in to Kestro</h1><p class=\"muted\">"
                                  "Open Kestro desktop and choose Log in.</p></main>"),
                             "text/html; charset=utf-8");
    });
    server.Get("/api/icons/(.+)", [](const httplib::Request& r, httplib::Response& response) {
        response.set_header("Cache-Control", "max-age=86400");
        response.set_content(iconSvg(r.matches[1]), "image/svg+xml");
    });
    server.Get("/api/avatars/(.+)", [](const httplib::Request& r, httplib::Response& response) {
        response.set_content(iconSvg(r.matches[1]), "image/svg+xml");
    });
    server.Get("/api/flags/(.+)", [](const httplib::Request& r, httplib::Response& response) {
        response.set_content(flagSvg(r.matches[1]), "image/svg+xml");
    });
    // The update feed: the release this build is, and a newer one, so the
    // desktop's "Check for Updates…" has something to offer.
    server.Get("/appcast.xml", [&service](const httplib::Request&, httplib::Response& response) {
        const std::string base =
            "http://" + service.options.host + ":" + std::to_string(service.options.port);
        auto item = [&base](const std::string& version, const std::string& date, const std::string& notes) {
            return "<item><title>Kestro " + version + "</title><pubDate>" + date + "</pubDate>" + "<link>" +
                   base + "/download</link>" + "<sparkle:version>" + version +
                   "</sparkle:version><sparkle:shortVersionString>" + version +
                   "</sparkle:shortVersionString>" +
                   "<sparkle:minimumSystemVersion>11</sparkle:minimumSystemVersion>" +
                   "<description><![CDATA[" + notes + "]]></description>" + "<enclosure url=\"" + base +
                   "/downloads/kestro-" + version +
                   ".tar.gz\" length=\"0\" type=\"application/octet-stream\"" + " sparkle:version=\"" +
                   version + "\"/></item>";
        };
        response.set_content(
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
            "<rss version=\"2.0\" xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\">"
            "<channel><title>Kestro desktop</title><link>" +
                base + "/appcast.xml</link>" +
                item("0.2.0", "Tue, 24 Nov 2026 12:00:00 +0000",
                     "<p>Tasks move on a board: drag a card to change its status.</p>"
                     "<p>The tray shows your unread count.</p>") +
                item("0.1.0", "Sat, 21 Nov 2026 12:00:00 +0000",
                     "<p>The first build of Kestro desktop.</p>") +
                "</channel></rss>\n",
            "application/rss+xml");
    });
    server.Get("/download", [](const httplib::Request&, httplib::Response& response) {
        response.set_content(
            page("Download Kestro",
                 "<main class=\"card\"><h1>Kestro desktop 0.2.0</h1><p>Tasks move on a "
                 "board, and the tray shows your unread count.</p><p class=\"muted\">Install "
                 "it from your distribution, or unpack the archive and run "
                 "<code>kestro</code>.</p></main>"),
            "text/html; charset=utf-8");
    });
    server.Get(
        "/setup/(business|launch)", [&service](const httplib::Request& r, httplib::Response& response) {
            const auto user = userForSessionCookie(service, r);
            const auto caller = user ? service.callerFor(*user) : std::nullopt;
            if (!caller) {
                response.set_redirect("/login?next=" + httplib::detail::encode_query_param(r.path));
                return;
            }
            const std::string step = r.matches[1];
            auto space = service.store.get("workspace", caller->workspace);
            if (!space)
                return;
            // A workspace that is set up has nothing to show here.
            if (setupStep(service, caller->workspace).empty()) {
                response.set_redirect("/activity");
                return;
            }
            if (step == "launch")
                service.store.transaction([&] {
                    (*space)["setupStep"] = "launch";
                    service.store.put("workspace", caller->workspace, caller->workspace, *space);
                });
            response.set_content(setupPage(step, service.person(*user), *space), "text/html; charset=utf-8");
        });
    server.Post("/setup/complete", [&service](const httplib::Request& r, httplib::Response& response) {
        const auto user = userForSessionCookie(service, r);
        const auto caller = user ? service.callerFor(*user) : std::nullopt;
        if (!caller) {
            response.status = 401;
            return;
        }
        finishSetup(service, caller->workspace);
        response.status = 204;
    });
    // Every other page path is an in-app page, behind the session cookie.
    server.Get("/(?!api/).*", [&service](const httplib::Request& r, httplib::Response& response) {
        const auto user = userForSessionCookie(service, r);
        if (!user) {
            response.set_redirect("/login?next=" + httplib::detail::encode_query_param(r.path));
            return;
        }
        response.set_content(appPage(r.path, service.person(*user)), "text/html; charset=utf-8");
    });
}

} // namespace devservice
