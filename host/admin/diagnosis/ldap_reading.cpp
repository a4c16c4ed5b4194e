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

// What of an entry is hidden; `cannot` is what was found so far.
void add_hidden(LdapServer& server, const char* words, const EntryData& entry,
                std::vector<std::string> attributes, std::string& cannot) {
    if (server.facts)
        std::erase_if(attributes,
                      [&](const std::string& name) { return !server.facts->types.find(name); });
    const std::vector<std::string> missing = hidden(server, entry, attributes);
    if (!missing.empty())
        cannot += (cannot.empty() ? "" : "; ") + std::string(words) + ": " + listed(missing);
}

// Of a directory with a map, by its own names.
Finding examine_mapped_reading(LdapServer& server, const std::string& advice) {
    const DirectoryMap& map = server.mapped->map();
    std::string cannot, can;
    for (const ReadEntries& row : entries_read(server.site)) {
        const auto some =
            server.view()->search(row.container, "(objectClass=" + row.object_class + ")", 1);
        const auto entry =
            some.empty() ? std::nullopt : read_whole(*server.session, some.front().name);
        if (!entry) continue;
        can += (can.empty() ? "" : ", ") + std::string(row.words);
        add_hidden(server, row.words, *entry, server.mapped->translation().asked(row.attributes),
                   cannot);
    }
    for (const std::string& group : groups_of(map))
        if (const auto entry = read_whole(*server.session, group))
            add_hidden(server, group.c_str(), *entry, {map.groups.member_attribute()}, cannot);
    if (!cannot.empty()) return finding_of_reading(server.site, cannot, advice);
    return found("the service account can read " + can +
                 (groups_of(map).empty() ? "" : " and the groups of DIRECTORY.MAP"));
}

}  // namespace

Finding examine_reading(LdapServer& server) {
    constexpr const char* advice = "Give it the right to read and search all attributes of ";
    if (server.mapped) return examine_mapped_reading(server, advice);
    const auto view = server.view();
    std::string cannot;
    for (const ReadEntries& row : entries_read(server.site)) {
        const auto some = view->search(row.container, "(objectClass=" + row.object_class + ")", 1);
        if (!some.empty()) add_hidden(server, row.words, some.front(), row.attributes, cannot);
    }
    return finding_of_reading(server.site, cannot, advice);
}

}  // namespace orvo::admin
