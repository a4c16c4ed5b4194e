#pragma once

// What a directory itself writes into entries.

#include <span>
#include <string>

#include "suite/directory/entries/entry_data.h"
#include "suite/directory/policy/account_times.h"

namespace orvo::directory::embedded {

// Changes that nobody has to check: attributes go by the names that the schema prefers, whole
// values are added, removed and replaced as they are, and what is not there need not be removed.
void carry_out(std::span<const Replacement> changes, EntryData& entry);

// What a directory notes of an entry that is made or changed: by whom (empty: nobody), and when.
void stamp_new(EntryData& entry, const std::string& who, Moment now);
void stamp_changed(EntryData& entry, const std::string& who, Moment now);

}  // namespace orvo::directory::embedded
