#include "History.h"
#include "Service.h"
#include "Teammates.h"

#include <algorithm>
#include <cmath>
#include <map>

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
    // The demo's day: `hours` before now, squeezed into the part of the UTC
    // day that has passed, so Home shows today's work even just after midnight.
    const double dayStart = std::floor(t0 / 86400) * 86400;
    const double squeeze = std::min(1.0, (t0 - dayStart) / (6.5 * 3600));
    const auto earlier = [&](double hours) { return t0 - hours * 3600 * squeeze; };
    store.transaction([&] {
        store.put("user", "u1", "",
                  {{"id", "u1"},
                   {"name", "Maya Lindqvist"},
                   {"email", "maya@northwind.example"},
                   {"password", "demo"}});
        store.put("user", "u2", "", {{"id", "u2"}, {"name", "Jon Berg"}, {"email", "jon@northwind.example"}});
        // The rest of the studio: they do not sign in here, but the room is
        // theirs too.
        const std::vector<Person> studio = {{"u1", "Maya Lindqvist"},
                                            {"u2", "Jon Berg"},
                                            {"u3", "Priya Raman"},
                                            {"u4", "Tomás Ortega"},
                                            {"u5", "Lena Fischer"}};
        const char* emails[] = {"", "", "priya@northwind.example", "tomas@northwind.example",
                                "lena@northwind.example"};
        json members = json::object();
        for (size_t i = 0; i < studio.size(); ++i) {
            const Person& p = studio[i];
            if (i >= 2) {
                store.put("user", p.id, "", {{"id", p.id}, {"name", p.name}, {"email", emails[i]}});
                store.put("pref", p.id, "", {{"workspace", "w1"}});
            }
            members[p.id] = i == 0 ? "owner" : "member";
        }
        store.put("workspace", "w1", "w1",
                  {{"id", "w1"},
                   {"name", "Northwind Studio"},
                   {"slug", "northwind"},
                   {"plan", "team"},
                   {"members", members}});
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
                  teammateView("ledger", "Ledger", "Operations", false, "operations", "operations")}) {
                json mate = t;
                // Lakeside Labs has no design work this quarter: Pixel is paused there.
                if (w == "w2" && mate["handle"] == "pixel")
                    mate["paused"] = true;
                store.put("teammate", w + ":" + mate["handle"].get<std::string>(), w, mate);
            }
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
        std::vector<json> tasks;
        for (const Seeded& s : seeded) {
            json task = service.newTask("w1", s.title, s.status, s.area, "u1", t0 - 86400 * 3);
            if (!s.assignee.is_null())
                task["assignee"] = s.assignee;
            task["description"] = s.description;
            task["project"] = {{"id", "p1"}, {"name", "Spring launch"}};
            tasks.push_back(task);
        }
        json& email = tasks[0];
        json& tools = tasks[1];
        json& checklist = tasks[5];
        json other = service.newTask("w2", "Order lab supplies", "todo", "operations", "u2", t0 - 7200);
        other["assignee"] = nova;
        store.put("task", other["id"].get<std::string>(), "w2", other);

        // Three weeks of the room and of Maya's chats before today, written
        // first so they come before today's messages in the room's order.
        // Forge joined this week: its chat has no past yet.
        const double historyEnds = dayStart - 1800;
        seedRoomHistory(service, "w1", studio, tasks, historyEnds - 21 * 86400, historyEnds);
        seedDirectChats(service, "w1", "u1", {"nova", "quill", "atlas", "pixel", "ledger"},
                        historyEnds - 21 * 86400, historyEnds);

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
             {"at", iso(earlier(6))}});

        // The work of the day so far: runs that ended, the moves on the
        // board they made, a question in the room and its answer.
        const auto agent = [](const char* handle, const char* name) {
            return json{{"type", "agent"}, {"id", handle}, {"name", name}, {"handle", handle}};
        };
        const auto moved = [&](json& task, const json& by, const char* from, const char* to, double at,
                               const std::string& runId) {
            json entry = {{"id", newId("a")},
                          {"kind", by.value("type", "") == "agent" ? "status" : "change"},
                          {"by", by},
                          {"change", {{"field", "status"}, {"from", from}, {"to", to}}},
                          {"at", iso(at)}};
            if (!runId.empty())
                entry["runId"] = runId;
            task["activity"].push_back(entry);
            task["updatedAt"] = iso(at);
            task["version"] = task["version"].get<int>() + 1;
        };
        addPastRun(service,
                   {.workspace = "w1",
                    .agent = "ledger",
                    .topic = "Reconcile the March invoices",
                    .startedAt = earlier(5.8),
                    .endedAt = earlier(5.5),
                    .summary = "Matched 42 of 43 invoices; the one from Fastly still needs a receipt."});
        const std::string compared = addPastRun(
            service, {.workspace = "w1",
                      .agent = "atlas",
                      .topic = tools["title"],
                      .startedAt = earlier(4.9),
                      .endedAt = earlier(4.5),
                      .summary = "Plausible, Fathom and Matomo side by side: Plausible fits best on "
                                 "price and privacy, Matomo if we want to host it ourselves.",
                      .taskId = tools["id"]});
        moved(tools, agent("atlas", "Atlas"), "in_progress", "in_review", earlier(4.5), compared);

        const std::string question = newId("m");
        store.put("message", question, "w1",
                  {{"id", question},
                   {"from", "person"},
                   {"by", {{"id", "u1"}, {"type", "person"}, {"name", "Maya Lindqvist"}}},
                   {"text", "@atlas what do people say about our new pricing?"},
                   {"to", {"atlas"}},
                   {"reads", {"u1"}},
                   {"failed", false},
                   {"approvalIds", json::array()},
                   {"reactions", json::array()},
                   {"cites", json::array()},
                   {"at", iso(earlier(3.2))}});
        const std::string pricing = addPastRun(service, {.workspace = "w1",
                                                         .agent = "atlas",
                                                         .topic = "What do people say about our new pricing?",
                                                         .startedAt = earlier(3.2),
                                                         .endedAt = earlier(3.0),
                                                         .summary = "Mostly good news, with one worry.",
                                                         .threadId = question});
        const std::string answer = newId("m");
        store.put("message", answer, "w1",
                  {{"id", answer},
                   {"threadId", question},
                   {"from", "agent"},
                   {"by", {{"id", "atlas"}, {"type", "agent"}, {"name", "Atlas"}, {"run", pricing}}},
                   {"agent", "atlas"},
                   {"avatar", "/api/avatars/atlas"},
                   {"text", "Mostly good news, with one worry.\n\n"
                            "- Three posts call the new **Team** plan fair for what it includes [1].\n"
                            "- Two people on Hacker News miss the old free tier.\n"
                            "- Nobody has noticed the yearly discount yet.\n\n"
                            "I would answer the free-tier thread first. Shall Quill draft a reply?"},
                   {"to", json::array()},
                   {"reads", json::array()},
                   {"runId", pricing},
                   {"failed", false},
                   {"approvalIds", json::array()},
                   {"reactions", json::array()},
                   {"cites", json::array()},
                   {"at", iso(earlier(3.0))}});

        addPastRun(service,
                   {.workspace = "w1",
                    .agent = "forge",
                    .topic = "Deploy the pricing page preview",
                    .startedAt = earlier(2.7),
                    .endedAt = earlier(2.5),
                    .failed = true,
                    .summary = "The staging server refused the deploy key, so nothing was published."});
        const std::string drafted = addPastRun(
            service, {.workspace = "w1",
                      .agent = "quill",
                      .topic = email["title"],
                      .startedAt = earlier(2.4),
                      .endedAt = earlier(2.0),
                      .summary = "A 140-word e-mail in our voice, with two subject lines to pick from.",
                      .taskId = email["id"]});
        moved(email, agent("quill", "Quill"), "in_progress", "in_review", earlier(2.0), drafted);

        moved(checklist, agent("nova", "Nova"), "in_progress", "needs_you", earlier(1.5), "");
        checklist["waiting"] = 1;
        checklist["asks"].push_back(
            {{"id", newId("ask")},
             {"taskId", checklist["id"]},
             {"agent", "nova"},
             {"kind", "question"},
             {"question", "Step 4 asks new people to invite a teammate before they have a project. "
                          "Should it move after step 6, or go?"},
             {"options", {"Move it after step 6", "Take it out"}},
             {"status", "open"},
             {"createdAt", iso(earlier(1.5))}});

        addPastRun(service,
                   {.workspace = "w1",
                    .agent = "pixel",
                    .topic = "Hero images for the spring page",
                    .startedAt = earlier(1.6),
                    .endedAt = earlier(1.2),
                    .summary = "Three hero images in the brand colours; the second reads best on a phone."});
        moved(tools, service.person("u1"), "in_review", "done", earlier(1.0), "");
        tools["closedAt"] = iso(earlier(1.0));
        for (const json& task : tasks)
            store.put("task", task["id"].get<std::string>(), "w1", task);

        // Drafts that wait for a look, in their teammate's chat.
        const auto draft = [&](const char* workspace, const char* handle, const char* title, const char* text,
                               double at) {
            const std::string id = newId("dr");
            store.put("draft", id, workspace,
                      {{"id", id},
                       {"agent", handle},
                       {"title", title},
                       {"text", text},
                       {"status", "waiting"},
                       {"at", iso(at)}});
        };
        draft("w1", "quill", "Launch e-mail to the beta list",
              "Subject: You helped shape it, now see it first. A short thank-you with the launch date and a "
              "link to the changelog.",
              earlier(0.8));
        draft("w1", "ledger", "Reply to Fastly about the missing receipt",
              "Two polite sentences asking their billing team for the March receipt.", earlier(0.5));

        // Lakeside Labs has a day of its own.
        addPastRun(service,
                   {.workspace = "w2",
                    .agent = "ledger",
                    .topic = "Compare prices for lab supplies",
                    .startedAt = earlier(3.0),
                    .endedAt = earlier(2.6),
                    .summary = "Two suppliers cut prices on pipette tips; switching saves about 8% a month.",
                    .author = "u2"});
        draft("w2", "quill", "Welcome note for new lab members",
              "Where things are, who to ask, and the one rule about the cold room.", earlier(1.0));

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
        store.put("site", "s2", "w1",
                  {{"siteId", "s2"},
                   {"domain", "docs.northwind.example"},
                   {"allowedHostnames", json::array()},
                   {"cookieless", true},
                   {"attackMode", false},
                   {"exclude", {{"paths", json::array()}}},
                   {"kpi", "visitors"},
                   {"color", "#12b886"},
                   {"script", "<script src=\"/js/a.js\"></script>"},
                   {"replays", false},
                   {"replaySample", 0.2},
                   {"timezone", "Europe/Berlin"},
                   {"hasEvents", false},
                   {"weeklyReport", false},
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
            {"review-pr", "Review a pull request", "Read a diff and comment on it."},
            {"weekly-report", "Weekly report", "Gather the week's numbers and what changed."},
            {"compare-tools", "Compare tools", "Put two or three products side by side."}};
        // Most skills are everyone's; a few belong to the teammate who has them.
        const std::map<std::string, std::string> owners = {{"draft-email", "quill"}, {"review-pr", "forge"}};
        for (const auto& skill : skills) {
            json record = {{"id", skill[0]}, {"name", skill[1]}, {"description", skill[2]}};
            if (const auto owner = owners.find(skill[0]); owner != owners.end())
                record["agent"] = owner->second;
            store.put("skill", std::string("w1:") + skill[0], "w1", record);
        }
        // A document's id is its slug: the "#" menu links "/documents/<slug>".
        const char* docs[][2] = {
            {"brand-voice", "Brand voice"},         {"launch-checklist", "Launch checklist"},
            {"pricing-notes", "Pricing notes"},     {"onboarding-guide", "Onboarding guide"},
            {"q4-plan", "Q4 plan: focus and bets"}, {"incident-runbook", "Incident runbook"}};
        for (const auto& doc : docs)
            store.put("document", doc[0], "w1", {{"kind", "doc"}, {"id", doc[0]}, {"title", doc[1]}});

        service.notify("w1", "u1", "reply",
                       {{"type", "agent"}, {"id", "quill"}, {"name", "Quill"}, {"handle", "quill"}},
                       "asks you to review", "Draft the launch e-mail", "The first draft is ready for you.",
                       "/tasks/NOR-1");
    });
}

} // namespace devservice
