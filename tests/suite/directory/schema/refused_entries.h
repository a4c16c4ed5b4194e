#pragma once

// Entries and changes that agree with the product's schema or do not, and what a directory says to
// each. One test puts them to a real server, another to our own rules.

#include <string>
#include <vector>

#include "suite/directory/entries/entry_data.h"

namespace orvo::directory {

struct AddCase {
    std::string name;  // relative
    std::vector<Attribute> attributes;
    int code = 0;
    std::string sentence = {};
};

struct ChangeCase {
    std::vector<Replacement> changes;  // of sample_entry
    int code = 0;
    std::string sentence = {};
};

const std::vector<AddCase>& add_cases();
const std::vector<ChangeCase>& change_cases();

// The entry that is changed.
EntryData sample_entry();

// A relative name below ou=Users,o=Shop.
std::string full_case_name(const std::string& name);

}  // namespace orvo::directory
