#pragma once

// Users as rows. For sources that use the component's client.

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "host/admin/common/row_writer.h"
#include "host/admin/common/site.h"
#include "host/admin/people/user_filter.h"

namespace orvo::admin {

// Calls `visit` for each, in the order of names, with the values of these attributes, until it
// answers false. Users are read in pages: memory is that of one page, however many there are.
void visit_users(const Site& site, const UserFilter& filter,
                 const std::vector<std::string>& attributes,
                 const std::function<bool(const OutputRow& row)>& visit);

// The names of all profiles, of which the component lists 1000.
std::vector<std::string> profile_names(const Site& site);

}  // namespace orvo::admin
