// Access rules. The input is their text, for the product's schema.

#include <vector>

#include "suite/directory/embedded/access/access_rules.h"
#include "suite/directory/embedded/access/access_view.h"
#include "tests/fuzz/properties.h"

namespace orvo::fuzz {
namespace {

using namespace orvo::directory;
using namespace orvo::directory::embedded;

DistinguishedName dn(const std::string& name) {
    return DistinguishedName::try_parse(from_utf8(name)).value();
}

Identity user(const std::string& name, const std::string& type) {
    return Identity::of(dn(name), {name, {{"cn", {"any"}}, {"OrvoUserType", {type}}}});
}

const std::vector<Identity>& asking() {
    static const std::vector<Identity> all = {
        Identity::nobody(), Identity::manager(), user("cn=a,ou=Users,o=Shop", "1"),
        user("cn=b,ou=Users,o=Shop", "4"), user("cn=s,ou=Services,o=Shop", "1")};
    return all;
}

constexpr const char* entries[] = {"o=Shop",
                                   "ou=Users,o=Shop",
                                   "cn=a,ou=Users,o=Shop",
                                   "cn=b,ou=Users,o=Shop",
                                   "cn=c,ou=Users,o=Shop",
                                   "cn=d,cn=c,ou=Users,o=Shop",
                                   "cn=s,ou=Services,o=Shop",
                                   "cn=a,ou=Users,o=Shop"};

// What the rules say one by one, and what they say of entries that a search finds.
void check_view(const AccessRules& rules, const Identity& who) {
    const std::vector<std::string> attributes = {"cn",           "sn",      "mail",
                                                 "userPassword", "2.5.4.4", "none-such"};
    AccessView view(rules, who, attributes);
    for (const char* entry : entries) {
        const AccessView::Rights& rights = view.of(entry);
        require(rights.may_see == rules.allow(who, Right::read, dn(entry), the_entry),
                "a search shows the entries that may be read");
        for (std::size_t at = 0; at < attributes.size(); ++at) {
            const bool may_read = rules.allow(who, Right::read, dn(entry), attributes[at]);
            require(rights.may_read[at] == may_read, "a search shows what may be read");
            const bool may_write = rules.allow(who, Right::write, dn(entry), attributes[at]);
            require(may_read || !may_write || attributes[at] == "userPassword",
                    "what may be written may be read, but for passwords");
        }
        require(!rules.allow(who, Right::read, dn(entry), "userPassword"),
                "nobody reads a password");
    }
}

}  // namespace

void access_rules_properties(std::string_view input) {
    static const std::shared_ptr<const Schema> schema(&Schema::of_product(), [](const Schema*) {});
    std::optional<AccessRules> rules;
    try {
        rules = AccessRules::parse(input, schema);
    } catch (const Failure& failure) {
        constexpr std::string_view before = "Access rules, line ";
        return require_refusal(failure, error_number(0x8007203F), before, line_count(input));
    }
    const std::string text = rules->text();
    const AccessRules again = AccessRules::parse(text, schema);
    require(again == *rules, "rules are read back from their text");
    require(again.text() == text, "rules are written again as they were");
    for (const Identity& who : asking()) check_view(*rules, who);
}

}  // namespace orvo::fuzz
