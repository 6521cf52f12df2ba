#include "Server.h"

#include "Actions.h"
#include "OAuth.h"
#include "Pages.h"

#include <httplib.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <mutex>
#include <thread>

namespace devservice {

namespace {

void jsonError(httplib::Response& response, int status, const std::string& message)
{
    response.status = status;
    response.set_content(json{{"error", message}}.dump(), "application/json");
}

void handleAction(Service& service, const ActionTable& table, const httplib::Request& request,
                  httplib::Response& response)
{
    if (service.options.latencyMs > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(service.options.latencyMs));
    if (service.failsOnPurpose())
        return jsonError(response, 503, "The local service is failing on purpose (--fail-rate).");
    const auto user = userForRequest(service, request);
    if (!user)
        return jsonError(response, 401, "Sign in again.");
    const std::string name = request.matches[1].str() + "/" + request.matches[2].str();
    const auto handler = table.find(name);
    if (handler == table.end())
        return jsonError(response, 404, "The local service has no action " + name + ".");
    json body;
    try {
        body = json::parse(request.body);
    } catch (const json::parse_error&) {
        return jsonError(response, 400, "The request body is not JSON.");
    }
    if (!body.is_object() || !body.contains("args") || !body["args"].is_array())
        return jsonError(response, 400, "The request body must be {\"args\": [...]}.");
    const auto caller = service.callerFor(*user);
    if (!caller)
        return jsonError(response, 403, "You are not a member of this workspace.");
    try {
        ActionContext context{service, *caller};
        json answer = service.store.transaction([&] { return handler->second(context, body["args"]); });
        json envelope = context.effects;
        envelope["value"] = std::move(answer);
        response.set_content(envelope.dump(), "application/json");
    } catch (const RequestError& error) {
        jsonError(response, error.status, error.what());
    } catch (const std::exception& error) {
        // The details stay in the service's log: an answer never tells
        // the caller how the service works inside.
        std::fprintf(stderr, "kestro-devservice: %s failed: %s\n", request.path.c_str(), error.what());
        jsonError(response, 500, "The local service failed to answer. Try again.");
    }
}

} // namespace

std::unique_ptr<httplib::Server> makeServer(Service& service)
{
    auto server = std::make_unique<httplib::Server>();
    server->set_payload_max_length(10 * 1024 * 1024); // larger bodies get 413
    server->set_read_timeout(30, 0);
    // Idle keep-alive connections hold a worker each and delay shutdown.
    server->set_keep_alive_timeout(2);

    static ActionTable table;
    addShellActions(table);
    addKestActions(table);
    addTaskActions(table);
    addAnalyticsActions(table);
    addDirectChatActions(table);
    addActivityActions(table);

    installOAuth(*server, service);
    server->Post(R"(/api/app/([A-Za-z0-9_]+)/([A-Za-z0-9_]+))",
                 [&service](const httplib::Request& request, httplib::Response& response) {
                     handleAction(service, table, request, response);
                 });
    server->Post("/api/.*", [](const httplib::Request&, httplib::Response& response) {
        jsonError(response, 404, "The local service has no such address.");
    });
    installPages(*server, service);

    server->set_exception_handler(
        [](const httplib::Request&, httplib::Response& response, std::exception_ptr error) {
            std::string what = "unknown error";
            try {
                std::rethrow_exception(error);
            } catch (const std::exception& e) {
                what = e.what();
            } catch (...) {
            }
            jsonError(response, 500, "The local service failed: " + what);
        });
    server->set_error_handler([](const httplib::Request&, httplib::Response& response) {
        if (response.body.empty() && response.status == 413)
            jsonError(response, 413, "The request is larger than 10 MB.");
        else if (response.body.empty() && response.status == 404)
            jsonError(response, 404, "The local service has no such address.");
    });
    if (!service.options.logFile.empty()) {
        auto log = std::make_shared<std::ofstream>(service.options.logFile, std::ios::app);
        auto mutex = std::make_shared<std::mutex>();
        server->set_logger([log, mutex](const httplib::Request& request, const httplib::Response& response) {
            std::lock_guard lock(*mutex);
            *log << json{{"at", isoNow()},
                         {"method", request.method},
                         {"path", request.path},
                         {"status", response.status},
                         {"bytes", request.body.size()}}
                        .dump()
                 << '\n'
                 << std::flush;
        });
    }
    return server;
}

} // namespace devservice
