#pragma once

#include <string>
#include <vector>

namespace orvo::admin {

// Which users; what is empty restricts nothing.
struct UserFilter {
    std::string role;  // a number or a name: their own or, where they have none, the profile's
    std::string application;  // likewise
    std::string profile;
    std::string type;  // a number or a name
    std::string name;  // common, first or last name or mail address; "*" stands for anything
    std::vector<std::string> items = {};  // of the directory's own: "SpendLimit>=1000"
    std::string after = {};               // who come behind this name
};

}  // namespace orvo::admin
