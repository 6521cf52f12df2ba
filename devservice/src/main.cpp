// kestro-devservice: the Kestro service in miniature, on this machine, for
// running and testing Kestro desktop without the hosted service.

#include "Options.h"
#include "Server.h"
#include "Service.h"
#include "Teammates.h"

#include <httplib.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <pthread.h>
#include <thread>

namespace {

std::string defaultDataDir()
{
    if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg && *xdg)
        return std::string(xdg) + "/kestro-devservice";
    if (const char* home = std::getenv("HOME"); home && *home)
        return std::string(home) + "/.local/share/kestro-devservice";
    return ".kestro-devservice";
}
} // namespace

int main(int argc, char** argv)
{
    using namespace devservice;
    for (int i = 1; i < argc; ++i)
        if (std::string(argv[i]) == "--help") {
            std::fputs(usage().c_str(), stdout);
            return 0;
        }
    std::string error;
    auto options = parseOptions(argc, argv, error);
    if (!options) {
        std::fprintf(stderr, "%s\n%s", error.c_str(), usage().c_str());
        return 2;
    }
    // SIGINT and SIGTERM are taken by one thread with sigwait(), which stops
    // the server from outside a signal handler. Blocked before any thread
    // starts, so every thread inherits the mask.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    if (options->dataDir.empty())
        options->dataDir = defaultDataDir();
    std::error_code ec;
    std::filesystem::create_directories(options->dataDir, ec);
    const std::string database = options->dataDir + "/kestro.sqlite3";
    if (options->reset)
        for (const char* suffix : {"", "-wal", "-shm"})
            std::filesystem::remove(database + suffix, ec);
    try {
        Service service(*options, database);
        if (service.store.isEmpty())
            seed(service);
        if (options->setup)
            restartSetup(service, "w1");
        auto server = makeServer(service);
        if (!server->bind_to_port(options->host, options->port)) {
            std::fprintf(stderr,
                         "kestro-devservice cannot listen on %s:%d: is another service using that port?\n",
                         options->host.c_str(), options->port);
            return 1;
        }
        Simulation simulation(service);
        std::thread stopper([&server, signals] {
            int received = 0;
            sigwait(&signals, &received);
            server->stop();
        });
        stopper.detach();
        std::printf("kestro-devservice is listening on http://%s:%d (data in %s)\n", options->host.c_str(),
                    options->port, options->dataDir.c_str());
        std::fflush(stdout);
        server->listen_after_bind();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "kestro-devservice stopped: %s\n", failure.what());
        return 1;
    }
    return 0;
}
