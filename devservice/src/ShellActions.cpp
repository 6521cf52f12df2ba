// The frame, workspaces, notifications, home, the composer's menus and the
// command palette.

#include "Actions.h"

#include <algorithm>

namespace devservice {

namespace {

bool matches(const std::string& text, const std::string& query)
{
    if (query.empty())
        return true;
    auto lower = [](std::string s) {
        std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return std::tolower(c); });
        return s;
    };
    return lower(text).find(lower(query)) != std::string::npos;
}

std::vector<json> notificationsOf(ActionContext& ctx)
{
    std::vector<json> out;
    for (json& n : ctx.service.store.list("notification", ctx.caller.workspace))
        if (n["user"] == ctx.caller.user)
            out.push_back(std::move(n));
    std::reverse(out.begin(), out.end()); // newest first
    return out;
}

int unreadOf(ActionContext& ctx)
{
    int unread = 0;
    for (const json& n : notificationsOf(ctx))
        unread += !n["read"].get<bool>();
    return unread;
}

json frame(ActionContext& ctx, const json&)
{
    Service& s = ctx.service;
    // A workspace that is not set up yet has no frame to show: its members
    // go to the step they are at.
    if (const std::string step = setupStep(s, ctx.caller.workspace); !step.empty()) {
        ctx.effects["redirect"] = "/setup/" + step;
        return nullptr;
    }
    const json user = *s.store.get("user", ctx.caller.user);
    const json space = *s.store.get("workspace", ctx.caller.workspace);
    json workspaces = json::array();
    for (const json& w : s.store.list("workspace")) {
        if (!w["members"].contains(ctx.caller.user))
            continue;
        workspaces.push_back({{"id", w["id"]},
                              {"name", w["name"]},
                              {"slug", w["slug"]},
                              {"role", w["members"][ctx.caller.user]},
                              {"current", w["id"] == space["id"]}});
    }
    int open = 0;
    for (const json& t : s.store.list("task", ctx.caller.workspace)) {
        const std::string status = t["status"];
        open += status != "done" && status != "canceled";
    }
    const int needsYou = waitingCount(ctx);
    const int unread = unreadOf(ctx);
    return {
        {"user",
         {{"id", user["id"]}, {"name", user["name"]}, {"email", user["email"]}, {"avatar", undefinedTag()}}},
        {"workspace",
         {{"id", space["id"]},
          {"name", space["name"]},
          {"slug", space["slug"]},
          {"role", ctx.caller.role},
          {"plan", space["plan"]}}},
        {"workspaces", workspaces},
        {"counts", {{"needsYou", needsYou}, {"tasks", open}, {"inbox", unread}, {"notifications", unread}}},
        {"kest", s.teammates(ctx.caller.workspace)},
        {"products", {"kest", "tasks", "analytics", "crm", "incidents", "tests", "surveys"}}};
}

json switchWorkspace(ActionContext& ctx, const json& args)
{
    const std::string target = text(args, 0, "workspaceId");
    const auto space = ctx.service.store.get("workspace", target);
    if (!space || !(*space)["members"].contains(ctx.caller.user))
        return {{"error", "You are not a member of that workspace."}};
    ctx.service.store.put("pref", ctx.caller.user, "", {{"workspace", target}});
    ctx.changed("/");
    return {{"done", true}};
}

json notificationCount(ActionContext& ctx, const json&)
{
    return {{"unread", unreadOf(ctx)}};
}

json notifications(ActionContext& ctx, const json& args)
{
    const size_t pageSize = 30;
    const size_t from = size_t(std::max(0, std::atoi(optionalText(args, 0, "cursor").value_or("0").c_str())));
    const std::vector<json> all = notificationsOf(ctx);
    json items = json::array();
    for (size_t i = from; i < all.size() && i < from + pageSize; ++i) {
        json item = all[i];
        item.erase("user");
        item["at"] = dateTag(item["at"]); // dates travel tagged now and then
        if (item["by"].is_null())
            item["by"] = undefinedTag();
        items.push_back(item);
    }
    const bool more = from + pageSize < all.size();
    return {{"items", items},
            {"unread", unreadOf(ctx)},
            {"next", more ? json(std::to_string(from + pageSize)) : undefinedTag()}};
}

json readNotifications(ActionContext& ctx, const json& args)
{
    const std::vector<std::string> ids = texts(args, 0, "ids");
    for (const std::string& id : ids) {
        auto n = ctx.own("notification", id);
        if (n && (*n)["user"] == ctx.caller.user) {
            (*n)["read"] = true;
            ctx.service.store.put("notification", id, ctx.caller.workspace, *n);
        }
    }
    ctx.changed("/activity");
    return {{"unread", unreadOf(ctx)}};
}

