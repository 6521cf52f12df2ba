// The kest room: messages, threads, posting with triage, reactions, runs.

#include "Actions.h"
#include "Teammates.h"

#include <algorithm>

namespace devservice {

namespace {

json answeringIn(Service& s, const std::string& workspace, const std::string& threadId)
{
    json out = json::array();
    for (const json& run : activeRuns(s, workspace)) {
        // Only runs answering in the room: not task work, not one-to-one chats.
        if (run["threadId"].get<std::string>().empty() || !s.store.get("message", run["threadId"]))
            continue;
        if (!threadId.empty() && run["threadId"] != threadId)
            continue;
        json answer = {{"agent", run["agent"]}, {"runId", run["id"]}, {"threadId", run["threadId"]}};
        if (run["doing"].is_string())
            answer["doing"] = run["doing"];
        out.push_back(answer);
    }
    return out;
}

// A stored message as the room shows it (Model.KestMessageView).
json messageView(const json& m)
{
    json view = m;
    if (!view.contains("threadId") || view["threadId"].is_null())
        view["threadId"] = undefinedTag();
    return view;
}

json roomMessage(Service& s, const std::string& workspace, const json& m, const std::vector<json>& all)
{
    json view = messageView(m);
    int replies = 0;
    std::string last;
    json repliedBy = json::array();
    for (const json& r : all) {
        if (r.value("threadId", json()) != m["id"])
            continue;
        ++replies;
        last = r["at"];
        const bool seen = std::any_of(repliedBy.begin(), repliedBy.end(),
                                      [&](const json& f) { return f["name"] == r["by"]["name"]; });
        if (!seen) {
            json face = {{"name", r["by"]["name"]}};
            if (r["from"] == "agent") {
                face["agent"] = r["agent"];
                face["avatar"] = r.value("avatar", "");
            } else {
                face["person"] = r["by"]["id"];
            }
            repliedBy.push_back(face);
        }
    }
    view["replies"] = replies;
    view["lastReplyAt"] = last.empty() ? undefinedTag() : json(last);
    view["repliedBy"] = repliedBy;
    view["answering"] = answeringIn(s, workspace, m["id"]);
    return view;
}

json traces(Service& s, const json& answering, const std::vector<json>& messages)
{
    json out = json::object();
    auto add = [&](const std::string& runId) {
        if (runId.empty() || out.contains(runId))
            return;
        if (auto run = s.store.get("run", runId))
            out[runId] = traceOf(*run);
    };
    for (const json& a : answering)
        add(a["runId"]);
    for (const json& m : messages)
        if (m.contains("runId") && m["runId"].is_string())
            add(m["runId"]);
    return out;
}

json kestChat(ActionContext& ctx, const json& args)
{
    Service& s = ctx.service;
    const std::string workspace = ctx.caller.workspace;
    const auto threadId = optionalText(args, 0, "thread");
    const std::vector<json> all = s.store.list("message", workspace);
    json messages = json::array();
    std::vector<json> top;
    for (const json& m : all)
        if (!m.contains("threadId") || m["threadId"].is_null())
            top.push_back(m);
    const size_t from = top.size() > 50 ? top.size() - 50 : 0;
    for (size_t i = from; i < top.size(); ++i)
        messages.push_back(roomMessage(s, workspace, top[i], all));
    const json answering = answeringIn(s, workspace, "");
    json result = {
        {"me", ctx.caller.user}, {"messages", messages}, {"answering", answering}, {"reads", true}};
    if (threadId) {
        const auto first = s.store.get("message", *threadId);
        if (!first) {
            ctx.notFound();
        } else {
            json replies = json::array();
            json with = json::array();
            for (const json& r : all) {
                if (r.value("threadId", json()) != *threadId)
                    continue;
                replies.push_back(messageView(r));
                if (r["from"] == "agent" && std::find(with.begin(), with.end(), r["agent"]) == with.end())
                    with.push_back(r["agent"]);
            }
            result["thread"] = {{"message", messageView(*first)},
                                {"replies", replies},
                                {"total", replies.size()},
                                {"answering", answeringIn(s, workspace, *threadId)},
                                {"with", with}};
        }
    }
    result["traces"] = traces(s, answering, all);
    json kest = json::array();
    for (const json& t : s.teammates(workspace))
        kest.push_back({{"handle", t["handle"]},
                        {"name", t["name"]},
                        {"title", t["title"]},
                        {"avatar", t["avatar"]},
                        {"status", t["status"]},
                        {"needsYou", false},
                        {"lead", t["lead"]}});
    result["kest"] = kest;
    return result;
}

json postKestMessage(ActionContext& ctx, const json& args)
{
    if (auto refusal = ctx.refuseReadOnly())
        return *refusal;
    Service& s = ctx.service;
    const json input = object(args, 0, "input");
    const std::string text = memberText(input, "text").value_or("");
    if (text.find_first_not_of(" \t\r\n") == std::string::npos)
        return {{"error", "Tell us what you need first, then press Send."}};
    const auto threadId = memberText(input, "threadId");
    if (threadId && !s.store.get("message", *threadId))
        return {{"error", "That thread is gone. Start a new message instead."}};
    const json author = s.person(ctx.caller.user);
    bool triaged = false;
    const std::vector<std::string> to = recipients(s, ctx.caller.workspace, text, triaged);
    const std::string id = newId("m");
    json message = {{"id", id},
                    {"from", "person"},
                    {"by", {{"id", ctx.caller.user}, {"type", "person"}, {"name", author["name"]}}},
                    {"text", text},
                    {"to", triaged ? json::array() : json(to)},
                    {"reads", {ctx.caller.user}},
                    {"failed", false},
                    {"approvalIds", json::array()},
                    {"reactions", json::array()},
                    {"cites", json::array()},
                    {"at", isoNow()}};
    if (threadId)
        message["threadId"] = *threadId;
    s.store.put("message", id, ctx.caller.workspace, message);
    const std::string thread = threadId.value_or(id);
    json started = json::array();
    for (const std::string& agent : to) {
        startRun(s, ctx.caller.workspace, agent, text, thread, ctx.caller.user);
        started.push_back(agent);
    }
    ctx.changed("/kest");
    return {{"done", true}, {"threadId", thread}, {"started", started}, {"triaging", triaged}};
}

json reactInKest(ActionContext& ctx, const json& args)
{
    if (auto refusal = ctx.refuseReadOnly())
        return *refusal;
    const std::string messageId = text(args, 0, "messageId");
    const std::string emoji = text(args, 1, "emoji");
    auto message = ctx.service.store.get("message", messageId);
    if (!message)
        return {{"error", "That message is gone."}};
    json& reactions = (*message)["reactions"];
    auto it =
        std::find_if(reactions.begin(), reactions.end(), [&](const json& r) { return r["emoji"] == emoji; });
    if (it == reactions.end()) {
        reactions.push_back({{"emoji", emoji}, {"by", {ctx.caller.user}}});
    } else {
        json& by = (*it)["by"];
        auto mine = std::find(by.begin(), by.end(), ctx.caller.user);
        if (mine == by.end())
            by.push_back(ctx.caller.user);
        else
            by.erase(mine); // a second tap takes it back
        if (by.empty())
            reactions.erase(it);
    }
    ctx.service.store.put("message", messageId, ctx.caller.workspace, *message);
    ctx.changed("/kest");
    return {{"done", true}};
}

json agentView(const json& t)
{
    return {{"handle", t["handle"]}, {"name", t["name"]},     {"title", t["title"]},
            {"avatar", t["avatar"]}, {"status", t["status"]}, {"lead", t["lead"]}};
}

json runPage(ActionContext& ctx, const json& args)
{
    const std::string handle = text(args, 0, "handle");
    const std::string runId = text(args, 1, "runId");
    const auto run = ctx.service.store.get("run", runId);
    const json mate = ctx.service.teammate(ctx.caller.workspace, handle);
    if (!run || mate.is_null() || (*run)["agent"] != handle) {
        ctx.notFound();
        return nullptr;
    }
    const json trace = traceOf(*run);
    json rounds = json::array();
    for (const json& round : trace["rounds"]) {
        json calls = json::array();
        for (const json& step : round["steps"])
            calls.push_back({{"tool", step["tool"]},
                             {"label", step["label"]},
                             {"input", step.value("input", "")},
                             {"why", step.value("why", "")},
                             {"status", step["status"]},
                             {"result", step.value("result", "")}});
        rounds.push_back(
            {{"startedAt", trace["startedAt"]}, {"doing", round.value("doing", "")}, {"calls", calls}});
    }
    json view = {{"id", runId},
                 {"agent", handle},
                 {"status", (*run)["status"]},
                 {"startedAt", (*run)["startedAt"]},
                 {"cites", json::array()},
                 {"rounds", rounds}};
    if ((*run)["status"] == "done") {
        view["endedAt"] = (*run)["endedAt"];
        view["reply"] = (*run)["reply"];
    }
    return {{"run", view}, {"agent", agentView(mate)}, {"trace", trace}};
}

} // namespace

void addKestActions(ActionTable& table)
{
    table["kest/kestChat"] = kestChat;
    table["app/postKestMessageAction"] = postKestMessage;
    table["app/reactInKestAction"] = reactInKest;
    table["kest/run"] = runPage;
}

} // namespace devservice
