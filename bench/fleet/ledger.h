#pragma once

// What one browser has wanted and seen. It writes down what happened; what that means is decided
// when everything is over (verdict.h).

#include <cstdint>
#include <string>
#include <vector>

#include "bench/fleet/interruption.h"

namespace orvo::fleet {

// What a user wants of the shop.
enum class Aim { login, account, logins, front_page, change, logout };
inline constexpr const char* names_of_aims[] = {"log in",     "account", "logins",
                                                "front page", "change",  "log out"};
inline const char* name_of(Aim aim) { return names_of_aims[static_cast<std::size_t>(aim)]; }

// Tried again and again until it was had. As long as it took, and failed or was slow, its user was
// without the shop.
struct Wish {
    Aim aim;
    Clock::time_point begin;
    Clock::time_point end;
    int failures = 0;
    bool was_had = false;
};

struct Failed {
    Aim aim;
    Clock::time_point when;
    std::string reason;
};

// What must never happen.
enum class Breach {
    wrong,     // an answer that is not right
    mixed,     // a page of somebody else
    outlived,  // a login that was let in after its end
    let_in,    // somebody let in who had never the right
};

struct Finding {
    Breach breach;
    Clock::time_point when;
    std::string sentence;
};

// A value of the user's own that is older than the last one that was acknowledged.
struct OldValue {
    std::string user;
    std::string value;
    std::string expected;
    Clock::time_point expected_since;  // when that was acknowledged
    // It is of a write that nobody acknowledged, begun at this time; otherwise of one that was.
    bool was_unacknowledged = false;
    Clock::time_point written;
    Clock::time_point read_begin;
    Clock::time_point read_end;
};

struct Ledger {
    std::uint64_t requests = 0;
    std::vector<Wish> wishes;
    std::vector<Failed> failed;
    std::vector<Finding> findings;
    std::vector<OldValue> old_values;
    // A guarded page sent somebody who was logged in to the login page.
    std::vector<Clock::time_point> lost_logins;
    // Questions with the cookies of a login that had ended, and how many had no answer.
    std::uint64_t asked_after_end = 0;
    std::uint64_t unanswered_after_end = 0;
    // Questions of strangers, with wrong passwords, and for what a user has no right to.
    std::uint64_t asked_without_right = 0;
};

}  // namespace orvo::fleet
