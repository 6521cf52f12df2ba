#pragma once

#include "Json.h"

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

struct sqlite3;

namespace devservice {

// The service's data in one SQLite file (WAL), as JSON documents of a kind
// ("task", "message", ...) with their workspace. All access goes through one
// connection under one lock; a write that throws is rolled back whole.
class Store {
public:
    explicit Store(const std::string& path);
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    bool isEmpty();

    std::optional<json> get(const std::string& kind, const std::string& id);
    // The same, only when the document belongs to `workspace`: what an
    // action reads by an id its caller names, so no workspace reaches
    // another's records.
    std::optional<json> get(const std::string& kind, const std::string& id, const std::string& workspace);
    // Documents of a kind in a workspace ("" = any), oldest first.
    std::vector<json> list(const std::string& kind, const std::string& workspace = "");
    void put(const std::string& kind, const std::string& id, const std::string& workspace, const json& body);
    void remove(const std::string& kind, const std::string& id);
    // The next number of a named counter (task numbers), from 1.
    int next(const std::string& counter);

    // Runs `work` in one transaction under the store's lock: all or nothing.
    template <typename F> auto transaction(F&& work) -> decltype(work())
    {
        std::lock_guard lock(m_mutex);
        exec("BEGIN IMMEDIATE");
        try {
            if constexpr (std::is_void_v<decltype(work())>) {
                work();
                exec("COMMIT");
            } else {
                auto result = work();
                exec("COMMIT");
                return result;
            }
        } catch (...) {
            exec("ROLLBACK");
            throw;
        }
    }

private:
    void exec(const char* sql);

    sqlite3* m_db = nullptr;
    std::recursive_mutex m_mutex;
};

} // namespace devservice
