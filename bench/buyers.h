#pragma once

#include <array>
#include <atomic>
#include <string>

namespace orvo {

// A user of the sample shop who has the profile "Buyers" and type 1; another one at each call, so
// that each of up to 16 threads works for a user of its own.
inline std::string next_buyer() {
    static constexpr std::array buyers = {"jsmith",  "awalker",       "adevries", "ewright",
                                          "lbakker", "bgreen",        "ehughes",  "bijzerman",
                                          "ljansen", "epapadopoulos", "kkrause",  "jmueller",
                                          "aeweiss", "cmacleod",      "jmunoz",   "aunal"};
    static std::atomic<std::size_t> given = 0;
    return buyers[given++ % buyers.size()];
}

}  // namespace orvo
