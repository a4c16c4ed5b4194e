#pragma once

// A module's manifest: a text file in UTF-8, one statement a line.
//
//     # Classes of OrvoMembership
//     module = OrvoMembership.so
//     class = {33CC820F-121F-4221-B48E-57EBB11C6955} OrvoMembership.User
//
// Blank lines and lines that begin with "#" say nothing. The module's path is relative to the
// manifest's folder. Anything else makes the whole manifest unusable; it is then kept with the
// reason, so that nobody wonders where a component has gone.
//
// Any thread. Nothing is raised but for want of memory: what is wrong with a file is its fault.

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/system/automation.h"

namespace orvo::runtime {

struct ManifestClass {
    abi::CLSID clsid;
    std::u16string progid;
};

struct Manifest {
    std::filesystem::path module;  // absolute
    std::vector<ManifestClass> classes;
    // Why it cannot be used, with file and line; empty when it can. The classes are those that
    // could be read all the same.
    std::string fault;
};

// None when there is no such file.
std::optional<Manifest> read_manifest(const std::filesystem::path& file);

// The manifest of a module's classes as text.
std::string manifest_text(const std::string& title, const std::filesystem::path& module,
                          std::span<const ManifestClass> classes);

// Whether a manifest can hold the ProgID: not empty, no blanks, no control characters.
bool is_progid(std::u16string_view progid);

// "OrvoMembership.manifest"
inline constexpr const char* manifest_ending = ".manifest";

}  // namespace orvo::runtime
