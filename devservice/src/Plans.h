#pragma once

#include "Json.h"

#include <string>

namespace devservice {

// What a teammate does to answer: rounds of steps, each round opened by what
// it thinks next ("doing"). A step is a search, a page read (with a chip of
// the page), or a tool call; it may stumble (fail and the run goes on), wait
// for the user's approval, or be fatal (the run ends "failed" there, and the
// step's result says why in one plain sentence).
struct Plan {
    json rounds = json::array(); // [{"doing": text}]
    json steps = json::array();  // [{round, tool, label, why, input, chip, result, seconds, ...}]
};

// The plan of a teammate's run on `topic`, chosen by its role and `seed`.
// With `failing`, one step is fatal.
Plan planFor(const std::string& agent, const std::string& topic, unsigned seed, bool failing);

// Why the run planFor(agent, topic, seed, true) fails, in one plain sentence.
std::string failureReason(const std::string& agent, const std::string& topic, unsigned seed);

// The round added when a request is handed into a running answer.
json extraRound(const std::string& agent, const std::string& request, unsigned seed);

// The pages a plan read without trouble, as {title, url}: what an answer
// can cite.
json pagesRead(const json& steps);

} // namespace devservice
