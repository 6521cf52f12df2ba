#include "Voices.h"

#include "Dice.h"

#include <map>
#include <regex>

namespace devservice {

namespace {

// The request as a phrase inside a sentence: no closing mark, and a
// lower-case start unless it opens with a name or an acronym.
std::string phraseOf(const std::string& topic)
{
    std::string phrase = topic;
    while (!phrase.empty() && std::string(".?! ").find(phrase.back()) != std::string::npos)
        phrase.pop_back();
    const bool pronoun = phrase.rfind("I ", 0) == 0 || phrase.rfind("I'", 0) == 0;
    if (phrase.size() > 1 && phrase[0] >= 'A' && phrase[0] <= 'Z' &&
        !(phrase[1] >= 'A' && phrase[1] <= 'Z') && !pronoun)
        phrase[0] = char(phrase[0] - 'A' + 'a');
    return phrase.empty() ? std::string("the request") : phrase;
}

// The request quoted inside a sentence, since it can be a question or an
// order as much as a subject: I tried two options for “a hero image”.
std::string quotedOf(const std::string& topic)
{
    return "“" + phraseOf(topic) + "”";
}

// The request as a heading.
std::string subjectOf(const std::string& topic)
{
    std::string subject = phraseOf(topic);
    if (subject[0] >= 'a' && subject[0] <= 'z')
        subject[0] = char(subject[0] - 'a' + 'A');
    return subject;
}

std::string grouped(long value)
{
    const std::string digits = std::to_string(value < 0 ? -value : value);
    std::string out = value < 0 ? "−" : "";
    for (size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0)
            out += ',';
        out += digits[i];
    }
    return out;
}

std::string euros(long value)
{
    return (value < 0 ? "−€" : "€") + grouped(value < 0 ? -value : value);
}

std::string percent(int value)
{
    return (value >= 0 ? "+" : "−") + std::to_string(value < 0 ? -value : value) + "%";
}

const char* weekday(Dice& dice)
{
    static const char* days[] = {"Monday", "Tuesday", "Wednesday", "Thursday", "Friday"};
    return dice.pick(days);
}

std::string lines(std::initializer_list<std::string> parts)
{
    std::string out;
    for (const std::string& part : parts)
        out += part + "\n";
    out.pop_back();
    return out;
}

// --- Nova: the lead plans and hands out the work --------------------------------

std::string jobOf(const std::string& mate, Dice& dice)
{
    static const std::map<std::string, std::vector<const char*>> jobs = {
        {"Atlas",
         {"gathers the facts and three comparable launches", "pulls our numbers and what others report"}},
        {"Quill", {"writes the announcement and the e-mail", "drafts the copy for the page and the post"}},
        {"Forge", {"checks what it needs from the code", "sets up the release and the redirect"}},
        {"Pixel", {"mocks up the page and the hero image", "makes the social card and the badge"}},
        {"Ledger", {"prices it and checks the budget", "works out what it costs per month"}},
    };
    return dice.pick(jobs.at(mate));
}

std::vector<std::string> helpers(Dice& dice, size_t count)
{
    std::vector<std::string> pool = {"Atlas", "Quill", "Forge", "Pixel", "Ledger"}, out;
    while (out.size() < count) {
        const size_t at = dice.below(pool.size());
        out.push_back(pool[at]);
        pool.erase(pool.begin() + long(at));
    }
    return out;
}

std::string nova(const std::string& topic, Dice& dice)
{
    const auto mates = helpers(dice, 3);
    switch (dice.below(3)) {
    case 0:
        return lines(
            {"## Plan: " + subjectOf(topic), "",
             "Here is how I would split " + quotedOf(topic) + " so it is done by " + weekday(dice) + ":", "",
             "1. **" + mates[0] + "** " + jobOf(mates[0], dice),
             "2. **" + mates[1] + "** " + jobOf(mates[1], dice),
             "3. **" + mates[2] + "** " + jobOf(mates[2], dice),
             "4. **Me**: pull it together and bring it back here", "",
             "The first two are on the board already. Say the word and " + mates[0] + " starts now."});
    case 1:
        return lines({"Short answer: " +
                          dice.oneOf({"start small and learn from the beta list first",
                                      "yes, but after the pricing page is fixed",
                                      "do the cheap half this week, the rest after the review"}) +
                          ".",
                      "", "**Who does what for " + quotedOf(topic) + "**", "",
                      "1. " + mates[0] + ": " + jobOf(mates[0], dice) + " (by " + weekday(dice) + ")",
                      "2. " + mates[1] + ": " + jobOf(mates[1], dice) + " (by " + weekday(dice) + ")", "",
                      "One question for you: " +
                          dice.oneOf({"is the 14th still the date?", "who signs off on the copy?",
                                      "do we tell the beta list first?"})});
    default:
        return lines({"### Next steps: " + subjectOf(topic), "", "Three things, in this order:", "",
                      "1. Agree the goal: one sentence, in this thread, today.",
                      "2. " + mates[0] + " " + jobOf(mates[0], dice) + ".",
                      "3. " + mates[1] + " and " + mates[2] + " pick up the rest once step 2 lands.", "",
                      "I will check in here on " + std::string(weekday(dice)) + " morning."});
    }
}

// --- Quill: drafts in the workspace's voice ----------------------------------------

Answer quill(const std::string& topic, Dice& dice)
{
    const std::string subject = subjectOf(topic);
    const std::string subjectLine =
        dice.oneOf({subject + ": what changes for you", "A quick note: " + subject,
                    subject + ", in two minutes", "You asked, we listened: " + subject});
    const std::string alt1 =
        dice.oneOf({"Before everyone else: " + subject, "The short version: " + subject});
    const std::string alt2 =
        dice.oneOf({"For you first: " + subject, subject + " (and what it means for you)"});
    const std::string opening = dice.oneOf(
        {"We have been working on something many of you asked for, and you are the first to hear about it.",
         "Thank you for helping us shape this. Here is where it landed."});
    const std::string middle =
        dice.oneOf({"It takes a minute to try, and nothing changes unless you want it to.",
                    "Reply to this e-mail with anything that feels off; we read every answer."});
    const std::string tone = dice.oneOf({"Want it warmer, shorter or more formal? I can adjust the tone.",
                                         "Happy to make it punchier or more formal; just say which.",
                                         "If the tone is off, tell me who it is for and I will redo it."});
    Answer answer;
    answer.cites =
        json::array({{{"type", "doc"}, {"id", "brand-voice"}, {"title", "Brand voice"}, {"kind", "doc"}}});
    answer.draft = {
        {"subject", subjectLine},
        {"to", "beta@northwind.example"},
        {"body", "Hi {first_name},\n\n" + opening + " " + middle + "\n\nMaya, for the Northwind team"}};
    if (dice.oneIn(2)) {
        answer.text = lines({"## Draft: " + subject,
                             "",
                             "A first draft for " + quotedOf(topic) + " in our voice [1], " +
                                 std::to_string(dice.between(90, 140)) + " words.",
                             "",
                             "> **Subject:** " + subjectLine,
                             ">",
                             "> Hi {first_name},",
                             ">",
                             "> " + opening,
                             ">",
                             "> " + middle,
                             ">",
                             "> Maya, for the Northwind team",
                             "",
                             "Two other subject lines to test:",
                             "",
                             "```text",
                             alt1,
                             alt2,
                             "```",
                             "",
                             tone});
    } else {
        const std::string hook =
            dice.oneOf({"Small team, big spring.", "We shipped the thing you asked for."});
        answer.text =
            lines({"## Post: " + subject, "",
                   "Short enough for LinkedIn and the blog's intro; it follows the brand voice [1].", "",
                   "```text", hook, "", opening, middle, "", "Try it: northwind.example/spring", "```", "",
                   "Subject line if it goes out as mail: **" + subjectLine + "**", "", tone});
        answer.draft["body"] = hook + "\n\n" + opening + " " + middle;
    }
    return answer;
}

// --- Atlas: figures, a table, and where they come from --------------------------------

Answer atlas(const std::string& topic, Dice& dice, json pages)
{
    // Live runs cite what they read; a run that read too little falls back on
    // the sources Atlas keeps coming back to.
    const json fallback =
        json::array({{{"title", "Web analytics"}, {"url", "https://en.wikipedia.org/wiki/Web_analytics"}},
                     {{"title", "Ask HN: Which privacy-friendly analytics do you use?"},
                      {"url", "https://news.ycombinator.com/item?id=37190236"}},
                     {{"title", "Plausible: privacy-first analytics"},
                      {"url", "https://plausible.io/privacy-focused-web-analytics"}}});
    if (!pages.is_array())
        pages = json::array();
    for (const json& page : fallback)
        if (pages.size() < 2)
            pages.push_back(page);
    const size_t count = std::min<size_t>(pages.size(), dice.oneIn(2) ? 2 : 3);
    Answer answer;
    std::string sources = "Sources:";
    for (size_t i = 0; i < count; ++i) {
        answer.cites.push_back(
            {{"type", "web"}, {"id", pages[i]["url"]}, {"title", pages[i]["title"]}, {"kind", "page"}});
        sources += " [" + std::to_string(i + 1) + "] " + pages[i]["title"].get<std::string>() +
                   (i + 1 < count ? "," : ".");
    }
    const std::string phrase = phraseOf(topic);
    std::vector<std::string> out;
    if (dice.oneIn(2)) {
        out = {
            "## " + subjectOf(topic) + ": what the numbers say",
            "",
            "Short version: most of the interest comes from two places [1], and our own numbers agree [2].",
            "",
            "| Referrer | Visitors (30 d) | Change |",
            "|---|---:|---:|"};
        const char* referrers[] = {"google.com", "news.ycombinator.com", "linkedin.com", "duckduckgo.com",
                                   "github.com", "reddit.com",           "newsletter"};
        int visitors = dice.between(3800, 5200);
        for (int i = 0, rows = dice.between(4, 6); i < rows; ++i) {
            out.push_back("| " + std::string(referrers[i]) + " | " + grouped(visitors) + " | " +
                          percent(dice.between(-12, 45)) + " |");
            visitors = visitors * dice.between(35, 70) / 100;
        }
        out.insert(
            out.end(),
            {"", "- The jump from news.ycombinator.com follows one thread about " + quotedOf(topic) + " [1].",
             "- Search traffic grows slowly and steadily [2].",
             "- Nobody links to the pricing page directly yet."});
    } else {
        out = {"Here is what I found on " + quotedOf(topic) + ".",
               "",
               "| Figure | Value | Source |",
               "|---|---:|---|",
               "| Teams that mention it unprompted | " + std::to_string(dice.between(18, 41)) + "% | [1] |",
               "| Median time to first result | " + std::to_string(dice.between(2, 9)) + " days | [2] |",
               "| Our visitors who read about it | " + grouped(dice.between(900, 3100)) + " | analytics |",
               "| Sign-ups from those visits | " + std::to_string(dice.between(2, 6)) + "." +
                   std::to_string(dice.between(0, 9)) + "% | analytics |",
               "",
               "Two things stand out:",
               "",
               "1. People care more about setup time than price [1].",
               "2. The ones who stay found us through a comparison post [2]."};
    }
    out.insert(out.end(), {"", sources});
    for (const std::string& line : out)
        answer.text += line + "\n";
    answer.text.pop_back();
    return answer;
}

// --- Forge: what was wrong, the change, how to check it ---------------------------

std::string forge(const std::string& topic, Dice& dice)
{
    const int line = dice.between(8, 60), tests = dice.between(40, 130);
    const std::string cause =
        dice.pick({std::string("the link table still points at an old path"),
                   std::string("one helper builds the URL by hand and skips the locale"),
                   std::string("the config is read before the environment is loaded")});
    const std::string diff =
        lines({"```diff", "--- a/src/lib/links.ts", "+++ b/src/lib/links.ts",
               "@@ -" + std::to_string(line) + ",6 +" + std::to_string(line) + ",6 @@ export const links = {",
               "   home: \"/\",", "-  pricing: \"/pricing-old\",", "+  pricing: \"/pricing\",",
               "   docs: \"/docs\",", "```"});
    if (dice.oneIn(2))
        return lines(
            {"Found it. Behind " + quotedOf(topic) + ": " + cause + ". The fix is small.", "", diff, "",
             "To check it on your machine:", "", "```bash", "npm run test -- links",
             "npm run build && npx serve dist", "```", "",
             std::to_string(tests) +
                 " tests pass. Nothing is merged yet; say **ship it** and I will open the pull request."});
    return lines({"## " + subjectOf(topic), "", "The cause: " + cause + ".", "", diff, "",
                  "And a guard so it cannot come back:", "", "```ts",
                  "export function pageUrl(name: keyof typeof links): string {",
                  "  const path = links[name];",
                  "  if (!path.startsWith(\"/\")) throw new Error(`bad link: ${name}`);", "  return path;",
                  "}", "```", "", "Tests: " + std::to_string(tests) + " passed, 0 failed."});
}

// --- Pixel: layout and colour -----------------------------------------------------

std::string pixel(const std::string& topic, Dice& dice)
{
    struct Palette {
        const char* ink;
        const char* paper;
        const char* accent;
        const char* calm;
        const char* ratio;
    };
    static const Palette palettes[] = {{"#1F2A44", "#F6F1E7", "#E4572E", "#4F7CFF", "11.8:1"},
                                       {"#14213D", "#FFFFFF", "#FCA311", "#2A9D8F", "16.1:1"},
                                       {"#2B2D42", "#EDF2F4", "#EF233C", "#8D99AE", "12.4:1"}};
    const Palette& p = dice.pick(palettes);
    const std::string pick = dice.oneOf({"A", "B"});
    return lines(
        {"## " + subjectOf(topic) + ": two directions", "",
         "I tried two options for " + quotedOf(topic) + "; I would go with **" + pick + "**.", "",
         "- Layout: " + dice.oneOf({"one column, the headline over the fold, the image below it",
                                    "a split hero, text left and product right, stacking on phones"}),
         "- Type: " + dice.oneOf({"the headline one step larger, body text stays at 17 px",
                                  "fewer weights; bold only for the call to action"}),
         "- Colour: the accent only on things you can click",
         "- Spacing: " + dice.oneOf({"24 px between blocks, 8 px inside them",
                                     "more air above the headline than below it"}),
         "", "| Role | Hex | Use |", "|---|---|---|",
         "| Ink | `" + std::string(p.ink) + "` | headings and body |",
         "| Paper | `" + std::string(p.paper) + "` | background |",
         "| Accent | `" + std::string(p.accent) + "` | buttons and links |",
         "| Calm | `" + std::string(p.calm) + "` | charts and badges |", "",
         "Ink on paper is " + std::string(p.ratio) + ", so it passes AA. The previews are in the run."});
}

// --- Ledger: the numbers and their total -------------------------------------------

std::string ledger(const std::string& topic, Dice& dice)
{
    const long revenue = dice.between(14000, 24000), refunds = dice.between(200, 900),
               fees = revenue * dice.between(22, 29) / 1000, tools = dice.between(1400, 3200);
    const long net = revenue - refunds - fees - tools;
    const int change = dice.between(-6, 12);
    if (dice.oneIn(2))
        return lines({"Here are the numbers for " + quotedOf(topic) + ", last 30 days.", "",
                      "| Item | Amount |", "|---|---:|", "| Stripe revenue | " + euros(revenue) + " |",
                      "| Refunds | " + euros(-refunds) + " |", "| Stripe fees | " + euros(-fees) + " |",
                      "| Tools and hosting | " + euros(-tools) + " |", "",
                      "**Total after costs: " + euros(net) + "**, " + percent(change) + " on last month.", "",
                      "- One invoice (Fastly, " + euros(dice.between(120, 480)) + ") still has no receipt.",
                      "- Payouts land two business days after the charge.", "",
                      "Want this as a sheet for the board meeting?"});
    const long a = dice.between(300, 1200), b = dice.between(80, 400), c = dice.between(40, 250);
    return lines(
        {"## " + subjectOf(topic), "", "What it costs us per month, as of today.", "",
         "| Line | Monthly | Yearly |", "|---|---:|---:|",
         "| Hosting | " + euros(a) + " | " + euros(a * 12) + " |",
         "| Tools | " + euros(b) + " | " + euros(b * 12) + " |",
         "| Services | " + euros(c) + " | " + euros(c * 12) + " |", "",
         "**Total: " + euros(a + b + c) + " a month (" + euros((a + b + c) * 12) + " a year).**", "",
         "The yearly plans would save about " + euros((a + b + c) * 12 / 8) + "; I can list which ones."});
}

// A label inside a sentence: "Search the code" -> "search the code".
std::string lowered(std::string label)
{
    if (label.size() > 1 && label[0] >= 'A' && label[0] <= 'Z' && !(label[1] >= 'A' && label[1] <= 'Z'))
        label[0] = char(label[0] - 'A' + 'a');
    return label;
}

} // namespace

