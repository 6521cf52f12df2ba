#include "History.h"

#include "Dice.h"
#include "Plans.h"
#include "Teammates.h"
#include "Voices.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace devservice {

namespace {

// What people ask each teammate, in their own words.
const std::map<std::string, std::vector<const char*>>& asks()
{
    static const std::map<std::string, std::vector<const char*>> asks = {
        {"atlas",
         {"compare Plausible, Fathom and Matomo for us", "what do people say about our new pricing?",
          "where did last week's traffic spike come from?", "find three launch posts from competitors",
          "look up the EU rules on cookie banners", "how big is the market for small-team analytics?",
          "which referrers bring sign-ups, not just visits?", "what changed on Hacker News after our post?"}},
        {"quill",
         {"draft the beta invite e-mail", "write a LinkedIn post about the spring launch",
          "a thank-you note to the beta testers, please", "tighten the onboarding e-mail, it is too long",
          "write the changelog entry for this week", "draft a reply to the free-tier thread",
          "three subject lines for the newsletter"}},
        {"forge",
         {"the pricing link in the footer is broken", "why is the build slow again?",
          "can we redirect /pricing-old to /pricing?", "the signup form fails on Safari",
          "bump the dependencies before the release", "add a health check to the status page"}},
        {"pixel",
         {"a hero image for the spring page", "our buttons look washed out on mobile",
          "three colour options for the beta badge", "a social card for the launch post",
          "tidy up the pricing table layout"}},
        {"ledger",
         {"what did we spend on tools in March?", "reconcile the Stripe payouts for last week",
          "how much runway do we have at this burn?", "is the Fastly invoice paid?",
          "what would yearly plans save us?"}},
        {"nova",
         {"what should we do first this week?", "plan the beta interviews", "who is on what for the launch?",
          "split the website refresh into tasks", "set up the retro agenda for Friday"}},
    };
    return asks;
}

const char* const chatter[] = {"Lunch at 12 today?",
                               "I am out on Friday afternoon.",
                               "Nice work on the launch page, everyone.",
                               "Reminder: retro at 4.",
                               "The coffee machine is fixed ☕",
                               "Who has the Figma login?",
                               "The customer call went well; notes are in the doc.",
                               "Can someone look at my pull request before 3?",
                               "Heads up: staging is down for ten minutes.",
                               "The beta list just passed 500 people 🎉",
                               "Does anyone know where the brand fonts live?",
                               "The investor demo is on Thursday."};
const char* const chatterReplies[] = {
    "👍",           "Count me in.", "Thanks for the heads up.",          "I can, give me ten minutes.",
    "Great news!", "On it.",       "In the shared drive, under Brand.", "Nice!"};
const char* const thanks[] = {"Thanks! Can you make it a bit shorter?",
                              "Perfect, thank you.",
                              "Can you also check how it looks on mobile?",
                              "Great. Send it to Jon too.",
                              "Looks good. Ship it.",
                              "Hmm, the second number looks off to me.",
                              "Exactly what I needed."};
const char* const asides[] = {"+1, this is useful.", "I had the same question.",
                              "Let us talk about it at the retro.", "Saving this one.",
                              "Can we do the same for the Lakeside site?"};
const char* const rehearsal[] = {
    "The signup button jumps a little on Safari.",       "Pricing loads in about a second for me.",
    "The hero image is blurry on my old phone.",         "Onboarding step 4 still asks for an invite first.",
    "The welcome e-mail arrived in under a minute.",     "Dark mode looks great on the dashboard.",
    "The FAQ link in the footer goes nowhere.",          "Checkout worked with a test card.",
    "The changelog says 'Sprint' instead of 'Spring' 😄", "All good on Firefox."};
const char* const emojis[] = {"👍", "🎉", "❤️", "👀", "🙏", "😄"};

// Writes the room's past, one message after the other.
class RoomWriter {
public:
    RoomWriter(Service& service, const std::string& workspace, const std::vector<Person>& people,
               const std::vector<json>& tasks, double to)
        : s(service), workspace(workspace), people(people), tasks(tasks), limit(to), dice(0x6b657374ull)
    {
        for (const json& t : s.teammates(workspace))
            mates.push_back(t);
        for (const Person& p : people)
            everyone.push_back(p.id);
    }

