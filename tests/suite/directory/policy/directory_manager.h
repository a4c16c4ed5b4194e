#pragma once

#include <string>
#include <vector>

#include "suite/directory/entries/entry_data.h"
#include "tests/support/slapd.h"

struct ldap;

namespace orvo::directory {

// Whoever manages a private server's directory: its root, who also changes operational attributes
// (the control for relaxed rules). Raises std::runtime_error where the server refuses.
class DirectoryManager {
public:
    explicit DirectoryManager(const PrivateSlapd& slapd);
    ~DirectoryManager();
    DirectoryManager(const DirectoryManager&) = delete;
    DirectoryManager& operator=(const DirectoryManager&) = delete;

    void add(const std::string& name, const std::vector<Attribute>& attributes);
    void replace(const std::string& name, const Attribute& attribute);
    // As any administrator removes one, without the control.
    void remove(const std::string& name, const std::string& attribute);
    // All attributes, also operational ones.
    EntryData read(const std::string& name);

private:
    ::ldap* connection_ = nullptr;
};

}  // namespace orvo::directory
