#include "Service.h"

namespace devservice {

namespace {

json teammateView(const char* handle, const char* name, const char* title, bool lead, const char* area,
                  const char* role)
{
    return json{{"handle", handle}, {"name", name},
                {"title", title},   {"avatar", std::string("/api/avatars/") + handle},
                {"status", "idle"}, {"lead", lead},
                {"area", area},     {"role", role}};
}

} // namespace

void seed(Service& service)
{
    Store& store = service.store;
    const double t0 = now();
    store.transaction([&] {
        store.put("user", "u1", "",
                  {{"id", "u1"},
                   {"name", "Maya Lindqvist"},
                   {"email", "maya@northwind.example"},
                   {"password", "demo"}});
        store.put("user", "u2", "", {{"id", "u2"}, {"name", "Jon Berg"}, {"email", "jon@northwind.example"}});
        store.put("workspace", "w1", "w1",
                  {{"id", "w1"},
                   {"name", "Northwind Studio"},
                   {"slug", "northwind"},
                   {"plan", "team"},
                   {"members", {{"u1", "owner"}, {"u2", "member"}}}});
        store.put("workspace", "w2", "w2",
                  {{"id", "w2"},
                   {"name", "Lakeside Labs"},
                   {"slug", "lakeside"},
                   {"plan", "starter"},
                   {"members", {{"u1", "viewer"}, {"u2", "owner"}}}});
        store.put("pref", "u1", "", {{"workspace", "w1"}});
        store.put("pref", "u2", "", {{"workspace", "w1"}});

        for (const char* ws : {"w1", "w2"}) {
            const std::string w = ws;
            for (const json& t :
                 {teammateView("nova", "Nova", "Lead", true, "operations", "lead"),
                  teammateView("quill", "Quill", "Writer", false, "marketing", "writer"),
                  teammateView("atlas", "Atlas", "Researcher", false, "marketing", "researcher"),
                  teammateView("forge", "Forge", "Engineer", false, "engineering", "engineer"),
                  teammateView("pixel", "Pixel", "Designer", false, "marketing", "designer"),
                  teammateView("ledger", "Ledger", "Operations", false, "operations", "operations")})
                store.put("teammate", w + ":" + t["handle"].get<std::string>(), w, t);
        }

        // Projects and tasks.
        const json launch = {
            {"id", "p1"},
            {"name", "Spring launch"},
            {"status", "active"},
            {"lead", "u1"},
            {"description", "Everything for the spring release."},
            {"milestones", {{{"id", "ms1"}, {"name", "Beta"}, {"dueAt", iso(t0 + 14 * 86400)}}}}};
        store.put("project", "p1", "w1", launch);
        store.put("project", "p2", "w1",
                  {{"id", "p2"},
                   {"name", "Website refresh"},
                   {"status", "planned"},
                   {"description", ""},
                   {"milestones", json::array()}});
        const json nova = {{"type", "agent"}, {"id", "nova"}, {"name", "Nova"}};
        const json quill = {{"type", "agent"}, {"id", "quill"}, {"name", "Quill"}};
        const json maya = {{"type", "person"}, {"id", "u1"}, {"name", "Maya Lindqvist"}};
        struct Seeded {
            const char* title;
            const char* status;
            const char* area;
            json assignee;
            const char* description;
        };
        const Seeded seeded[] = {
            {"Draft the launch e-mail", "in_review", "marketing", quill,
             "Write the launch e-mail for **existing customers**.\n\n- One subject line\n- Under 150 words"},
            {"Compare three analytics tools", "done", "marketing",
             json{{"type", "agent"}, {"id", "atlas"}, {"name", "Atlas"}},
             "A table of price, privacy and setup effort."},
            {"Fix the broken pricing link", "todo", "engineering", json(nullptr),
             "The footer links to /pricing-old."},
            {"Plan the beta interviews", "in_progress", "operations", maya, "Ten interviews in two weeks."},
            {"Collect press mentions", "backlog", "marketing", nova, ""},
            {"Tidy the onboarding checklist", "needs_you", "operations", nova,
             "Nova has a question about step 4."},
        };
        for (const Seeded& s : seeded) {
            json task = service.newTask("w1", s.title, s.status, s.area, "u1", t0 - 86400 * 3);
            if (!s.assignee.is_null())
                task["assignee"] = s.assignee;
            task["description"] = s.description;
            task["project"] = {{"id", "p1"}, {"name", "Spring launch"}};
            if (std::string(s.status) == "done")
                task["closedAt"] = iso(t0 - 3600);
            store.put("task", task["id"].get<std::string>(), "w1", task);
        }
        json other = service.newTask("w2", "Order lab supplies", "todo", "operations", "u2", t0 - 7200);
        other["assignee"] = nova;
        store.put("task", other["id"].get<std::string>(), "w2", other);

        // The room's first messages.
        const std::string m1 = newId("m");
        store.put(
            "message", m1, "w1",
            {{"id", m1},
             {"from", "agent"},
             {"by", {{"id", "nova"}, {"type", "agent"}, {"name", "Nova"}}},
             {"agent", "nova"},
             {"avatar", "/api/avatars/nova"},
             {"text",
              "Good morning! Here is what the kest is on today:\n\n1. **Quill** drafts the launch e-mail\n"
              "2. **Atlas** compares analytics tools\n\nAsk any of us with `@name`."},
             {"to", json::array()},
             {"reads", json::array()},
             {"failed", false},
             {"approvalIds", json::array()},
             {"reactions", json::array()},
             {"cites", json::array()},
             {"at", iso(t0 - 5400)}});

        // Sites for analytics.
        store.put("site", "s1", "w1",
                  {{"siteId", "s1"},
                   {"domain", "northwind.example"},
                   {"allowedHostnames", {"www.northwind.example"}},
                   {"cookieless", true},
                   {"attackMode", false},
                   {"exclude", {{"paths", json::array()}}},
                   {"kpi", "visitors"},
                   {"color", "#4f7cff"},
                   {"script", "<script src=\"/js/a.js\"></script>"},
                   {"replays", true},
                   {"replaySample", 0.2},
                   {"timezone", "Europe/Berlin"},
                   {"hasEvents", true},
                   {"weeklyReport", true},
                   {"monthlyReport", false},
                   {"reportEmails", {"maya@northwind.example"}},
                   {"spikeAlerts", true},
                   {"dropAlerts", false},
                   {"mentions", {{"enabled", false}}}});

        // Skills ("/" menu) and documents ("#" menu).
        const char* skills[][3] = {
            {"summarize", "Summarize", "Boil a long text down to the points that matter."},
            {"research", "Research", "Look something up on the web and cite the sources."},
            {"draft-email", "Draft an e-mail", "Write an e-mail in the workspace's voice."},
            {"review-pr", "Review a pull request", "Read a diff and comment on it."}};
        for (const auto& skill : skills)
            store.put("skill", std::string("w1:") + skill[0], "w1",
                      {{"id", skill[0]}, {"name", skill[1]}, {"description", skill[2]}});
        const char* docs[][2] = {{"d1", "Brand voice"}, {"d2", "Launch checklist"}, {"d3", "Pricing notes"}};
        for (const auto& doc : docs)
            store.put("document", doc[0], "w1", {{"kind", "doc"}, {"id", doc[0]}, {"title", doc[1]}});

        service.notify("w1", "u1", "reply",
                       {{"type", "agent"}, {"id", "quill"}, {"name", "Quill"}, {"handle", "quill"}},
                       "asks you to review", "Draft the launch e-mail", "The first draft is ready for you.",
                       "/tasks/NOR-1");
    });
}

} // namespace devservice
