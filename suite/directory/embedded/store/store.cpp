#include "suite/directory/embedded/store/store.h"

#include <sys/stat.h>

#include <cerrno>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "suite/directory/embedded/store/migration.h"
#include "suite/directory/embedded/store/new_file.h"
#include "suite/directory/embedded/store/store_file.h"
#include "suite/directory/embedded/store/tables.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory::embedded {
namespace {

[[noreturn]] void raise_unusable(const std::filesystem::path& file, const std::string& reason) {
    raise_code(result_code::server_down, quoted_name(file.string()) + ": " + reason + ".");
}

struct FileIdentity {
    dev_t device;
    ino_t number;

    auto operator<=>(const FileIdentity&) const = default;
};

FileIdentity identity_of(const std::filesystem::path& file) {
    struct stat status;
    if (::stat(file.c_str(), &status) != 0)
        raise_unusable(file, std::generic_category().message(errno));
    return {status.st_dev, status.st_ino};
}

// Without a database connection, which might write: another program's file may have a log that
// SQLite would bring in.
void require_directory(const std::filesystem::path& file) {
    constexpr std::string_view magic("SQLite format 3\0", 16);
    constexpr std::size_t application_id_at = 68;
    const std::string header = beginning_of(file, 100);
    std::uint32_t application = 0;
    for (std::size_t at = application_id_at; at < application_id_at + 4; ++at)
        application = application << 8 | static_cast<unsigned char>(header[at]);
    if (!header.starts_with(magic) || application != application_id)
        raise_unusable(file, "this is not the file of a directory");
}

}  // namespace

void Store::create(const std::filesystem::path& file, const Schema& schema) {
    NewFile made(file);
    {
        Database database(made.path());
        database.execute("BEGIN");
        create_tables(database, schema);
        database.execute("COMMIT; PRAGMA journal_mode = WAL");
    }
    made.publish();
}

std::shared_ptr<Store> Store::open(const std::filesystem::path& file) {
    static std::mutex mutex;
    static std::map<FileIdentity, std::weak_ptr<Store>> stores;
    const std::lock_guard lock(mutex);
    std::erase_if(stores, [](const auto& item) { return item.second.expired(); });
    std::weak_ptr<Store>& known = stores[identity_of(file)];
    if (auto opened = known.lock()) return opened;
    require_directory(file);
    migrate(file, migration_steps());
    auto opened =
        std::make_shared<Store>(std::make_shared<StoreFile>(std::filesystem::absolute(file)));
    known = opened;
    return opened;
}

Store::Store(std::shared_ptr<StoreFile> file) : file_(std::move(file)) {
    const FileIdentity identity = identity_of(file_->path());
    device_ = identity.device;
    number_ = identity.number;
}

void Store::require_file() const {
    const FileIdentity identity = identity_of(file_->path());
    if (identity.device != device_ || identity.number != number_)
        raise_unusable(file_->path(), "another file has been put in its place");
}

const std::filesystem::path& Store::path() const { return file_->path(); }

std::shared_ptr<const Schema> Store::schema() const { return file_->schema(); }

Reading Store::read() { return Reading(file_); }

Writing Store::write(Durability durability, std::chrono::milliseconds wait) {
    return Writing(file_, wait, durability);
}

void Store::backup(const std::filesystem::path& to, const Progress& tell) {
    Database source(file_->path());
    copy_database(source, to, tell);
}

std::uint64_t Store::version() const { return file_->version(); }

}  // namespace orvo::directory::embedded