    void write(double from, size_t count)
    {
        const double days = (limit - from) / 86400;
        const size_t longOne = count * 6 / 7;
        for (size_t i = 0; i < count; ++i) {
            // Working hours, 07:00 to 19:00 UTC, a little out of step.
            const double place = (double(i) + 0.5) / double(count) * days;
            const double day = std::floor(place);
            const double at =
                from + day * 86400 + (7 + 12 * (place - day)) * 3600 + double(dice.between(-300, 300));
            if (i == longOne)
                launchRehearsal(at);
            else if (place - day < 0.04 && dice.oneIn(2))
                teammatePost(at, "nova");
            else
                message(at);
        }
    }

private:
    const json& mate(const std::string& handle)
    {
        return *std::find_if(mates.begin(), mates.end(),
                             [&](const json& t) { return t["handle"] == handle; });
    }
    const Person& somebody() { return dice.pick(people); }

    json reactions()
    {
        json out = json::array();
        if (!dice.oneIn(4))
            return out;
        std::vector<std::string> left = everyone;
        for (int e = 0, kinds = dice.between(1, 2); e < kinds; ++e) {
            json by = json::array();
            for (int n = dice.between(1, std::min<int>(4, int(everyone.size()))); n > 0; --n)
                by.push_back(everyone[dice.below(everyone.size())]);
            std::sort(by.begin(), by.end());
            by.erase(std::unique(by.begin(), by.end()), by.end());
            out.push_back({{"emoji", emojis[(dice.below(6) + size_t(e)) % 6]}, {"by", by}});
        }
        if (out.size() == 2 && out[0]["emoji"] == out[1]["emoji"])
            out.erase(1);
        return out;
    }

    json base(double at, const std::string& thread)
    {
        json m = {{"id", dice.id("m")},
                  {"text", ""},
                  {"to", json::array()},
                  {"reads", everyone},
                  {"failed", false},
                  {"approvalIds", json::array()},
                  {"reactions", reactions()},
                  {"cites", json::array()},
                  {"at", iso(at)}};
        if (!thread.empty())
            m["threadId"] = thread;
        return m;
    }

    std::string byPerson(double at, const std::string& thread, const Person& who, const std::string& text,
                         const json& to = json::array())
    {
        json m = base(at, thread);
        m["from"] = "person";
        m["by"] = {{"id", who.id}, {"type", "person"}, {"name", who.name}};
        m["text"] = text;
        m["to"] = to;
        s.store.put("message", m["id"], workspace, m);
        return m["id"];
    }

    json byTeammate(double at, const std::string& thread, const std::string& handle)
    {
        const json& t = mate(handle);
        json m = base(at, thread);
        m["from"] = "agent";
        m["by"] = {{"id", handle}, {"type", "agent"}, {"name", t["name"]}};
        m["agent"] = handle;
        m["avatar"] = t["avatar"];
        return m;
    }

    // A teammate's answer to `topic`, with the run that wrote it; about one
    // in twenty-five fell through.
    void answer(double at, const std::string& thread, const std::string& handle, const std::string& topic,
                const std::string& author)
    {
        const unsigned seed = unsigned(dice.next());
        const bool failed = dice.oneIn(25);
        const std::string runId = dice.id("run");
        json m = byTeammate(at, thread, handle);
        m["by"]["run"] = runId;
        m["runId"] = runId;
        PastRun run{.workspace = workspace,
                    .agent = handle,
                    .topic = topic,
                    .startedAt = at - dice.between(40, 400),
                    .endedAt = at,
                    .failed = failed,
                    .threadId = thread,
                    .author = author,
                    .id = runId,
                    .seed = seed};
        if (failed) {
            run.summary = failureReason(handle, topicOf(topic), seed);
            m["failed"] = true;
            m["text"] = run.summary;
        } else {
            const Plan plan = planFor(handle, topicOf(topic), seed, false);
            const Answer a = answerFor(handle, topicOf(topic), seed, pagesRead(plan.steps));
            run.summary = "Answered \"" + topicOf(topic) + "\" in the room.";
            run.reply = a.text;
            run.cites = a.cites;
            run.draft = a.draft;
            m["text"] = a.text;
            m["cites"] = a.cites;
        }
        addPastRun(s, run);
        s.store.put("message", m["id"], workspace, m);
    }

    void followUp(double at, const std::string& thread, const std::string& handle)
    {
        json m = byTeammate(at, thread, handle);
        m["text"] = followUpFor(handle, unsigned(dice.next()));
        s.store.put("message", m["id"], workspace, m);
    }

    // Minutes later, unless that would run into today.
    bool later(double& at, int fromMinutes, int toMinutes)
    {
        at += dice.between(fromMinutes * 60, toMinutes * 60);
        return at < limit;
    }

