#pragma once

// The file system, as scripts see it. Paths: usable_path.h; failures: opened_file.h. Belongs to the
// thread that made it.

#include "platform/interfaces/hosted.h"
#include "platform/objects/files/file_entries.h"

namespace orvo {

class FileSystem {
public:
    Object Drives();
    Text BuildPath(const Text& path, const Text& name);
    Text GetDriveName(const Text& path);
    Text GetParentFolderName(const Text& path);
    Text GetFileName(const Text& path);
    Text GetBaseName(const Text& path);
    Text GetExtensionName(const Text& path);
    Text GetAbsolutePathName(const Text& path);
    // A name that no file is likely to have; nothing is made.
    Text GetTempName();
    bool DriveExists(const Text& name);
    bool FileExists(const Text& path);
    bool FolderExists(const Text& path);
    Object GetDrive(const Text& name);
    Object GetFile(const Text& path);
    Object GetFolder(const Text& path);
    // 2: the folder of temporary files. Raises 76 for the two of Windows' own, 5 for others.
    Object GetSpecialFolder(std::int32_t which);
    // The last part of what is deleted, copied and moved may be a pattern ("*.csv").
    void DeleteFile(const Text& path, bool force);
    void DeleteFolder(const Text& path, bool force);
    void MoveFile(const Text& from, const Text& to);
    void MoveFolder(const Text& from, const Text& to);
    void CopyFile(const Text& from, const Text& to, bool overwrite);
    void CopyFolder(const Text& from, const Text& to, bool overwrite);
    Object CreateFolder(const Text& path);
    Object CreateTextFile(const Text& path, bool overwrite, bool unicode);
    Object OpenTextFile(const Text& path, std::int32_t mode, bool create, std::int32_t format);
    // 0 to 2: the program's own input, output and errors. Raises 70 within an object context.
    Object GetStandardStream(std::int32_t which, bool unicode);
    // Empty: files here carry none.
    Text GetFileVersion(const Text& path);
};

// clang-format off
template <>
inline constexpr auto table_of<FileSystem> = describe<FileSystem>(
    "IFileSystem3", "2a0b9d10-4b87-11d3-a97a-00104b365c9f",
    get<&FileSystem::Drives>("Drives").id(10010),
    method<&FileSystem::BuildPath>("BuildPath", "Path", "Name").id(10000),
    method<&FileSystem::GetDriveName>("GetDriveName", "Path").id(10004),
    method<&FileSystem::GetParentFolderName>("GetParentFolderName", "Path").id(10005),
    method<&FileSystem::GetFileName>("GetFileName", "Path").id(10006),
    method<&FileSystem::GetBaseName>("GetBaseName", "Path").id(10007),
    method<&FileSystem::GetExtensionName>("GetExtensionName", "Path").id(10008),
    method<&FileSystem::GetAbsolutePathName>("GetAbsolutePathName", "Path").id(10002),
    method<&FileSystem::GetTempName>("GetTempName").id(10003),
    method<&FileSystem::DriveExists>("DriveExists", "DriveSpec").id(10015),
    method<&FileSystem::FileExists>("FileExists", "FileSpec").id(10016),
    method<&FileSystem::FolderExists>("FolderExists", "FolderSpec").id(10017),
    method<&FileSystem::GetDrive>("GetDrive", "DriveSpec").id(10011),
    method<&FileSystem::GetFile>("GetFile", "FilePath").id(10012),
    method<&FileSystem::GetFolder>("GetFolder", "FolderPath").id(10013),
    method<&FileSystem::GetSpecialFolder>("GetSpecialFolder", "SpecialFolder").id(10014),
    method<&FileSystem::DeleteFile>("DeleteFile", "FileSpec", optional("Force")).id(1200),
    method<&FileSystem::DeleteFolder>("DeleteFolder", "FolderSpec", optional("Force")).id(1201),
    method<&FileSystem::MoveFile>("MoveFile", "Source", "Destination").id(1204),
    method<&FileSystem::MoveFolder>("MoveFolder", "Source", "Destination").id(1205),
    method<&FileSystem::CopyFile>("CopyFile", "Source", "Destination",
                                  optional("OverWriteFiles", -1)).id(1202),
    method<&FileSystem::CopyFolder>("CopyFolder", "Source", "Destination",
                                    optional("OverWriteFiles", -1)).id(1203),
    method<&FileSystem::CreateFolder>("CreateFolder", "Path").id(1120),
    method<&FileSystem::CreateTextFile>("CreateTextFile", "FileName", optional("Overwrite", -1),
                                        optional("Unicode")).id(1101),
    method<&FileSystem::OpenTextFile>("OpenTextFile", "FileName", optional("IOMode", ForReading),
                                      optional("Create"), optional("Format")).id(1100),
    method<&FileSystem::GetStandardStream>("GetStandardStream", "StandardStreamType",
                                           optional("Unicode")).id(20000),
    method<&FileSystem::GetFileVersion>("GetFileVersion", "FileName").id(20010));
// clang-format on

template <>
inline constexpr auto class_of<FileSystem> = describe_class<FileSystem>(
    "Scripting.FileSystemObject", "0d43fe01-f093-11cf-8940-00a0c9054228");

}  // namespace orvo
