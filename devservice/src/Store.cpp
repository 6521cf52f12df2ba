#include "Store.h"

#include <sqlite3.h>

#include <stdexcept>

namespace devservice {

namespace {

struct Statement {
    sqlite3_stmt* handle = nullptr;
    Statement(sqlite3* db, const char* sql)
    {
        if (sqlite3_prepare_v2(db, sql, -1, &handle, nullptr) != SQLITE_OK)
            throw std::runtime_error(std::string("SQLite could not prepare a statement: ") +
                                     sqlite3_errmsg(db));
    }
    ~Statement() { sqlite3_finalize(handle); }
    Statement& bind(int at, const std::string& text)
    {
        sqlite3_bind_text(handle, at, text.c_str(), int(text.size()), SQLITE_TRANSIENT);
        return *this;
    }
    bool step()
    {
        const int rc = sqlite3_step(handle);
        if (rc != SQLITE_ROW && rc != SQLITE_DONE)
            throw std::runtime_error(std::string("SQLite failed: ") +
                                     sqlite3_errmsg(sqlite3_db_handle(handle)));
        return rc == SQLITE_ROW;
    }
    std::string text(int column) const
    {
        const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(handle, column));
        return data ? std::string(data, size_t(sqlite3_column_bytes(handle, column))) : std::string();
    }
};

} // namespace

Store::Store(const std::string& path)
{
    if (sqlite3_open(path.c_str(), &m_db) != SQLITE_OK)
        throw std::runtime_error("The data file " + path + " could not be opened: " + sqlite3_errmsg(m_db));
    sqlite3_busy_timeout(m_db, 5000);
    exec("PRAGMA journal_mode=WAL");
    exec("PRAGMA synchronous=NORMAL");
    exec("CREATE TABLE IF NOT EXISTS docs (kind TEXT NOT NULL, id TEXT NOT NULL, workspace TEXT NOT NULL,"
         " seq INTEGER NOT NULL, body TEXT NOT NULL, PRIMARY KEY (kind, id))");
    exec("CREATE INDEX IF NOT EXISTS docs_by_workspace ON docs (kind, workspace, seq)");
    // put() numbers a new document after the newest; without this index that
    // walks the whole table, which the seeded history makes slow.
    exec("CREATE INDEX IF NOT EXISTS docs_by_seq ON docs (seq)");
    exec("CREATE TABLE IF NOT EXISTS counters (name TEXT PRIMARY KEY, value INTEGER NOT NULL)");
}

Store::~Store()
{
    sqlite3_close(m_db);
}

void Store::exec(const char* sql)
{
    char* message = nullptr;
    if (sqlite3_exec(m_db, sql, nullptr, nullptr, &message) != SQLITE_OK) {
        const std::string text = message ? message : "unknown error";
        sqlite3_free(message);
        throw std::runtime_error("SQLite failed: " + text);
    }
}

bool Store::isEmpty()
{
    std::lock_guard lock(m_mutex);
    Statement s(m_db, "SELECT COUNT(*) FROM docs");
    s.step();
    return sqlite3_column_int(s.handle, 0) == 0;
}

std::optional<json> Store::get(const std::string& kind, const std::string& id)
{
    std::lock_guard lock(m_mutex);
    Statement s(m_db, "SELECT body FROM docs WHERE kind = ?1 AND id = ?2");
    s.bind(1, kind).bind(2, id);
    if (!s.step())
        return std::nullopt;
    return json::parse(s.text(0));
}

std::optional<json> Store::get(const std::string& kind, const std::string& id, const std::string& workspace)
{
    std::lock_guard lock(m_mutex);
    Statement s(m_db, "SELECT body FROM docs WHERE kind = ?1 AND id = ?2 AND workspace = ?3");
    s.bind(1, kind).bind(2, id).bind(3, workspace);
    if (!s.step())
        return std::nullopt;
    return json::parse(s.text(0));
}

std::vector<json> Store::list(const std::string& kind, const std::string& workspace)
{
    std::lock_guard lock(m_mutex);
    Statement s(m_db, workspace.empty()
                          ? "SELECT body FROM docs WHERE kind = ?1 ORDER BY seq"
                          : "SELECT body FROM docs WHERE kind = ?1 AND workspace = ?2 ORDER BY seq");
    s.bind(1, kind);
    if (!workspace.empty())
        s.bind(2, workspace);
    std::vector<json> out;
    while (s.step())
        out.push_back(json::parse(s.text(0)));
    return out;
}

void Store::put(const std::string& kind, const std::string& id, const std::string& workspace,
                const json& body)
{
    std::lock_guard lock(m_mutex);
    // A document keeps its place in the order when it is rewritten.
    Statement s(m_db,
                "INSERT INTO docs (kind, id, workspace, seq, body) VALUES (?1, ?2, ?3,"
                " (SELECT COALESCE(MAX(seq), 0) + 1 FROM docs), ?4)"
                " ON CONFLICT (kind, id) DO UPDATE SET body = excluded.body, workspace = excluded.workspace");
    s.bind(1, kind).bind(2, id).bind(3, workspace).bind(4, body.dump());
    s.step();
}

void Store::remove(const std::string& kind, const std::string& id)
{
    std::lock_guard lock(m_mutex);
    Statement s(m_db, "DELETE FROM docs WHERE kind = ?1 AND id = ?2");
    s.bind(1, kind).bind(2, id);
    s.step();
}

int Store::next(const std::string& counter)
{
    std::lock_guard lock(m_mutex);
    Statement up(m_db, "INSERT INTO counters (name, value) VALUES (?1, 1)"
                       " ON CONFLICT (name) DO UPDATE SET value = value + 1");
    up.bind(1, counter);
    up.step();
    Statement read(m_db, "SELECT value FROM counters WHERE name = ?1");
    read.bind(1, counter);
    read.step();
    return sqlite3_column_int(read.handle, 0);
}

} // namespace devservice
