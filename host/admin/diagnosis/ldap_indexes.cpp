#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>
#include <optional>
#include <set>

#include "host/admin/diagnosis/content_steps.h"
#include "host/admin/diagnosis/ldap_server.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/names/distinguished_name.h"
#include "suite/directory/policy/failures.h"

namespace orvo::admin {
namespace {

using namespace directory;
using namespace directory::ldap;

// What the component searches users for, with a value that nobody has.
struct Searched {
    std::string attribute;
    const char* value;
};

std::vector<Searched> searched(const LdapServer& server) {
    const std::vector<Searched> ours{{server.site.naming_attribute, "orvo-doctor"},
                                     {"OrvoGUID", "0"},
                                     {"OrvoRole", "2147483646"},
                                     {"OrvoApps", "2147483646"},
                                     {"OrvoUserType", "2147483646"},
                                     {"ProfileCN", "orvo-doctor"},
                                     {"LocalAdminProfileCN", "orvo-doctor"}};
    if (!server.mapped) return ours;
    // What it has a place for there. Groups are searched by their members, in a container of their
    // own.
    const DirectoryMap& map = server.mapped->map();
    std::vector<Searched> theirs;
    const auto add = [&](const std::string& name, const char* value) {
        const bool is_known = std::ranges::any_of(theirs, [&](const Searched& one) {
            return ascii::equal_ignoring_case(one.attribute, name);
        });
        if (!is_known && server.facts->types.find(name)) theirs.push_back({name, value});
    };
    if (map.login)
        for (const std::string& name : map.login->attributes) add(name, "orvo-doctor");
    for (const Searched& row : ours) {
        const MappedAttribute* mapped = map.find(row.attribute);
        if (!mapped) add(row.attribute, row.value);
        if (mapped && !mapped->theirs.empty()) add(mapped->theirs.front(), row.value);
    }
    if (theirs.empty()) theirs.push_back(ours.front());
    return theirs;
}

using Names = std::set<std::string>;  // in lower case

void add_names(const LdapServer& server, std::string_view attribute, Names& names) {
    names.insert(ascii::lower(attribute));
    const AttributeType* type = server.facts ? server.facts->types.find(attribute) : nullptr;
    if (!type) return;
    for (const std::string& name : type->names) names.insert(ascii::lower(name));
}

// "cn,sn,mail eq,sub"; kinds that are not said are those of the word "default".
void read_openldap(const LdapServer& server, const std::string& value, bool& by_default,
                   Names& names) {
    const std::size_t blank = value.find(' ');
    const std::string kinds = blank == std::string::npos ? "" : "," + value.substr(blank + 1) + ",";
    const bool has_equality = kinds.empty() ? by_default : kinds.find(",eq,") != std::string::npos;
    std::string_view left = std::string_view(value).substr(0, blank);
    while (!left.empty()) {
        const std::size_t end = std::min(left.find(','), left.size());
        const std::string_view name = left.substr(0, end);
        if (name == "default")
            by_default = has_equality;
        else if (has_equality)
            add_names(server, name, names);
        left.remove_prefix(std::min(end + 1, left.size()));
    }
}

bool holds(const EntryData& database, const char* suffixes, const std::string& root) {
    const auto name = DistinguishedName::try_parse(from_utf8(root));
    return std::ranges::any_of(values_of(database, suffixes), [&](const std::string& suffix) {
        const auto top = DistinguishedName::try_parse(from_utf8(suffix));
        return name && top && (*name == *top || name->is_below(*top));
    });
}

std::optional<Names> configured_openldap(LdapServer& server) {
    std::optional<Names> names;
    SearchRequest request;
    request.base = "cn=config";
    request.scope = Scope::one_level;
    request.filter = "(objectClass=olcDatabaseConfig)";
    request.attributes = {"olcSuffix", "olcDbIndex"};
    const Result result = server.session->search(request, [&](EntryData&& database) {
        if (!holds(database, "olcSuffix", server.site.root)) return;
        names.emplace();
        bool by_default = false;
        for (const std::string& value : values_of(database, "olcDbIndex"))
            read_openldap(server, value, by_default, *names);
    });
    return result.ok() ? names : std::nullopt;
}

// Those of the database that holds the root: other databases have their own, and those that a new
// one would get are listed there, too.
std::optional<Names> configured_389(LdapServer& server) {
    SearchRequest request;
    request.base = "cn=ldbm database,cn=plugins,cn=config";
    request.scope = Scope::one_level;
    request.filter = "(objectClass=nsBackendInstance)";
    request.attributes = {"nsslapd-suffix"};
    std::string database;
    const Result found = server.session->search(request, [&](EntryData&& instance) {
        if (holds(instance, "nsslapd-suffix", server.site.root)) database = instance.name;
    });
    if (!found.ok() || database.empty()) return std::nullopt;
    request.base = "cn=index," + database;
    request.filter = "(&(objectClass=nsIndex)(nsIndexType=eq))";
    request.attributes = {"cn"};
    Names names;
    const Result result = server.session->search(
        request, [&](EntryData&& index) { add_names(server, value_of(index, "cn"), names); });
    return result.ok() ? std::optional(names) : std::nullopt;
}

// The lowest bit of an attribute's searchFlags says that it is indexed.
std::optional<Names> configured_active_directory(LdapServer& server) {
    std::optional<Names> names;
    SearchRequest request;
    request.base = value_of(server.root, "schemaNamingContext");
    request.scope = Scope::one_level;
    request.filter = "(searchFlags:1.2.840.113556.1.4.803:=1)";
    request.attributes = {"lDAPDisplayName"};
    request.page_size = 1000;
    SearchResult result;
    do {
        result = server.session->search(request, [&](EntryData&& type) {
            if (!names) names.emplace();
            add_names(server, value_of(type, "lDAPDisplayName"), *names);
        });
        request.page = result.next_page;
    } while (result.ok() && !result.next_page.empty());
    return result.ok() ? names : std::nullopt;
}

std::optional<Names> configured(LdapServer& server) {
    switch (server.make) {
        case Make::openldap:
            return configured_openldap(server);
        case Make::directory_389:
            return configured_389(server);
        case Make::active_directory:
            return configured_active_directory(server);
        case Make::other:
            break;
    }
    return std::nullopt;
}

using Time = std::chrono::duration<double, std::milli>;

// The shortest of several, as others keep the machines busy, too: one that is as quick as `enough`
// settles it. A search that the server breaks off because it would have to look at too many entries
// has no end.
Time time_of(LdapServer& server, const std::string& filter, Time enough = Time(0)) {
    constexpr int least_tries = 3, most_tries = 20;
    constexpr Time long_enough(2000);
    SearchRequest request;
    request.base = below_root(server.site, server.site.users);
    request.scope = Scope::subtree;
    request.filter = filter;
    request.attributes = {"1.1"};
    Time shortest = Time::max(), all(0);
    for (int tried = 0; tried < least_tries || (tried < most_tries && all < long_enough); ++tried) {
        const auto begin = std::chrono::steady_clock::now();
        const Result result = server.session->search(request, [](EntryData&&) {});
        if (result.code == result_code::admin_limit_exceeded) return Time::max();
        check(result);
        const Time time = std::chrono::steady_clock::now() - begin;
        all += time;
        shortest = std::min(shortest, time);
        if (shortest <= enough) break;
    }
    return shortest;
}

Finding told(const LdapServer& server, const std::vector<std::string>& missing,
             const std::string& seen) {
    if (missing.empty()) return found("for all that is searched for, " + seen);
    std::string which;
    for (const std::string& name : missing) which += (which.empty() ? "" : ", ") + name;
    std::string advice = "Index for equality: " + which + ".";
    if (server.make == Make::openldap)
        advice = "Add an index 'eq' for " + which +
                 " to the database (olcDbIndex, or 'index' in slapd.conf and slapindex).";
    return failed("There is none for " + which + ", " + seen + ".", advice);
}

// Of fewer, all are looked at in a time that says nothing: machines are busy with other things.
bool has_many_users(LdapServer& server, const std::string& naming_attribute) {
    constexpr std::size_t many = 1000;
    SearchRequest request;
    request.base = below_root(server.site, server.site.users);
    request.scope = Scope::subtree;
    request.filter = "(" + naming_attribute + "=*)";
    request.attributes = {"1.1"};
    request.page_size = 500;
    std::size_t count = 0;
    SearchResult result;
    do {
        result = server.session->search(request, [&](EntryData&&) { ++count; });
        request.page = result.next_page;
    } while (result.ok() && count < many && !result.next_page.empty());
    return count >= many;
}

// A search that has to look at every user is as slow as one for those that lack what all have.
Finding measured(LdapServer& server) {
    constexpr double least_ratio = 6;
    const std::string naming = searched(server).front().attribute;
    const Finding too_few = unknown(
        "The service account may not read the server's configuration, and there are too few users "
        "to tell by the time that a search takes.");
    if (!has_many_users(server, naming)) return too_few;
    const Time scan = time_of(server, "(!(" + naming + "=*))");
    const Time base = time_of(server, "(objectClass=orvo-doctor)");
    if (scan < least_ratio * base) return too_few;
    const Time limit = scan == Time::max() ? 10 * base : std::sqrt(scan / base) * base;
    std::vector<std::string> missing;
    for (const Searched& row : searched(server)) {
        const std::string filter = "(" + row.attribute + "=" + row.value + ")";
        if (time_of(server, filter, limit) > limit) missing.push_back(row.attribute);
    }
    return told(server, missing, "by the time that searches take");
}

}  // namespace

Finding examine_indexes(LdapServer& server) {
    const std::optional<Names> names = configured(server);
    if (!names) return measured(server);
    std::vector<std::string> missing;
    if (server.make != Make::active_directory && !names->contains("objectclass"))
        missing.emplace_back("objectClass");
    for (const Searched& row : searched(server))
        if (!names->contains(ascii::lower(row.attribute))) missing.push_back(row.attribute);
    if (server.mapped && !groups_of(server.mapped->map()).empty() &&
        server.make != Make::active_directory) {
        const std::string members = server.mapped->map().groups.member_attribute();
        if (!names->contains(ascii::lower(members))) missing.push_back(members);
    }
    return told(server, missing, "by the server's configuration");
}

}  // namespace orvo::admin
