#pragma once

// What all manifests of a search path say, as of one moment. The index owns what it says of
// classes; their modules live as long as the process. Raises nothing but for want of memory: faults
// are kept.

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/system/automation.h"
#include "platform/values/guid.h"
#include "platform/values/progid.h"

namespace orvo::runtime {

class ModuleFile;

// A class as the index lists it. A class of a manifest that cannot be used has no module, but the
// manifest's fault.
struct IndexedClass {
    abi::CLSID clsid;
    ModuleFile* module;
    std::string fault;
};

// Immutable once read, so any number of threads may look into it.
class ManifestIndex {
public:
    ManifestIndex() = default;

    // Reads every manifest of the folders. In each folder they are read in the order of their
    // names; of a ProgID or class that is listed twice the first counts.
    explicit ManifestIndex(std::vector<std::filesystem::path> folders);

    // Null when there is none. The entry lives as long as the index.
    const IndexedClass* find(std::u16string_view progid) const;
    const IndexedClass* find(const abi::CLSID& clsid) const;

    const std::vector<std::filesystem::path>& folders() const { return folders_; }

    // Faults of manifests and folders, one after the other; empty when there are none.
    const std::string& faults() const { return faults_; }

    // Whether reading the folders now would certainly give the same. Not so for a moment after a
    // file was written: one that is written twice within a tick of the clock keeps its time stamp.
    bool is_current(const std::vector<std::filesystem::path>& folders) const;

private:
    struct Stamp {
        std::filesystem::path path;
        bool exists;
        struct stat status;
    };

    void read_folder(const std::filesystem::path& folder);
    void add_manifest(const std::filesystem::path& file);
    void add_fault(const std::string& fault);
    void add_stamp(const std::filesystem::path& path);

    std::vector<std::filesystem::path> folders_;
    std::vector<Stamp> stamps_;
    bool is_settled_ = false;
    std::string faults_;
    std::unordered_map<std::u16string, IndexedClass, ProgidHash, ProgidEqual> by_progid_;
    std::unordered_map<abi::CLSID, const IndexedClass*, GuidHash> by_clsid_;
};

}  // namespace orvo::runtime
