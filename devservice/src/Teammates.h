#pragma once

#include "Service.h"

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace devservice {

// The AI teammates as the demo plays them: a run goes "queued" -> "running"
// through its steps (page reads, searches, tool calls) -> "done", then the
// teammate answers in the thread in Markdown; tasks assigned to a teammate
// move todo -> in_progress -> in_review. Time runs `timeScale` times faster.

// Starts a run for a teammate; answers the run's id.
std::string startRun(Service& service, const std::string& workspace, const std::string& agent,
                     const std::string& topic, const std::string& threadId, const std::string& author,
                     const std::string& taskId = {});

// The teammates a message is for: @mentions, everyone for @all, else the
// lead's pick (and `triaged` tells that the lead decided).
std::vector<std::string> recipients(Service& service, const std::string& workspace, const std::string& text,
                                    bool& triaged);

// The runs still queued or running, of a workspace ("" for all). Read from
// a small index, so callers never walk every run ever made.
std::vector<json> activeRuns(Service& service, const std::string& workspace = "");

// The runs that ended today (done or failed), of a workspace, in the order
// they ended. Read from a small index that forgets earlier days.
std::vector<json> runsEndedToday(Service& service, const std::string& workspace);

// A run that ended before the service started, for the demo's history:
// every step taken, the last one failed when `failed`.
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
};
// Stores the run and indexes it as ended; answers its id.
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