std::string topicOf(const std::string& text)
{
    static const std::regex mention(R"(@\w+[,:]?\s*)");
    std::string topic = std::regex_replace(text, mention, "");
    const size_t from = topic.find_first_not_of(" \t\r\n");
    topic = from == std::string::npos ? std::string() : topic.substr(from);
    while (!topic.empty() && std::string(" \t\r\n").find(topic.back()) != std::string::npos)
        topic.pop_back();
    if (topic.size() > 60) {
        size_t cut = topic.rfind(' ', 57);
        topic = topic.substr(0, cut == std::string::npos || cut < 20 ? 57 : cut) + "...";
    }
    return topic.empty() ? std::string("the request") : topic;
}

Answer answerFor(const std::string& agent, const std::string& topic, unsigned seed, const json& pages,
                 const std::vector<std::string>& extras)
{
    Dice dice(seed * 0x2545F4914F6CDD1Dull + 17);
    Answer answer;
    if (agent == "quill")
        answer = quill(topic, dice);
    else if (agent == "atlas")
        answer = atlas(topic, dice, pages);
    else if (agent == "forge")
        answer.text = forge(topic, dice);
    else if (agent == "pixel")
        answer.text = pixel(topic, dice);
    else if (agent == "ledger")
        answer.text = ledger(topic, dice);
    else
        answer.text = nova(topic, dice);
    // Requests handed in while it worked are answered at the end, one line each.
    for (const std::string& extra : extras)
        answer.text += "\n\n**You also asked:** " + quotedOf(extra) + ". " +
                       dice.oneOf({"Covered above; I took it into account.",
                                   "Done as part of this; see the last round of the run.",
                                   "I folded it in; tell me if you meant something else."});
    return answer;
}

