#pragma once

#include "Service.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace devservice {

// The AI teammates as the demo plays them: a run goes "queued" -> "running"
// through rounds of steps (searches, page reads, tool calls, now and then a
// wait for the user's approval) -> "done", then the teammate answers in the
// thread in its own voice; about one run in twelve fails instead and says
// why. Tasks assigned to a teammate move todo -> in_progress -> in_review.
// Time runs `timeScale` times faster.

// Starts a run for a teammate; answers the run's id.
std::string startRun(Service& service, const std::string& workspace, const std::string& agent,
                     const std::string& topic, const std::string& threadId, const std::string& author,
                     const std::string& taskId = {});

// Takes a further request into a running answer: one more round, and a line
// about it in the answer. `run` is the stored run.
void handOver(Service& service, json run, const std::string& request);

// Ends a running answer at the user's word; it says how far it got.
void stopRun(Service& service, json run, const std::string& byName);

// Who a message is for.
struct Routing {
    std::vector<std::string> to;      // who answers: as named, or the kest in order for @all
    std::vector<std::string> paused;  // named, but paused in their settings
    std::vector<std::string> alsoFit; // triaged: others the topic fits, after the pick
    bool everyone = false;            // @all or @everyone
    bool triaged = false;             // nobody named: the lead picked by topic
};
Routing route(Service& service, const std::string& workspace, const std::string& text);

// The teammates a message is for: @mentions, everyone for @all, else the
// lead's pick (and `triaged` tells that the lead decided). Paused teammates
// are left out.
std::vector<std::string> recipients(Service& service, const std::string& workspace, const std::string& text,
                                    bool& triaged);

bool isPaused(const json& teammate);

// The runs still queued or running, of a workspace ("" for all). Read from
// a small index, so callers never walk every run ever made.
std::vector<json> activeRuns(Service& service, const std::string& workspace = "");

// The runs that ended today (done or failed), of a workspace, in the order
// they ended. Read from a small index that forgets earlier days.
std::vector<json> runsEndedToday(Service& service, const std::string& workspace);

// The id of the approval a run's step waits for, as Needs you lists it.
std::string approvalIdOf(const json& run, size_t step);
// Whether a run stands at a step that waits for the user.
bool waitsForYou(const json& run);

// A run that ended before the service started, for the demo's history:
// its steps taken, the fatal one failed when `failed`.
struct PastRun {
    std::string workspace;
    std::string agent;
    std::string topic;
    double startedAt = 0;
    double endedAt = 0;
    bool failed = false;
    std::string summary; // one plain sentence: what came of it, or what went wrong
    std::string threadId;
    std::string taskId;
    std::string author = "u1";
    std::string id;    // empty: a new random id
    std::string reply; // the answer it gave; empty: made from the summary
    json cites;        // what the answer cites, when it does
    json draft;        // the draft it wrote, when it did
    unsigned seed = 0; // 0: from the id
};
// Stores the run (indexed as ended when it ended today); answers its id.
std::string addPastRun(Service& service, const PastRun& past);

// A run's trace as the client reads it (Model.RunTrace).
json traceOf(const json& run);

// Moves the active runs along, and with `checkTasks` starts work on tasks
// newly given to a teammate; called by the simulation thread.
void advance(Service& service, bool checkTasks);

// Runs advance() every 100 ms until stopped, with or without clients.
class Simulation {
public:
    explicit Simulation(Service& service);
    ~Simulation();

private:
    Service& m_service;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

} // namespace devservice
