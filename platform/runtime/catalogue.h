#pragma once

// What all manifests of a search path say, as of one moment.

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/abi/system.h"
#include "platform/runtime/guid_form.h"
#include "platform/runtime/progid.h"

namespace orvo::runtime {

class Module;

// A class as a catalogue lists it. A class of a manifest that cannot be used has no module, but the
// manifest's fault.
struct CatalogueEntry {
    abi::CLSID clsid;
    Module* module;
    std::string fault;
};

// Immutable once read, so any number of threads may look into it.
class Catalogue {
public:
    Catalogue() = default;

    // Reads every manifest of the folders. In each folder they are read in the order of their
    // names; of a ProgID or class that is listed twice the first counts.
    explicit Catalogue(std::vector<std::filesystem::path> folders);

    // Null when there is none. The entry lives as long as the catalogue.
    const CatalogueEntry* find(std::u16string_view progid) const;
    const CatalogueEntry* find(const abi::CLSID& clsid) const;

    // Faults of manifests and folders, one after the other; empty when there are none.
    const std::string& faults() const { return faults_; }

    // Whether reading the folders now would give the same. True only if nothing can have changed:
    // a file that changed at the moment it was read has the same time stamp before and after.
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
    std::unordered_map<std::u16string, CatalogueEntry, ProgidHash, ProgidEqual> by_progid_;
    std::unordered_map<abi::CLSID, const CatalogueEntry*, GuidHash> by_clsid_;
};

}  // namespace orvo::runtime
