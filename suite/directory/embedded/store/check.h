#pragma once

#include <string>
#include <vector>

namespace orvo::directory::embedded {

struct Connection;

// What is wrong with a store's file, a sentence each: what SQLite finds, then names against keys,
// parents, and what the indexes hold against the entries. In a transaction of the connection's.
std::vector<std::string> problems_of(Connection& connection);

}  // namespace orvo::directory::embedded
