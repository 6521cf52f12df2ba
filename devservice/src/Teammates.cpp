#include "Teammates.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <regex>

namespace devservice {

namespace {

std::string topicOf(const std::string& text)
{
    static const std::regex mention(R"(@\w+\s*)");
    std::string topic = std::regex_replace(text, mention, "");
    if (topic.size() > 60)
        topic = topic.substr(0, 57) + "...";
    return topic.empty() ? std::string("the request") : topic;
}

// The steps a teammate takes: a search, two page reads, a tool call, and
// now and then a page that does not load or an approval to wait for.
json planFor(const std::string& agent, const std::string& topic, unsigned seed)
{
    const char* hosts[] = {"wikipedia.org", "news.ycombinator.com", "github.com", "nytimes.com",
                           "stripe.com"};
    const std::string host1 = hosts[seed % 5], host2 = hosts[(seed / 5 + 1) % 5];
    json steps = json::array();
    steps.push_back({{"tool", "search_web"},
                     {"label", "Search for \"" + topic + "\""},
                     {"why", "To see what is already out there"},
                     {"input", topic},
                     {"result", "12 results; the top three look useful."},
                     {"seconds", 2.5}});
    steps.push_back({{"tool", "browser"},
                     {"label", "Read " + host1},
                     {"chip", {{"text", host1}, {"host", host1}, {"url", "https://" + host1 + "/"}}},
                     {"result", "Took notes on the main points."},
                     {"seconds", 4.0},
                     {"fails", seed % 4 == 0}});
    steps.push_back({{"tool", "read_web_page"},
                     {"label", "Read " + host2},
                     {"chip", {{"text", host2}, {"host", host2}, {"url", "https://" + host2 + "/"}}},
                     {"result", "Found two figures worth quoting."},
                     {"seconds", 3.0}});
    if (seed % 3 == 0)
        steps.push_back({{"tool", "send_email"},
                         {"label", "Ask before sending the summary"},
                         {"why", "Sending mail needs your approval"},
                         {"input", "To: team@northwind.example"},
                         {"result", "Approved."},
                         {"seconds", 6.0},
                         {"waits", true}});
    steps.push_back({{"tool", agent == "forge" ? "run_tests" : "make_card"},
                     {"label", "Put the answer together"},
                     {"why", "To write it up clearly"},
                     {"result", "Done."},
                     {"seconds", 2.0}});
    return steps;
}

std::string replyFor(const std::string& agent, const std::string& topic)
{
    return "## " + topic +
           "\n\n"
           "Here is what I found, " +
           std::string(agent == "nova" ? "as the lead" : "in short") +
           ":\n\n"
           "- The main sources agree on the basics [1].\n"
           "- Two details differ; see the table below.\n"
           "- Next step: decide which option to try first.\n\n"
           "| Option | Effort | Fit |\n|---|---|---|\n| A | low | good |\n| B | medium | better |\n\n"
           "```bash\n# how I checked\ncurl -s https://example.com/status | jq .ok\n```\n\n"
           "More in the [brief](/tasks) and on [the web](https://en.wikipedia.org/wiki/Main_Page).";
}

void setTeammateStatus(Service& service, const std::string& workspace, const std::string& agent,
                       const std::string& status)
{
    json t = service.teammate(workspace, agent);
    if (t.is_null())
        return;
    t["status"] = status;
    service.store.put("teammate", workspace + ":" + agent, workspace, t);
}

double stepSeconds(Service& service, const json& step)
{
    return step["seconds"].get<double>() / service.options.timeScale;
}

// Ended runs are indexed by the day they ended, so Home reads today's without
// walking every run ever made; entries of earlier days go as the next run ends.
void noteEnded(Service& service, const json& run)
{
    const std::string workspace = run["workspace"];
    const std::string day = run["endedAt"].get<std::string>().substr(0, 10);
    for (const json& entry : service.store.list("endedrun", workspace))
        if (entry["day"] != day)
            service.store.remove("endedrun", entry["id"]);
    service.store.put("endedrun", run["id"], workspace, {{"id", run["id"]}, {"day", day}});
}

void finish(Service& service, json& run)
{
    const std::string workspace = run["workspace"], agent = run["agent"];
    service.store.remove("activerun", run["id"]);
    run["status"] = "done";
    run["endedAt"] = isoNow();
    run["doing"] = nullptr;
    noteEnded(service, run);
    const json mate = service.teammate(workspace, agent);
    const json by = {
        {"type", "agent"}, {"id", agent}, {"name", mate.value("name", agent)}, {"handle", agent}};
    auto direct = run["threadId"].get<std::string>().empty() ? std::nullopt
                                                             : service.store.get("dmthread", run["threadId"]);
    if (direct) {
        // A one-to-one chat: the answer goes into its thread.
        (*direct)["messages"].push_back({{"id", newId("dm")},
                                         {"role", "agent"},
                                         {"text", run["reply"]},
                                         {"runId", run["id"]},
                                         {"at", isoNow()}});
        (*direct)["status"] = "idle";
        (*direct)["updatedAt"] = isoNow();
        service.store.put("dmthread", run["threadId"], workspace, *direct);
        service.notify(workspace, run["author"], "reply", by, "replied to", run["topic"],
                       "The answer is in your chat.",
                       "/kest/" + agent + "/chat/" + run["threadId"].get<std::string>());
    } else if (!run["threadId"].get<std::string>().empty()) {
        const std::string id = newId("m");
        service.store.put(
            "message", id, workspace,
            {{"id", id},
             {"threadId", run["threadId"]},
             {"from", "agent"},
             {"by",
              {{"id", agent}, {"type", "agent"}, {"name", mate.value("name", agent)}, {"run", run["id"]}}},
             {"agent", agent},
             {"avatar", mate.value("avatar", "")},
             {"text", run["reply"]},
             {"to", json::array()},
             {"reads", json::array()},
             {"runId", run["id"]},
             {"failed", false},
             {"approvalIds", json::array()},
             {"reactions", json::array()},
             {"cites", {{{"type", "web"}, {"id", "c1"}, {"title", "Wikipedia"}, {"kind", "page"}}}},
             {"at", isoNow()}});
        service.notify(workspace, run["author"], "reply", by, "replied to", run["topic"],
                       "The answer is in the thread.", "/kest?thread=" + run["threadId"].get<std::string>());
    }
    if (!run["taskId"].get<std::string>().empty()) {
        if (auto task = service.store.get("task", run["taskId"])) {
            (*task)["status"] = "in_review";
            task->erase("working");
            (*task)["updatedAt"] = isoNow();
            (*task)["version"] = (*task)["version"].get<int>() + 1;
            (*task)["activity"].push_back(
                {{"id", newId("a")},
                 {"kind", "status"},
                 {"by", by},
                 {"change", {{"field", "status"}, {"from", "in_progress"}, {"to", "in_review"}}},
                 {"runId", run["id"]},
                 {"at", isoNow()}});
            service.store.put("task", run["taskId"], workspace, *task);
            service.notify(workspace, run["author"], "review", by, "asks you to review", (*task)["title"],
                           "The work is ready for you.", "/tasks/" + (*task)["key"].get<std::string>());
        }
    }
    setTeammateStatus(service, workspace, agent, "idle");
}

void advanceRun(Service& service, json run)
{
    const double t = now();
    if (t < run["nextAt"].get<double>())
        return;
    json& plan = run["plan"];
    const size_t at = run["step"].get<size_t>();
    if (run["status"] == "queued") {
        run["status"] = "running";
        setTeammateStatus(service, run["workspace"], run["agent"], "working");
    } else if (at < plan.size()) {
        // The current step ends; a waiting step first shows that it waits.
        json& step = plan[at];
        if (step.value("waits", false) && step.value("state", "") != "waiting") {
            step["state"] = "waiting";
            step["since"] = isoNow(); // Needs you lists the oldest wait first
            run["nextAt"] = t + stepSeconds(service, step);
            service.store.put("run", run["id"], run["workspace"], run);
            return;
        }
        step["state"] = step.value("fails", false) ? "failed" : "done";
        if (step["state"] == "failed")
            step["result"] = "The page did not load.";
        run["step"] = at + 1;
    }
    const size_t next = run["step"].get<size_t>();
    if (next >= plan.size()) {
        finish(service, run);
    } else {
        plan[next]["state"] = "running";
        run["doing"] = plan[next]["label"];
        run["nextAt"] = t + stepSeconds(service, plan[next]);
    }
    service.store.put("run", run["id"], run["workspace"], run);
}

void startAssignedTasks(Service& service)
{
    for (const json& space : service.store.list("workspace")) {
        const std::string workspace = space["id"];
        for (json task : service.store.list("task", workspace)) {
            if (task["status"] != "todo" || !task.contains("assignee") || task["assignee"]["type"] != "agent")
                continue;
            const double created = task.value("assignedAt", 0.0);
            if (created == 0.0) {
                task["assignedAt"] = now();
                service.store.put("task", task["id"], workspace, task);
                continue;
            }
            if (now() < created + 3.0 / service.options.timeScale)
                continue;
            const std::string agent = task["assignee"]["id"];
            const std::string runId = startRun(service, workspace, agent, task["title"], "",
                                               task["createdBy"].value("id", "u1"), task["id"]);
            task["status"] = "in_progress";
            task["working"] = {{"runId", runId}, {"doing", "Getting started"}};
            task["updatedAt"] = isoNow();
            task["version"] = task["version"].get<int>() + 1;
            service.store.put("task", task["id"], workspace, task);
        }
    }
}

} // namespace

std::string startRun(Service& service, const std::string& workspace, const std::string& agent,
                     const std::string& topic, const std::string& threadId, const std::string& author,
                     const std::string& taskId)
{
    const std::string id = newId("run");
    const std::string shortTopic = topicOf(topic);
    const unsigned seed = stableHash(id);
    service.store.put("activerun", id, workspace, json{{"id", id}});
    service.store.put("run", id, workspace,
                      {{"id", id},
                       {"workspace", workspace},
                       {"agent", agent},
                       {"status", "queued"},
                       {"startedAt", isoNow()},
                       {"threadId", threadId},
                       {"taskId", taskId},
                       {"author", author},
                       {"topic", shortTopic},
                       {"plan", planFor(agent, shortTopic, seed)},
                       {"step", 0},
                       {"nextAt", now() + 1.0 / service.options.timeScale},
                       {"reply", replyFor(agent, shortTopic)},
                       {"doing", "Reading the request"}});
    return id;
}

std::vector<std::string> recipients(Service& service, const std::string& workspace, const std::string& text,
                                    bool& triaged)
{
    triaged = false;
    std::vector<std::string> handles;
    const std::vector<json> kest = service.teammates(workspace);
    if (text.find("@all") != std::string::npos) {
        for (const json& t : kest)
            handles.push_back(t["handle"]);
        return handles;
    }
    static const std::regex mention(R"(@(\w+))");
    for (auto it = std::sregex_iterator(text.begin(), text.end(), mention); it != std::sregex_iterator();
         ++it) {
        const std::string handle = (*it)[1];
        const bool known =
            std::any_of(kest.begin(), kest.end(), [&](const json& t) { return t["handle"] == handle; });
        if (known && std::find(handles.begin(), handles.end(), handle) == handles.end())
            handles.push_back(handle);
    }
    if (!handles.empty())
        return handles;
    // The lead decides by what the message is about.
    triaged = true;
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    auto has = [&](std::initializer_list<const char*> words) {
        return std::any_of(words.begin(), words.end(),
                           [&](const char* w) { return lower.find(w) != std::string::npos; });
    };
    if (has({"write", "draft", "e-mail", "email", "copy", "post"}))
        return {"quill"};
    if (has({"bug", "code", "fix", "deploy", "test"}))
        return {"forge"};
    if (has({"design", "logo", "picture", "image"}))
        return {"pixel"};
    if (has({"research", "compare", "find", "look up", "competitor"}))
        return {"atlas"};
    return {"nova"};
}

std::vector<json> runsEndedToday(Service& service, const std::string& workspace)
{
    const std::string day = today();
    std::vector<json> runs;
    for (const json& entry : service.store.list("endedrun", workspace))
        if (entry["day"] == day)
            if (auto run = service.store.get("run", entry["id"]))
                runs.push_back(std::move(*run));
    return runs;
}

std::string addPastRun(Service& service, const PastRun& past)
{
    const std::string id = newId("run");
    const std::string topic = topicOf(past.topic);
    json plan = planFor(past.agent, topic, stableHash(id));
    for (json& step : plan) {
        step["state"] = step.value("fails", false) ? "failed" : "done";
        if (step["state"] == "failed")
            step["result"] = "The page did not load.";
    }
    if (past.failed) {
        plan.back()["state"] = "failed";
        plan.back()["result"] = past.summary;
    }
    json run = {{"id", id},
                {"workspace", past.workspace},
                {"agent", past.agent},
                {"status", past.failed ? "failed" : "done"},
                {"startedAt", iso(past.startedAt)},
                {"endedAt", iso(past.endedAt)},
                {"threadId", past.threadId},
                {"taskId", past.taskId},
                {"author", past.author},
                {"topic", topic},
                {"plan", plan},
                {"step", plan.size()},
                {"nextAt", past.endedAt},
                {"reply", past.failed ? std::string() : "## " + topic + "\n\n" + past.summary},
                {"summary", past.summary},
                {"doing", nullptr}};
    service.store.put("run", id, past.workspace, run);
    noteEnded(service, run);
    return id;
}

json traceOf(const json& run)
{
    json steps = json::array();
    const json& plan = run["plan"];
    for (const json& step : plan) {
        const std::string state = step.value("state", "");
        if (state.empty())
            continue;
        json view = {{"tool", step["tool"]}, {"label", step["label"]}, {"status", state}};
        for (const char* optional : {"chip", "why", "input"})
            if (step.contains(optional))
                view[optional] = step[optional];
        if (state == "done" || state == "failed")
            view["result"] = step["result"];
        steps.push_back(view);
    }
    // Two steps a round, as a teammate thinks again after each pair of calls.
    json rounds = json::array();
    for (size_t i = 0; i < steps.size(); i += 2) {
        json round = {{"steps", json::array()}};
        for (size_t j = i; j < std::min(steps.size(), i + 2); ++j)
            round["steps"].push_back(steps[j]);
        if (i == 0)
            round["doing"] = "Looking into " + run["topic"].get<std::string>();
        rounds.push_back(round);
    }
    json trace = {
        {"id", run["id"]}, {"status", run["status"]}, {"startedAt", run["startedAt"]}, {"rounds", rounds}};
    if (run.contains("endedAt") && !run["endedAt"].is_null())
        trace["endedAt"] = run["endedAt"];
    if (run.contains("doing") && run["doing"].is_string())
        trace["doing"] = run["doing"];
    return trace;
}

std::vector<json> activeRuns(Service& service, const std::string& workspace)
{
    std::vector<json> runs;
    for (const json& entry : service.store.list("activerun", workspace))
        if (auto run = service.store.get("run", entry["id"]))
            runs.push_back(std::move(*run));
    return runs;
}

void advance(Service& service, bool checkTasks)
{
    service.store.transaction([&] {
        if (checkTasks)
            startAssignedTasks(service);
        for (const json& run : activeRuns(service))
            advanceRun(service, run);
    });
}

Simulation::Simulation(Service& service) : m_service(service)
{
    m_thread = std::thread([this] {
        // Runs move every tick; assigned tasks are looked for once a second,
        // since that walks every task.
        for (unsigned tick = 0; !m_stop; ++tick) {
            try {
                advance(m_service, tick % 10 == 0);
            } catch (const std::exception& error) {
                std::fprintf(stderr, "kestro-devservice: the teammates stumbled: %s\n", error.what());
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
    });
}

Simulation::~Simulation()
{
    m_stop = true;
    m_thread.join();
}

} // namespace devservice
