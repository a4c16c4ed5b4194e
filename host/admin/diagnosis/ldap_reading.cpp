#include <algorithm>

#include "host/admin/diagnosis/content_steps.h"
#include "host/admin/diagnosis/ldap_server.h"
#include "suite/directory/policy/failures.h"

// What the service account may not read of an entry, which a server shows as if it were not there.
// But it may not be searched by either: a filter that is true of every entry then finds none.

namespace orvo::admin {
namespace {

using namespace directory;
using namespace directory::ldap;

bool is_true_of(LdapServer& server, const std::string& name, const std::string& filter) {
    SearchRequest request;
    request.base = name;
    request.filter = filter;
    request.attributes = {"1.1"};
    bool is_found = false;
    const Result result = server.session->search(request, [&](EntryData&&) { is_found = true; });
    if (result.code != result_code::no_such_object) check(result);
    return is_found;
}

std::string present(const std::string& attribute) { return "(" + attribute + "=*)"; }
std::string present_or_not(const std::string& attribute) {
    return "(|" + present(attribute) + "(!" + present(attribute) + "))";
}

template <class Item>
std::string joined(char operation, const std::vector<std::string>& attributes, Item item) {
    std::string filter = std::string("(") + operation;
    for (const std::string& attribute : attributes) filter += item(attribute);
    return filter + ")";
}

std::vector<std::string> hidden(LdapServer& server, const EntryData& entry,
                                std::vector<std::string> attributes) {
    std::vector<std::string> hidden;
    std::erase_if(attributes,
                  [&](const std::string& name) { return !values_of(entry, name).empty(); });
    if (attributes.empty()) return hidden;
    if (!is_true_of(server, entry.name, joined('&', attributes, present_or_not)))
        for (const std::string& attribute : attributes)
            if (!is_true_of(server, entry.name, present_or_not(attribute)))
                hidden.push_back(attribute);
    // Those that may be searched by, are there, and did not come along.
    if (is_true_of(server, entry.name, joined('|', attributes, present)))
        for (const std::string& attribute : attributes)
            if (is_true_of(server, entry.name, present(attribute))) hidden.push_back(attribute);
    return hidden;
}

}  // namespace

Finding examine_reading(LdapServer& server) {
    LdapView view = server.view();
    std::string cannot;
    for (const ReadEntries& row : entries_read(server.site)) {
        const auto some = view.search(row.container, "(objectClass=" + row.object_class + ")", 1);
        if (some.empty()) continue;
        std::vector<std::string> attributes = row.attributes;
        if (server.facts)
            std::erase_if(attributes,
                          [&](const std::string& name) { return !server.facts->types.find(name); });
        const std::vector<std::string> missing = hidden(server, some.front(), attributes);
        if (!missing.empty())
            cannot +=
                (cannot.empty() ? "" : "; ") + std::string(row.words) + ": " + listed(missing);
    }
    return finding_of_reading(server.site, cannot,
                              "Give it the right to read and search all attributes of ");
}

}  // namespace orvo::admin
