// One-to-one chats with a teammate: threads of messages, each answer a run.

#include "Actions.h"
#include "Teammates.h"

namespace devservice {

namespace {

json agentView(const json& t)
{
    return {{"handle", t["handle"]}, {"name", t["name"]}, {"title", t["title"]},  {"avatar", t["avatar"]},
            {"status", t["status"]}, {"lead", t["lead"]}, {"paused", isPaused(t)}};
}

// What the teammate is doing in the thread now, while its run works.
std::optional<std::string> doingIn(Service& s, const json& thread)
{
    if (thread.value("status", "") != "replying" || !thread.contains("runId"))
        return std::nullopt;
    if (auto run = s.store.get("run", thread["runId"]); run && (*run)["doing"].is_string())
        return (*run)["doing"].get<std::string>();
    return std::nullopt;
}

json summaryOf(Service& s, const json& thread)
{
    json summary = {{"id", thread["id"]},
                    {"call", thread.value("call", false)},
                    {"createdAt", thread["createdAt"]},
                    {"updatedAt", thread["updatedAt"]},
                    {"title", thread["title"]},
                    {"status", thread["status"]},
                    {"agent", thread["agent"]},
                    {"telegram", thread.value("telegram", false)},
                    {"replies", thread["messages"].size()}};
    if (!thread["messages"].empty()) {
        summary["firstMessage"] = thread["messages"].front();
        summary["lastMessage"] = thread["messages"].back();
    }
    if (thread.contains("runId"))
        summary["runId"] = thread["runId"];
    if (thread.contains("error"))
        summary["error"] = thread["error"];
    if (const auto doing = doingIn(s, thread))
        summary["doing"] = *doing;
    return summary;
}

json threadView(Service& s, json thread)
{
    if (const auto doing = doingIn(s, thread))
        thread["doing"] = *doing;
    thread["call"] = thread.value("call", false);
    thread["telegram"] = thread.value("telegram", false);
    return thread;
}

// The page of a teammate's chat, with one thread open or none.
json chatPage(ActionContext& ctx, const std::string& handle, const std::optional<std::string>& open)
{
    Service& s = ctx.service;
    const json mate = s.teammate(ctx.caller.workspace, handle);
    if (mate.is_null()) {
        ctx.notFound();
        return nullptr;
    }
    json threads = json::array(), traces = json::object();
    std::optional<json> opened;
    for (const json& thread : s.store.list("dmthread", ctx.caller.workspace)) {
        if (thread["agent"] != handle || thread["user"] != ctx.caller.user)
            continue;
        threads.push_back(summaryOf(s, thread));
        if (thread.contains("runId"))
            if (auto run = s.store.get("run", thread["runId"]))
                traces[thread["runId"].get<std::string>()] = traceOf(*run);
        if (open && thread["id"] == *open)
            opened = thread;
    }
    // Needs you sends the user here to look at the teammate's drafts.
    json drafts = json::array();
    for (const json& draft : s.store.list("draft", ctx.caller.workspace))
        if (draft["agent"] == handle && draft.value("status", "") == "waiting")
            drafts.push_back(draft);
    json page = {{"agent", agentView(mate)},   {"me", ctx.caller.user},
                 {"threads", threads},         {"total", threads.size()},
                 {"approvals", json::array()}, {"drafts", drafts},
                 {"traces", traces},           {"canManage", ctx.caller.canWrite()},
                 {"canWatch", true},           {"voice", false},
                 {"attach", json::array()}};
    if (open) {
        if (!opened) {
            ctx.notFound();
            return nullptr;
        }
        page["thread"] = threadView(s, *opened);
        if (opened->contains("runId"))
            if (auto run = s.store.get("run", (*opened)["runId"]))
                page["trace"] = traceOf(*run);
    }
    return page;
}

json chat(ActionContext& ctx, const json& args)
{
    return chatPage(ctx, text(args, 0, "handle"), std::nullopt);
}

json thread(ActionContext& ctx, const json& args)
{
    return chatPage(ctx, text(args, 0, "handle"), text(args, 1, "threadId"));
}

// Adds the user's message to a thread and starts the teammate's answer.
void ask(ActionContext& ctx, json& thread, const std::string& body)
{
    thread["messages"].push_back({{"id", newId("dm")}, {"role", "user"}, {"text", body}, {"at", isoNow()}});
    const std::string runId =
        startRun(ctx.service, ctx.caller.workspace, thread["agent"], body, thread["id"], ctx.caller.user);
    thread["runId"] = runId;
    thread["status"] = "replying";
    thread.erase("error");
    thread["updatedAt"] = isoNow();
    ctx.service.store.put("dmthread", thread["id"], ctx.caller.workspace, thread);
    ctx.changed("/kest/" + thread["agent"].get<std::string>() + "/chat");
}

json startThread(ActionContext& ctx, const json& args)
{
    if (auto refusal = ctx.refuseReadOnly())
        return *refusal;
    const json input = object(args, 0, "input");
    const std::string handle = memberText(input, "handle").value_or("");
    const std::string body = memberText(input, "text").value_or("");
    if (ctx.service.teammate(ctx.caller.workspace, handle).is_null())
        return {{"error", "There is no teammate called \"" + handle + "\" in this workspace."}};
    if (body.find_first_not_of(" \t\r\n") == std::string::npos)
        return {{"error", "Tell us what you need first, then press Send."}};
    json thread = {{"id", newId("th")},           {"agent", handle},           {"user", ctx.caller.user},
                   {"title", body.substr(0, 60)}, {"status", "idle"},          {"createdAt", isoNow()},
                   {"updatedAt", isoNow()},       {"messages", json::array()}, {"direct", true}};
    ask(ctx, thread, body);
    return {{"done", true}, {"id", thread["id"]}};
}

json sendMessage(ActionContext& ctx, const json& args)
{
    if (auto refusal = ctx.refuseReadOnly())
        return *refusal;
    const json input = object(args, 0, "input");
    const std::string threadId = memberText(input, "threadId").value_or("");
    const std::string body = memberText(input, "text").value_or("");
    auto thread = ctx.own("dmthread", threadId);
    if (!thread || (*thread)["user"] != ctx.caller.user)
        return {{"error", "That conversation is gone. Start a new one."}};
    if (body.find_first_not_of(" \t\r\n") == std::string::npos)
        return {{"error", "Tell us what you need first, then press Send."}};
    // While the teammate works on an answer, the message goes into it.
    if ((*thread)["status"] == "replying" && thread->contains("runId"))
        if (auto run = ctx.service.store.get("run", (*thread)["runId"]);
            run && (*run)["status"] != "done" && (*run)["status"] != "failed") {
            (*thread)["messages"].push_back(
                {{"id", newId("dm")}, {"role", "user"}, {"text", body}, {"at", isoNow()}});
            (*thread)["updatedAt"] = isoNow();
            ctx.service.store.put("dmthread", threadId, ctx.caller.workspace, *thread);
            handOver(ctx.service, *run, body);
            ctx.changed("/kest/" + (*thread)["agent"].get<std::string>() + "/chat");
            return {{"done", true}, {"id", threadId}};
        }
    ask(ctx, *thread, body);
    return {{"done", true}, {"id", threadId}};
}

} // namespace

void addDirectChatActions(ActionTable& table)
{
    table["kest/chat"] = chat;
    table["kest/thread"] = thread;
    table["app/startThreadAction"] = startThread;
    table["app/sendMessageAction"] = sendMessage;
}

} // namespace devservice
