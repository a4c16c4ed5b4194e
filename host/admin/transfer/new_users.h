#pragma once

// For sources that use the component's client.

#include <string>
#include <vector>

#include "host/admin/common/site.h"
#include "suite/directory/entries/entry_data.h"

namespace orvo::admin {

// Makes users as Members.CreateUser does, but with all that they have in one write of the
// directory: somebody who is refused is not there, nor half there.
class NewUsers {
public:
    // Raises orvo::Error where the users' container cannot be bound.
    explicit NewUsers(const Site& site);

    // An empty password: one that nobody knows. Raises orvo::Error, also where there is a user of
    // this name (is_existing_entry).
    void make(const std::string& name, const std::string& password,
              const std::vector<directory::Attribute>& attributes) const;

private:
    const std::string naming_attribute_;
    const Value classes_;
    const std::vector<std::string> mandatory_;
    Object container_;
};

}  // namespace orvo::admin
