#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace orvo::directory {

// What a password check came to.
struct CheckAnswer {
    std::int32_t number;        // password_check.h
    bool is_throttled = false;  // there were too many attempts, and the directory was not asked
};

// A check of a password, from `check`, which answers its number or raises; it is not called where
// the site's throttle does not admit the attempt: the number is too_many_failures then. What
// `check` answers is counted once; what it raises is not. Without a throttle it is called, and that
// is all. `user`: the full name as the directory is given it.
CheckAnswer throttled_check(std::string_view user, const std::function<std::int32_t()>& check);

// The same where a user may have several names: `find` answers that of the entry which `user` is a
// name of, or nothing where it is nobody's, and `check` gets it. Attempts count for the name and
// for the entry. Of an entry for which there were too many by others of its names the answer is
// that of a wrong password, as it is for a name that is nobody's.
CheckAnswer throttled_check(std::string_view user,
                            const std::function<std::optional<std::string>()>& find,
                            const std::function<std::int32_t(const std::string& entry)>& check);

}  // namespace orvo::directory
