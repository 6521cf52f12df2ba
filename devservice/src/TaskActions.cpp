// Tasks and projects: the list with filters, the task page, and the changes.

#include "Actions.h"
#include "Teammates.h"

#include <algorithm>

namespace devservice {

namespace {

const char* const statuses[] = {"backlog",   "todo", "in_progress", "needs_you",
                                "in_review", "done", "canceled"};
// The task page's own members; the list shows a task without them.
const char* const pageOnly[] = {"description", "watchers", "watching", "reactions", "attachments",
                                "code",        "subtasks", "asks",     "activity"};

json summaryOf(const json& task)
{
    json view = task;
    for (const char* member : pageOnly)
        view.erase(member);
    view.erase("assignedAt");
    return view;
}

std::optional<json> taskByKeyOrId(Service& s, const std::string& workspace, const std::string& keyOrId)
{
    if (auto byId = s.store.get("task", keyOrId, workspace))
        return byId;
    for (json& task : s.store.list("task", workspace))
        if (task["key"] == keyOrId)
            return task;
    return std::nullopt;
}

json people(Service& s, const std::string& workspace)
{
    json out = json::array();
    const json space = *s.store.get("workspace", workspace);
    for (const auto& [user, role] : space["members"].items())
        out.push_back(s.person(user));
    return out;
}

json projects(Service& s, const std::string& workspace)
{
    json out = json::array();
    for (const json& p : s.store.list("project", workspace)) {
        json milestones = json::array();
        for (const json& m : p["milestones"])
            milestones.push_back({{"id", m["id"]}, {"name", m["name"]}});
        out.push_back({{"id", p["id"]}, {"name", p["name"]}, {"milestones", milestones}});
    }
    return out;
}

bool passes(const json& task, const json& filters, const std::string& me)
{
    auto inList = [&](const char* name, const std::string& value) {
        if (!filters.contains(name) || !filters[name].is_array() || filters[name].empty())
            return true;
        return std::find(filters[name].begin(), filters[name].end(), value) != filters[name].end();
    };
    const std::string assignee = task.contains("assignee") ? task["assignee"]["id"].get<std::string>() : "";
    if (!inList("status", task["status"]) || !inList("area", task["area"]) ||
        !inList("priority", task["priority"]) || !inList("assignee", assignee))
        return false;
    if (filters.value("mine", false) && assignee != me)
        return false;
    if (filters.contains("q") && filters["q"].is_string()) {
        std::string q = filters["q"], title = task["title"];
        std::transform(q.begin(), q.end(), q.begin(), ::tolower);
        std::transform(title.begin(), title.end(), title.begin(), ::tolower);
        if (title.find(q) == std::string::npos)
            return false;
    }
    return true;
}

json tasksPage(ActionContext& ctx, const json& args)
{
    Service& s = ctx.service;
    const json filters = object(args, 0, "filters");
    json tasks = json::array(), myKeys = json::array();
    json counts = json::object();
    for (const char* status : statuses)
        counts[status] = 0;
    json areas = {{"engineering", 0}, {"marketing", 0}, {"operations", 0}, {"all", 0}};
    for (const json& task : s.store.list("task", ctx.caller.workspace)) {
        counts[task["status"].get<std::string>()] = counts[task["status"].get<std::string>()].get<int>() + 1;
        if (areas.contains(task["area"].get<std::string>()))
            areas[task["area"].get<std::string>()] = areas[task["area"].get<std::string>()].get<int>() + 1;
        areas["all"] = areas["all"].get<int>() + 1;
        if (task.contains("assignee") && task["assignee"]["id"] == ctx.caller.user)
            myKeys.push_back(task["key"]);
        if (passes(task, filters, ctx.caller.user))
            tasks.push_back(summaryOf(task));
    }
    // BoardCounts in the service's order of keys.
    json ordered = json::object();
    for (const char* status :
         {"done", "backlog", "todo", "in_progress", "needs_you", "in_review", "canceled"})
        ordered[status] = counts[status];
    return {{"tasks", tasks},
            {"counts", ordered},
            {"steps", undefinedTag()},
            {"labels", {"launch", "website", "research"}},
            {"views", json::array()},
            {"areas", areas},
            {"kest", s.teammates(ctx.caller.workspace)},
            {"people", people(s, ctx.caller.workspace)},
            {"projects", projects(s, ctx.caller.workspace)},
            {"me", ctx.caller.user},
            {"myKeys", myKeys},
            {"canManage", ctx.caller.canWrite()},
            {"remember", "/tasks"}};
}

json taskPage(ActionContext& ctx, const json& args)
{
    Service& s = ctx.service;
    const auto task = taskByKeyOrId(s, ctx.caller.workspace, text(args, 0, "key"));
    if (!task) {
        ctx.notFound();
        return nullptr;
    }
    json view = *task;
    view.erase("assignedAt");
    json subtasks = json::array(), siblings = json::array();
    for (const json& other : s.store.list("task", ctx.caller.workspace)) {
        if (other.contains("parent") && other["parent"]["id"] == view["id"])
            subtasks.push_back(summaryOf(other));
        if (other["id"] != view["id"])
            siblings.push_back({{"id", other["id"]},
                                {"key", other["key"]},
                                {"title", other["title"]},
                                {"status", other["status"]}});
    }
    view["subtasks"] = subtasks;
    view["watching"] = std::any_of(view["watchers"].begin(), view["watchers"].end(),
                                   [&](const json& w) { return w["id"] == ctx.caller.user; });
    json result = {{"task", view},
                   {"kest", s.teammates(ctx.caller.workspace)},
                   {"people", people(s, ctx.caller.workspace)},
                   {"projects", projects(s, ctx.caller.workspace)},
                   {"labels", {"launch", "website", "research"}},
                   {"approvals", json::array()},
                   {"drafts", json::array()},
                   {"siblings", siblings},
                   {"me", ctx.caller.user},
                   {"canManage", ctx.caller.canWrite()},
                   {"canApprovePlans", ctx.caller.canWrite()},
                   {"canDelete", ctx.caller.canWrite()},
                   {"release", "0.1.0"}};
    if (view.contains("working"))
        if (auto run = s.store.get("run", view["working"]["runId"]))
            result["trace"] = traceOf(*run);
    return result;
}

json createTask(ActionContext& ctx, const json& args)
{
    if (auto refusal = ctx.refuseReadOnly())
        return *refusal;
    Service& s = ctx.service;
    const json input = object(args, 0, "input");
    const std::string title = memberText(input, "title").value_or("");
    if (title.find_first_not_of(" \t\r\n") == std::string::npos)
        return {{"error", "Give the task a title first."}};
    const std::string status = memberText(input, "status").value_or("todo");
    if (std::find(std::begin(statuses), std::end(statuses), status) == std::end(statuses))
        return {{"error", "\"" + status + "\" is not a status a task can have."}};
    json task = s.newTask(ctx.caller.workspace, title, status,
                          memberText(input, "area").value_or("operations"), ctx.caller.user, now());
    task["priority"] = memberText(input, "priority").value_or("medium");
    task["areaDefault"] = !input.contains("area");
    task["description"] = memberText(input, "description").value_or("");
    const std::string key = task["key"];
    if (const auto assignee = memberText(input, "assignee")) {
        const json mate = s.teammate(ctx.caller.workspace, *assignee);
        if (!mate.is_null())
            task["assignee"] = {{"type", "agent"}, {"id", *assignee}, {"name", mate["name"]}};
        else if (s.store.get("user", *assignee))
            task["assignee"] = {{"type", "person"}, {"id", *assignee}, {"name", s.person(*assignee)["name"]}};
        else
            return {{"error", "Nobody called \"" + *assignee + "\" works here."}};
    }
    if (const auto project = memberText(input, "project"))
        if (auto p = ctx.own("project", *project))
            task["project"] = {{"id", (*p)["id"]}, {"name", (*p)["name"]}};
    if (const auto parent = memberText(input, "parent"))
        if (auto p = taskByKeyOrId(s, ctx.caller.workspace, *parent))
            task["parent"] = {{"id", (*p)["id"]}, {"key", (*p)["key"]}, {"title", (*p)["title"]}};
    s.store.put("task", task["id"], ctx.caller.workspace, task);
    ctx.changed("/tasks");
    return {{"done", true}, {"key", key}};
}

json updateTasks(ActionContext& ctx, const json& args)
{
    if (auto refusal = ctx.refuseReadOnly())
        return *refusal;
    Service& s = ctx.service;
    const std::vector<std::string> ids = texts(args, 0, "ids");
    const json changes = object(args, 1, "changes");
    // Every task and every change is checked before anything is written, so
    // a refusal leaves all the tasks as they were.
    std::vector<json> tasks;
    for (const std::string& id : ids) {
        auto task = taskByKeyOrId(s, ctx.caller.workspace, id);
        if (!task)
            return {{"error", "The task " + id + " is gone."}};
        tasks.push_back(*task);
    }
    if (changes.contains("status") &&
        (!changes["status"].is_string() ||
         std::find(std::begin(statuses), std::end(statuses), changes["status"]) == std::end(statuses)))
        return {{"error", (changes["status"].is_string() ? changes["status"].get<std::string>()
                                                         : changes["status"].dump()) +
                              " is not a status a task can have."}};
    if (changes.contains("sortOrder") && !changes["sortOrder"].is_number())
        throw RequestError(400, "The change \"sortOrder\" must be a number.");
    // A move made from a stale board: the task changed since it was shown.
    if (changes.contains("version") && changes["version"].is_number() && tasks.size() == 1 &&
        tasks[0]["version"] != changes["version"])
        return {{"error", tasks[0]["key"].get<std::string>() +
                              " changed while you moved it. Look at it again, then move it once more."}};
    // A teammate waiting for answers keeps its task where it is, unless the
    // mover lets its questions go.
    const bool withdraw = changes.value("withdrawAsks", false);
    if (changes.contains("status") && !withdraw)
        for (const json& task : tasks)
            for (const json& ask : task.value("asks", json::array()))
                if (ask.value("status", "") == "open" && task["status"] != changes["status"]) {
                    const json mate = s.teammate(ctx.caller.workspace, ask.value("agent", ""));
                    return {{"error",
                             (mate.is_null() ? std::string("A teammate") : mate["name"].get<std::string>()) +
                                 " is waiting for your answer on " + task["key"].get<std::string>() + "."}};
                }
    for (json& current : tasks) {
        json* task = &current;
        if (changes.contains("status") && withdraw && task->contains("asks")) {
            for (json& ask : (*task)["asks"])
                if (ask.value("status", "") == "open")
                    ask["status"] = "withdrawn";
            (*task)["waiting"] = 0;
        }
        if (changes.contains("sortOrder"))
            (*task)["sortOrder"] = changes["sortOrder"];
        for (const char* member : {"status", "priority", "title", "area", "description", "dueAt"}) {
            if (!changes.contains(member))
                continue;
            if (!changes[member].is_string())
                throw RequestError(400, std::string("The change \"") + member + "\" must be text.");
            // Only what changes goes in the task's history (a reorder
            // sends the status it already has).
            if ((*task).value(member, json()) == changes[member])
                continue;
            (*task)["activity"].push_back(
                {{"id", newId("a")},
                 {"kind", "change"},
                 {"by", s.person(ctx.caller.user)},
                 {"change",
                  {{"field", member}, {"from", (*task).value(member, json())}, {"to", changes[member]}}},
                 {"at", isoNow()}});
            (*task)[member] = changes[member];
        }
        if (changes.contains("assignee")) {
            const json& who = changes["assignee"];
            if (who.is_null()) {
                task->erase("assignee");
            } else if (who.is_string()) {
                const json mate = s.teammate(ctx.caller.workspace, who.get<std::string>());
                (*task)["assignee"] =
                    mate.is_null() ? json{{"type", "person"}, {"id", who}, {"name", s.person(who)["name"]}}
                                   : json{{"type", "agent"}, {"id", who}, {"name", mate["name"]}};
                task->erase("assignedAt");
            }
        }
        if ((*task)["status"] == "done" || (*task)["status"] == "canceled")
            (*task)["closedAt"] = isoNow();
        (*task)["version"] = (*task)["version"].get<int>() + 1;
        (*task)["updatedAt"] = isoNow();
        s.store.put("task", (*task)["id"], ctx.caller.workspace, *task);
    }
    ctx.changed("/tasks");
    return {{"done", true}};
}

json commentOnTask(ActionContext& ctx, const json& args)
{
    if (auto refusal = ctx.refuseReadOnly())
        return *refusal;
    Service& s = ctx.service;
    auto task = taskByKeyOrId(s, ctx.caller.workspace, text(args, 0, "taskId"));
    const std::string body = text(args, 1, "text");
    if (!task)
        return {{"error", "That task is gone."}};
    if (body.find_first_not_of(" \t\r\n") == std::string::npos)
        return {{"error", "Write a comment first."}};
    const std::string id = newId("a");
    (*task)["activity"].push_back({{"id", id},
                                   {"kind", "comment"},
                                   {"by", s.person(ctx.caller.user)},
                                   {"text", body},
                                   {"at", isoNow()}});
    (*task)["comments"] = (*task)["comments"].get<int>() + 1;
    bool triaged = false;
    json started = json::array();
    if (body.find('@') != std::string::npos)
        for (const std::string& agent : recipients(s, ctx.caller.workspace, body, triaged))
            if (!triaged) {
                const std::string runId =
                    startRun(s, ctx.caller.workspace, agent, body, "", ctx.caller.user, (*task)["id"]);
                (*task)["working"] = {{"runId", runId}, {"doing", "Reading your comment"}};
                (*task)["status"] = "in_progress";
                started.push_back(agent);
            }
    s.store.put("task", (*task)["id"], ctx.caller.workspace, *task);
    ctx.changed("/tasks/" + (*task)["key"].get<std::string>());
    return {{"done", true}, {"id", id}, {"started", started}};
}

json deleteTask(ActionContext& ctx, const json& args)
{
    if (auto refusal = ctx.refuseReadOnly())
        return *refusal;
    const auto task = taskByKeyOrId(ctx.service, ctx.caller.workspace, text(args, 0, "taskId"));
    if (!task)
        return {{"error", "That task is gone already."}};
    ctx.service.store.remove("task", (*task)["id"]);
    ctx.changed("/tasks");
    return {{"done", true}};
}

json watchTask(ActionContext& ctx, const json& args)
{
    auto task = taskByKeyOrId(ctx.service, ctx.caller.workspace, text(args, 0, "taskId"));
    const bool watch = optionalFlag(args, 1, "watch").value_or(true);
    if (!task)
        return {{"error", "That task is gone."}};
    json& watchers = (*task)["watchers"];
    watchers.erase(std::remove_if(watchers.begin(), watchers.end(),
                                  [&](const json& w) { return w["id"] == ctx.caller.user; }),
                   watchers.end());
    if (watch)
        watchers.push_back({{"id", ctx.caller.user}, {"name", ctx.service.person(ctx.caller.user)["name"]}});
    ctx.service.store.put("task", (*task)["id"], ctx.caller.workspace, *task);
    ctx.changed("/tasks/" + (*task)["key"].get<std::string>());
    return {{"done", true}};
}

json reactToTask(ActionContext& ctx, const json& args)
{
    if (auto refusal = ctx.refuseReadOnly())
        return *refusal;
    auto task = taskByKeyOrId(ctx.service, ctx.caller.workspace, text(args, 0, "taskId"));
    const std::string emoji = text(args, 1, "emoji");
    if (!task)
        return {{"error", "That task is gone."}};
    json& reactions = (*task)["reactions"];
    auto it =
        std::find_if(reactions.begin(), reactions.end(), [&](const json& r) { return r["emoji"] == emoji; });
    if (it == reactions.end())
        reactions.push_back({{"emoji", emoji}, {"by", {ctx.caller.user}}});
    else if (std::find((*it)["by"].begin(), (*it)["by"].end(), ctx.caller.user) == (*it)["by"].end())
        (*it)["by"].push_back(ctx.caller.user);
    ctx.service.store.put("task", (*task)["id"], ctx.caller.workspace, *task);
    ctx.changed("/tasks/" + (*task)["key"].get<std::string>());
    return {{"done", true}};
}

json learnFromTask(ActionContext& ctx, const json& args)
{
    if (auto refusal = ctx.refuseReadOnly())
        return *refusal;
    const auto task = taskByKeyOrId(ctx.service, ctx.caller.workspace, text(args, 0, "taskId"));
    if (!task)
        return {{"error", "That task is gone."}};
    if (!task->contains("assignee") || (*task)["assignee"]["type"] != "agent")
        return {{"error", "Only a teammate can learn from a task."}};
    return {{"done", true}};
}

json projectsPage(ActionContext& ctx, const json&)
{
    json out = json::array();
    for (const json& p : ctx.service.store.list("project", ctx.caller.workspace)) {
        int done = 0, total = 0;
        for (const json& t : ctx.service.store.list("task", ctx.caller.workspace))
            if (t.contains("project") && t["project"]["id"] == p["id"]) {
                ++total;
                done += t["status"] == "done";
            }
        out.push_back({{"id", p["id"]},
                       {"name", p["name"]},
                       {"status", p["status"]},
                       {"lead", p.value("lead", "u1")},
                       {"progress", {{"done", done}, {"total", total}}},
                       {"updatedAt", isoNow()}});
    }
    return {{"projects", out}, {"canManage", ctx.caller.canWrite()}};
}

json projectPage(ActionContext& ctx, const json& args)
{
    const auto project = ctx.own("project", text(args, 0, "id"));
    if (!project) {
        ctx.notFound();
        return nullptr;
    }
    json tasks = json::array();
    for (const json& t : ctx.service.store.list("task", ctx.caller.workspace))
        if (t.contains("project") && t["project"]["id"] == (*project)["id"])
            tasks.push_back(summaryOf(t));
    return {{"project", *project},
            {"tasks", tasks},
            {"updates", json::array()},
            {"canManage", ctx.caller.canWrite()}};
}

json createProject(ActionContext& ctx, const json& args)
{
    if (auto refusal = ctx.refuseReadOnly())
        return *refusal;
    const json input = object(args, 0, "input");
    const std::string name = memberText(input, "name").value_or("");
    if (name.empty())
        return {{"error", "Give the project a name first."}};
    const std::string id = newId("p");
    ctx.service.store.put("project", id, ctx.caller.workspace,
                          {{"id", id},
                           {"name", name},
                           {"status", "planned"},
                           {"description", ""},
                           {"milestones", json::array()}});
    ctx.changed("/tasks/projects");
    return {{"done", true}, {"id", id}};
}

} // namespace

void addTaskActions(ActionTable& table)
{
    table["tasks/tasks"] = tasksPage;
    table["tasks/task"] = taskPage;
    table["tasks/projects"] = projectsPage;
    table["tasks/project"] = projectPage;
    table["app/createTaskAction"] = createTask;
    table["app/updateTasksAction"] = updateTasks;
    table["app/commentOnTaskAction"] = commentOnTask;
    table["app/deleteTaskAction"] = deleteTask;
    table["app/watchTaskAction"] = watchTask;
    table["app/reactToTaskAction"] = reactToTask;
    table["app/learnFromTaskAction"] = learnFromTask;
    table["app/createProjectAction"] = createProject;
}

} // namespace devservice
