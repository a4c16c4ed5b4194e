#pragma once

// Changes of one entry's attributes, all of them or none. For sources that use the component's
// client.

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "host/admin/common/exit_codes.h"
#include "host/admin/common/output.h"
#include "host/admin/common/site.h"
#include "host/admin/people/entry_values.h"
#include "host/admin/people/user_admin.h"

namespace orvo::admin {

struct AttributeChange {
    std::string attribute;
    std::vector<std::string> values;  // those that it has then; none removes it
};

// "mail=a@shop.example", "mail=b@shop.example", "c=": the values of one name together, and without
// a value none. Raises Misuse for anything else, for a password, and for one that is given both
// with and without a value.
std::vector<AttributeChange> parse_assignments(const std::vector<std::string>& assignments);

// `entry` is a bound User or Profile. Where the directory refuses one change, those before it are
// taken back, and the refusal is raised; where that fails, too, it says so.
template <class Entry>
void change_attributes(const Entry& entry, const std::vector<AttributeChange>& changes);

// Finishes an entry that was just made. Where that is refused it is removed again, and the refusal
// is raised; where that fails, too, it says so.
void finish_new(const std::function<void()>& finish, const std::function<void()>& remove);

namespace detail {

struct EntryAccess {
    std::function<Value(const std::string&)> read;
    std::function<void(const std::string&, const Value&)> write;
    std::function<void(const std::string&)> clear;
};
void change_all(const EntryAccess& entry, const std::vector<AttributeChange>& changes);

}  // namespace detail

template <class Entry>
void change_attributes(const Entry& entry, const std::vector<AttributeChange>& changes) {
    detail::change_all(
        {[&](const std::string& name) { return entry.GetAttribValue(name); },
         [&](const std::string& name, const Value& value) { entry.SetAttribValue(name, value); },
         [&](const std::string& name) { entry.ClearAttribValue(name); }},
        changes);
}

// `orvo users set` and `orvo profiles set`: `entry` binds the user or profile.
template <class Entry>
int set_attributes(const AssignmentsRequest& request,
                   Entry (Site::*entry)(const std::string& name) const) {
    const std::vector<AttributeChange> changes = parse_assignments(request.assignments);
    change_attributes((Site(request.common.site).*entry)(request.name), changes);
    say(request.common, request.name, "changed");
    return done;
}

}  // namespace orvo::admin
