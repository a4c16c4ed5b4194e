#include "platform/objects/files/file_entries.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <limits>

#include "platform/interfaces/enumerator.h"
#include "platform/objects/files/file_names.h"
#include "platform/objects/files/opened_file.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

constexpr mode_t writable_by_owner = S_IWUSR;
constexpr mode_t writable_by_all = S_IWUSR | S_IWGRP | S_IWOTH;

Variant number_of_bytes(std::uint64_t bytes) {
    if (bytes <= static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max()))
        return static_cast<std::int32_t>(bytes);
    return static_cast<double>(bytes);
}

struct statx status_of(const UsablePath& path) {
    struct statx status {};
    if (::statx(AT_FDCWD, path.path.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &status) != 0)
        raise_file_error(errno);
    return status;
}

Date date_of(const struct statx_timestamp& time) {
    const auto seconds = static_cast<std::time_t>(time.tv_sec);
    std::tm local{};
    if (::localtime_r(&seconds, &local) == nullptr) raise_runtime_error(runtime_error::overflow);
    return date_from_parts({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                            local.tm_min, std::min(local.tm_sec, 59)});
}

// Links to other places are not counted.
std::uint64_t bytes_below(const fs::path& folder) {
    std::uint64_t sum = 0;
    std::error_code error;
    for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code gone;
        if (!entry->is_symlink(gone) && entry->is_regular_file(gone)) {
            const std::uint64_t size = entry->file_size(gone);
            if (!gone) sum += size;
        }
    }
    if (error) raise_file_error(error.value());
    return sum;
}

template <EntryKind kind>
Object entry_at(UsablePath path) {
    return make<Entry<kind>>(std::move(path)).object();
}

struct statvfs space_of_root() {
    struct statvfs space {};
    if (::statvfs("/", &space) != 0) raise_file_error(errno);
    return space;
}

}  // namespace

template <EntryKind kind>
UsablePath Entry<kind>::checked() {
    UsablePath path = usable_path(path_.path);
    require_there(path, kind);
    return path;
}

template <EntryKind kind>
Text Entry<kind>::Path() {
    return from_utf8(path_.path.string());
}

template <EntryKind kind>
Text Entry<kind>::Name() {
    return from_utf8(path_.path.filename().string());
}

template <EntryKind kind>
void Entry<kind>::SetName(const Text& name) {
    if (name.empty() || name == u"." || name == u".." || name.find_first_of(u"/\\") != Text::npos)
        raise_runtime_error(runtime_error::invalid_call);
    const UsablePath target = usable_path(path_.path.parent_path() / to_utf8(name));
    move_entry(checked(), target, kind);
    path_ = target;
}

template <EntryKind kind>
Object Entry<kind>::Drive() {
    return make<RootDrive>().object();
}

template <EntryKind kind>
Object Entry<kind>::ParentFolder() {
    if (!path_.path.has_relative_path()) return {};
    return entry_at<EntryKind::folder>(usable_path(path_.path.parent_path()));
}

template <EntryKind kind>
std::int32_t Entry<kind>::Attributes() {
    const UsablePath path = checked();
    std::int32_t all = kind == EntryKind::folder ? Directory : Normal;
    if (is_read_only(path)) all |= ReadOnly;
    if (path.path.filename().string().starts_with('.')) all |= Hidden;
    return all;
}

template <EntryKind kind>
void Entry<kind>::SetAttributes(std::int32_t attributes) {
    const UsablePath path = checked();
    const mode_t mode = status_of(path).stx_mode & 07777;
    const mode_t changed = attributes & ReadOnly    ? mode & ~writable_by_all
                           : mode & writable_by_all ? mode
                                                    : mode | writable_by_owner;
    if (::chmod(path.path.c_str(), changed) != 0) raise_file_error(errno);
}

template <EntryKind kind>
Date Entry<kind>::DateCreated() {
    const struct statx status = status_of(checked());
    // Not every file system knows it.
    return date_of(status.stx_mask & STATX_BTIME ? status.stx_btime : status.stx_mtime);
}

template <EntryKind kind>
Date Entry<kind>::DateLastModified() {
    return date_of(status_of(checked()).stx_mtime);
}

template <EntryKind kind>
Date Entry<kind>::DateLastAccessed() {
    return date_of(status_of(checked()).stx_atime);
}

template <EntryKind kind>
Variant Entry<kind>::Size() {
    const UsablePath path = checked();
    return number_of_bytes(kind == EntryKind::folder ? bytes_below(path.path)
                                                     : status_of(path).stx_size);
}

