#include "Options.h"

#include <cstdlib>
#include <string_view>

namespace devservice {

namespace {
bool number(const char* text, double& out)
{
    char* end = nullptr;
    out = std::strtod(text, &end);
    return end && *end == '\0' && end != text;
}
} // namespace

std::string usage()
{
    return "Usage: kestro-devservice [options]\n"
           "  --port N            listen on this port (default 8787)\n"
           "  --host ADDRESS      listen on this address (default 127.0.0.1)\n"
           "  --data DIR          keep the data here (default $XDG_DATA_HOME/kestro-devservice)\n"
           "  --reset             start again from the demo data\n"
           "  --auto-approve      skip the consent page at sign-in\n"
           "  --setup             send the demo workspace through its setup again\n"
           "  --token-ttl S       access tokens live S seconds (default 3600)\n"
           "  --code-ttl S        sign-in codes stay good S seconds (default 60)\n"
           "  --time-scale F      teammates work F times faster (default 1)\n"
           "  --latency MS        wait MS milliseconds before answering an action\n"
           "  --fail-rate P       answer a share P (0..1) of action requests with 503\n"
           "  --log FILE          write one JSON line per request to FILE\n";
}

std::optional<Options> parseOptions(int argc, char** argv, std::string& error)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string_view flag = argv[i];
        auto value = [&]() -> const char* {
            if (i + 1 >= argc) {
                error = std::string(flag) + " needs a value.";
                return nullptr;
            }
            return argv[++i];
        };
        double n = 0;
        if (flag == "--reset") {
            options.reset = true;
        } else if (flag == "--auto-approve") {
            options.autoApprove = true;
        } else if (flag == "--setup") {
            options.setup = true;
        } else if (flag == "--port" || flag == "--token-ttl" || flag == "--code-ttl" ||
                   flag == "--time-scale" || flag == "--latency" || flag == "--fail-rate") {
            const char* text = value();
            if (!text)
                return std::nullopt;
            if (!number(text, n) || n < 0) {
                error = std::string(flag) + " needs a number that is not negative, not \"" + text + "\".";
                return std::nullopt;
            }
            if (flag == "--port")
                options.port = int(n);
            else if (flag == "--token-ttl")
                options.tokenTtl = n;
            else if (flag == "--code-ttl")
                options.codeTtl = n;
            else if (flag == "--time-scale")
                options.timeScale = n > 0 ? n : 1;
            else if (flag == "--latency")
                options.latencyMs = int(n);
            else
                options.failRate = n > 1 ? 1 : n;
        } else if (flag == "--host" || flag == "--data" || flag == "--log") {
            const char* text = value();
            if (!text)
                return std::nullopt;
            (flag == "--host" ? options.host : flag == "--data" ? options.dataDir : options.logFile) = text;
        } else {
            error = "kestro-devservice does not know the option \"" + std::string(flag) + "\".";
            return std::nullopt;
        }
    }
    return options;
}

} // namespace devservice
