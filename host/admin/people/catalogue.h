#pragma once

// What the component's users have: their attributes, and roles, applications and types as an
// administrator names them.

#include <string>
#include <string_view>
#include <vector>

namespace orvo::admin {

// Each raises Misuse for what is none.
//   role         a number from 1 to 32767, or a name: "BuyerRole", "Buyer", "CanPublish"
//   application  a number from 1 to 32767
//   type         0 to 4, or a name: "RegisteredUser", "IsAdmin", "Admin"
// Letters count in either case.
int role_number(const std::string& written);
int application_number(const std::string& written);
int user_type_number(const std::string& written);

// "24 (ReceiverRole)"; of a role without a name its number.
std::string shown_role(const std::string& number);

std::vector<std::string> role_names();

// The attributes that users of the component have, in the order of their properties.
std::vector<std::string> user_attributes();
// Those of profiles.
std::vector<std::string> profile_attributes();

// Whether an attribute is a list, however many values an entry has.
bool is_list(std::string_view attribute);

}  // namespace orvo::admin