    void message(double at)
    {
        const size_t roll = dice.below(100);
        if (roll < 45)
            ask(at);
        else if (roll < 50)
            askEveryone(at);
        else if (roll < 80)
            chat(at);
        else
            teammatePost(at, dice.oneOf({"atlas", "ledger", "forge", "pixel", "quill"}));
    }

    void ask(double at)
    {
        const Person& who = somebody();
        const auto& pool = asks();
        auto it = pool.begin();
        std::advance(it, long(dice.below(pool.size())));
        const std::string handle = it->first;
        std::string topic = dice.pick(it->second);
        json task;
        if (dice.oneIn(25) && !tasks.empty()) {
            const json& t = dice.pick(tasks);
            task = {{"key", t["key"]}, {"title", t["title"]}, {"status", t["status"]}};
            topic = "can you pick up " + t["key"].get<std::string>() + "? " + t["title"].get<std::string>();
        }
        // Most people name the teammate; the rest leave it to the lead.
        const bool named = !dice.oneIn(3);
        std::string text = topic;
        if (named)
            text = "@" + handle + " " + topic;
        else
            text[0] = char(std::toupper(static_cast<unsigned char>(text[0])));
        const std::string id = byPerson(at, "", who, text, named ? json::array({handle}) : json::array());
        if (!task.is_null()) {
            auto m = s.store.get("message", id);
            (*m)["task"] = task;
            s.store.put("message", id, workspace, *m);
        }
        if (!later(at, 1, 12))
            return;
        answer(at, id, handle, topic, who.id);
        // Up to five more: thanks and corrections, the teammate again, others joining in.
        static const int extraCounts[] = {0, 0, 1, 1, 2, 2, 3, 4, 5};
        for (int n = dice.pick(extraCounts), k = 0; k < n; ++k) {
            if (!later(at, 2, 90))
                return;
            if (k % 2 == 0)
                byPerson(at, id, dice.oneIn(3) ? somebody() : who,
                         dice.oneIn(4) ? dice.pick(asides) : dice.pick(thanks));
            else
                followUp(at, id, handle);
        }
    }

    void askEveryone(double at)
    {
        const Person& who = somebody();
        const std::string topic =
            dice.oneOf({"what should we cut to ship on time?", "ideas for the launch week?",
                        "anything blocking the beta?", "what did we learn this sprint?"});
        const std::string id = byPerson(at, "", who, "@all " + topic);
        std::vector<std::string> handles;
        for (const json& t : mates)
            if (dice.oneIn(2) && handles.size() < 4)
                handles.push_back(t["handle"]);
        for (const std::string& handle : handles)
            if (later(at, 1, 6))
                answer(at, id, handle, topic, who.id);
        if (later(at, 5, 60))
            byPerson(at, id, who, dice.pick(thanks));
    }

    void chat(double at)
    {
        const Person& who = somebody();
        const std::string id = byPerson(at, "", who, dice.pick(chatter));
        if (!dice.oneIn(3))
            return;
        for (int n = dice.between(1, 3); n > 0 && later(at, 1, 30); --n) {
            // Someone else answers.
            size_t other = dice.below(people.size());
            if (people[other].id == who.id)
                other = (other + 1) % people.size();
            byPerson(at, id, people[other], dice.pick(chatterReplies));
        }
    }

    // A teammate speaks first: Nova's morning plan, the weekly numbers, a deploy.
    void teammatePost(double at, const std::string& handle)
    {
        json m = byTeammate(at, "", handle);
        if (handle == "nova") {
            const auto first = dice.oneOf({"Quill", "Atlas", "Forge"}),
                       second = dice.oneOf({"Pixel", "Ledger"});
            m["text"] = "Good morning! Here is what the kest is on today:\n\n1. **" + first + "** " +
                        dice.oneOf({"finishes the launch copy", "picks up the open questions from yesterday",
                                    "works through the review comments"}) +
                        "\n2. **" + second + "** " +
                        dice.oneOf({"has the numbers for the weekly check-in", "updates the spring page",
                                    "closes the open invoices"}) +
                        "\n\nAsk any of us with `@name`.";
        } else if (handle == "forge") {
            m["text"] = "Deployed v0." + std::to_string(dice.between(8, 12)) + "." +
                        std::to_string(dice.between(0, 9)) +
                        " to staging: " + std::to_string(dice.between(3, 14)) +
                        " changes, all tests green. Notes:\n\n```bash\ngit log --oneline v0.9.0..HEAD\n```";
        } else if (handle == "pixel") {
            m["text"] = dice.oneOf(
                {"New icons for the settings page are in Figma. The old ones go on Friday.",
                 "The spring palette is final:\n\n- Ink `#1F2A44`\n- Paper `#F6F1E7`\n- Accent `#E4572E`"});
        } else {
            const std::string topic = handle == "atlas"    ? "this week's traffic"
                                      : handle == "ledger" ? "this month's invoices"
                                                           : "this week's newsletter";
            m["text"] = answerFor(handle, topic, unsigned(dice.next())).text;
        }
        s.store.put("message", m["id"], workspace, m);
        const std::string id = m["id"];
        if (dice.oneIn(3))
            for (int n = dice.between(1, 2); n > 0 && later(at, 3, 60); --n)
                byPerson(at, id, somebody(), dice.oneOf({"Thanks!", "👍", "Good to know.", "Nice."}));
    }

