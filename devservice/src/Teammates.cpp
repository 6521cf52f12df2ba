#include "Teammates.h"

#include "Dice.h"
#include "Plans.h"
#include "Voices.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <regex>

namespace devservice {

namespace {

// Live runs are numbered per workspace and take their id, and with it their
// seed, from the number: a fresh demo plays the same plans, the same answers
// and the same rare failure every time it is started.
std::string liveRunId(const std::string& workspace, int number)
{
    Dice dice((uint64_t(stableHash(workspace)) << 32) ^ uint64_t(number));
    return dice.id("run");
}

// About one answer in twelve falls through, as the seed says. A workspace's
// first dozen answers always arrive, so a demo opens on teammates that deliver.
bool fatedToFail(unsigned seed, int number)
{
    return number > 12 && seed % 12 == 0;
}

json actorOf(const std::string& agent, const json& mate)
{
    return {{"type", "agent"}, {"id", agent}, {"name", mate.value("name", agent)}, {"handle", agent}};
}

void setTeammateStatus(Service& service, const std::string& workspace, const std::string& agent,
                       const std::string& status)
{
    json t = service.teammate(workspace, agent);
    if (t.is_null() || t["status"] == status)
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
    if (day != today())
        return;
    for (const json& entry : service.store.list("endedrun", workspace))
        if (entry["day"] != day)
            service.store.remove("endedrun", entry["id"]);
    service.store.put("endedrun", run["id"], workspace, {{"id", run["id"]}, {"day", day}});
}

bool answersInRoom(Service& service, const json& run)
{
    const std::string thread = run.value("threadId", "");
    return !thread.empty() && service.store.get("message", thread).has_value();
}

// A run has one message in its room thread, made when it first has something
// to say (a wait for approval, or the answer) and rewritten after, so the
// thread never shows a run twice.
void putRoomMessage(Service& service, json& run, const std::string& text, bool failed, const json& cites,
                    const json& approvalIds)
{
    const std::string workspace = run["workspace"], agent = run["agent"];
    const std::string known = run.value("messageId", "");
    std::optional<json> message = known.empty() ? std::nullopt : service.store.get("message", known);
    if (!message) {
        const json mate = service.teammate(workspace, agent);
        const std::string id = newId("m");
        message = json{
            {"id", id},
            {"threadId", run["threadId"]},
            {"from", "agent"},
            {"by",
             {{"id", agent}, {"type", "agent"}, {"name", mate.value("name", agent)}, {"run", run["id"]}}},
            {"agent", agent},
            {"avatar", mate.value("avatar", "")},
            {"to", json::array()},
            {"reads", json::array()},
            {"runId", run["id"]},
            {"reactions", json::array()}};
        run["messageId"] = id;
    }
    (*message)["text"] = text;
    (*message)["failed"] = failed;
    (*message)["cites"] = cites;
    (*message)["approvalIds"] = approvalIds;
    (*message)["at"] = isoNow();
    service.store.put("message", (*message)["id"], workspace, *message);
}

enum class Ending { Done, Failed, Stopped };

void endTask(Service& service, const json& run, const json& by, Ending ending)
{
    auto task = service.store.get("task", run["taskId"]);
    if (!task)
        return;
    const std::string workspace = run["workspace"];
    const bool done = ending == Ending::Done;
    const std::string status = done ? "in_review" : "needs_you";
    (*task)["status"] = status;
    task->erase("working");
    (*task)["updatedAt"] = isoNow();
    (*task)["version"] = (*task)["version"].get<int>() + 1;
    (*task)["activity"].push_back({{"id", newId("a")},
                                   {"kind", "status"},
                                   {"by", by},
                                   {"change", {{"field", "status"}, {"from", "in_progress"}, {"to", status}}},
                                   {"runId", run["id"]},
                                   {"at", isoNow()}});
    if (!done) {
        // The teammate asks what to do rather than leave the task hanging.
        (*task)["asks"].push_back({{"id", newId("ask")},
                                   {"taskId", (*task)["id"]},
                                   {"agent", run["agent"]},
                                   {"kind", "question"},
                                   {"question", run["summary"].get<std::string>() + " Shall I try again?"},
                                   {"options", {"Try again", "Leave it with me"}},
                                   {"status", "open"},
                                   {"createdAt", isoNow()}});
        (*task)["waiting"] = (*task)["waiting"].get<int>() + 1;
    }
    service.store.put("task", run["taskId"], workspace, *task);
    service.notify(workspace, run["author"], done ? "review" : "ask", by,
                   done ? "asks you to review" : "needs you on", (*task)["title"],
                   done ? "The work is ready for you." : run["summary"].get<std::string>(),
                   "/tasks/" + (*task)["key"].get<std::string>());
}

// Ends a run: its answer (or why there is none) goes where the request came
// from: the room thread, the one-to-one chat, or the task.
void endRun(Service& service, json& run, Ending ending, const std::string& reason)
{
    const std::string workspace = run["workspace"], agent = run["agent"];
    const std::string threadId = run["threadId"];
    service.store.remove("activerun", run["id"]);
    run["status"] = ending == Ending::Done ? "done" : "failed";
    run["endedAt"] = isoNow();
    run["doing"] = nullptr;
    std::string text;
    json cites = json::array();
    if (ending == Ending::Done) {
        json taken = json::array();
        for (const json& step : run["plan"])
            if (step.value("state", "") == "done")
                taken.push_back(step);
        std::vector<std::string> extras;
        for (const json& extra : run.value("extras", json::array()))
            extras.push_back(extra);
        const Answer answer = answerFor(agent, run["topic"], run.value("seed", 0u), pagesRead(taken), extras);
        text = answer.text;
        cites = answer.cites;
        run["reply"] = text;
        run["cites"] = cites;
        if (!answer.draft.is_null())
            run["draft"] = answer.draft;
    } else {
        run["summary"] = reason;
        text = ending == Ending::Stopped ? stoppedNote(run) : reason;
    }
    noteEnded(service, run);
    const json mate = service.teammate(workspace, agent);
    const json by = actorOf(agent, mate);
    const bool failed = ending == Ending::Failed;
    auto direct = threadId.empty() ? std::nullopt : service.store.get("dmthread", threadId);
    if (direct) {
        json message = {
            {"id", newId("dm")}, {"role", "agent"}, {"text", text}, {"runId", run["id"]}, {"at", isoNow()}};
        if (failed)
            message["failed"] = true;
        if (!cites.empty())
            message["cites"] = cites;
        (*direct)["messages"].push_back(message);
        (*direct)["status"] = failed ? "failed" : "idle";
        if (failed)
            (*direct)["error"] = reason;
        else
            direct->erase("error");
        (*direct)["updatedAt"] = isoNow();
        service.store.put("dmthread", threadId, workspace, *direct);
        if (ending != Ending::Stopped)
            service.notify(workspace, run["author"], "reply", by, failed ? "could not answer" : "replied to",
                           run["topic"], failed ? reason : "The answer is in your chat.",
                           "/kest/" + agent + "/chat/" + threadId);
    } else if (answersInRoom(service, run)) {
        putRoomMessage(service, run, text, failed, cites, json::array());
        if (ending != Ending::Stopped)
            service.notify(workspace, run["author"], "reply", by, failed ? "could not answer" : "replied to",
                           run["topic"], failed ? reason : "The answer is in the thread.",
                           "/kest?thread=" + threadId);
    }
    if (!run["taskId"].get<std::string>().empty())
        endTask(service, run, by, ending);
    // A teammate answering in two places stays busy until both are done.
    const auto others = activeRuns(service, workspace);
    if (std::none_of(others.begin(), others.end(), [&](const json& r) { return r["agent"] == agent; }))
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
        json& step = plan[at];
        // A step that needs the user's OK first shows that it waits; in the
        // room the run says so in its thread, with the approval to give.
        if (step.value("waits", false) && step.value("state", "") != "waiting") {
            step["state"] = "waiting";
            step["since"] = isoNow(); // Needs you lists the oldest wait first
            run["nextAt"] = t + stepSeconds(service, step);
            if (answersInRoom(service, run))
                putRoomMessage(service, run, waitingNote(step), false, json::array(),
                               json::array({approvalIdOf(run, at)}));
            service.store.put("run", run["id"], run["workspace"], run);
            return;
        }
        const bool waited = step.value("state", "") == "waiting";
        step["endedAt"] = isoNow();
        if (step.value("fatal", false)) {
            step["state"] = "failed";
            step["result"] = step["trouble"];
            run["step"] = at + 1;
            endRun(service, run, Ending::Failed, step["trouble"]);
            service.store.put("run", run["id"], run["workspace"], run);
            return;
        }
        const bool stumbled = step.value("stumbles", false);
        step["state"] = stumbled ? "failed" : "done";
        if (stumbled)
            step["result"] = step["trouble"];
        if (waited && answersInRoom(service, run))
            putRoomMessage(service, run, "Thanks for the OK. Finishing the answer now.", false, json::array(),
                           json::array());
        run["step"] = at + 1;
    }
    const size_t next = run["step"].get<size_t>();
    if (next >= plan.size()) {
        endRun(service, run, Ending::Done, "");
    } else {
        plan[next]["state"] = "running";
        plan[next]["startedAt"] = isoNow();
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
            if (isPaused(service.teammate(workspace, task["assignee"]["id"])))
                continue; // it waits until the teammate is back
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

// Whether `word` starts a word of `text` (both lower case): "test" is in
// "run the tests" but not in "the latest".
bool hasWord(const std::string& text, const std::string& word)
{
    for (size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1))
        if (at == 0 || !std::isalnum(static_cast<unsigned char>(text[at - 1])))
            return true;
    return false;
}

// The teammates whose work a message is about, the best fit first.
std::vector<std::string> fitsOf(const std::string& text)
{
    static const std::pair<const char*, std::vector<const char*>> roles[] = {
        {"quill", {"write", "draft", "e-mail", "email", "copy", "post", "newsletter", "announce"}},
        {"forge", {"bug", "code", "fix", "deploy", "test", "build", "broken", "error"}},
        {"pixel", {"design", "logo", "picture", "image", "colour", "color", "layout", "banner"}},
        {"atlas", {"research", "compare", "find", "look up", "competitor", "traffic", "referrer"}},
        {"ledger", {"invoice", "revenue", "budget", "cost", "spend", "price", "pricing", "payout", "runway"}},
    };
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    std::vector<std::string> fits;
    for (const auto& [handle, words] : roles)
        if (std::any_of(words.begin(), words.end(), [&](const char* w) { return hasWord(lower, w); }))
            fits.push_back(handle);
    return fits;
}

} // namespace

bool isPaused(const json& teammate)
{
    return teammate.is_object() && teammate.value("paused", false);
}

std::string approvalIdOf(const json& run, size_t step)
{
    return "approval:" + run["id"].get<std::string>() + ":" + std::to_string(step);
}

bool waitsForYou(const json& run)
{
    const size_t at = run["step"].get<size_t>();
    return at < run["plan"].size() && run["plan"][at].value("state", "") == "waiting";
}

std::string startRun(Service& service, const std::string& workspace, const std::string& agent,
                     const std::string& topic, const std::string& threadId, const std::string& author,
                     const std::string& taskId)
{
    const int number = service.store.next("run:" + workspace);
    const std::string id = liveRunId(workspace, number);
    const std::string shortTopic = topicOf(topic);
    const unsigned seed = stableHash(id);
    const Plan plan = planFor(agent, shortTopic, seed, fatedToFail(seed, number));
    service.store.put("activerun", id, workspace, json{{"id", id}});
    service.store.put("run", id, workspace,
                      {{"id", id},
                       {"number", number},
                       {"seed", seed},
                       {"workspace", workspace},
                       {"agent", agent},
                       {"status", "queued"},
                       {"startedAt", isoNow()},
                       {"threadId", threadId},
                       {"taskId", taskId},
                       {"author", author},
                       {"topic", shortTopic},
                       {"plan", plan.steps},
                       {"rounds", plan.rounds},
                       {"extras", json::array()},
                       {"step", 0},
                       {"nextAt", now() + 1.0 / service.options.timeScale},
                       {"doing", "Reading the request"}});
    return id;
}

void handOver(Service& service, json run, const std::string& request)
{
    json& extras = run["extras"];
    extras.push_back(topicOf(request));
    const json round =
        extraRound(run["agent"], topicOf(request), run.value("seed", 0u) + unsigned(extras.size()));
    const size_t index = run["rounds"].size();
    run["rounds"].push_back({{"doing", round["doing"]}});
    for (json step : round["steps"]) {
        step["round"] = index;
        run["plan"].push_back(step);
    }
    service.store.put("run", run["id"], run["workspace"], run);
}

void stopRun(Service& service, json run, const std::string& byName)
{
    const std::string why = "Stopped by " + byName + ".";
    const size_t at = run["step"].get<size_t>();
    if (at < run["plan"].size() && !run["plan"][at].value("state", "").empty()) {
        json& step = run["plan"][at];
        step["state"] = "failed";
        step["result"] = why;
        step["endedAt"] = isoNow();
    }
    endRun(service, run, Ending::Stopped, why);
    service.store.put("run", run["id"], run["workspace"], run);
}

Routing route(Service& service, const std::string& workspace, const std::string& text)
{
    Routing routing;
    const std::vector<json> kest = service.teammates(workspace);
    const auto add = [&](const json& t) {
        const std::string handle = t["handle"];
        auto& list = isPaused(t) ? routing.paused : routing.to;
        if (std::find(list.begin(), list.end(), handle) == list.end())
            list.push_back(handle);
    };
    static const std::regex everyone(R"(@(all|everyone)\b)", std::regex::icase);
    if (std::regex_search(text, everyone)) {
        routing.everyone = true;
        for (const json& t : kest)
            add(t);
        return routing;
    }
    static const std::regex mention(R"(@(\w+))");
    for (auto it = std::sregex_iterator(text.begin(), text.end(), mention); it != std::sregex_iterator();
         ++it) {
        const std::string handle = (*it)[1];
        const auto found =
            std::find_if(kest.begin(), kest.end(), [&](const json& t) { return t["handle"] == handle; });
        if (found != kest.end())
            add(*found);
    }
    if (!routing.to.empty() || !routing.paused.empty())
        return routing;
    // Nobody named: the lead decides by what the message is about.
    routing.triaged = true;
    std::vector<std::string> fits = fitsOf(text);
    if (fits.empty() && !kest.empty())
        fits.push_back(kest.front()["handle"]);
    for (size_t i = 0; i < fits.size(); ++i) {
        const json t = service.teammate(workspace, fits[i]);
        if (t.is_null())
            continue;
        if (routing.to.empty() && routing.paused.empty())
            add(t);
        else
            routing.alsoFit.push_back(fits[i]);
    }
    return routing;
}

std::vector<std::string> recipients(Service& service, const std::string& workspace, const std::string& text,
                                    bool& triaged)
{
    const Routing routing = route(service, workspace, text);
    triaged = routing.triaged;
    return routing.to;
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
    const std::string id = past.id.empty() ? newId("run") : past.id;
    const unsigned seed = past.seed ? past.seed : stableHash(id);
    const std::string topic = topicOf(past.topic);
    Plan plan = planFor(past.agent, topic, seed, past.failed);
    // The steps share the run's time evenly; none runs after a fatal one.
    const double span = (past.endedAt - past.startedAt) / double(std::max<size_t>(1, plan.steps.size()));
    bool over = false;
    for (size_t i = 0; i < plan.steps.size() && !over; ++i) {
        json& step = plan.steps[i];
        step["startedAt"] = iso(past.startedAt + double(i) * span);
        step["endedAt"] = iso(past.startedAt + double(i + 1) * span);
        if (step.value("fatal", false)) {
            step["state"] = "failed";
            step["result"] = past.summary;
            over = true;
        } else if (step.value("stumbles", false)) {
            step["state"] = "failed";
            step["result"] = step["trouble"];
        } else {
            step["state"] = "done";
        }
    }
    const std::string reply = past.failed          ? std::string()
                              : past.reply.empty() ? "## " + topic + "\n\n" + past.summary
                                                   : past.reply;
    json run = {{"id", id},
                {"seed", seed},
                {"workspace", past.workspace},
                {"agent", past.agent},
                {"status", past.failed ? "failed" : "done"},
                {"startedAt", iso(past.startedAt)},
                {"endedAt", iso(past.endedAt)},
                {"threadId", past.threadId},
                {"taskId", past.taskId},
                {"author", past.author},
                {"topic", topic},
                {"plan", plan.steps},
                {"rounds", plan.rounds},
                {"extras", json::array()},
                {"step", plan.steps.size()},
                {"nextAt", past.endedAt},
                {"reply", reply},
                {"summary", past.summary},
                {"doing", nullptr}};
    if (!past.cites.is_null())
        run["cites"] = past.cites;
    if (!past.draft.is_null())
        run["draft"] = past.draft;
    service.store.put("run", id, past.workspace, run);
    noteEnded(service, run);
    return id;
}

json traceOf(const json& run)
{
    // Steps are grouped by the round they belong to: what the teammate
    // thought before them. Rounds not started yet are not shown.
    std::map<size_t, json> byRound;
    const json& plan = run["plan"];
    for (size_t i = 0; i < plan.size(); ++i) {
        const json& step = plan[i];
        const std::string state = step.value("state", "");
        if (state.empty())
            continue;
        json view = {{"tool", step["tool"]}, {"label", step["label"]}, {"status", state}};
        for (const char* optional : {"chip", "why", "input"})
            if (step.contains(optional))
                view[optional] = step[optional];
        if (state == "done" || state == "failed")
            view["result"] = step["result"];
        byRound[step.value("round", i / 2)].push_back(view);
    }
    const json doings = run.value("rounds", json::array());
    json rounds = json::array();
    for (auto& [index, steps] : byRound) {
        json round = {{"steps", steps}};
        if (index < doings.size())
            round["doing"] = doings[index]["doing"];
        else if (index == 0)
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
