#pragma once

#include <optional>
#include <string>

namespace devservice {

struct Options {
    std::string host = "127.0.0.1";
    int port = 8787;
    std::string dataDir; // empty: $XDG_DATA_HOME/kestro-devservice
    bool reset = false;
    bool autoApprove = false;
    bool setup = false;     // the demo workspace starts its setup again
    double tokenTtl = 3600; // seconds an access token lives
    double codeTtl = 60;    // seconds a sign-in code stays good
    double timeScale = 1;   // >1 makes the teammates work faster
    int latencyMs = 0;      // added before every action answer
    double failRate = 0;    // share of action requests answered 503
    std::string logFile;    // one JSON line per request
};

// Parses the command line; on a bad flag, fills `error` with a sentence.
std::optional<Options> parseOptions(int argc, char** argv, std::string& error);
std::string usage();

} // namespace devservice
