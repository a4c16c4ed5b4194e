#pragma once

// Entries as a directory holds them, and how they are changed. Everything is UTF-8 or octets.

#include <string>
#include <vector>

namespace orvo::directory {

// One attribute of an entry; `name` may carry options ("cn;lang-de").
struct Attribute {
    std::string name;
    std::vector<std::string> values;
};

// One entry; attributes in the order in which the directory gives them.
struct EntryData {
    std::string name;
    std::vector<Attribute> attributes;
};

enum class Scope { base, one_level, subtree };

// One change of an entry: the attribute's values are replaced by these; none removes the attribute,
// also where the entry lacks it. The other kinds remove or add just these values, which a directory
// refuses where they are not there or there already. The numbers are the protocol's.
enum class Change { add = 0, remove = 1, replace = 2 };
struct Replacement {
    std::string attribute;
    std::vector<std::string> values;
    Change kind = Change::replace;
};

}  // namespace orvo::directory
