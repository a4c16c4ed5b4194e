#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "suite/directory/entries/entry_data.h"
#include "suite/directory/filters/filter.h"
#include "suite/directory/names/distinguished_name.h"

namespace orvo::directory::embedded {

// What is searched for.
struct Selection {
    DistinguishedName base;  // the empty name: above all entries
    Scope scope = Scope::subtree;
    Filter filter = {};
    std::vector<std::string> attributes = {};  // that come along, with their options; empty: all
    // How many entries will be taken, as far as is known: it decides about the way, not about what
    // is found. 0: all.
    std::size_t wanted = 0;
};

}  // namespace orvo::directory::embedded
