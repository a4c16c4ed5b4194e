#include "host/admin/diagnosis/embedded_file.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <system_error>

#include "host/admin/diagnosis/content_steps.h"
#include "suite/configuration/value_reference.h"
#include "suite/directory/embedded/store/sqlite.h"
#include "suite/directory/embedded/store/tables.h"
#include "suite/directory/entries/search_condition.h"
#include "suite/directory/entries/searched_entry.h"
#include "suite/directory/policy/failures.h"
#include "suite/directory/policy/stored_password.h"

namespace orvo::admin {

using namespace directory;
using namespace directory::embedded;

std::optional<EntryData> FileView::find(const std::string& name) {
    const auto parsed = DistinguishedName::try_parse(from_utf8(name));
    if (!parsed) raise_code(result_code::invalid_name, quoted_name(name));
    return directory_.read().find(*parsed);
}

std::vector<EntryData> FileView::search(const std::string& base, const std::string& filter,
                                        std::size_t most) {
    const auto parsed = DistinguishedName::try_parse(from_utf8(base));
    if (!parsed) raise_code(result_code::invalid_name, quoted_name(base));
    const std::shared_ptr<const Schema> schema = directory_.store().schema();
    const Filter wanted = Filter::parse(from_utf8(filter));
    const FilterMatcher matcher(wanted, [&](std::string_view attribute) {
        return matching_of(attribute, schema->types, Bounds::of_rules);
    });
    std::vector<EntryData> entries;
    directory_.read().search({*parsed, Scope::subtree, wanted, {}, most}, [&](EntryData&& entry) {
        if (matcher.matches(SearchedEntry(entry, schema->types)))
            entries.push_back(std::move(entry));
        return entries.size() < most;
    });
    return entries;
}

std::string EmbeddedFile::service() const { return below_root(site, site.service); }

namespace {

std::string owner_of(const struct stat& status) {
    const passwd* user = ::getpwuid(status.st_uid);
    return user ? user->pw_name : "user " + std::to_string(status.st_uid);
}

Finding examine_path(EmbeddedFile& file) {
    const std::string path = file.path().string();
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        const int reason = errno;
        return failed(quoted_name(path) + ": " + std::generic_category().message(reason) + ".",
                      reason == ENOENT ? "Make it with 'orvo init', or correct LDAPServer in " +
                                             file.site.file.string() + "."
                                       : "Run this as the user whose file it is.");
    }
    const std::string owner = owner_of(status);
    if (!S_ISREG(status.st_mode))
        return failed(quoted_name(path) + " is no file.",
                      "Correct LDAPServer in " + file.site.file.string() + ".");
    if (::access(path.c_str(), R_OK | W_OK) != 0)
        return failed("It belongs to " + owner + ", and may not be read and written by who asks.",
                      "Run this as " + owner + ".");
    if (::access(file.path().parent_path().c_str(), W_OK) != 0)
        return failed(
            "Its folder cannot be written to, where its log has to be.",
            "Give " + quoted_name(file.path().parent_path().string()) + " to " + owner + ".");
    if ((status.st_mode & 077) != 0)
        return failed("Others than " + owner + " may read or write it, with all password hashes.",
                      "chmod 600 " + path);
    return found("belongs to " + owner + ", who alone may read it");
}

Finding examine_version(EmbeddedFile& file) {
    const auto newest = static_cast<std::int64_t>(migration_steps().size()) + 1;
    {
        Database database(file.path());
        if (database.number("PRAGMA application_id", 0) != application_id)
            return failed("This is not the file of a directory.",
                          "Correct LDAPServer in " + file.site.file.string() + ".");
        const std::int64_t version = database.number("PRAGMA user_version", 0);
        if (version > newest)
            return failed("It has version " + std::to_string(version) +
                              ", and this program knows versions up to " + std::to_string(newest) +
                              ".",
                          "Upgrade the programs.");
        if (version < newest)
            return failed("It has version " + std::to_string(version) + ", not yet " +
                              std::to_string(newest) + ".",
                          "Open it once, which copies it and brings it up to date: orvo directory "
                          "show " +
                              file.path().string());
    }
    file.directory = Directory::of(from_utf8(file.site.server));
    return found("version " + std::to_string(newest));
}

Finding examine_lock(EmbeddedFile& file) {
    constexpr std::chrono::milliseconds patience(1000);
    Database database(file.path());
    database.set_wait(patience);
    try {
        database.execute("BEGIN IMMEDIATE");
    } catch (const Failure& failure) {
        if (failure.number != number_of_code(result_code::busy)) throw;
        return failed("Another program has kept it locked for a second.",
                      "See who has it open: fuser -v " + file.path().string());
    }
    database.execute("ROLLBACK");
    return found("nobody holds it");
}

Finding examine_space(EmbeddedFile& file) {
    constexpr std::uintmax_t mebibyte = 1 << 20;
    constexpr std::uintmax_t least = 64 * mebibyte;
    const std::uintmax_t size = std::filesystem::file_size(file.path());
    const std::uintmax_t left = std::filesystem::space(file.path().parent_path()).available;
    const std::string where = quoted_name(file.path().parent_path().string());
    // A copy of it, as a backup or an update makes, has to fit in.
    if (left < least + size)
        return failed(std::to_string(left / mebibyte) + " MiB are left in " + where + ".",
                      "Make room for " + std::to_string((least + size) / mebibyte) +
                          " MiB: its log and a copy of it.");
    return found("more than " + std::to_string((least + size) / mebibyte) + " MiB are left");
}

Finding examine_store_schema(EmbeddedFile& file) {
    const std::shared_ptr<const Schema> schema = file.directory->store().schema();
    return examine_schema(file.site, schema->types, schema->classes,
                          "Move the entries to a new file: orvo directory export, create, import.");
}

template <auto examine>
Finding seen_in_file(EmbeddedFile& file) {
    FileView view = file.view();
    return examine(file.site, view);
}

// The password is compared with the stored one: a login would count where it is wrong.
Finding examine_service(EmbeddedFile& file) {
    const std::string correct = " in " + file.site.file.string() + ".";
    const auto entry = file.view().find(file.service());
    if (!entry)
        return failed("There is no " + quoted_name(file.service()) + ".",
                      "Make it, or correct MemScriptUser" + correct);
    const auto rules = file.directory->password_rules(file.directory->read(), *entry);
    const AccountState state = AccountState::from(*entry);
    if (rules && state.is_locked(*rules, file.directory->now()))
        return failed(quoted_name(file.service()) + " is locked.", "Unlock it.");
    const Secret password(
        referred_value(from_utf8(file.site.service_code), file.site.file.parent_path()));
    if (!is_hash_of(stored_password(*entry), password))
        return failed("It has another password than MemScriptCode says.",
                      "Correct MemScriptCode" + correct);
    if (rules && outcome_of_bind(*rules, state, true, file.directory->now()).code != 0)
        return failed("Its password has expired.",
                      "Give it a new one, and the same in MemScriptCode" + correct);
    return found(entry->name + " has the password of the settings");
}

// That has been found.
Identity service_account(const EmbeddedFile& file, const Reading& reading) {
    const auto name = DistinguishedName::try_parse(from_utf8(file.service()));
    return Identity::of(*name, *reading.find(*name));
}

Finding examine_reading(EmbeddedFile& file) {
    const Reading reading = file.directory->read();
    const auto rules = file.directory->access_rules(reading);
    const Identity service = service_account(file, reading);
    std::string cannot;
    for (const ReadEntries& row : entries_read(file.site)) {
        const auto entry =
            DistinguishedName::try_parse(from_utf8("cn=orvo-doctor," + row.container));
        std::vector<std::string> missing = row.attributes;
        std::erase_if(missing, [&](const std::string& attribute) {
            return rules->allow(service, Right::read, *entry, attribute);
        });
        if (!missing.empty())
            cannot +=
                (cannot.empty() ? "" : "; ") + std::string(row.words) + ": " + listed(missing);
    }
    return finding_of_reading(file.site, cannot,
                              "Let the access rules (orvo directory set --access FILE) read ");
}

Finding examine_rights(EmbeddedFile& file) {
    const Reading reading = file.directory->read();
    const auto rules = file.directory->access_rules(reading);
    const std::string users = below_root(file.site, file.site.users);
    const auto container = DistinguishedName::try_parse(from_utf8(users));
    const auto user = DistinguishedName::try_parse(from_utf8(
        entry_below(file.site, file.site.naming_attribute, "orvo-doctor", file.site.users)));
    const Identity service = service_account(file, reading);
    struct Row {
        const char* words;
        const DistinguishedName& entry;
        std::string_view attribute;
    };
    const Row rows[] = {{"make and remove users", *container, its_children},
                        {"change users", *user, "OrvoRole"},
                        {"set passwords", *user, "userPassword"}};
    std::string can, cannot;
    for (const Row& row : rows) {
        std::string& words =
            rules->allow(service, Right::write, row.entry, row.attribute) ? can : cannot;
        words += (words.empty() ? "" : ", ") + std::string(row.words);
    }
    if (cannot.empty()) return found("the service account can " + can);
    return failed("The service account cannot " + cannot + ".",
                  "Let the access rules write to " + quoted_name(users) +
                      ": orvo directory set --access FILE.");
}

constexpr Step<EmbeddedFile> file_steps[] = {
    {"file", nullptr, examine_path},
    {"version", "file", examine_version},
    {"lock", "version", examine_lock},
    {"space", "file", examine_space},
    {"schema", "version", examine_store_schema},
    {"containers", "version", seen_in_file<examine_containers>},
    {"service account", "version", examine_service},
    {"accounts", "containers", seen_in_file<examine_accounts>},
    {"administrators", "containers", seen_in_file<examine_administrators>},
    {"reading", "service account", examine_reading},
    {"writing", "service account", examine_rights},
};

}  // namespace

std::vector<Examined> examine_file(EmbeddedFile& file) {
    return examine<EmbeddedFile>(file_steps, file);
}

}  // namespace orvo::admin
