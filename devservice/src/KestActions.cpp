// The kest room: messages, threads, posting with triage, reactions, runs.

#include "Actions.h"
#include "Teammates.h"
#include "Voices.h"

#include <algorithm>
#include <map>
#include <regex>
#include <unordered_map>

namespace devservice {

namespace {

// The room shows its latest top-level messages, a thread its latest replies;
// older ones stay in the store (the room page's counts include them).
constexpr size_t roomPage = 500;
constexpr size_t threadPage = 50;

// The runs answering in the room: not task work, not one-to-one chats.
std::vector<json> roomRuns(Service& s, const std::string& workspace)
{
    std::vector<json> out;
    for (json& run : activeRuns(s, workspace)) {
        const std::string thread = run.value("threadId", "");
        if (!thread.empty() && s.store.get("message", thread))
            out.push_back(std::move(run));
    }
    return out;
}

json answeringIn(const std::vector<json>& runs, const std::string& threadId)
{
    json out = json::array();
    for (const json& run : runs) {
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

json roomMessage(const json& m, const std::vector<const json*>& replies, const std::vector<json>& runs)
{
    json view = messageView(m);
    std::string last;
    json repliedBy = json::array();
    for (const json* r : replies) {
        last = (*r)["at"];
        const bool seen = std::any_of(repliedBy.begin(), repliedBy.end(),
                                      [&](const json& f) { return f["name"] == (*r)["by"]["name"]; });
        if (!seen) {
            json face = {{"name", (*r)["by"]["name"]}};
            if ((*r)["from"] == "agent") {
                face["agent"] = (*r)["agent"];
                face["avatar"] = r->value("avatar", "");
            } else {
                face["person"] = (*r)["by"]["id"];
            }
            repliedBy.push_back(face);
        }
    }
    view["replies"] = replies.size();
    view["lastReplyAt"] = last.empty() ? undefinedTag() : json(last);
    view["repliedBy"] = repliedBy;
    view["answering"] = answeringIn(runs, m["id"]);
    return view;
}

// The traces of the runs the page shows: those answering now and those that
// wrote a message on the page.
json traces(Service& s, const std::vector<json>& runs, const std::vector<const json*>& shown)
{
    json out = json::object();
    for (const json& run : runs)
        out[run["id"].get<std::string>()] = traceOf(run);
    for (const json* m : shown) {
        const std::string runId = m->contains("runId") && (*m)["runId"].is_string() ? (*m)["runId"] : "";
        if (runId.empty() || out.contains(runId))
            continue;
        if (auto run = s.store.get("run", runId))
            out[runId] = traceOf(*run);
    }
    return out;
}

// The kest as the room lists it; a teammate needs you while one of its runs
// waits for your approval.
json kestList(Service& s, const Caller& caller)
{
    std::map<std::string, bool> waiting;
    for (const json& run : activeRuns(s, caller.workspace)) {
        if (!waitsForYou(run))
            continue;
        const std::string thread = run.value("threadId", "");
        const auto direct = thread.empty() ? std::nullopt : s.store.get("dmthread", thread);
        if (!direct || (*direct)["user"] == caller.user)
            waiting[run["agent"]] = true;
    }
    json kest = json::array();
    for (const json& t : s.teammates(caller.workspace))
        kest.push_back({{"handle", t["handle"]},
                        {"name", t["name"]},
                        {"title", t["title"]},
                        {"avatar", t["avatar"]},
                        {"status", t["status"]},
                        {"needsYou", waiting.count(t["handle"]) > 0},
                        {"lead", t["lead"]}});
    return kest;
}

json kestChat(ActionContext& ctx, const json& args)
{
    Service& s = ctx.service;
    const std::string workspace = ctx.caller.workspace;
    const auto threadId = optionalText(args, 0, "thread");
    const std::vector<json> all = s.store.list("message", workspace);
    // Replies by thread, in the order they were posted.
    std::vector<const json*> top;
    std::unordered_map<std::string, std::vector<const json*>> replies;
    for (const json& m : all) {
        if (m.contains("threadId") && m["threadId"].is_string())
            replies[m["threadId"].get<std::string>()].push_back(&m);
        else
            top.push_back(&m);
    }
    const std::vector<json> runs = roomRuns(s, workspace);
    static const std::vector<const json*> none;
    const auto repliesOf = [&](const std::string& id) -> const std::vector<const json*>& {
        const auto found = replies.find(id);
        return found == replies.end() ? none : found->second;
    };
    json messages = json::array();
    std::vector<const json*> shown;
    for (size_t i = top.size() > roomPage ? top.size() - roomPage : 0; i < top.size(); ++i) {
        messages.push_back(roomMessage(*top[i], repliesOf((*top[i])["id"]), runs));
        shown.push_back(top[i]);
    }
    json result = {{"me", ctx.caller.user},
                   {"messages", messages},
                   {"answering", answeringIn(runs, "")},
                   {"reads", true}};
    if (threadId) {
        const auto first = ctx.own("message", *threadId);
        if (!first) {
            ctx.notFound();
        } else {
            const auto& all = repliesOf(*threadId);
            json page = json::array();
            json with = json::array();
            for (size_t i = all.size() > threadPage ? all.size() - threadPage : 0; i < all.size(); ++i) {
                page.push_back(messageView(*all[i]));
                shown.push_back(all[i]);
            }
            for (const json* r : all)
                if ((*r)["from"] == "agent" &&
                    std::find(with.begin(), with.end(), (*r)["agent"]) == with.end())
                    with.push_back((*r)["agent"]);
            result["thread"] = {{"message", messageView(*first)},
                                {"replies", page},
                                {"total", all.size()},
                                {"answering", answeringIn(runs, *threadId)},
                                {"with", with}};
        }
    }
    result["traces"] = traces(s, runs, shown);
    result["kest"] = kestList(s, ctx.caller);
    return result;
}

// "stop", "@forge stop", "stop please", "please stop, wrong thread": a short
// message with the word in it. A longer one is more likely a question about
// stopping than an order to.
bool asksToStop(const std::string& text)
{
    static const std::regex stop(R"((^|[^\w])stop([^\w]|$))", std::regex::icase);
    if (!std::regex_search(text, stop))
        return false;
    static const std::regex word(R"((^|\s)[^@\s]+)");
    const auto words =
        std::distance(std::sregex_iterator(text.begin(), text.end(), word), std::sregex_iterator());
    return words <= 6;
}

// The lead says whom it passed an unaddressed message to, when more than one
// teammate would have fit.
void announcePick(Service& s, const std::string& workspace, const std::string& thread, const Routing& routing)
{
    const std::vector<json> kest = s.teammates(workspace);
    if (kest.empty() || routing.to.empty() || kest.front()["handle"] == routing.to.front())
        return;
    const json& lead = kest.front();
    const std::string id = newId("m");
    s.store.put("message", id, workspace,
                {{"id", id},
                 {"threadId", thread},
                 {"from", "agent"},
                 {"by", {{"id", lead["handle"]}, {"type", "agent"}, {"name", lead["name"]}}},
                 {"agent", lead["handle"]},
                 {"avatar", lead["avatar"]},
                 {"text", passingNote(routing.to.front(), routing.alsoFit)},
                 {"to", json::array()},
                 {"reads", json::array()},
                 {"failed", false},
                 {"approvalIds", json::array()},
                 {"reactions", json::array()},
                 {"cites", json::array()},
                 {"at", isoNow()}});
}

json postKestMessage(ActionContext& ctx, const json& args)
{
    if (auto refusal = ctx.refuseReadOnly())
        return *refusal;
    Service& s = ctx.service;
    const std::string workspace = ctx.caller.workspace;
    const json input = object(args, 0, "input");
    const std::string text = memberText(input, "text").value_or("");
    if (text.find_first_not_of(" \t\r\n") == std::string::npos)
        return {{"error", "Tell us what you need first, then press Send."}};
    const auto threadId = memberText(input, "threadId");
    if (threadId && !ctx.own("message", *threadId))
        return {{"error", "That thread is gone. Start a new message instead."}};
    const json author = s.person(ctx.caller.user);
    // The answers already running in the thread the message goes to.
    std::vector<json> running;
    if (threadId)
        for (json& run : activeRuns(s, workspace))
            if (run["threadId"] == *threadId)
                running.push_back(std::move(run));
    const Routing routing = route(s, workspace, text);
    const bool stopping = threadId && asksToStop(text);
    // In a thread where teammates are at work, a message that names nobody
    // is for them: it goes into their answers.
    const bool toRunning = !stopping && routing.triaged && !running.empty();
    const bool triaged = routing.triaged && !stopping && !toRunning;
    json to = json::array();
    if (!routing.triaged)
        for (const auto* list : {&routing.to, &routing.paused})
            for (const std::string& handle : *list)
                to.push_back(handle);
    const std::string id = newId("m");
    json message = {{"id", id},
                    {"from", "person"},
                    {"by", {{"id", ctx.caller.user}, {"type", "person"}, {"name", author["name"]}}},
                    {"text", text},
                    {"to", to},
                    {"reads", {ctx.caller.user}},
                    {"failed", false},
                    {"approvalIds", json::array()},
                    {"reactions", json::array()},
                    {"cites", json::array()},
                    {"at", isoNow()}};
    if (threadId)
        message["threadId"] = *threadId;
    s.store.put("message", id, workspace, message);
    const std::string thread = threadId.value_or(id);

    json started = json::array(), handed = json::array(), stopped = json::array(), skipped = json::array();
    if (stopping) {
        // "@forge stop" stops Forge; "stop" alone stops everyone at work here.
        const bool named = !routing.triaged && !routing.everyone;
        const std::string name = author["name"];
        for (const json& run : running) {
            const std::string agent = run["agent"];
            if (named && std::find(routing.to.begin(), routing.to.end(), agent) == routing.to.end() &&
                std::find(routing.paused.begin(), routing.paused.end(), agent) == routing.paused.end())
                continue;
            stopRun(s, run, name.substr(0, name.find(' ')));
            stopped.push_back(agent);
        }
    } else if (toRunning) {
        for (const json& run : running) {
            handOver(s, run, text);
            handed.push_back(run["agent"]);
        }
    } else {
        for (const std::string& agent : routing.to) {
            const auto busy = std::find_if(running.begin(), running.end(),
                                           [&](const json& run) { return run["agent"] == agent; });
            if (busy != running.end()) {
                handOver(s, *busy, text);
                handed.push_back(agent);
            } else {
                startRun(s, workspace, agent, text, thread, ctx.caller.user);
                started.push_back(agent);
            }
        }
        for (const std::string& agent : routing.paused)
            skipped.push_back({{"agent", agent}, {"error", "It is paused in its settings."}});
        if (triaged && !routing.alsoFit.empty() && !started.empty())
            announcePick(s, workspace, thread, routing);
    }
    ctx.changed("/kest");
    json result = {{"done", true}, {"threadId", thread}, {"started", started}, {"triaging", triaged}};
    if (!handed.empty())
        result["handed"] = handed;
    if (stopping)
        result["stopped"] = stopped;
    if (!skipped.empty())
        result["skipped"] = skipped;
    return result;
}

json reactInKest(ActionContext& ctx, const json& args)
{
    if (auto refusal = ctx.refuseReadOnly())
        return *refusal;
    const std::string messageId = text(args, 0, "messageId");
    const std::string emoji = text(args, 1, "emoji");
    auto message = ctx.own("message", messageId);
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
    return {{"handle", t["handle"]}, {"name", t["name"]}, {"title", t["title"]},  {"avatar", t["avatar"]},
            {"status", t["status"]}, {"lead", t["lead"]}, {"paused", isPaused(t)}};
}

// A step's input as the run page shows it: tools take JSON, so JSON text is
// sent as the value it is; anything else as the text it was.
json inputValue(const json& step)
{
    const std::string input = step.value("input", "");
    if (!input.empty() && (input[0] == '{' || input[0] == '[')) {
        json parsed = json::parse(input, nullptr, false);
        if (!parsed.is_discarded())
            return parsed;
    }
    return input;
}

// The run's rounds as the run page lists them: each with its calls and, when
// its steps have run, when it started and ended.
json roundsOf(const json& run)
{
    struct Round {
        json calls = json::array();
        std::string startedAt, endedAt;
        bool open = false;
    };
    std::map<size_t, Round> rounds;
    const json& plan = run["plan"];
    for (size_t i = 0; i < plan.size(); ++i) {
        const json& step = plan[i];
        Round& round = rounds[step.value("round", i / 2)];
        const std::string state = step.value("state", "");
        if (state.empty() || state == "running" || state == "waiting")
            round.open = true;
        if (state.empty())
            continue;
        if (round.startedAt.empty())
            round.startedAt = step.value("startedAt", run["startedAt"].get<std::string>());
        round.endedAt = step.value("endedAt", round.endedAt);
        json call = {{"tool", step["tool"]},
                     {"label", step["label"]},
                     {"input", inputValue(step)},
                     {"why", step.value("why", "")},
                     {"status", state}};
        if (state == "done" || state == "failed")
            call["result"] = step.value("result", "");
        if (state == "waiting")
            call["approvalId"] = approvalIdOf(run, i);
        round.calls.push_back(call);
    }
    const json doings = run.value("rounds", json::array());
    const bool ended = run["status"] == "done" || run["status"] == "failed";
    json out = json::array();
    for (auto& [index, round] : rounds) {
        if (round.calls.empty())
            continue;
        json view = {{"startedAt", round.startedAt},
                     {"doing", index < doings.size() ? doings[index]["doing"] : json("")},
                     {"calls", round.calls}};
        if ((!round.open || ended) && !round.endedAt.empty())
            view["endedAt"] = round.endedAt;
        out.push_back(view);
    }
    return out;
}

json runPage(ActionContext& ctx, const json& args)
{
    const std::string handle = text(args, 0, "handle");
    const std::string runId = text(args, 1, "runId");
    const auto run = ctx.own("run", runId);
    const json mate = ctx.service.teammate(ctx.caller.workspace, handle);
    if (!run || mate.is_null() || (*run)["agent"] != handle) {
        ctx.notFound();
        return nullptr;
    }
    json view = {{"id", runId},
                 {"agent", handle},
                 {"status", (*run)["status"]},
                 {"startedAt", (*run)["startedAt"]},
                 {"cites", run->value("cites", json::array())},
                 {"rounds", roundsOf(*run)}};
    if (run->contains("endedAt") && (*run)["endedAt"].is_string())
        view["endedAt"] = (*run)["endedAt"];
    if ((*run)["status"] == "done")
        view["reply"] = (*run)["reply"];
    if (run->contains("draft"))
        view["draft"] = (*run)["draft"];
    return {{"run", view}, {"agent", agentView(mate)}, {"trace", traceOf(*run)}};
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
