#pragma once

// SQLite, as far as the store needs it: errors are failures, and statements are prepared once.

#include <chrono>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace orvo::directory::embedded {

class Database;

// A text column's value; a plain std::string_view is octets.
struct AsText {
    std::string_view text;
};

// A statement with its values, until the end of this object; then it is kept for the next query of
// the same text. Its database lives longer.
class Query {
public:
    Query(Database& database, std::string_view sql);
    ~Query();
    Query(Query&& other) noexcept;
    Query& operator=(Query&& other) noexcept;

    template <class... Values>
    void bind(const Values&... values) {
        int place = 0;
        (bind_at(++place, values), ...);
    }
    // Whether there is another row. Of a statement without rows: carries it out.
    bool step();
    // Ready to be bound and carried out again.
    void reset();

    // Of the row that step() has reached; columns count from 0. Octets are valid until step().
    std::int64_t integer(int column) const;
    std::string_view octets(int column) const;
    std::string text(int column) const { return std::string(octets(column)); }

private:
    void bind_at(int place, std::integral auto value) {
        bind_integer(place, static_cast<std::int64_t>(value));
    }
    void bind_at(int place, std::string_view octets) { bind_octets(place, octets); }
    void bind_at(int place, AsText value) { bind_text(place, value.text); }
    void bind_integer(int place, std::int64_t value);
    void bind_octets(int place, std::string_view octets);
    void bind_text(int place, std::string_view text);

    Database* database_;
    sqlite3_stmt* statement_;
};

// One connection to a database file. Used by one thread at a time.
class Database {
public:
    // The file is there; an empty one becomes a database. Raises result code 81 with the file and
    // the reason.
    explicit Database(const std::filesystem::path& file);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // `sql` outlives the database: a literal.
    template <class... Values>
    Query query(std::string_view sql, const Values&... values) {
        Query query(*this, sql);
        query.bind(values...);
        return query;
    }
    template <class... Values>
    void run(std::string_view sql, const Values&... values) {
        Query statement = query(sql, values...);
        while (statement.step()) {
        }
    }
    // The first column of the first row; `fallback` where there is none.
    template <class... Values>
    std::int64_t number(std::string_view sql, std::int64_t fallback, const Values&... values) {
        Query query = this->query(sql, values...);
        return query.step() ? query.integer(0) : fallback;
    }
    // Statements that are used once, with ";" between them.
    void execute(const std::string& sql);
    // How SQLite would carry a statement out, a line for each step (EXPLAIN QUERY PLAN).
    std::vector<std::string> plan_of(std::string_view sql);

    // How long a statement waits for locks that others hold, before it fails with result code 51.
    static constexpr std::chrono::milliseconds usual_wait{5000};
    void set_wait(std::chrono::milliseconds wait) { wait_ = wait; }
    bool is_in_transaction() const;

    // Raises result code 51 where somebody else holds a lock, 80 otherwise, with the file and
    // SQLite's reason for what happened last. No values are in it.
    [[noreturn]] void raise_last();
    // The same for a code that came from a call of the library's.
    [[noreturn]] void raise(int code);

    sqlite3* handle() { return handle_; }
    const std::filesystem::path& file() const { return file_; }

private:
    friend class Query;
    static int wait_for_lock(void* database, int attempt);

    std::filesystem::path file_;
    sqlite3* handle_ = nullptr;
    std::chrono::milliseconds wait_ = usual_wait;
    std::chrono::steady_clock::time_point waiting_since_;
    std::unordered_map<std::string_view, std::vector<sqlite3_stmt*>> idle_;
};

// The octets that a file begins with, zeros behind its end: without its log, and without a look at
// the rest, which may be as a killed process has left it. Raises result code 81 with the file and
// the reason. Whatever has the file open in this process keeps its locks, which it would lose if it
// were read by other means.
std::string beginning_of(const std::filesystem::path& file, std::size_t size);

}  // namespace orvo::directory::embedded
