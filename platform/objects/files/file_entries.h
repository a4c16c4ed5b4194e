#pragma once

// Files, folders and drives as objects. Each stands for a path: what it tells is asked of the
// system when it is asked for, and raises 53 or 76 once the file or folder is gone.

#include "platform/interfaces/hosted.h"
#include "platform/objects/files/file_operations.h"
#include "platform/values/date.h"

namespace orvo {

// Those that exist here: a name that begins with "." is hidden, and what nobody may write to is
// read-only.
enum FileAttribute : std::int32_t { Normal = 0, ReadOnly = 1, Hidden = 2, Directory = 16 };

enum IOMode : std::int32_t { ForReading = 1, ForWriting = 2, ForAppending = 8 };

// UTF-8, or UTF-16 with a byte order mark. The default is UTF-8, and where a file is read that
// begins with the mark of UTF-16, that.
enum Tristate : std::int32_t { TristateTrue = -1, TristateFalse = 0, TristateUseDefault = -2 };

// A text stream on a file. `create`: for writing, make a file that is not there. Raises 5 for other
// numbers than those above.
Object open_text(const UsablePath& path, std::int32_t mode, bool create, std::int32_t format);
// A new file, for writing. Raises 58 for one that is there, unless it may be overwritten.
Object create_text(const UsablePath& path, bool overwrite, bool unicode);

// A file or a folder. Dates are local time.
template <EntryKind kind>
class Entry {
public:
    explicit Entry(UsablePath path) : path_(std::move(path)) {}

    Text Path();
    Text Name();
    // Renames it. Raises 58 where there is an entry of that name, and 5 for a name with "/".
    void SetName(const Text& name);
    Object Drive();
    // Nothing for the root.
    Object ParentFolder();
    std::int32_t Attributes();
    // Only read-only can be changed.
    void SetAttributes(std::int32_t attributes);
    Date DateCreated();
    Date DateLastModified();
    Date DateLastAccessed();
    // In bytes; of a folder, of all files in it.
    Variant Size();
    Text Type();
    void Delete(bool force);
    void Copy(const Text& destination, bool overwrite);
    void Move(const Text& destination);

    // Of a file.
    Object OpenAsTextStream(std::int32_t mode, std::int32_t format);

    // Of a folder.
    bool IsRootFolder();
    Object SubFolders();
    Object Files();
    Object CreateTextFile(const Text& name, bool overwrite, bool unicode);

private:
    // The path, allowed still and there still.
    UsablePath checked();

    UsablePath path_;
};

using File = Entry<EntryKind::file>;
using Folder = Entry<EntryKind::folder>;

// The files or the folders of a folder, by name.
template <EntryKind kind>
class EntryList {
public:
    explicit EntryList(UsablePath folder) : folder_(std::move(folder)) {}
    // Raises 53 or 76.
    Object Item(const Variant& key);
    std::int32_t Count();
    Object NewEnum();
    // Of folders: makes one.
    Object Add(const Text& name);

private:
    std::vector<UsablePath> all();

