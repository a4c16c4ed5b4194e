#include "platform/objects/files/file_operations.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include "platform/objects/files/file_names.h"
#include "platform/objects/files/opened_file.h"
#include "platform/values/failure.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

constexpr mode_t writable_by_anybody = S_IWUSR | S_IWGRP | S_IWOTH;

void check(const std::error_code& error) {
    if (error) raise_file_error(error.value());
}

// Calls visit(entry) for each entry of a folder.
template <class Visit>
void for_each_entry(const fs::path& folder, Visit visit) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        visit(*entry);
    check(error);
}

bool has_read_only(const fs::path& folder) {
    bool found = false;
    for_each_entry(folder, [&](const fs::directory_entry& entry) {
        if (entry.is_symlink()) return;
        found = found ||
                (entry.is_directory() ? has_read_only(entry.path()) : is_read_only({entry.path()}));
    });
    return found;
}

void copy_file(const UsablePath& from, const UsablePath& to, bool overwrite) {
    std::error_code ignored;
    if (fs::is_directory(to.path, ignored) || fs::equivalent(from.path, to.path, ignored))
        raise_runtime_error(runtime_error::permission_denied);
    if (overwrite && is_there(to, EntryKind::file) && is_read_only(to))
        raise_runtime_error(runtime_error::permission_denied);
    OpenedFile source(from, OpenedFile::Use::read);
    OpenedFile target(to, overwrite ? OpenedFile::Use::replace : OpenedFile::Use::create);
    std::array<char, 64 * 1024> part;
    while (const std::size_t count = source.read(part)) target.write({part.data(), count});
}

struct Transfer {
    UsablePath from;
    UsablePath to;
    EntryKind kind;
};

// All that copying a folder does, in order.
void plan_copy(const UsablePath& from, const UsablePath& to, std::vector<Transfer>& plan) {
    plan.push_back({from, to, EntryKind::folder});
    for_each_entry(from.path, [&](const fs::directory_entry& entry) {
        const UsablePath target = usable_path(to.path / entry.path().filename());
        const UsablePath source = usable_path(entry.path());
        if (!entry.is_directory()) return plan.push_back({source, target, EntryKind::file});
        if (entry.is_symlink()) raise_runtime_error(runtime_error::permission_denied);
        plan_copy(source, target, plan);
    });
}

}  // namespace

bool is_there(const UsablePath& path, EntryKind kind) {
    std::error_code error;
    const fs::file_status status = fs::status(path.path, error);
    return fs::exists(status) && fs::is_directory(status) == (kind == EntryKind::folder);
}

void require_there(const UsablePath& path, EntryKind kind) {
    if (!is_there(path, kind))
        raise_runtime_error(kind == EntryKind::file ? runtime_error::file_not_found
                                                    : runtime_error::path_not_found);
}

std::vector<UsablePath> entries_of(const Text& given, EntryKind kind) {
    const Text pattern = file_names::name_of(given);
    if (!file_names::is_pattern(pattern)) {
        std::vector<UsablePath> only{usable_path(given)};
        require_there(only.front(), kind);
        return only;
    }
    const Text parent = file_names::parent_of(given);
    const UsablePath folder = usable_path(parent.empty() ? u"." : parent);
    require_there(folder, EntryKind::folder);
    std::vector<UsablePath> found;
    for_each_entry(folder.path, [&](const fs::directory_entry& entry) {
        if (entry.is_directory() == (kind == EntryKind::folder) &&
            file_names::agrees(from_utf8(entry.path().filename().string()), pattern))
            found.push_back(usable_path(entry.path()));
    });
    if (found.empty())
        raise_runtime_error(kind == EntryKind::file ? runtime_error::file_not_found
                                                    : runtime_error::path_not_found);
    std::ranges::sort(found, {}, &UsablePath::path);
    return found;
}

UsablePath target_of(const UsablePath& from, const Text& destination, bool is_of_pattern) {
    const UsablePath target = usable_path(destination);
    if (!is_of_pattern && !destination.ends_with(u'/') && !destination.ends_with(u'\\'))
        return target;
    require_there(target, EntryKind::folder);
    return usable_path(target.path / from.path.filename());
}

bool is_read_only(const UsablePath& path) {
    struct stat status {};
    return ::stat(path.path.c_str(), &status) == 0 && !(status.st_mode & writable_by_anybody);
}

void make_folder(const UsablePath& path) {
    std::error_code error;
    if (!fs::is_directory(path.path.parent_path(), error))
        raise_runtime_error(runtime_error::path_not_found);
    if (::mkdir(path.path.c_str(), 0777) != 0) raise_file_error(errno);
}

void delete_entries(const std::vector<UsablePath>& entries, EntryKind kind, bool force) {
    for (const UsablePath& entry : entries) {
        if (!force && (kind == EntryKind::folder ? has_read_only(entry.path) : is_read_only(entry)))
            raise_runtime_error(runtime_error::permission_denied);
        if (kind == EntryKind::folder) require_allowed_below(entry);
    }
    for (const UsablePath& entry : entries) {
        std::error_code error;
        if (kind == EntryKind::folder)
            fs::remove_all(entry.path, error);
        else
            fs::remove(entry.path, error);
        check(error);
    }
}

void delete_entry(const UsablePath& path, EntryKind kind, bool force) {
    delete_entries({path}, kind, force);
}

void copy_entry(const UsablePath& from, const UsablePath& to, EntryKind kind, bool overwrite) {
    if (kind == EntryKind::file) return copy_file(from, to, overwrite);
    if (is_there(to, EntryKind::file)) raise_runtime_error(runtime_error::file_already_exists);
    std::error_code error;
    const fs::path inside = fs::weakly_canonical(to.path, error);
    const fs::path around = fs::canonical(from.path, error);
    if (error || std::ranges::mismatch(around, inside).in1 == around.end())
        raise_runtime_error(runtime_error::permission_denied);
    if (is_there(to, EntryKind::folder)) require_allowed_below(to);
    std::vector<Transfer> plan;
    plan_copy(from, to, plan);
    for (const Transfer& step : plan) {
        if (step.kind == EntryKind::file)
            copy_file(step.from, step.to, overwrite);
        else if (!is_there(step.to, EntryKind::folder))
            make_folder(step.to);
    }
}

void move_entry(const UsablePath& from, const UsablePath& to, EntryKind kind) {
    if (kind == EntryKind::folder) require_allowed_below(from);
    // Whether each file may be where it goes, copying finds out.
    const bool moves_many = kind == EntryKind::folder && from.is_limited;
    if (!moves_many &&
        ::renameat2(AT_FDCWD, from.path.c_str(), AT_FDCWD, to.path.c_str(), RENAME_NOREPLACE) == 0)
        return;
    if (!moves_many && errno == ENOENT) raise_runtime_error(runtime_error::path_not_found);
    // Another file system, or one that cannot do it so.
    if (!moves_many && errno != EXDEV && errno != EINVAL) raise_file_error(errno);
    if (is_there(to, EntryKind::file) || is_there(to, EntryKind::folder))
        raise_runtime_error(runtime_error::file_already_exists);
    copy_entry(from, to, kind, false);
    delete_entry(from, kind, true);
}

}  // namespace orvo
