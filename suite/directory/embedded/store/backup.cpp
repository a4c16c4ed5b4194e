#include "suite/directory/embedded/store/backup.h"

#include <sqlite3.h>

#include "suite/directory/embedded/store/new_file.h"

namespace orvo::directory::embedded {
namespace {

constexpr int pages_for_a_step = 512;

class Backup {
public:
    Backup(Database& source, Database& target)
        : target_(target),
          handle_(sqlite3_backup_init(target.handle(), "main", source.handle(), "main")) {
        if (!handle_) target_.raise_last();
    }
    ~Backup() { sqlite3_backup_finish(handle_); }
    Backup(const Backup&) = delete;
    Backup& operator=(const Backup&) = delete;

    // Whether there is more to copy.
    bool step() {
        const int code = sqlite3_backup_step(handle_, pages_for_a_step);
        if (code != SQLITE_OK && code != SQLITE_DONE) target_.raise(code);
        return code == SQLITE_OK;
    }
    int all() const { return sqlite3_backup_pagecount(handle_); }
    int done() const { return all() - sqlite3_backup_remaining(handle_); }

private:
    Database& target_;
    sqlite3_backup* handle_;
};

// A view of the database that stays the same; without it the copy would begin anew whenever
// somebody else writes.
class View {
public:
    explicit View(Database& database) : database_(database) {
        database_.run("BEGIN");
        database_.number("SELECT count(*) FROM sqlite_schema", 0);
    }
    ~View() { sqlite3_exec(database_.handle(), "ROLLBACK", nullptr, nullptr, nullptr); }
    View(const View&) = delete;
    View& operator=(const View&) = delete;

private:
    Database& database_;
};

}  // namespace

void copy_database(Database& source, const std::filesystem::path& to, const Progress& tell) {
    NewFile made(to);
    {
        Database target(made.path());
        target.execute("PRAGMA synchronous = OFF");  // publish() sees to it
        const View view(source);
        Backup backup(source, target);
        while (backup.step()) tell(backup.done(), backup.all());
        tell(backup.done(), backup.all());
    }
    made.publish();
}

}  // namespace orvo::directory::embedded
