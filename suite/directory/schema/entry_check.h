#pragma once

// Whether entries agree with a schema. Numbers and sentences are those of OpenLDAP's server, and so
// is the order in which things are looked at.

#include "suite/directory/entries/entry_data.h"
#include "suite/directory/schema/refusal.h"
#include "suite/directory/schema/schema.h"

namespace orvo::directory {

// What somebody asks to add. Name, attributes and classes get the schema's spelling, and the
// attributes the values of the name that they lack. Refused, the entry is as it may be.
Refusal check_new_entry(const Schema& schema, EntryData& entry);

// The same for an entry that comes from another directory or a backup: it may have attributes that
// only a directory writes.
Refusal check_loaded_entry(const Schema& schema, EntryData& entry);

// Whether an entry agrees with the schema as a whole: its classes, its name, and that it has what
// they require and nothing that they do not allow. Single values are not looked at. `former`: its
// structural class until now, which must not change.
Refusal check_entry(const Schema& schema, const EntryData& entry,
                    const ObjectClass* former = nullptr);

// The most specific of the entry's structural classes; nothing where it has none, or several that
// do not stand on one another.
const ObjectClass* structural_class(const Schema& schema, const EntryData& entry);

}  // namespace orvo::directory
