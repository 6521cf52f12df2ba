#pragma once

#include "Service.h"

#include <functional>
#include <map>
#include <optional>
#include <string>

namespace devservice {

// One action call in progress: who calls, and the effects the answer will
// carry beside its value (revalidate, redirect, notFound).
struct ActionContext {
    Service& service;
    Caller caller;
    json effects = json::object();

    void changed(const std::string& path) { effects["revalidate"].push_back({{"path", path}}); }
    void notFound() { effects["notFound"] = true; }
    // A record the caller named by its id, when it is their workspace's.
    std::optional<json> own(const std::string& kind, const std::string& id) const
    {
        return service.store.get(kind, id, caller.workspace);
    }
    // Read-only roles get the refusal in-band, as every changing action does.
    std::optional<json> refuseReadOnly() const
    {
        if (caller.canWrite())
            return std::nullopt;
        return json{{"error", "Your role in this workspace lets you read, not change things."}};
    }
};

using ActionHandler = std::function<json(ActionContext&, const json& args)>;
using ActionTable = std::map<std::string, ActionHandler>; // "module/action"

void addShellActions(ActionTable& table);
void addKestActions(ActionTable& table);
void addTaskActions(ActionTable& table);
void addAnalyticsActions(ActionTable& table);
void addDirectChatActions(ActionTable& table);
void addActivityActions(ActionTable& table);
// How many things wait for the caller (what "shell/waiting" lists): the
// frame's "Needs you" count says the same number the page shows.
int waitingCount(ActionContext& ctx);

// Arguments by position. A missing argument, null and {"$undefined": true}
// all mean "not given"; a given argument of the wrong type is a 400.
bool given(const json& args, size_t at);
std::optional<std::string> optionalText(const json& args, size_t at, const char* name);
std::string text(const json& args, size_t at, const char* name);
json object(const json& args, size_t at, const char* name); // {} when not given
std::optional<bool> optionalFlag(const json& args, size_t at, const char* name);
std::vector<std::string> texts(const json& args, size_t at, const char* name);

// A member of an input object, with the same rules.
std::optional<std::string> memberText(const json& input, const char* name);

} // namespace devservice
