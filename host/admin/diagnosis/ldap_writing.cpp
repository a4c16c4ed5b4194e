#include <algorithm>
#include <array>
#include <iterator>
#include <random>

#include "host/admin/diagnosis/content_steps.h"
#include "host/admin/diagnosis/ldap_server.h"
#include "suite/directory/entries/entry_order.h"
#include "suite/directory/ldap/wire/password_policy.h"
#include "suite/directory/names/ascii.h"
#include "suite/directory/policy/failures.h"

// What the service account may write, without anything being written. OpenLDAP carries a request
// with its no-op control out as far as the last step; a 389 directory server tells with a control
// what rights are in effect, an Active Directory in attributes that it computes.

namespace orvo::admin {
namespace {

using namespace directory;
using namespace directory::ldap;

constexpr const char* no_operation = "1.3.6.1.4.1.4203.666.5.2";
constexpr int would_be_done = 0x410E;  // what OpenLDAP answers then
constexpr const char* effective_rights = "1.3.6.1.4.1.42.2.27.9.5.2";

enum class May { yes, no, not_known };

// A right, and what a server said of it.
struct Right {
    std::string words;  // "make users"
    May may;
};

class Controls {
public:
    Controls(Session& session, const std::vector<Control>& controls) : session_(session) {
        session_.set_controls(controls);
    }
    ~Controls() { session_.set_controls({}); }
    Controls(const Controls&) = delete;

private:
    Session& session_;
};

May judged(const Result& result) {
    // That a value is there already is seen after the right to write it.
    if (result.code == would_be_done || result.code == result_code::value_exists) return May::yes;
    return result.code == result_code::insufficient_access ? May::no : May::not_known;
}

// No user has such a name.
std::string unused_name() {
    std::random_device random;
    return "orvo-doctor-" + std::to_string(random()) + std::to_string(random());
}

// A change that the component makes, with a value that the schema takes.
struct Tried {
    std::string words;  // "change users"
    std::string entry;
    Replacement change;
};

constexpr const char* password_attribute = "userPassword";
constexpr const char* any_password = "orvo-doctor-1-Password";

// Of a directory with a map: what has a place of its own there, and the groups.
void add_mapped(const LdapServer& server, const std::string& user, std::vector<Tried>& changes) {
    const DirectoryMap& map = server.mapped->map();
    for (const MappedAttribute& attribute : map.attributes) {
        if (attribute.name == "cn" || attribute.name == map.naming_attribute) continue;
        const std::string value = attribute.values.empty() ? "0" : attribute.values.front().ours;
        if (!attribute.theirs.empty())
            changes.push_back({"change " + attribute.name, user,
                               server.mapped->translation().changes(attribute.name, {value})[0]});
        if (attribute.is_of_groups() && !map.groups.is_read_only)
            changes.push_back(
                {"assign " + attribute.name,
                 attribute.groups.front().group.name,
                 {map.groups.member_attribute(),
                  {map.groups.kind == GroupRules::Kind::posix ? naming_part(user).value : user},
                  Change::add}});
    }
}

std::vector<Tried> tried_changes(const LdapServer& server, const std::string& user) {
    std::vector<Tried> changes;
    if (server.mapped)
        add_mapped(server, user, changes);
    else
        changes.push_back({"change users", user, {"OrvoRole", {"1"}}});
    changes.push_back({"set passwords", user, {password_attribute, {any_password}}});
    return changes;
}

// What the schema asks of an entry of these classes.
std::vector<Attribute> new_attributes(const LdapServer& server, const std::string& name) {
    std::vector<Attribute> attributes{{"objectClass", server.site.user_classes},
                                      {server.site.naming_attribute, {name}}};
    if (server.mapped) attributes = server.mapped->translation().created(attributes);
    if (!server.facts) return attributes;
    const std::vector<std::string> classes = attributes.front().values;
    for (const std::string& required : server.facts->classes.required(classes)) {
        const bool is_there = std::ranges::any_of(attributes, [&](const Attribute& attribute) {
            return server.facts->types.same(attribute.name, required);
        });
        if (!is_there) attributes.push_back({required, {"0"}});
    }
    return attributes;
}

std::vector<Right> tried_rights(LdapServer& server, const std::string& user) {
    const Controls held(*server.session, {{no_operation, {}, true}});
    const std::string name = unused_name();
    std::string made =
        entry_below(server.site, server.site.naming_attribute, name, server.site.users);
    if (server.mapped) made = server.mapped->map().their_name(made);
    std::vector<Right> rights{
        {"make users", judged(server.session->add(made, new_attributes(server, name)))}};
    if (user.empty()) return rights;
    for (const Tried& tried : tried_changes(server, user))
        rights.push_back(
            {tried.words, judged(server.session->modify(tried.entry, {&tried.change, 1}))});
    rights.push_back({"remove users", judged(server.session->remove(user))});
    return rights;
}

// "userPassword:rscwo, mail:rsc"
bool has_right(const EntryData& entry, std::string_view attribute, char right) {
    for (const std::string& value : values_of(entry, "attributeLevelRights")) {
        std::size_t at = 0;
        while (at < value.size()) {
            const std::size_t end = std::min(value.find(", ", at), value.size());
            const std::string_view item = std::string_view(value).substr(at, end - at);
            const std::size_t colon = item.find(':');
            if (colon != std::string_view::npos &&
                ascii::equal_ignoring_case(item.substr(0, colon), attribute))
                return item.substr(colon).find(right) != std::string_view::npos;
            at = end + 2;
        }
    }
    return false;
}

std::vector<Right> told_rights(LdapServer& server, const std::string& user) {
    const Controls held(*server.session, {{effective_rights, "dn: " + server.service(), true}});
    const auto read = [&](const std::string& name, const std::string& attribute) {
        return server.session->read(name, {attribute});
    };
    const auto entry_right = [](const ReadResult& result, char right) {
        const std::string rights = value_of(result.entry, "entryLevelRights");
        if (!result.ok() || rights.empty()) return May::not_known;
        return rights.find(right) != std::string::npos ? May::yes : May::no;
    };
    const auto write_right = [&](const Tried& tried) {
        const ReadResult result = read(tried.entry, tried.change.attribute);
        if (!result.ok() || values_of(result.entry, "attributeLevelRights").empty())
            return May::not_known;
        return has_right(result.entry, tried.change.attribute, 'w') ? May::yes : May::no;
    };
    std::vector<Right> rights{
        {"make users",
         entry_right(read(below_root(server.site, server.site.users), "objectClass"), 'a')}};
    if (user.empty()) return rights;
    for (const Tried& tried : tried_changes(server, user))
        rights.push_back({tried.words, write_right(tried)});
    rights.push_back({"remove users", entry_right(read(user, "objectClass"), 'd')});
    return rights;
}

std::vector<Right> computed_rights(LdapServer& server, const std::string& user) {
    const auto lists = [&](const std::string& entry, const char* attribute,
                           const std::string& name) {
        const ReadResult result = server.session->read(entry, {attribute});
        if (!result.ok()) return May::not_known;
        return std::ranges::any_of(
                   values_of(result.entry, attribute),
                   [&](const auto& value) { return ascii::equal_ignoring_case(value, name); })
                   ? May::yes
                   : May::no;
    };
    std::vector<Right> rights{{"make users", lists(below_root(server.site, server.site.users),
                                                   "allowedChildClassesEffective", "user")}};
    if (user.empty()) return rights;
    for (const Tried& tried : tried_changes(server, user))
        rights.push_back({tried.words, tried.change.attribute == password_attribute
                                           ? May::not_known
                                           : lists(tried.entry, "allowedAttributesEffective",
                                                   tried.change.attribute)});
    rights.push_back({"remove users", May::not_known});
    return rights;
}

std::string words_of(const std::vector<Right>& rights, May may) {
    std::string text;
    for (const Right& right : rights)
        if (right.may == may) text += (text.empty() ? "" : ", ") + right.words;
    return text;
}

}  // namespace

std::optional<bool> try_former_password(LdapServer& server, const std::string& user,
                                        const Secret& password) {
    constexpr int former_is_wrong = 4;
    const Controls held(*server.session, {{no_operation, {}, true}, {policy_control, {}, false}});
    Replacement changes[] = {{password_attribute, {}, Change::remove},
                             {password_attribute, {any_password}, Change::add}};
    std::string& former = changes[0].values.emplace_back(password.reveal());
    const UpdateResult result = server.session->modify(user, changes);
    overwrite(former.data(), former.size());
    const std::optional<int> error = policy_in(result.controls).error;
    if (error == former_is_wrong) return false;
    if (result.code == would_be_done) return true;
    // What it has against the new one it looks at later.
    constexpr int after_the_former[] = {5, 6, 8};  // quality, length, history
    if (error && std::ranges::find(after_the_former, *error) != std::end(after_the_former))
        return true;
    return std::nullopt;
}

Finding examine_writing(LdapServer& server) {
    const std::string users = below_root(server.site, server.site.users);
    const auto some =
        server.view()->search(users, "(objectClass=" + server.site.user_classes.front() + ")", 1);
    const std::string user = some.empty() ? "" : some.front().name;
    std::vector<Right> rights;
    if (server.make == Make::openldap)
        rights = tried_rights(server, user);
    else if (server.make == Make::directory_389)
        rights = told_rights(server, user);
    else if (server.make == Make::active_directory)
        rights = computed_rights(server, user);
    const std::string can = words_of(rights, May::yes);
    const std::string cannot = words_of(rights, May::no);
    const std::string open = words_of(rights, May::not_known);
    // What a company lets the shop do with its own people is the company's to say.
    if (server.mapped && !can.empty())
        return found("the service account can " + can +
                     (cannot.empty() ? "" : "; it cannot " + cannot) +
                     (open.empty() ? "" : "; not known: " + open));
    if (server.mapped && !cannot.empty()) return found("the service account only reads");
    if (!cannot.empty())
        return failed(
            "The service account cannot " + cannot + (can.empty() ? "." : "; it can " + can + "."),
            "Give it write access to " + quoted_name(users) +
                " and below, unless the site only reads its directory.");
    if (can.empty()) return unknown("This server does not tell without being written to.");
    return found("the service account can " + can + (open.empty() ? "" : "; not known: " + open));
}

}  // namespace orvo::admin