    UsablePath folder_;
};

using FileList = EntryList<EntryKind::file>;
using FolderList = EntryList<EntryKind::folder>;

// There is one drive, "/".
class RootDrive {
public:
    Text Path() { return u"/"; }
    Text DriveLetter() { return {}; }
    Text ShareName() { return {}; }
    std::int32_t DriveType();
    Object RootFolder();
    // In bytes.
    Variant AvailableSpace();
    Variant FreeSpace();
    Variant TotalSize();
    Text VolumeName() { return {}; }
    void SetVolumeName(const Text& name);  // raises 70
    Text FileSystem() { return {}; }
    std::int32_t SerialNumber() { return 0; }
    bool IsReady() { return true; }
};

class DriveList {
public:
    // Raises 68 for any but "/".
    Object Item(const Variant& key);
    std::int32_t Count() { return 1; }
    Object NewEnum();
};

// clang-format off
template <>
inline constexpr auto table_of<File> = describe<File>(
    "IFile", "c7c3f5a4-88a3-11d0-abcb-00a0c90fffc0",
    get<&File::Path>("Path").as_default(),
    get<&File::Name>("Name").id(1000),
    put<&File::SetName>("Name", "name").id(1000),
    get<&File::Path>("ShortPath").id(1002),
    get<&File::Name>("ShortName").id(1001),
    get<&File::Drive>("Drive").id(1004),
    get<&File::ParentFolder>("ParentFolder").id(1005),
    get<&File::Attributes>("Attributes").id(1003),
    put<&File::SetAttributes>("Attributes", "attributes").id(1003),
    get<&File::DateCreated>("DateCreated").id(1006),
    get<&File::DateLastModified>("DateLastModified").id(1007),
    get<&File::DateLastAccessed>("DateLastAccessed").id(1008),
    get<&File::Size>("Size").id(1009),
    get<&File::Type>("Type").id(1010),
    method<&File::Delete>("Delete", optional("Force")).id(1200),
    method<&File::Copy>("Copy", "Destination", optional("OverWriteFiles", -1)).id(1202),
    method<&File::Move>("Move", "Destination").id(1204),
    method<&File::OpenAsTextStream>("OpenAsTextStream", optional("IOMode", ForReading),
                                    optional("Format", TristateFalse)).id(1100));

template <>
inline constexpr auto table_of<Folder> = describe<Folder>(
    "IFolder", "c7c3f5a2-88a3-11d0-abcb-00a0c90fffc0",
    get<&Folder::Path>("Path").as_default(),
    get<&Folder::Name>("Name").id(1000),
    put<&Folder::SetName>("Name", "name").id(1000),
    get<&Folder::Path>("ShortPath").id(1002),
    get<&Folder::Name>("ShortName").id(1001),
    get<&Folder::Drive>("Drive").id(1004),
    get<&Folder::ParentFolder>("ParentFolder").id(1005),
    get<&Folder::Attributes>("Attributes").id(1003),
    put<&Folder::SetAttributes>("Attributes", "attributes").id(1003),
    get<&Folder::DateCreated>("DateCreated").id(1006),
    get<&Folder::DateLastModified>("DateLastModified").id(1007),
    get<&Folder::DateLastAccessed>("DateLastAccessed").id(1008),
    get<&Folder::Type>("Type").id(1010),
    method<&Folder::Delete>("Delete", optional("Force")).id(1201),
    method<&Folder::Copy>("Copy", "Destination", optional("OverWriteFiles", -1)).id(1203),
    method<&Folder::Move>("Move", "Destination").id(1205),
    get<&Folder::IsRootFolder>("IsRootFolder").id(10000),
    get<&Folder::Size>("Size").id(1009),
    get<&Folder::SubFolders>("SubFolders").id(10001),
    get<&Folder::Files>("Files").id(10002),
    method<&Folder::CreateTextFile>("CreateTextFile", "FileName", optional("Overwrite", -1),
                                    optional("Unicode")).id(1101));

template <>
inline constexpr auto table_of<FolderList> = describe<FolderList>(
    "IFolderCollection", "c7c3f5a3-88a3-11d0-abcb-00a0c90fffc0",
    method<&FolderList::Add>("Add", "Name").id(2),
    get<&FolderList::Item>("Item", "Key").as_default(),
    get<&FolderList::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM).hidden(),
    get<&FolderList::Count>("Count").id(1));

template <>
inline constexpr auto table_of<FileList> = describe<FileList>(
    "IFileCollection", "c7c3f5a5-88a3-11d0-abcb-00a0c90fffc0",
    get<&FileList::Item>("Item", "Key").as_default(),
    get<&FileList::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM).hidden(),
    get<&FileList::Count>("Count").id(1));

template <>
inline constexpr auto table_of<RootDrive> = describe<RootDrive>(
    "IDrive", "c7c3f5a0-88a3-11d0-abcb-00a0c90fffc0",
    get<&RootDrive::Path>("Path").as_default(),
    get<&RootDrive::DriveLetter>("DriveLetter").id(10000),
    get<&RootDrive::ShareName>("ShareName").id(10001),
    get<&RootDrive::DriveType>("DriveType").id(10002),
    get<&RootDrive::RootFolder>("RootFolder").id(10003),
    get<&RootDrive::AvailableSpace>("AvailableSpace").id(10005),
    get<&RootDrive::FreeSpace>("FreeSpace").id(10004),
    get<&RootDrive::TotalSize>("TotalSize").id(10006),
    get<&RootDrive::VolumeName>("VolumeName").id(10007),
    put<&RootDrive::SetVolumeName>("VolumeName", "name").id(10007),
    get<&RootDrive::FileSystem>("FileSystem").id(10008),
    get<&RootDrive::SerialNumber>("SerialNumber").id(10009),
    get<&RootDrive::IsReady>("IsReady").id(10010));

template <>
inline constexpr auto table_of<DriveList> = describe<DriveList>(
    "IDriveCollection", "c7c3f5a1-88a3-11d0-abcb-00a0c90fffc0",
    get<&DriveList::Item>("Item", "Key").as_default(),
    get<&DriveList::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM).hidden(),
    get<&DriveList::Count>("Count").id(1));
// clang-format on

template <>
inline constexpr auto class_of<File> = describe_class<File>("Scripting.File");
template <>
inline constexpr auto class_of<Folder> = describe_class<Folder>("Scripting.Folder");
template <>
inline constexpr auto class_of<FileList> = describe_class<FileList>("Scripting.Files");
template <>
inline constexpr auto class_of<FolderList> = describe_class<FolderList>("Scripting.Folders");
template <>
inline constexpr auto class_of<RootDrive> = describe_class<RootDrive>("Scripting.Drive");
template <>
inline constexpr auto class_of<DriveList> = describe_class<DriveList>("Scripting.Drives");

extern template class Entry<EntryKind::file>;
extern template class Entry<EntryKind::folder>;
extern template class EntryList<EntryKind::file>;
extern template class EntryList<EntryKind::folder>;

}  // namespace orvo
