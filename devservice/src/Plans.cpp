#include "Plans.h"

#include "Dice.h"

#include <functional>
#include <map>

namespace devservice {

namespace {

struct Page {
    const char* title;
    const char* url; // https://host/path
};

std::string hostOf(const std::string& url)
{
    const size_t from = url.find("://") + 3;
    std::string host = url.substr(from, url.find('/', from) - from);
    return host.rfind("www.", 0) == 0 ? host.substr(4) : host;
}

// "1 file", "3 files".
std::string counted(int count, const std::string& noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

// Builds a plan round by round; steps know their round by number.
class Builder {
public:
    Builder(unsigned seed, const std::string& topic) : dice(seed), topic(topic) {}

    void round(const std::string& doing) { plan.rounds.push_back({{"doing", doing}}); }

    json& step(const std::string& tool, const std::string& label, const std::string& why, const json& input,
               const std::string& result, double seconds)
    {
        json step = {{"round", plan.rounds.size() - 1},
                     {"tool", tool},
                     {"label", label},
                     {"why", why},
                     {"result", result},
                     {"seconds", seconds}};
        // Tools take JSON; a plain text input is shown as it was typed.
        if (!input.is_null())
            step["input"] = input.is_string() ? input.get<std::string>() : input.dump();
        plan.steps.push_back(step);
        return plan.steps.back();
    }

    json& search(const char* tool, const std::string& query, int results)
    {
        const bool news = std::string(tool) == "search_news";
        json input = {{"query", query}};
        if (news)
            input["days"] = 30;
        return step(tool, news ? "Search the news for \"" + query + "\"" : "Search for \"" + query + "\"",
                    news ? "To see what changed lately" : "To see what is already out there", input,
                    std::to_string(results) + (news ? " stories from the last month; " : " results; ") +
                        dice.oneOf({"the top three look useful.", "two are worth reading.",
                                    "most repeat one source."}),
                    dice.between(2, 4));
    }

    // A page read; a few do not load, and the run goes on without them.
    json& read(const Page& page, const std::string& why, const std::string& result, bool mayStumble = true)
    {
        const std::string host = hostOf(page.url);
        json& s = step(dice.oneIn(2) ? "browser" : "read_web_page", "Read " + host, why, page.url, result,
                       dice.between(3, 5));
        s["chip"] = {{"text", page.title}, {"host", host}, {"url", page.url}};
        if (mayStumble && dice.oneIn(5)) {
            s["stumbles"] = true;
            s["trouble"] = dice.oneOf({"The page did not load.", "The site answered 403 Forbidden.",
                                       "The page timed out after 20 seconds."});
        }
        return s;
    }

    // Reads `count` pages from the pool, none twice.
    void reads(std::vector<Page> pool, int count, const std::string& why,
               std::initializer_list<std::string> results)
    {
        for (int i = 0; i < count && !pool.empty(); ++i) {
            const size_t at = dice.below(pool.size());
            read(pool[at], why, dice.oneOf(results));
            pool.erase(pool.begin() + long(at));
        }
    }

    // A step that asks the user first; it goes on once the wait is over.
    void waits(json& step) { step["waits"] = true; }

    Dice dice;
    std::string topic;
    Plan plan;
};

void novaPlan(Builder& b)
{
    b.round("Reading the request and what is on the board");
    b.step("list_tasks", "List the open tasks of Spring launch", "To see what is already planned",
           json{{"project", "Spring launch"}, {"status", "open"}},
           std::to_string(b.dice.between(9, 18)) + " open tasks; " + std::to_string(b.dice.between(2, 4)) +
               " touch on this.",
           2);
    if (b.dice.oneIn(2))
        b.step("read_calendar", "Check the week's calendar", "To fit the plan around what is booked",
               json{{"days", 7}},
               b.dice.oneOf({"The beta review is on Thursday.", "Friday is the release freeze."}), 2);
    b.round("Checking who is free to help");
    b.step("team_status", "Ask who is free", "To hand each part to someone with time", json::object(),
           b.dice.oneOf({"Atlas and Quill are idle; Forge is on the deploy.",
                         "Everyone is free except Ledger, who closes the month."}),
           2);
    b.reads({{"Shape Up: Set boundaries", "https://basecamp.com/shapeup/1.2-chapter-03"},
             {"Project management", "https://en.wikipedia.org/wiki/Project_management"},
             {"Ask HN: How do small teams plan launches?", "https://news.ycombinator.com/item?id=38421907"}},
            1, "To check the plan against how others cut scope",
            {"One idea worth keeping: fix the time, vary the scope.", "Took notes on cutting scope."});
    b.round("Writing the plan down");
    json& tasks = b.step("create_tasks", "Put the plan on the board", "So everyone sees who does what",
                         json{{"project", "Spring launch"}, {"count", b.dice.between(2, 4)}},
                         "The tasks are on the board.", 3);
    if (b.dice.oneIn(4)) {
        tasks["why"] = "New tasks land on the shared board, so it asks first";
        b.waits(tasks);
    }
    b.step("make_card", "Write the plan up", "To answer in the thread", nullptr, "Done.", 2);
}

void quillPlan(Builder& b)
{
    b.round("Reading our voice and what we said before");
    b.step("read_document", "Read the brand voice", "To sound like us", json{{"id", "brand-voice"}},
           "Short sentences, no exclamation marks, say \"we\".", 2);
    b.step("search_messages", "Look for earlier threads on this", "To reuse what the team already agreed",
           json{{"query", b.topic}}, counted(b.dice.between(1, 4), "earlier thread") + " on it.", 2);
    b.round("Looking at how others say it");
    b.reads({{"Email subject lines: 5 tips", "https://www.nngroup.com/articles/email-subject-lines/"},
             {"How to write a product launch email", "https://mailchimp.com/resources/product-launch-email/"},
             {"Email marketing", "https://en.wikipedia.org/wiki/Email_marketing"}},
            b.dice.between(1, 2), "To borrow what works",
            {"Notes on short, specific subject lines.", "Front-load the benefit; one call to action."});
    b.round("Drafting");
    b.step("draft_email", "Draft the text", "To put it in words",
           json{{"to", "beta@northwind.example"}, {"words", b.dice.between(110, 160)}},
           "A draft with two subject lines to pick from.", 3);
    if (b.dice.oneIn(3)) {
        b.round("Asking before it goes out");
        json& send =
            b.step("send_email", "Send the draft to the team for review", "Sending mail needs your approval",
                   json{{"to", "team@northwind.example"}}, "Approved and sent.", 6);
        b.waits(send);
    }
}

void atlasPlan(Builder& b)
{
    b.round("Looking for what is already known");
    b.search("search_web", b.topic, b.dice.between(9, 24));
    if (b.dice.oneIn(2))
        b.search("search_news", b.topic, b.dice.between(3, 9));
    b.round("Reading the strongest sources");
    // Three pages, so two are left to cite when one does not load.
    std::vector<Page> pool = {
        {"Web analytics", "https://en.wikipedia.org/wiki/Web_analytics"},
        {"Show HN: what we learned moving off Google Analytics",
         "https://news.ycombinator.com/item?id=37190236"},
        {"Plausible: privacy-first analytics", "https://plausible.io/privacy-focused-web-analytics"},
        {"plausible/analytics on GitHub", "https://github.com/plausible/analytics"},
        {"Referer header", "https://developer.mozilla.org/en-US/docs/Web/HTTP/Headers/Referer"}};
    for (int i = 0; i < 3; ++i) {
        const size_t at = b.dice.below(pool.size());
        b.read(pool[at], "To check the claims at the source",
               b.dice.oneOf({"Found two figures worth quoting.", "Took notes on the main points.",
                             "Useful: dates and numbers."}),
               i == 0);
        pool.erase(pool.begin() + long(at));
    }
    b.round("Checking our own numbers");
    b.step("analytics_export", "Export the last 30 days of referrers", "To compare with what we see",
           json{{"site", "northwind.example"}, {"range", "30d"}, {"by", "referrer"}},
           std::to_string(b.dice.between(4, 9)) + " referrers with more than 100 visitors.", 3);
    b.round("Putting it side by side");
    b.step("make_table", "Put the figures in a table", "To make the comparison easy to read", nullptr,
           "A table of five rows.", 2);
}

void forgePlan(Builder& b)
{
    b.round("Finding the code involved");
    b.step("read_repo", "Read northwind/web", "To find where this lives",
           json{{"repo", "northwind/web"}, {"path", "src/"}},
           b.dice.oneOf({"It lives in src/pages/pricing.tsx and src/lib/links.ts.",
                         "Two components and one config file are involved."}),
           2);
    b.step("search_code", "Search the code", "To catch every place it is used",
           json{{"query", b.topic}, {"repo", "northwind/web"}},
           std::to_string(b.dice.between(2, 7)) + " matches in " + counted(b.dice.between(1, 3), "file") +
               ".",
           2);
    b.round("Reading up before changing anything");
    b.reads({{"Redirections in HTTP", "https://developer.mozilla.org/en-US/docs/Web/HTTP/Redirections"},
             {"northwind/web pull requests", "https://github.com/northwind/web/pulls"},
             {"Vite: building for production", "https://vitejs.dev/guide/build"}},
            b.dice.between(1, 2), "To do it the way the platform expects",
            {"Confirmed the behaviour we rely on.", "Noted one edge case to test."});
    b.round("Making the change and testing it");
    b.step("edit_file", "Change the code", "To make the fix", json{{"path", "src/lib/links.ts"}},
           "Changed " + std::to_string(b.dice.between(2, 9)) + " lines.", 3);
    b.step("run_tests", "Run the tests", "To be sure nothing else broke",
           json{{"suite", "web"}, {"filter", "pricing"}},
           std::to_string(b.dice.between(40, 130)) + " passed, 0 failed.", 4);
    if (b.dice.oneIn(3)) {
        b.round("Asking before anything goes live");
        json& pr =
            b.step("open_pull_request", "Open a pull request", "Changing the main branch needs your approval",
                   json{{"branch", "fix/" + std::to_string(b.dice.between(200, 260))}},
                   "Approved; the pull request is open.", 6);
        b.waits(pr);
    }
}

void pixelPlan(Builder& b)
{
    b.round("Looking at what we have");
    json& figma = b.step("read_figma", "Open the Spring launch file", "To start from the current design",
                         json{{"file", "Spring launch"}, {"page", "Hero"}},
                         "Three frames; the second is the live hero.", 3);
    figma["chip"] = {{"text", "Spring launch (Figma)"},
                     {"host", "figma.com"},
                     {"url", "https://www.figma.com/files/northwind/spring-launch"}};
    b.round("Looking at good examples");
    b.reads({{"Visual hierarchy in UX", "https://www.nngroup.com/articles/visual-hierarchy-ux-definition/"},
             {"Contrast checker", "https://webaim.org/resources/contrastchecker/"},
             {"Figma community: landing pages", "https://www.figma.com/community/website-templates"}},
            b.dice.between(1, 2), "To check the idea against good practice",
            {"Saved two references.", "Notes on spacing and hierarchy."});
    b.round("Trying options");
    b.step("make_image", "Render two options", "To compare them side by side",
           json{{"prompt", b.topic}, {"size", "1600x900"}, {"count", 2}}, "Two options rendered.", 4);
    b.step("check_contrast", "Check the contrast", "So the text stays readable",
           json{{"fg", "#1F2A44"}, {"bg", "#F6F1E7"}}, "11.8:1, passes AA and AAA.", 2);
    if (b.dice.oneIn(4)) {
        b.round("Asking before sharing");
        json& share = b.step("share_preview", "Share the preview link",
                             "A link outside the workspace needs your approval",
                             json{{"audience", "beta testers"}}, "Approved; the link is live for a week.", 6);
        b.waits(share);
    }
}

void ledgerPlan(Builder& b)
{
    b.round("Pulling the numbers");
    json& stripe = b.step("stripe_revenue", "Read revenue from Stripe", "To start from real numbers",
                          json{{"range", "last_30_days"}, {"currency", "EUR"}},
                          std::to_string(b.dice.between(150, 260)) + " payments in the last 30 days.", 3);
    stripe["chip"] = {
        {"text", "Stripe dashboard"}, {"host", "stripe.com"}, {"url", "https://dashboard.stripe.com/"}};
    b.step("read_invoices", "Read this month's invoices", "To see what we owe", json{{"month", "current"}},
           std::to_string(b.dice.between(30, 48)) + " invoices, 1 without a receipt.", 2);
    b.round("Checking the fine print");
    b.reads({{"Stripe Billing: invoices", "https://stripe.com/docs/invoicing"},
             {"Stripe payouts", "https://stripe.com/docs/payouts"},
             {"Accounts payable", "https://en.wikipedia.org/wiki/Accounts_payable"}},
            1, "To get the rules right", {"Payouts land two business days later.", "Noted the fee rules."});
    b.round("Working it out");
    b.step("spreadsheet", "Add it up in the budget sheet", "To check the totals",
           json{{"sheet", "Budget 2026"}, {"range", "A1:F40"}}, "The totals match to the cent.", 3);
    if (b.dice.oneIn(4)) {
        b.round("Asking before money moves");
        json& pay =
            b.step("pay_invoice", "Pay the overdue invoice", "Paying money out needs your approval",
                   json{{"vendor", "Fastly"}, {"amount", "€" + std::to_string(b.dice.between(120, 480))}},
                   "Approved and paid.", 6);
        b.waits(pay);
    }
}

// Why a tool call can sink an answer: one plain sentence each.
std::string troubleWith(const std::string& tool, Dice& dice)
{
    static const std::map<std::string, std::vector<const char*>> reasons = {
        {"team_status", {"Nobody's status would load, so I could not tell who is free."}},
        {"create_tasks", {"The task board did not answer, so the plan is not on it."}},
        {"draft_email",
         {"The mail service refused the draft twice.",
          "The brand voice document would not open, so I did not write in the wrong voice."}},
        {"analytics_export", {"The analytics export timed out twice."}},
        {"edit_file", {"GitHub refused the repository token, so I could not change the code."}},
        {"run_tests", {"The test runner could not start: the build queue is full."}},
        {"make_image", {"The image service was busy and gave up after three tries."}},
        {"check_contrast", {"The Figma file is locked, so I could not check the colours."}},
        {"spreadsheet",
         {"The budget sheet is open elsewhere and stayed locked.",
          "Stripe refused the export key, so I have no numbers to show."}},
    };
    const auto found = reasons.find(tool);
    return found == reasons.end() ? "The tools I needed did not answer twice in a row."
                                  : dice.pick(found->second);
}

} // namespace

Plan planFor(const std::string& agent, const std::string& topic, unsigned seed, bool failing)
{
    static const std::map<std::string, std::function<void(Builder&)>> plans = {
        {"nova", novaPlan},   {"quill", quillPlan}, {"atlas", atlasPlan},
        {"forge", forgePlan}, {"pixel", pixelPlan}, {"ledger", ledgerPlan}};
    Builder b(seed, topic);
    const auto found = plans.find(agent);
    (found == plans.end() ? atlasPlan : found->second)(b);
    if (failing) {
        // The fatal step is a tool call past the first round, one the answer
        // cannot do without (not the write-up). Steps after it never run.
        std::vector<size_t> candidates;
        for (size_t i = 0; i < b.plan.steps.size(); ++i) {
            const json& step = b.plan.steps[i];
            const std::string tool = step["tool"];
            if (step["round"].get<size_t>() > 0 && !step.contains("chip") && !step.value("waits", false) &&
                tool != "make_card" && tool != "make_table")
                candidates.push_back(i);
        }
        const size_t at = candidates.empty() ? b.plan.steps.size() - 1 : b.dice.pick(candidates);
        b.plan.steps[at]["fatal"] = true;
        b.plan.steps[at]["trouble"] = troubleWith(b.plan.steps[at]["tool"], b.dice);
    }
    return b.plan;
}

std::string failureReason(const std::string& agent, const std::string& topic, unsigned seed)
{
    for (const json& step : planFor(agent, topic, seed, true).steps)
        if (step.value("fatal", false))
            return step["trouble"];
    return "The tools I needed did not answer twice in a row.";
}

json extraRound(const std::string& agent, const std::string& request, unsigned seed)
{
    Builder b(seed, request);
    b.round("Taking in the new request: " + request);
    b.step("read_message", "Read the new message", "You added to the request while I worked",
           json{{"text", request}}, "Noted; it changes the answer a little.", 1);
    if (agent == "atlas" || agent == "nova")
        b.search("search_web", request, b.dice.between(5, 15));
    else if (agent == "forge")
        b.step("run_tests", "Run the tests again", "To cover the new case", json{{"suite", "web"}},
               std::to_string(b.dice.between(40, 130)) + " passed, 0 failed.", 3);
    else
        b.step("make_card", "Fold it into the answer", "To answer both in one go", nullptr, "Done.", 2);
    return {{"doing", b.plan.rounds[0]["doing"]}, {"steps", b.plan.steps}};
}

json pagesRead(const json& steps)
{
    json pages = json::array();
    for (const json& step : steps)
        if (step.contains("chip") && step["chip"].contains("url") && !step.value("stumbles", false) &&
            step.value("tool", "") != "stripe_revenue" && step.value("tool", "") != "read_figma")
            pages.push_back({{"title", step["chip"]["text"]}, {"url", step["chip"]["url"]}});
    return pages;
}

} // namespace devservice
