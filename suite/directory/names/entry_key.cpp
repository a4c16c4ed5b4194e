#include "suite/directory/names/entry_key.h"

#include "suite/directory/names/distinguished_name.h"

namespace orvo::directory {

EntryKey::EntryKey(std::string_view name) : exact(name) {
    const auto parsed = DistinguishedName::try_parse(from_utf8(name));
    if (!parsed) return;
    exact = parsed->key();
    loose = parsed->loose_key();
}

}  // namespace orvo::directory
