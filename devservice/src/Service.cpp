#include "Service.h"

#include <algorithm>
#include <mutex>
#include <random>

namespace devservice {

bool Service::failsOnPurpose() const
{
    if (options.failRate <= 0)
        return false;
    static std::mutex mutex;
    static std::mt19937 engine{std::random_device{}()};
    std::lock_guard lock(mutex);
    return std::uniform_real_distribution<double>(0, 1)(engine) < options.failRate;
}

std::optional<Caller> Service::callerFor(const std::string& user)
{
    const auto pref = store.get("pref", user);
    if (!pref)
        return std::nullopt;
    const std::string workspace = pref->value("workspace", "");
    const auto space = store.get("workspace", workspace);
    if (!space)
        return std::nullopt;
    const json& members = (*space)["members"];
    if (!members.contains(user))
        return std::nullopt;
    return Caller{user, workspace, members[user].get<std::string>()};
}

std::vector<json> Service::teammates(const std::string& workspace)
{
    std::vector<json> out = store.list("teammate", workspace);
    std::stable_sort(out.begin(), out.end(), [](const json& a, const json& b) {
        return a.value("lead", false) > b.value("lead", false);
    });
    return out;
}

json Service::teammate(const std::string& workspace, const std::string& handle)
{
    const auto found = store.get("teammate", workspace + ":" + handle);
    return found ? *found : json();
}

json Service::person(const std::string& user)
{
    const auto found = store.get("user", user);
    if (!found)
        return json{{"id", user}, {"name", "Someone"}};
    return json{{"id", user}, {"name", (*found)["name"]}, {"email", (*found)["email"]}};
}

json Service::newTask(const std::string& workspace, const std::string& title, const std::string& status,
                      const std::string& area, const std::string& author, double at)
{
    const int number = store.next("task:" + workspace);
    const std::string prefix = workspace == "w1" ? "NOR" : "LAK";
    return json{{"number", number},
                {"id", newId("t")},
                {"version", 1},
                {"blocked", false},
                {"key", prefix + "-" + std::to_string(number)},
                {"createdAt", iso(at)},
                {"updatedAt", iso(at)},
                {"title", title},
                {"area", area},
                {"status", status},
                {"waiting", 0},
                {"priority", "medium"},
                {"areaDefault", true},
                {"labels", json::array()},
                {"sortOrder", number},
                {"subOrder", 0},
                {"waitsOn", json::array()},
                {"progress", {{"done", 0}, {"total", 0}}},
                {"comments", 0},
                {"createdBy", {{"type", "person"}, {"id", author}, {"name", person(author)["name"]}}},
                {"description", ""},
                {"watchers", json::array()},
                {"watching", false},
                {"reactions", json::array()},
                {"attachments", json::array()},
                {"asks", json::array()},
                {"activity", json::array()}};
}

void Service::notify(const std::string& workspace, const std::string& user, const std::string& kind,
                     const json& by, const std::string& verb, const std::string& title,
                     const std::string& text, const std::string& href)
{
    const std::string id = newId("n");
    store.put("notification", id, workspace,
              json{{"id", id},
                   {"user", user},
                   {"kind", kind},
                   {"by", by},
                   {"verb", verb},
                   {"title", title},
                   {"text", text},
                   {"href", href},
                   {"read", false},
                   {"at", isoNow()}});
}

void restartSetup(Service& service, const std::string& workspace)
{
    service.store.transaction([&] {
        if (auto space = service.store.get("workspace", workspace)) {
            (*space)["setupStep"] = "business";
            service.store.put("workspace", workspace, workspace, *space);
        }
    });
}

std::string setupStep(Service& service, const std::string& workspace)
{
    const auto space = service.store.get("workspace", workspace);
    return space ? space->value("setupStep", "") : "";
}

void finishSetup(Service& service, const std::string& workspace)
{
    service.store.transaction([&] {
        if (auto space = service.store.get("workspace", workspace)) {
            space->erase("setupStep");
            service.store.put("workspace", workspace, workspace, *space);
        }
    });
}

} // namespace devservice
