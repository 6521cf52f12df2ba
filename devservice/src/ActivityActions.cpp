// Home's day (shell/activity) and the Needs you list (shell/waiting). Both
// are read from what the store already holds (ended runs, the room, task
// activity, notifications, drafts), so they follow the teammates' work
// without bookkeeping of their own, and every item's id is the id of the
// record it comes from: the same event has the same id on every call.

#include "Actions.h"
#include "Teammates.h"

#include <algorithm>
#include <map>
#include <regex>
#include <set>

namespace devservice {

namespace {

json agentActor(Service& s, const std::string& workspace, const std::string& handle)
{
    const json mate = s.teammate(workspace, handle);
    return {{"type", "agent"},
            {"id", handle},
            {"name", mate.is_null() ? json(handle) : mate["name"]},
            {"handle", handle},
            {"avatar", mate.is_null() ? json("/api/avatars/" + handle) : mate["avatar"]}};
}

// A stored "by" (task activity, notifications) as an ActorView. People are
// stored as "person" or with no type at all; the client knows them as "user".
json actorOf(Service& s, const std::string& workspace, const json& by)
{
    if (by.is_object() && by.value("type", "") == "agent")
        return agentActor(s, workspace, by["id"]);
    const std::string id = by.is_object() ? by.value("id", "") : "";
    const json name = by.is_object() && by.contains("name") ? by["name"] : s.person(id)["name"];
    return {
        {"type", "user"}, {"id", id}, {"name", name}, {"handle", undefinedTag()}, {"avatar", undefinedTag()}};
}

// A run's topic is what the user typed after the @mention, often lower-case;
// as the title of a line on Home it starts with a capital.
std::string titleOf(const json& run)
{
    std::string topic = run["topic"];
    if (!topic.empty() && topic[0] >= 'a' && topic[0] <= 'z')
        topic[0] = char(topic[0] - 'a' + 'A');
    return topic;
}

std::string runHref(const json& run)
{
    return "/kest/" + run["agent"].get<std::string>() + "/runs/" + run["id"].get<std::string>();
}

// A one-to-one chat is its user's own: its runs show to nobody else.
bool visibleTo(Service& s, const json& run, const std::string& user)
{
    const std::string thread = run.value("threadId", "");
    if (thread.empty())
        return true;
    const auto direct = s.store.get("dmthread", thread);
    return !direct || (*direct)["user"] == user;
}

std::string plainLine(std::string line)
{
    static const std::regex bullet(R"(^\s*(?:[-*+]|\d+\.)\s+)");
    static const std::regex link(R"(\[([^\]]+)\]\([^)]*\))");
    static const std::regex cite(R"(\s*\[\d+\])");
    static const std::regex marks(R"(\*\*|__|[*`])");
    line = std::regex_replace(line, bullet, "");
    line = std::regex_replace(line, link, "$1");
    line = std::regex_replace(line, cite, "");
    line = std::regex_replace(line, marks, "");
    const size_t from = line.find_first_not_of(" \t\r");
    const size_t to = line.find_last_not_of(" \t\r");
    return from == std::string::npos ? std::string() : line.substr(from, to - from + 1);
}

// The opening of a teammate's Markdown as plain sentences: its first
// paragraph (with the list under it when the paragraph ends in ":"), without
// headings, tables, code, emphasis, links or citation marks. Home shows one
// sentence where the room shows the whole answer.
std::vector<std::string> sentencesOf(const std::string& markdown)
{
    static const std::regex item(R"(^\s*(?:[-*+]|\d+\.)\s+)");
    std::string prose;
    bool code = false, listing = false;
    size_t at = 0;
    while (at <= markdown.size()) {
        const size_t end = std::min(markdown.find('\n', at), markdown.size());
        const std::string raw = markdown.substr(at, end - at);
        at = end + 1;
        const size_t indent = raw.find_first_not_of(" \t");
        if (indent != std::string::npos && raw.compare(indent, 3, "```") == 0) {
            code = !code;
            continue;
        }
        const std::string line = plainLine(raw);
        if (code || line.empty() || line[0] == '#' || line[0] == '|') {
            if (!prose.empty() && !(listing && line.empty()))
                break;
            continue;
        }
        if (prose.empty()) {
            prose = line;
        } else if (listing && std::regex_search(raw, item)) {
            const char last = prose.back();
            prose += (last == ':' || last == '.' || last == '!' || last == '?') ? " " : "; ";
            prose += line;
            continue;
        } else if (listing) {
            break;
        } else {
            prose += " " + line;
        }
        listing = prose.back() == ':';
    }
    if (!prose.empty() && std::string(".!?").find(prose.back()) == std::string::npos)
        prose += '.';
    std::vector<std::string> sentences;
    size_t start = 0;
    for (size_t i = 0; i < prose.size(); ++i) {
        const bool stop = std::string(".!?").find(prose[i]) != std::string::npos &&
                          (i + 1 == prose.size() || prose[i + 1] == ' ');
        if (stop) {
            sentences.push_back(prose.substr(start, i + 1 - start));
            start = i + 2;
        }
    }
    return sentences;
}

// Cut at a space, so a multi-byte character is never split.
std::string clip(const std::string& text, size_t limit)
{
    if (text.size() <= limit)
        return text;
    const size_t space = text.rfind(' ', limit - 3);
    return text.substr(0, space == std::string::npos ? 0 : space) + "...";
}

std::string statusName(const json& status)
{
    if (!status.is_string())
        return "nothing";
    std::string name = status;
    std::replace(name.begin(), name.end(), '_', ' ');
    return name;
}

json activity(ActionContext& ctx, const json&)
{
    Service& s = ctx.service;
    const std::string workspace = ctx.caller.workspace, day = today();
    const auto isToday = [&](const json& at) {
        return at.is_string() && at.get<std::string>().compare(0, day.size(), day) == 0;
    };
    std::vector<json> items;
    // Who and where of what is listed, so a notification about the same
    // thing (a reply, a review) does not show it twice.
    std::set<std::string> listed;
    const auto add = [&](const std::string& id, const char* kind, const json& actor, const std::string& verb,
                         const std::string& title, const std::string& text, const std::string& href,
                         const json& at) {
        items.push_back({{"id", id},
                         {"kind", kind},
                         {"actor", actor},
                         {"verb", verb},
                         {"title", clip(title, 120)},
                         {"text", text.empty() ? undefinedTag() : json(clip(text, 200))},
                         {"href", href},
                         {"at", at}});
        listed.insert(actor["id"].get<std::string>() + " " + href);
    };

    int done = 0, failed = 0;
    std::map<std::string, json> ended; // today's, by id
    for (json& run : runsEndedToday(s, workspace)) {
        ++(run["status"] == "failed" ? failed : done);
        if (visibleTo(s, run, ctx.caller.user))
            ended.emplace(run["id"].get<std::string>(), std::move(run));
    }

    // The room: a teammate's answer stands for the run that wrote it.
    std::set<std::string> answered;
    for (const json& m : s.store.list("message", workspace)) {
        if (m["from"] != "agent" || !isToday(m["at"]))
            continue;
        const bool reply = m.contains("threadId") && m["threadId"].is_string();
        const std::string thread = reply ? m["threadId"] : m["id"];
        const std::string runId =
            m.contains("runId") && m["runId"].is_string() ? m["runId"].get<std::string>() : std::string();
        const std::vector<std::string> sentences = sentencesOf(m["text"]);
        const std::string first = sentences.empty() ? std::string() : sentences[0];
        std::string title = first, text = sentences.size() > 1 ? sentences[1] : "";
        if (ended.count(runId)) {
            answered.insert(runId);
            title = titleOf(ended.at(runId));
            text = first;
        }
        add("message:" + m["id"].get<std::string>(), "message", agentActor(s, workspace, m["agent"]),
            reply ? "answered in the kest chat" : "posted in the kest chat", title, text,
            "/kest?thread=" + thread, m["at"]);
    }

    for (const auto& [id, run] : ended) {
        if (answered.count(id))
            continue;
        const bool ok = run["status"] == "done";
        const json actor = agentActor(s, workspace, run["agent"]);
        std::string text = run.value("summary", "");
        if (text.empty() && ok) {
            const std::vector<std::string> sentences = sentencesOf(run["reply"]);
            text = sentences.empty() ? "" : sentences[0];
        }
        add("run:" + id, ok ? "run" : "failed", actor, ok ? "finished" : "could not finish", titleOf(run),
            text, runHref(run), run["endedAt"]);
        // Its reply in a chat and its task have notifications of their own.
        const std::string who = actor["id"].get<std::string>() + " ";
        if (!run["threadId"].get<std::string>().empty())
            listed.insert(who + "/kest/" + run["agent"].get<std::string>() + "/chat/" +
                          run["threadId"].get<std::string>());
        if (!run["taskId"].get<std::string>().empty())
            if (auto task = s.store.get("task", run["taskId"]))
                listed.insert(who + "/tasks/" + (*task)["key"].get<std::string>());
    }

    for (const json& task : s.store.list("task", workspace)) {
        const std::string key = task["key"];
        for (const json& a : task["activity"]) {
            if (!isToday(a["at"]) || !a.contains("change") || a["change"].value("field", "") != "status")
                continue;
            // A teammate's move at the end of a run is told by the run.
            if (a.contains("runId") && a["runId"].is_string() && ended.count(a["runId"].get<std::string>()))
                continue;
            add("task:" + a["id"].get<std::string>(), "task", actorOf(s, workspace, a.value("by", json())),
                "moved", task["title"],
                "From " + statusName(a["change"].value("from", json())) + " to " +
                    statusName(a["change"].value("to", json())) + ".",
                "/tasks/" + key, a["at"]);
        }
    }

    for (const json& n : s.store.list("notification", workspace)) {
        if (n["user"] != ctx.caller.user || !isToday(n["at"]))
            continue;
        const json actor = actorOf(s, workspace, n["by"]);
        if (listed.count(actor["id"].get<std::string>() + " " + n["href"].get<std::string>()))
            continue;
        const std::string kind = n["kind"];
        add("notification:" + n["id"].get<std::string>(),
            kind == "reply"    ? "message"
            : kind == "review" ? "task"
                               : "notification",
            actor, n["verb"], n["title"], n["text"], n["href"], n["at"]);
    }

    std::sort(items.begin(), items.end(), [](const json& a, const json& b) {
        return a["at"] != b["at"] ? a["at"] > b["at"] : a["id"] < b["id"];
    });
    if (items.size() > 40)
        items.resize(40);

    json running = json::array();
    for (const json& run : activeRuns(s, workspace)) {
        if (!visibleTo(s, run, ctx.caller.user))
            continue;
        running.push_back({{"id", run["id"]},
                           {"agent", agentActor(s, workspace, run["agent"])},
                           {"title", titleOf(run)},
                           {"doing", run["doing"].is_string() ? run["doing"] : undefinedTag()},
                           {"href", runHref(run)},
                           {"startedAt", run["startedAt"]}});
    }
    return {{"day", day}, {"done", done}, {"failed", failed}, {"items", items}, {"running", running}};
}

json waiting(ActionContext& ctx, const json&)
{
    Service& s = ctx.service;
    const std::string workspace = ctx.caller.workspace;
    std::vector<json> items;
    json counts = {{"approvals", 0}, {"asks", 0}, {"drafts", 0}, {"reviews", 0}};
    const auto add = [&](const std::string& id, const char* kind, const char* count, const json& by,
                         const std::string& title, const std::string& text, const std::string& href,
                         const json& at, const json& task) {
        items.push_back({{"id", id},
                         {"kind", kind},
                         {"by", by},
                         {"title", title},
                         {"text", text},
                         {"href", href},
                         {"at", at},
                         {"task", task}});
        counts[count] = counts[count].get<int>() + 1;
    };

    // A run stands at a step that waits for a yes.
    for (const json& run : activeRuns(s, workspace)) {
        const size_t at = run["step"].get<size_t>();
        const json& plan = run["plan"];
        if (at >= plan.size() || plan[at].value("state", "") != "waiting" ||
            !visibleTo(s, run, ctx.caller.user))
            continue;
        const json& step = plan[at];
        std::string text = step.value("why", "It asks before it goes on");
        if (step.contains("input"))
            text += " (" + step["input"].get<std::string>() + ")";
        add(approvalIdOf(run, at), "approval", "approvals", agentActor(s, workspace, run["agent"]),
            step["label"], text + ".", runHref(run), step.value("since", run["startedAt"].get<std::string>()),
            undefinedTag());
    }

    for (const json& task : s.store.list("task", workspace)) {
        const std::string status = task["status"], key = task["key"];
        if (status != "needs_you" && status != "in_review")
            continue;
        // When and by whom the task came to where it is; else its last change.
        std::string since = task["updatedAt"];
        json mover, runId;
        for (const json& a : task["activity"])
            if (a.contains("change") && a["change"].value("field", "") == "status" &&
                a["change"].value("to", json()) == status) {
                since = a["at"];
                mover = a.value("by", json());
                runId = a.value("runId", json());
            }
        const json by = task.contains("assignee") ? task["assignee"]
                        : !mover.is_null()        ? mover
                                                  : task["createdBy"];
        const json ref = {{"key", key}, {"title", task["title"]}};
        if (status == "needs_you") {
            // The teammate's open question, when it asked one.
            const json* ask = nullptr;
            for (const json& a : task["asks"])
                if (a.value("status", "") == "open")
                    ask = &a;
            if (ask) {
                add("ask:" + (*ask)["id"].get<std::string>(), "ask", "asks",
                    agentActor(s, workspace, (*ask)["agent"]), task["title"], (*ask)["question"],
                    "/tasks/" + key, since, ref);
            } else {
                const std::vector<std::string> sentences = sentencesOf(task["description"]);
                add("ask:" + task["id"].get<std::string>(), "ask", "asks", actorOf(s, workspace, by),
                    task["title"], sentences.empty() ? "It waits for your answer." : sentences[0],
                    "/tasks/" + key, since, ref);
            }
        } else {
            std::string text = "Ready for you to look at.";
            if (runId.is_string())
                if (auto run = s.store.get("run", runId); run && !run->value("summary", "").empty())
                    text = (*run)["summary"];
            add("review:" + task["id"].get<std::string>(), "review", "reviews", actorOf(s, workspace, by),
                task["title"], text, "/tasks/" + key, since, ref);
        }
    }

    // A teammate's draft waits in its chat until someone looks.
    for (const json& draft : s.store.list("draft", workspace)) {
        if (draft.value("status", "") != "waiting")
            continue;
        const std::string agent = draft["agent"];
        add("draft:" + draft["id"].get<std::string>(), "draft", "drafts", agentActor(s, workspace, agent),
            draft["title"], draft["text"], "/kest/" + agent + "/chat", draft["at"], undefinedTag());
    }

    std::sort(items.begin(), items.end(), [](const json& a, const json& b) {
        return a["at"] != b["at"] ? a["at"] < b["at"] : a["id"] < b["id"];
    });
    return {{"items", items}, {"counts", counts}};
}

} // namespace

int waitingCount(ActionContext& ctx)
{
    return int(waiting(ctx, json::array())["items"].size());
}

void addActivityActions(ActionTable& table)
{
    table["shell/activity"] = activity;
    table["shell/waiting"] = waiting;
}

} // namespace devservice