    // The launch rehearsal: everyone posts what they notice, the teammates
    // take what is theirs. The room's one thread too long to show at once.
    void launchRehearsal(double at)
    {
        const Person& who = people.front();
        const std::string id = byPerson(
            at, "", who, "@all launch rehearsal: click through the beta and post what you notice here.");
        const char* const fixers[] = {"forge", "pixel", "quill", "nova"};
        for (int k = 0; k < 64 && later(at, 1, 4); ++k) {
            if (k % 3 == 2)
                followUp(at, id, dice.pick(fixers));
            else
                byPerson(at, id, somebody(), dice.pick(rehearsal));
        }
    }

    Service& s;
    std::string workspace;
    std::vector<Person> people;
    std::vector<json> tasks;
    double limit;
    Dice dice;
    std::vector<json> mates;
    json everyone = json::array();
};

} // namespace

void seedRoomHistory(Service& service, const std::string& workspace, const std::vector<Person>& people,
                     const std::vector<json>& tasks, double from, double to)
{
    RoomWriter(service, workspace, people, tasks, to).write(from, 400);
}

void seedDirectChats(Service& service, const std::string& workspace, const std::string& user,
                     const std::vector<std::string>& handles, double from, double to)
{
    Dice dice(0x63686174ull);
    for (const std::string& handle : handles) {
        const auto found = asks().find(handle);
        if (found == asks().end())
            continue;
        // Four chats each, oldest first, on four different asks: a plain one,
        // one by Telegram, a call, and one whose answer failed.
        std::vector<const char*> topics = found->second;
        for (int kind = 0; kind < 4 && !topics.empty(); ++kind) {
            double at = from + (to - from) * (double(kind) + dice.below(80) / 100.0) / 4.0;
            const size_t pick = dice.below(topics.size());
            std::string ask = topics[pick];
            topics.erase(topics.begin() + long(pick));
            ask[0] = char(std::toupper(static_cast<unsigned char>(ask[0])));
            const unsigned seed = unsigned(dice.next());
            json thread = {{"id", dice.id("th")},       {"agent", handle},  {"user", user},
                           {"title", topicOf(ask)},     {"status", "idle"}, {"createdAt", iso(at)},
                           {"messages", json::array()}, {"direct", true},   {"telegram", kind == 1},
                           {"call", kind == 2}};
            json& messages = thread["messages"];
            const auto say = [&](const char* role, const std::string& text, double minutes) {
                at += minutes * 60;
                messages.push_back({{"id", dice.id("dm")}, {"role", role}, {"text", text}, {"at", iso(at)}});
                return &messages.back();
            };
            say("user", kind == 2 ? "(Call) " + ask : ask, 0);
            if (kind == 3) {
                const std::string why = failureReason(handle, topicOf(ask), seed);
                (*say("agent", why, 2))["failed"] = true;
                thread["status"] = "failed";
                thread["error"] = why;
            } else {
                const Answer answer = answerFor(handle, topicOf(ask), seed);
                json* reply = say("agent", answer.text, dice.between(1, 6));
                if (!answer.cites.empty())
                    (*reply)["cites"] = answer.cites;
                if (dice.oneIn(2)) {
                    say("user", dice.pick(thanks), dice.between(5, 120));
                    say("agent", followUpFor(handle, seed), dice.between(1, 4));
                }
            }
            thread["updatedAt"] = messages.back()["at"];
            service.store.put("dmthread", thread["id"], workspace, thread);
        }
    }
}

} // namespace devservice
