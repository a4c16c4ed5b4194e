#pragma once

// Lists of numbers that users and profiles have, roles and applications, for sources that use the
// component's client.

#include "host/admin/common/exit_codes.h"
#include "host/admin/people/entry_values.h"
#include "host/admin/people/user_admin.h"

namespace orvo::admin {

// What such a list is, and how its numbers are written and shown.
struct Granted {
    const char* attribute;
    const char* what;  // "roles"
    int (*number)(const std::string& written);
    std::string (*shown)(const std::string& number);
};
extern const Granted granted_roles, granted_applications;

// The list with what is added, removed or set. A 0 is what a directory keeps where there is none.
std::vector<std::string> changed_grants(const Granted& granted, const GrantRequest& request,
                                        std::vector<std::string> numbers);

// What is the list then, in a sentence; where only that was asked for, in lines.
void tell_grants(const Granted& granted, const GrantRequest& request,
                 const std::vector<std::string>& numbers);

// Writes what the request changes, in one write, or shows the list. `entry` is a bound User or
// Profile.
template <class Entry>
int grant(const Granted& granted, const GrantRequest& request, const Entry& entry) {
    const std::vector<std::string> before = texts_of(entry.GetAttribValue(granted.attribute));
    const std::vector<std::string> after = changed_grants(granted, request, before);
    if (!request.is_asked() && after != before) {
        if (after.empty())
            entry.ClearAttribValue(granted.attribute);
        else
            entry.SetAttribValue(granted.attribute, Value(after));
    }
    tell_grants(granted, request, after);
    return done;
}

}  // namespace orvo::admin
