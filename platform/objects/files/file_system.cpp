#include "platform/objects/files/file_system.h"

#include <random>

#include "platform/objects/context/app_server.h"
#include "platform/objects/files/file_names.h"
#include "platform/objects/files/standard_streams.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

bool is_there(const Text& path, EntryKind kind) {
    return !path.empty() && is_there(usable_path(path), kind);
}

UsablePath existing(const Text& path, EntryKind kind) {
    UsablePath found = usable_path(path);
    require_there(found, kind);
    return found;
}

void delete_all(const Text& path, EntryKind kind, bool force) {
    delete_entries(entries_of(path, kind), kind, force);
}

// Calls transfer(from, to) for each entry that `from` means.
template <class Transfer>
void for_each_transfer(const Text& from, const Text& to, EntryKind kind, Transfer transfer) {
    const bool is_pattern = file_names::is_pattern(file_names::name_of(from));
    for (const UsablePath& entry : entries_of(from, kind))
        transfer(entry, target_of(entry, to, is_pattern));
}

void copy_all(const Text& from, const Text& to, EntryKind kind, bool overwrite) {
    for_each_transfer(from, to, kind, [&](const UsablePath& source, const UsablePath& target) {
        copy_entry(source, target, kind, overwrite);
    });
}

void move_all(const Text& from, const Text& to, EntryKind kind) {
    for_each_transfer(from, to, kind, [&](const UsablePath& source, const UsablePath& target) {
        move_entry(source, target, kind);
    });
}

}  // namespace

Object FileSystem::Drives() { return make<DriveList>().object(); }

Text FileSystem::BuildPath(const Text& path, const Text& name) {
    return file_names::build_path(path, name);
}
Text FileSystem::GetDriveName(const Text& path) { return file_names::drive_of(path); }
Text FileSystem::GetParentFolderName(const Text& path) { return file_names::parent_of(path); }
Text FileSystem::GetFileName(const Text& path) { return file_names::name_of(path); }
Text FileSystem::GetBaseName(const Text& path) { return file_names::base_of(path); }
Text FileSystem::GetExtensionName(const Text& path) { return file_names::extension_of(path); }

Text FileSystem::GetAbsolutePathName(const Text& path) {
    const fs::path given = to_utf8(replaced(path.empty() ? u"." : path, u"\\", u"/"));
    std::error_code error;
    fs::path absolute = fs::absolute(given, error).lexically_normal();
    if (!absolute.has_filename()) absolute = absolute.parent_path();
    return from_utf8(absolute.string());
}

Text FileSystem::GetTempName() {
    std::random_device source;
    constexpr std::uint32_t five_digits = 0xFFFFF;
    const Text digits = hexadecimal(static_cast<int>(source() & five_digits));
    return u"rad" + Text(5 - digits.size(), u'0') + digits + u".tmp";
}

bool FileSystem::DriveExists(const Text& name) { return name == u"/" || name == u"\\"; }
bool FileSystem::FileExists(const Text& path) { return is_there(path, EntryKind::file); }
bool FileSystem::FolderExists(const Text& path) { return is_there(path, EntryKind::folder); }

Object FileSystem::GetDrive(const Text& name) { return DriveList().Item(name); }

Object FileSystem::GetFile(const Text& path) {
    return make<File>(existing(path, EntryKind::file)).object();
}

Object FileSystem::GetFolder(const Text& path) {
    return make<Folder>(existing(path, EntryKind::folder)).object();
}

Object FileSystem::GetSpecialFolder(std::int32_t which) {
    constexpr std::int32_t temporary = 2;
    if (which < 0 || which > temporary) raise_runtime_error(runtime_error::invalid_call);
    if (which != temporary) raise_runtime_error(runtime_error::path_not_found);
    std::error_code error;
    const fs::path folder = fs::temp_directory_path(error);
    if (error) raise_runtime_error(runtime_error::path_not_found);
    return make<Folder>(usable_path(folder)).object();
}

void FileSystem::DeleteFile(const Text& path, bool force) {
    delete_all(path, EntryKind::file, force);
}
void FileSystem::DeleteFolder(const Text& path, bool force) {
    delete_all(path, EntryKind::folder, force);
}
void FileSystem::MoveFile(const Text& from, const Text& to) { move_all(from, to, EntryKind::file); }
void FileSystem::MoveFolder(const Text& from, const Text& to) {
    move_all(from, to, EntryKind::folder);
}
void FileSystem::CopyFile(const Text& from, const Text& to, bool overwrite) {
    copy_all(from, to, EntryKind::file, overwrite);
}
void FileSystem::CopyFolder(const Text& from, const Text& to, bool overwrite) {
    copy_all(from, to, EntryKind::folder, overwrite);
}

Object FileSystem::CreateFolder(const Text& path) {
    const UsablePath made = usable_path(path);
    make_folder(made);
    return make<Folder>(made).object();
}

Object FileSystem::CreateTextFile(const Text& path, bool overwrite, bool unicode) {
    return create_text(usable_path(path), overwrite, unicode);
}

Object FileSystem::OpenTextFile(const Text& path, std::int32_t mode, bool create,
                                std::int32_t format) {
    return open_text(usable_path(path), mode, create, format);
}

Object FileSystem::GetStandardStream(std::int32_t which, bool) {
    if (which < 0 || which > 2) raise_runtime_error(runtime_error::invalid_call);
    if (AppServerObject().GetObjectContext()) raise_runtime_error(runtime_error::permission_denied);
    return standard_stream(static_cast<StandardStream>(which));
}

Text FileSystem::GetFileVersion(const Text& path) {
    existing(path, EntryKind::file);
    return {};
}

}  // namespace orvo
