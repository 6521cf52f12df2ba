#pragma once

#include "Json.h"
#include "Options.h"
#include "Store.h"

#include <optional>
#include <stdexcept>
#include <string>

namespace devservice {

// A refusal of a request: its HTTP status and a sentence for the client.
struct RequestError : std::runtime_error {
    int status;
    RequestError(int status, const std::string& message) : std::runtime_error(message), status(status) {}
};

// Who is calling, in which workspace, as resolved from the bearer token.
struct Caller {
    std::string user;
    std::string workspace;
    std::string role; // "owner", "member", "viewer", ...
    bool canWrite() const { return role != "viewer" && role != "approver" && role != "guest"; }
};

struct Service {
    Options options;
    Store store;

    Service(Options options, const std::string& databasePath)
        : options(std::move(options)), store(databasePath)
    {
    }

    // Whether this request is one of the share --fail-rate answers with 503.
    bool failsOnPurpose() const;
    // The caller's current workspace and role, or nullopt for an unknown user.
    std::optional<Caller> callerFor(const std::string& user);
    // Teammates of a workspace as TeammateView records, lead first.
    std::vector<json> teammates(const std::string& workspace);
    json teammate(const std::string& workspace, const std::string& handle);
    json person(const std::string& user);
    // A new task document (Model.TaskView) with the next number of its
    // workspace, created by `author` (a person's id) at `at`.
    json newTask(const std::string& workspace, const std::string& title, const std::string& status,
                 const std::string& area, const std::string& author, double at);
    // Adds a notification for a user; `by` is an actor record.
    void notify(const std::string& workspace, const std::string& user, const std::string& kind,
                const json& by, const std::string& verb, const std::string& title, const std::string& text,
                const std::string& href);
};

// Creates the demo data on first start.
void seed(Service& service);
// Puts a workspace back at the first step of its setup: until it is done,
// the frame sends its members there.
void restartSetup(Service& service, const std::string& workspace);
// The setup step a workspace still has to take ("" when set up).
std::string setupStep(Service& service, const std::string& workspace);
void finishSetup(Service& service, const std::string& workspace);

} // namespace devservice
