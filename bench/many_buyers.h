#pragma once

#include <algorithm>
#include <cctype>
#include <fstream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/slapd.h"
#include "tests/support/temp_folder.h"

namespace orvo {

// A shop whose server has a password policy, and a thousand of its users: of type 1, each with the
// name of its profile, which there is.
struct ManyBuyers {
    PrivateSlapd& shop;
    const std::vector<std::pair<std::string, std::string>>& users;
};

inline ManyBuyers many_buyers() {
    static std::vector<std::pair<std::string, std::string>> users;
    static PrivateSlapd shop = [] {
        const TempFolder folder;
        const auto file = folder.write(
            "shop.ldif",
            output_of({ORVO_SOURCE_DIR "/examples/directory/make-shop", "--users", "2000"}));
        std::ifstream lines(file);
        std::set<std::string> profiles;
        std::string name, type;
        for (std::string line; std::getline(lines, line);) {
            if (line.empty()) name = type = "";
            if (line.starts_with("dn: cn=") && line.ends_with(",ou=Profiles,o=Shop"))
                profiles.insert(line.substr(7, line.find(',') - 7));
            if (line.starts_with("dn: cn=") && line.ends_with(",ou=Users,o=Shop"))
                name = line.substr(7, line.find(',') - 7);
            if (line.starts_with("OrvoUserType: ")) type = line.substr(14);
            if (line.starts_with("ProfileCN: ") && type == "1" && !name.empty())
                users.emplace_back(name, line.substr(11));
        }
        // The raw client escapes nothing.
        std::erase_if(users, [&](const auto& user) {
            return !profiles.contains(user.second) ||
                   !std::ranges::all_of(user.first,
                                        [](unsigned char c) { return std::isalnum(c); });
        });
        users.resize(1000);
        return PrivateSlapd({.password_policy = true, .shop = file});
    }();
    return {shop, users};
}

}  // namespace orvo
