#include "suite/configuration/loaded_files.h"

#include <algorithm>
#include <atomic>
#include <mutex>

namespace orvo {
namespace {

struct Loaded {
    std::mutex mutex;
    std::vector<LoadedFile> files;
    std::atomic<std::uint64_t> generation = 0;
};

Loaded& loaded() {
    static Loaded all;
    return all;
}

}  // namespace

void note_loaded(const std::filesystem::path& path,
                 const std::shared_ptr<const IniValues>& values) {
    Loaded& all = loaded();
    const std::lock_guard lock(all.mutex);
    const auto known = std::ranges::find(all.files, path, &LoadedFile::path);
    if (known != all.files.end()) {
        if (known->values == values || *known->values == *values) return;
        all.files.erase(known);
    }
    all.files.push_back({path, values});
    ++all.generation;
}

std::vector<LoadedFile> loaded_files() {
    Loaded& all = loaded();
    const std::lock_guard lock(all.mutex);
    return all.files;
}

std::uint64_t loaded_files_generation() { return loaded().generation.load(); }

}  // namespace orvo
