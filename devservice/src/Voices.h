#pragma once

#include "Json.h"

#include <string>
#include <vector>

namespace devservice {

// How each teammate answers: in its role's voice and in Markdown, varied by
// a seed, so no two teammates (and few answers of one) read alike.
//   nova   the lead: a short plan, who does what
//   quill  the writer: a draft with its subject line
//   atlas  the researcher: figures in a table, cited sources
//   forge  the engineer: a diff and how to check it
//   pixel  the designer: layout notes and a colour table
//   ledger operations and money: a table of numbers and a total

struct Answer {
    std::string text;           // Markdown
    json cites = json::array(); // Model.Cite[]
    json draft;                 // {subject, to, body} when the answer is a draft
};

// The answer to `topic`. `pages` are what the run read ({title, url}), for
// citing; `extras` are requests handed in while it worked.
Answer answerFor(const std::string& agent, const std::string& topic, unsigned seed, const json& pages = {},
                 const std::vector<std::string>& extras = {});

// A short line in a thread after the answer ("Done: ...").
std::string followUpFor(const std::string& agent, unsigned seed);

// The topic of a request: the text without @mentions, cut to fit a title.
std::string topicOf(const std::string& text);

// What the lead says when it hands an unaddressed message on to `pick`, when
// `also` would have fit too (handles).
std::string passingNote(const std::string& pick, const std::vector<std::string>& also);

// The message a room answer shows while it waits for the user's approval.
std::string waitingNote(const json& step);

// The reply of an answer stopped part way: what it had done by then.
std::string stoppedNote(const json& run);

} // namespace devservice