json clearNotifications(ActionContext& ctx, const json&)
{
    for (const json& n : notificationsOf(ctx))
        ctx.service.store.remove("notification", n["id"]);
    ctx.changed("/activity");
    return {{"done", true}};
}

json home(ActionContext& ctx, const json&)
{
    Service& s = ctx.service;
    const json user = *s.store.get("user", ctx.caller.user);
    const std::string full = user["name"];
    json kest = json::array();
    for (const json& t : s.teammates(ctx.caller.workspace))
        kest.push_back({{"reads", json::array({"tasks", "kest"})},
                        {"handle", t["handle"]},
                        {"name", t["name"]},
                        {"title", t["title"]},
                        {"avatar", t["avatar"]},
                        {"status", t["status"]}});
    const json space = *s.store.get("workspace", ctx.caller.workspace);
    return {{"first", full.substr(0, full.find(' '))},
            {"connection", {{"status", "connected"}, {"method", undefinedTag()}}},
            {"plan", space["plan"]},
            {"kest", kest},
            {"inbox", {{"count", unreadOf(ctx)}, {"minutes", 4}}},
            {"connect", false},
            {"routines",
             {{{"id", "r1"},
               {"agent", "nova"},
               {"name", "Morning brief"},
               {"days", {1, 2, 3, 4, 5}},
               {"hour", 8},
               {"minute", 30},
               {"timezone", "Europe/Berlin"},
               {"paused", false}}}},
            {"zone", "Europe/Berlin"},
            {"templates", json::array()},
            {"canManage", ctx.caller.canWrite()}};
}

json skillOptions(ActionContext& ctx, const json& args)
{
    const std::string query = optionalText(args, 0, "query").value_or("");
    json skills = json::array();
    for (const json& skill : ctx.service.store.list("skill", ctx.caller.workspace))
        if (matches(skill["name"], query) || matches(skill["id"], query))
            skills.push_back(skill);
    return {{"skills", skills}};
}

json attachables(ActionContext& ctx, const json& args)
{
    const std::string query = optionalText(args, 0, "query").value_or("");
    json items = json::array();
    for (const json& doc : ctx.service.store.list("document", ctx.caller.workspace))
        if (matches(doc["title"], query))
            items.push_back(doc);
    for (const json& task : ctx.service.store.list("task", ctx.caller.workspace))
        if (matches(task["title"], query) || matches(task["key"], query))
            items.push_back({{"kind", "task"}, {"id", task["key"]}, {"title", task["title"]}});
    return {{"items", items}};
}

json palette(ActionContext& ctx, const json& args)
{
    const std::string query = optionalText(args, 0, "query").value_or("");
    json items = json::array();
    auto add = [&](const char* kind, const std::string& id, const std::string& title,
                   const std::string& subtitle, const std::string& href, const char* icon) {
        if (matches(title, query) || matches(subtitle, query))
            items.push_back({{"kind", kind},
                             {"id", id},
                             {"title", title},
                             {"subtitle", subtitle},
                             {"href", href},
                             {"icon", icon}});
    };
    add("page", "home", "Home", "Your day at a glance", "/activity", "house");
    add("page", "kest", "Kest chat", "The room with your teammates", "/kest", "messages-square");
    add("page", "tasks", "Tasks", "Everything in progress", "/tasks", "list-checks");
    add("page", "analytics", "Analytics", "Visitors and sources", "/analytics", "chart-line");
    add("page", "settings", "Settings", "Workspace settings", "/settings", "settings");
    for (const json& t : ctx.service.teammates(ctx.caller.workspace))
        add("teammate", t["handle"], t["name"], t["title"],
            "/kest/" + t["handle"].get<std::string>() + "/chat", "bot");
    for (const json& task : ctx.service.store.list("task", ctx.caller.workspace))
        add("task", task["key"], task["title"], task["key"], "/tasks/" + task["key"].get<std::string>(),
            "circle-dot");
    for (const json& p : ctx.service.store.list("project", ctx.caller.workspace))
        add("project", p["id"], p["name"], "Project", "/tasks/projects/" + p["id"].get<std::string>(),
            "folder");
    return {{"items", items}};
}

} // namespace

void addShellActions(ActionTable& table)
{
    table["shell/frame"] = frame;
    table["app/switchWorkspaceAction"] = switchWorkspace;
    table["app/notificationCountAction"] = notificationCount;
    table["app/notificationsAction"] = notifications;
    table["app/readNotificationsAction"] = readNotifications;
    table["app/clearNotificationsAction"] = clearNotifications;
    table["home/home"] = home;
    table["app/skillOptionsAction"] = skillOptions;
    table["app/attachablesAction"] = attachables;
    table["app/paletteAction"] = palette;
}

} // namespace devservice
