#include <windows.h>

#include <system_error>

#include "platform/output/append_handle.h"

namespace orvo {
namespace {

namespace fs = std::filesystem;

// Where the locked byte is, behind any line that will ever be: a lock keeps readers out.
constexpr DWORD behind_everything = 0x7FFFFFFF;

[[noreturn]] void raise_system_error() {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
}

HANDLE opened(const fs::path& file, DWORD access, DWORD how) {
    const HANDLE handle =
        CreateFileW(file.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, how, FILE_ATTRIBUTE_NORMAL, nullptr);
    return handle;
}

BY_HANDLE_FILE_INFORMATION facts_of(HANDLE handle) {
    BY_HANDLE_FILE_INFORMATION facts;
    if (!GetFileInformationByHandle(handle, &facts)) raise_system_error();
    return facts;
}

}  // namespace

class AppendHandle::File {
public:
    explicit File(HANDLE opened) : handle(opened) {
        if (handle == INVALID_HANDLE_VALUE) raise_system_error();
    }
    ~File() { CloseHandle(handle); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    const HANDLE handle;
};

AppendHandle::AppendHandle(const fs::path& file)
    : file_([&]() -> File& {
          if (file.has_parent_path()) fs::create_directories(file.parent_path());
          return *new File(opened(file, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS));
      }()) {}

AppendHandle::~AppendHandle() { delete &file_; }

void AppendHandle::lock() {
    OVERLAPPED place{};
    place.OffsetHigh = behind_everything;
    if (!LockFileEx(file_.handle, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &place)) raise_system_error();
}

void AppendHandle::unlock() noexcept {
    OVERLAPPED place{};
    place.OffsetHigh = behind_everything;
    UnlockFileEx(file_.handle, 0, 1, 0, &place);
}

bool AppendHandle::is_file_of(const fs::path& name) const {
    const HANDLE handle = opened(name, 0, OPEN_EXISTING);
    if (handle == INVALID_HANDLE_VALUE) {
        if (GetLastError() == ERROR_FILE_NOT_FOUND) return false;
        raise_system_error();
    }
    const File other(handle);
    const auto own = facts_of(file_.handle), named = facts_of(other.handle);
    return own.dwVolumeSerialNumber == named.dwVolumeSerialNumber &&
           own.nFileIndexHigh == named.nFileIndexHigh && own.nFileIndexLow == named.nFileIndexLow;
}

std::uint64_t AppendHandle::size() const {
    LARGE_INTEGER size;
    if (!GetFileSizeEx(file_.handle, &size)) raise_system_error();
    return static_cast<std::uint64_t>(size.QuadPart);
}

void AppendHandle::append(std::string_view bytes) {
    LARGE_INTEGER end;
    end.QuadPart = static_cast<LONGLONG>(size());
    DWORD done = 0;
    if (!SetFilePointerEx(file_.handle, end, nullptr, FILE_BEGIN)) raise_system_error();
    if (WriteFile(file_.handle, bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr))
        return;
    const auto reason = static_cast<int>(GetLastError());
    SetFilePointerEx(file_.handle, end, nullptr, FILE_BEGIN);
    SetEndOfFile(file_.handle);
    throw std::system_error(reason, std::system_category());
}

void AppendHandle::sync() const {
    if (!FlushFileBuffers(file_.handle)) raise_system_error();
}

}  // namespace orvo