std::string followUpFor(const std::string& agent, unsigned seed)
{
    static const std::map<std::string, std::vector<const char*>> lines = {
        {"nova",
         {"Done: the tasks are on the board, with owners.",
          "I moved the review to Thursday so there is time.",
          "Noted. I will bring it up at Monday's check-in."}},
        {"quill",
         {"Here is a shorter version: two sentences, same subject line.",
          "Changed the tone to warmer and cut the second paragraph.", "Fixed. The sign-off is Maya's now."}},
        {"atlas",
         {"Checked again: the figure holds; it is from the March report.",
          "Added two more sources; they say the same.", "The gap is smaller on mobile: 4% instead of 9%."}},
        {"forge",
         {"Merged and deployed to staging. `npm run test` is green.",
          "Reverted: it broke the Safari build. Looking into it.",
          "The redirect is live; old links land on the new page."}},
        {"pixel",
         {"Option B with the darker accent, exported at 2x.", "Made the badge round; it reads better small.",
          "Swapped the photo for the illustration; it is lighter on phones."}},
        {"ledger",
         {"Paid. The receipt is in the March folder.", "Updated the sheet: **€1,240** saved this quarter.",
          "Sent the reminder; they usually pay within a week."}},
    };
    Dice dice(seed);
    const auto found = lines.find(agent);
    return found == lines.end() ? "Done." : dice.pick(found->second);
}

