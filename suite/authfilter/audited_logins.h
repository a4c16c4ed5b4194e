#pragma once

// What the filter tells the site's audit, where the site asks for one. All raise what cannot be
// recorded, if the site wants logins to be on disk (Sync).

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/values/text.h"

namespace orvo::authfilter {

// Event "login": the user may use these applications from now on.
void record_login(const Text& user, const std::vector<std::int32_t>& applications);
// Event "refusal": the user, who is logged in, may not use this one.
void record_refusal(const Text& user, std::int32_t application);
// Event "logout". `by`: who has ended another login of his from where he is; empty otherwise.
void record_logout(const Text& user, const Text& by = {});
// The same, once for so many logins of the user that were ended together.
void record_logouts(const Text& user, const Text& by, std::size_t count);

}  // namespace orvo::authfilter
