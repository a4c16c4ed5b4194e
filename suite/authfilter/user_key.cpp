#include "suite/authfilter/user_key.h"

#include "suite/directory/names/written_name.h"

namespace orvo::authfilter {

Text user_key_of(const Text& account_path, const Text& name) {
    if (!account_path.empty()) {
        const auto parsed =
            directory::DistinguishedName::try_parse(directory::full_name(account_path));
        if (parsed) return from_utf8(parsed->key());
    }
    return lower(trimmed(name));
}

}  // namespace orvo::authfilter
