#pragma once

// What an administrator may ask of the process, and have it do.

#include <filesystem>
#include <string>
#include <string_view>

namespace orvo::web {

// The answer to one request:
//
//   servers       the directory servers, a row each (DirectoryServers::States)
//   connections   the connections to them (DirectoryServers::Connections)
//   clear cache   forgets what is kept of entries; a row with how many those were
//   logout USER   ends all logins of this account; a row with how many those were
//   throttle USER[, a tab and ADDRESS]
//                 what is counted of a user's wrong passwords (Throttle::State)
//   clear throttle USER
//                 forgets them; a row with 1, or with 0 where there were none
//   clear throttled address ADDRESS
//                 the same of those that have come from an address
//
// A user is a full distinguished name.
// A table begins with the line "ok" and one with the columns' names; texts have tabs between them,
// and none in them. Whatever fails is the line "failed", a blank and a sentence. Does not raise.
std::string answer_about_process(std::string_view request) noexcept;

// Where the socket is without a setting: in the folder that systemd gives the service
// (RuntimeDirectory=); empty without one.
std::filesystem::path usual_administration_socket();

}  // namespace orvo::web