std::string passingNote(const std::string& pick, const std::vector<std::string>& also)
{
    // What each teammate's part of a request is, in the lead's words.
    static const std::map<std::string, std::string> parts = {
        {"quill", "the writing"},  {"forge", "the code"},     {"pixel", "the design"},
        {"atlas", "the research"}, {"ledger", "the numbers"}, {"nova", "the planning"}};
    const auto partOf = [&](const std::string& handle) {
        const auto found = parts.find(handle);
        return found == parts.end() ? std::string("the rest") : found->second;
    };
    const auto nameOf = [](std::string handle) {
        if (!handle.empty())
            handle[0] = char(std::toupper(static_cast<unsigned char>(handle[0])));
        return handle;
    };
    std::string note = "Passing this to " + nameOf(pick) + ": it is mostly " + partOf(pick).substr(4) + ".";
    if (!also.empty()) {
        std::string names, what;
        for (size_t i = 0; i < also.size(); ++i) {
            const char* joint = i == 0 ? "" : i + 1 == also.size() ? " and " : ", ";
            names += joint + nameOf(also[i]);
            what += joint + partOf(also[i]);
        }
        note += " " + names + " can pick up " + what + " once " + nameOf(pick) + " has answered.";
    }
    return note;
}

std::string waitingNote(const json& step)
{
    return "Before I " + lowered(step.value("label", "go on")) + ", I need your OK. " +
           step.value("why", "It asks first") + ". It waits in Needs you.";
}

std::string stoppedNote(const json& run)
{
    std::vector<std::string> done;
    for (const json& step : run["plan"])
        if (step.value("state", "") == "done")
            done.push_back(step.contains("chip") ? "read " + step["chip"].value("host", "a page")
                                                 : step["label"].get<std::string>());
    std::string note = "Stopped before finishing: ";
    if (done.empty())
        return note + "I had not started yet. Ask again when you want me to.";
    note += "I had done " + std::to_string(done.size()) + " of " + std::to_string(run["plan"].size()) +
            " steps, the last: " + lowered(done.back()) + ". Ask again and I will start over.";
    return note;
}

} // namespace devservice
