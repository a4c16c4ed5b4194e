#include "suite/directory/embedded/store/sqlite.h"

#include <sqlite3.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

#include "suite/directory/policy/failures.h"

namespace orvo::directory::embedded {
namespace {

[[noreturn]] void raise_unusable(const std::filesystem::path& file, std::string reason,
                                 int system_error) {
    if (system_error != 0) reason += ", " + std::generic_category().message(system_error);
    raise_code(result_code::server_down, quoted_name(file.string()) + ": " + reason + ".");
}

}  // namespace

Query::Query(Database& database, std::string_view sql) : database_(&database) {
    std::vector<sqlite3_stmt*>& idle = database.idle_[sql];
    if (!idle.empty()) {
        statement_ = idle.back();
        idle.pop_back();
        return;
    }
    if (sqlite3_prepare_v3(database.handle_, sql.data(), static_cast<int>(sql.size()),
                           SQLITE_PREPARE_PERSISTENT, &statement_, nullptr) != SQLITE_OK)
        database.raise_last();
}

Query::~Query() {
    if (!statement_) return;
    reset();
    sqlite3_clear_bindings(statement_);
    database_->idle_[sqlite3_sql(statement_)].push_back(statement_);
}

Query::Query(Query&& other) noexcept
    : database_(other.database_), statement_(std::exchange(other.statement_, nullptr)) {}

Query& Query::operator=(Query&& other) noexcept {
    std::swap(database_, other.database_);
    std::swap(statement_, other.statement_);
    return *this;
}

bool Query::step() {
    const int code = sqlite3_step(statement_);
    if (code == SQLITE_ROW) return true;
    if (code != SQLITE_DONE) database_->raise_last();
    return false;
}

void Query::reset() { sqlite3_reset(statement_); }  // its code repeats that of step()

std::int64_t Query::integer(int column) const { return sqlite3_column_int64(statement_, column); }

std::string_view Query::octets(int column) const {
    const void* octets = sqlite3_column_blob(statement_, column);
    return {static_cast<const char*>(octets),
            static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

void Query::bind_integer(int place, std::int64_t value) {
    if (sqlite3_bind_int64(statement_, place, value) != SQLITE_OK) database_->raise_last();
}

// Without octets there is nothing to point to, but it is not NULL.
void Query::bind_octets(int place, std::string_view octets) {
    const int code = octets.empty() ? sqlite3_bind_zeroblob(statement_, place, 0)
                                    : sqlite3_bind_blob64(statement_, place, octets.data(),
                                                          octets.size(), SQLITE_TRANSIENT);
    if (code != SQLITE_OK) database_->raise_last();
}

void Query::bind_text(int place, std::string_view text) {
    if (sqlite3_bind_text64(statement_, place, text.empty() ? "" : text.data(), text.size(),
                            SQLITE_TRANSIENT, SQLITE_UTF8) != SQLITE_OK)
        database_->raise_last();
}

// An absolute path is never taken for a URI, nor for one of SQLite's special names.
Database::Database(const std::filesystem::path& file) : file_(std::filesystem::absolute(file)) {
    const int code = sqlite3_open_v2(
        file_.c_str(), &handle_,
        SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    if (code != SQLITE_OK) {
        const std::string reason = handle_ ? sqlite3_errmsg(handle_) : sqlite3_errstr(code);
        const int error = handle_ ? sqlite3_system_errno(handle_) : 0;
        sqlite3_close(handle_);
        raise_unusable(file_, reason, error);
    }
    sqlite3_busy_handler(handle_, &Database::wait_for_lock, this);
}

Database::~Database() {
    for (const auto& [sql, statements] : idle_)
        for (sqlite3_stmt* statement : statements) sqlite3_finalize(statement);
    sqlite3_close(handle_);
}

void Database::execute(const std::string& sql) {
    if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) raise_last();
}

std::vector<std::string> Database::plan_of(std::string_view sql) {
    const std::string explained = "EXPLAIN QUERY PLAN " + std::string(sql);
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(handle_, explained.c_str(), -1, &statement, nullptr) != SQLITE_OK)
        raise_last();
    std::vector<std::string> lines;
    while (sqlite3_step(statement) == SQLITE_ROW)
        lines.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(statement, 3)));
    sqlite3_finalize(statement);
    return lines;
}

bool Database::is_in_transaction() const { return !sqlite3_get_autocommit(handle_); }

void Database::raise_last() { raise(sqlite3_extended_errcode(handle_)); }

void Database::raise(int code) {
    const bool is_last = code == sqlite3_extended_errcode(handle_);
    const std::string reason = is_last ? sqlite3_errmsg(handle_) : sqlite3_errstr(code);
    raise_code((code & 0xFF) == SQLITE_BUSY ? result_code::busy : result_code::other,
               quoted_name(file_.string()) + ": " + reason + " (" + std::to_string(code) + ").");
}

// Short steps first: most locks are held for less than a millisecond.
int Database::wait_for_lock(void* database, int attempt) {
    using namespace std::chrono;
    auto& self = *static_cast<Database*>(database);
    const auto now = steady_clock::now();
    if (attempt == 0) self.waiting_since_ = now;
    const auto left = duration_cast<microseconds>(self.waiting_since_ + self.wait_ - now);
    if (left <= microseconds::zero()) return 0;
    const microseconds step(std::min(100LL << std::min(attempt / 2, 5), 2500LL));
    std::this_thread::sleep_for(std::min(step, left));
    return 1;
}

std::string beginning_of(const std::filesystem::path& file, std::size_t size) {
    sqlite3_vfs* system = sqlite3_vfs_find(nullptr);
    const std::string path = std::filesystem::absolute(file).string();
    const std::unique_ptr<const char, void (*)(const char*)> name(
        sqlite3_create_filename(path.c_str(), "", "", 0, nullptr), sqlite3_free_filename);
    std::vector<std::max_align_t> room(
        static_cast<std::size_t>(system->szOsFile) / sizeof(std::max_align_t) + 1);
    auto* opened = reinterpret_cast<sqlite3_file*>(room.data());
    int code = system->xOpen(system, name.get(), opened, SQLITE_OPEN_READONLY | SQLITE_OPEN_MAIN_DB,
                             nullptr);
    if (code != SQLITE_OK) raise_unusable(file, sqlite3_errstr(code), errno);
    std::string octets(size, '\0');
    code = opened->pMethods->xRead(opened, octets.data(), static_cast<int>(size), 0);
    const int error = errno;
    opened->pMethods->xClose(opened);
    if (code != SQLITE_OK && code != SQLITE_IOERR_SHORT_READ)
        raise_unusable(file, sqlite3_errstr(code), error);
    return octets;
}

}  // namespace orvo::directory::embedded
