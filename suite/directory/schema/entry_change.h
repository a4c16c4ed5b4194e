#pragma once

#include <span>

#include "suite/directory/entries/entry_data.h"
#include "suite/directory/schema/refusal.h"
#include "suite/directory/schema/schema.h"

namespace orvo::directory {

// Changes the entry, one change after another, and checks what comes of it (check_entry). Numbers
// and sentences are those of OpenLDAP's server. Refused, the entry is as it may be.
Refusal apply_changes(const Schema& schema, EntryData& entry, std::span<const Replacement> changes);

}  // namespace orvo::directory
