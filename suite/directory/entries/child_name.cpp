#include "suite/directory/entries/child_name.h"

#include "suite/directory/names/written_name.h"
#include "suite/directory/policy/failures.h"

namespace orvo::directory {

std::string child_name(TextView written, const std::string& container) {
    require_well_formed(written);
    const auto above = DistinguishedName::try_parse(from_utf8(container));
    const std::optional<Text> name = above ? name_below(written, *above) : std::nullopt;
    if (!name)
        raise_code(result_code::invalid_name,
                   quoted_name(to_utf8(written)) + " is not below " + quoted_name(container) + ".");
    return to_utf8(*name);
}

}  // namespace orvo::directory
