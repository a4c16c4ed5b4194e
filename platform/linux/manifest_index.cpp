#include "platform/linux/manifest_index.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <system_error>

#include "platform/linux/manifest.h"
#include "platform/linux/module_file.h"

namespace orvo::runtime {

namespace {

using std::filesystem::path;

// Time stamps are no finer than the system's clock tick; this is more than any tick.
constexpr std::int64_t settling_time = 100'000'000;  // nanoseconds

std::int64_t nanoseconds(const timespec& time) {
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

bool same(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           nanoseconds(a.st_mtim) == nanoseconds(b.st_mtim) &&
           nanoseconds(a.st_ctim) == nanoseconds(b.st_ctim);
}

}  // namespace

ManifestIndex::ManifestIndex(std::vector<path> folders) : folders_(std::move(folders)) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    is_settled_ = true;
    for (const path& folder : folders_) read_folder(folder);
    for (const Stamp& stamp : stamps_)
        if (stamp.exists && nanoseconds(now) - nanoseconds(stamp.status.st_ctim) < settling_time)
            is_settled_ = false;
}

void ManifestIndex::read_folder(const path& folder) {
    add_stamp(folder);
    if (!stamps_.back().exists) return;
    std::error_code error;
    std::filesystem::directory_iterator entries(folder, error);
    std::vector<path> files;
    for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error))
        if (entries->path().extension() == manifest_ending) files.push_back(entries->path());
    if (error) add_fault(folder.string() + ": it cannot be read: " + error.message());
    std::sort(files.begin(), files.end());
    for (const path& file : files) add_manifest(file);
}

void ManifestIndex::add_manifest(const path& file) {
    add_stamp(file);
    std::optional<Manifest> manifest = read_manifest(file);
    if (!manifest) return;
    bool is_usable = manifest->fault.empty();
    if (!is_usable) add_fault(manifest->fault);
    ModuleFile* module = is_usable ? &module_at(manifest->module) : nullptr;
    for (ManifestClass& entry : manifest->classes) {
        auto [place, is_new] = by_progid_.try_emplace(
            std::move(entry.progid), IndexedClass{entry.clsid, module, manifest->fault});
        if (is_new) by_clsid_.try_emplace(entry.clsid, &place->second);
    }
}

void ManifestIndex::add_fault(const std::string& fault) {
    if (!faults_.empty()) faults_ += "; ";
    faults_ += fault;
}

void ManifestIndex::add_stamp(const path& path) {
    Stamp stamp{path, false, {}};
    if (stat(path.c_str(), &stamp.status) == 0)
        stamp.exists = true;
    else if (errno != ENOENT && errno != ENOTDIR)
        add_fault(path.string() + ": " + std::generic_category().message(errno));
    stamps_.push_back(std::move(stamp));
}

const IndexedClass* ManifestIndex::find(std::u16string_view progid) const {
    auto found = by_progid_.find(progid);
    return found == by_progid_.end() ? nullptr : &found->second;
}

const IndexedClass* ManifestIndex::find(const abi::CLSID& clsid) const {
    auto found = by_clsid_.find(clsid);
    return found == by_clsid_.end() ? nullptr : found->second;
}

bool ManifestIndex::is_current(const std::vector<path>& folders) const {
    if (!is_settled_ || folders != folders_) return false;
    return std::all_of(stamps_.begin(), stamps_.end(), [](const Stamp& stamp) {
        struct stat status;
        bool exists = stat(stamp.path.c_str(), &status) == 0;
        return exists == stamp.exists && (!exists || same(status, stamp.status));
    });
}

}  // namespace orvo::runtime