template <EntryKind kind>
Text Entry<kind>::Type() {
    if (kind == EntryKind::folder) return u"File folder";
    Text extension = file_names::extension_of(Name());
    if (extension.empty()) return u"File";
    for (char16_t& unit : extension)
        if (unit >= u'a' && unit <= u'z') unit = static_cast<char16_t>(unit - u'a' + u'A');
    return extension + u" File";
}

template <EntryKind kind>
void Entry<kind>::Delete(bool force) {
    delete_entry(checked(), kind, force);
}

template <EntryKind kind>
void Entry<kind>::Copy(const Text& destination, bool overwrite) {
    const UsablePath from = checked();
    copy_entry(from, target_of(from, destination, false), kind, overwrite);
}

template <EntryKind kind>
void Entry<kind>::Move(const Text& destination) {
    const UsablePath from = checked();
    const UsablePath to = target_of(from, destination, false);
    move_entry(from, to, kind);
    path_ = to;
}

template <EntryKind kind>
Object Entry<kind>::OpenAsTextStream(std::int32_t mode, std::int32_t format) {
    return open_text(checked(), mode, false, format);
}

template <EntryKind kind>
bool Entry<kind>::IsRootFolder() {
    return !path_.path.has_relative_path();
}

template <EntryKind kind>
Object Entry<kind>::SubFolders() {
    return make<FolderList>(path_).object();
}

template <EntryKind kind>
Object Entry<kind>::Files() {
    return make<FileList>(path_).object();
}

template <EntryKind kind>
Object Entry<kind>::CreateTextFile(const Text& name, bool overwrite, bool unicode) {
    return create_text(usable_path(path_.path / to_utf8(replaced(name, u"\\", u"/"))), overwrite,
                       unicode);
}

template <EntryKind kind>
std::vector<UsablePath> EntryList<kind>::all() {
    const UsablePath folder = usable_path(folder_.path);
    require_there(folder, EntryKind::folder);
    std::vector<UsablePath> found;
    std::error_code error;
    for (fs::directory_iterator entry(folder.path, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code gone;
        if (entry->exists(gone) && entry->is_directory(gone) == (kind == EntryKind::folder))
            found.push_back({entry->path(), folder.is_limited});
    }
    if (error) raise_file_error(error.value());
    std::ranges::sort(found, {}, &UsablePath::path);
    return found;
}

template <EntryKind kind>
Object EntryList<kind>::Item(const Variant& key) {
    const Text name = key.to<Text>();
    if (name.find_first_of(u"/\\") != Text::npos) raise_runtime_error(runtime_error::invalid_call);
    const UsablePath path = usable_path(folder_.path / to_utf8(name));
    require_there(path, kind);
    return entry_at<kind>(path);
}

template <EntryKind kind>
std::int32_t EntryList<kind>::Count() {
    return static_cast<std::int32_t>(all().size());
}

template <EntryKind kind>
Object EntryList<kind>::NewEnum() {
    std::vector<Variant> items;
    for (UsablePath& path : all()) items.emplace_back(entry_at<kind>(std::move(path)));
    return make_enumerator(std::move(items));
}

template <EntryKind kind>
Object EntryList<kind>::Add(const Text& name) {
    const UsablePath path = usable_path(folder_.path / to_utf8(replaced(name, u"\\", u"/")));
    make_folder(path);
    return entry_at<kind>(path);
}

template class Entry<EntryKind::file>;
template class Entry<EntryKind::folder>;
template class EntryList<EntryKind::file>;
template class EntryList<EntryKind::folder>;

std::int32_t RootDrive::DriveType() {
    constexpr std::int32_t fixed = 2;
    return fixed;
}

Object RootDrive::RootFolder() { return entry_at<EntryKind::folder>(usable_path(Text(u"/"))); }

Variant RootDrive::AvailableSpace() {
    const struct statvfs space = space_of_root();
    return number_of_bytes(std::uint64_t{space.f_bavail} * space.f_frsize);
}

Variant RootDrive::FreeSpace() { return AvailableSpace(); }

Variant RootDrive::TotalSize() {
    const struct statvfs space = space_of_root();
    return number_of_bytes(std::uint64_t{space.f_blocks} * space.f_frsize);
}

void RootDrive::SetVolumeName(const Text&) {
    raise_runtime_error(runtime_error::permission_denied);
}

Object DriveList::Item(const Variant& key) {
    const Text name = replaced(key.to<Text>(), u"\\", u"/");
    if (name != u"/") raise_runtime_error(runtime_error::device_unavailable);
    return make<RootDrive>().object();
}

Object DriveList::NewEnum() { return make_enumerator({make<RootDrive>().object()}); }

}  // namespace orvo
