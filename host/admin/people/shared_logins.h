#pragma once

#include <optional>
#include <string>

namespace orvo::admin {

// Ends all logins of an account where the site's machines share them (section [STORE]), and says
// how many those were; nothing where every host keeps its own. The site is ORVO_SITE_CONFIG's.
// Raises Failure where the store cannot be used.
std::optional<int> try_end_shared_logins(const std::string& account);

}  // namespace orvo::admin
