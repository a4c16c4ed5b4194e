#include <algorithm>
#include <array>
#include <iterator>
#include <random>

#include "host/admin/diagnosis/content_steps.h"
#include "host/admin/diagnosis/ldap_server.h"
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
    if (result.code == would_be_done) return May::yes;
    return result.code == result_code::insufficient_access ? May::no : May::not_known;
}

// No user has such a name.
std::string unused_name() {
    std::random_device random;
    return "orvo-doctor-" + std::to_string(random()) + std::to_string(random());
}

// What the schema asks of an entry of these classes.
std::vector<Attribute> new_attributes(const LdapServer& server, const std::string& name) {
    std::vector<Attribute> attributes{{"objectClass", server.site.user_classes},
                                      {server.site.naming_attribute, {name}}};
    if (!server.facts) return attributes;
    for (const std::string& required : server.facts->classes.required(server.site.user_classes)) {
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
    const std::string made =
        entry_below(server.site, server.site.naming_attribute, name, server.site.users);
    const auto write = [&](const char* attribute, const char* value) {
        const Replacement change{attribute, {value}};
        return judged(server.session->modify(user, {&change, 1}));
    };
    std::vector<Right> rights{
        {"make users", judged(server.session->add(made, new_attributes(server, name)))}};
    if (user.empty()) return rights;
    rights.push_back({"change users", write("OrvoRole", "1")});
    rights.push_back({"set passwords", write("userPassword", "orvo-doctor-1-Password")});
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
    const auto read = [&](const std::string& name) {
        return server.session->read(name, {"OrvoRole", "userPassword"});
    };
    const auto entry_right = [](const ReadResult& result, char right) {
        const std::string rights = value_of(result.entry, "entryLevelRights");
        if (!result.ok() || rights.empty()) return May::not_known;
        return rights.find(right) != std::string::npos ? May::yes : May::no;
    };
    std::vector<Right> rights{
        {"make users", entry_right(read(below_root(server.site, server.site.users)), 'a')}};
    if (user.empty()) return rights;
    const ReadResult one = read(user);
    const auto write_right = [&](const char* attribute) {
        if (!one.ok() || values_of(one.entry, "attributeLevelRights").empty())
            return May::not_known;
        return has_right(one.entry, attribute, 'w') ? May::yes : May::no;
    };
    rights.push_back({"change users", write_right("OrvoRole")});
    rights.push_back({"set passwords", write_right("userPassword")});
    rights.push_back({"remove users", entry_right(one, 'd')});
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
    rights.push_back({"change users", lists(user, "allowedAttributesEffective", "OrvoRole")});
    rights.push_back({"set passwords", May::not_known});
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
    Replacement changes[] = {{"userPassword", {}, Change::remove},
                             {"userPassword", {"orvo-doctor-1-Password"}, Change::add}};
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
        server.view().search(users, "(objectClass=" + server.site.user_classes.front() + ")", 1);
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
    if (!cannot.empty())
        return failed(
            "The service account cannot " + cannot + (can.empty() ? "." : "; it can " + can + "."),
            "Give it write access to " + quoted_name(users) +
                " and below, unless the site only reads its directory.");
    if (can.empty()) return unknown("This server does not tell without being written to.");
    return found("the service account can " + can + (open.empty() ? "" : "; not known: " + open));
}

}  // namespace orvo::admin
