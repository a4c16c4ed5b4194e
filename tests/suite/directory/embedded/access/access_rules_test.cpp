#include <gtest/gtest.h>

#include <string>

#include "tests/suite/directory/embedded/access/access_fixture.h"

namespace orvo::directory::embedded {
namespace {

const std::shared_ptr<const Schema> schema = schema_of({"cn", "sn", "mail"});
const Identity nobody = Identity::nobody();
const Identity jsmith = user("cn=jsmith,ou=Users,o=Shop");
const DistinguishedName own = dn("CN=JSmith, ou=users,o=shop");
const DistinguishedName other = dn("cn=glee,ou=Users,o=Shop");

AccessRules rule(const std::string& lines) {
    return AccessRules::parse(
        "group admins\nentries one ou=Users,o=Shop\nfilter (OrvoUserType=4)\n"
        "rule\n" +
            lines,
        schema);
}

// The strongest right.
Right right_of(const AccessRules& rules, const Identity& who, const DistinguishedName& entry,
               std::string_view attribute) {
    for (const Right right : {Right::write, Right::read, Right::authenticate})
        if (rules.allow(who, right, entry, attribute)) return right;
    return Right::none;
}

TEST(ARight, IsThatOfTheFirstRuleThatCoversEntryAndAttribute) {
    const AccessRules rules = rule(
        "attributes mail\n read users\n"
        "rule\n entries subtree ou=Users,o=Shop\n write users\n"
        "rule\n read everyone");
    EXPECT_EQ(right_of(rules, jsmith, other, "mail"), Right::read);
    EXPECT_EQ(right_of(rules, nobody, other, "mail"), Right::none);
    EXPECT_EQ(right_of(rules, jsmith, other, "sn"), Right::write);
    EXPECT_EQ(right_of(rules, nobody, other, "sn"), Right::none);
    EXPECT_EQ(right_of(rules, nobody, dn("o=Shop"), "sn"), Right::read);
}

TEST(ARight, IsThatOfTheFirstLineThatIsTrueOfWhoAsks) {
    const AccessRules rules =
        rule("none name cn=jsmith,ou=Users,o=Shop\n write users\n read everyone");
    EXPECT_EQ(right_of(rules, jsmith, own, "sn"), Right::none);
    EXPECT_EQ(right_of(rules, user("cn=glee,ou=Users,o=Shop"), own, "sn"), Right::write);
    EXPECT_EQ(right_of(rules, nobody, own, "sn"), Right::read);
}

TEST(ARight, IsNoneWithoutARule) {
    EXPECT_EQ(right_of(AccessRules::parse("", schema), jsmith, own, "sn"), Right::none);
    EXPECT_EQ(right_of(rule("entries base o=Shop\n write everyone"), jsmith, own, "sn"),
              Right::none);
    EXPECT_EQ(right_of(rule(""), jsmith, own, "sn"), Right::none);
}

TEST(ARight, CoversAPlace) {
    const AccessRules base = rule("entries base ou=Users,o=Shop\n read everyone");
    const AccessRules one = rule("entries one ou=Users,o=Shop\n read everyone");
    const AccessRules subtree = rule("entries subtree ou=Users,o=Shop\n read everyone");
    struct Row {
        const char* entry;
        Right of_base, of_one, of_subtree;
    };
    for (const Row& row : {
             Row{"o=Shop", Right::none, Right::none, Right::none},
             {"OU=users , O=shop", Right::read, Right::none, Right::read},
             {"cn=a,ou=Users,o=Shop", Right::none, Right::read, Right::read},
             {"cn=b,cn=a,ou=Users,o=Shop", Right::none, Right::none, Right::read},
             {"ou=More Users,o=Shop", Right::none, Right::none, Right::none},
             {"cn=a\\,ou=Users,o=Shop", Right::none, Right::none, Right::none},
         }) {
        EXPECT_EQ(right_of(base, nobody, dn(row.entry), "sn"), row.of_base) << row.entry;
        EXPECT_EQ(right_of(one, nobody, dn(row.entry), "sn"), row.of_one) << row.entry;
        EXPECT_EQ(right_of(subtree, nobody, dn(row.entry), "sn"), row.of_subtree) << row.entry;
    }
}

TEST(ARight, CoversAnAttributeUnderAllItsNames) {
    const AccessRules rules = rule("attributes mail entry\n read everyone");
    for (const char* name : {"mail", "MAIL", "mail-alias", "1.2.3.3", "mail;lang-de", "entry"})
        EXPECT_EQ(right_of(rules, nobody, own, name), Right::read) << name;
    for (const char* name : {"sn", "mail2", "children", "", "1.2.3"})
        EXPECT_EQ(right_of(rules, nobody, own, name), Right::none) << name;
}

TEST(ARight, MayBeOnesOwn) {
    const AccessRules rules = rule("write self\n read users");
    EXPECT_EQ(right_of(rules, jsmith, own, "sn"), Right::write);
    EXPECT_EQ(right_of(rules, jsmith, other, "sn"), Right::read);
    EXPECT_EQ(right_of(rules, nobody, other, "sn"), Right::none);
}

TEST(ARight, MayBeThatOfAGroup) {
    const AccessRules rules = rule("write group admins");
    EXPECT_EQ(right_of(rules, user("cn=a,ou=Users,o=Shop", "4"), other, "sn"), Right::write);
    EXPECT_EQ(right_of(rules, user("cn=a,ou=Users,o=Shop", "14"), other, "sn"), Right::none);
    EXPECT_EQ(right_of(rules, user("cn=a,ou=Others,o=Shop", "4"), other, "sn"), Right::none);
    EXPECT_EQ(right_of(rules, user("cn=a,cn=b,ou=Users,o=Shop", "4"), other, "sn"), Right::none);
    EXPECT_EQ(right_of(rules, nobody, other, "sn"), Right::none);
}

TEST(ARight, OfAnonymousIsNobodyElses) {
    const AccessRules rules = rule("authenticate anonymous");
    EXPECT_EQ(right_of(rules, nobody, own, "sn"), Right::authenticate);
    EXPECT_EQ(right_of(rules, jsmith, own, "sn"), Right::none);
}

TEST(APassword, IsReadByNobody) {
    const AccessRules rules = rule("write everyone");
    for (const Identity& who : {nobody, jsmith, Identity::manager()})
        for (const char* name : {"userPassword", "USERPASSWORD", "2.5.4.35", "userPassword;x"}) {
            EXPECT_FALSE(rules.allow(who, Right::read, own, name)) << name;
            EXPECT_TRUE(rules.allow(who, Right::write, own, name)) << name;
            EXPECT_TRUE(rules.allow(who, Right::authenticate, own, name)) << name;
        }
}

TEST(TheManager, IsHeldBackByNoRule) {
    const AccessRules rules = rule("none everyone");
    EXPECT_EQ(right_of(rules, Identity::manager(), own, "sn"), Right::write);
    EXPECT_EQ(right_of(rules, jsmith, own, "sn"), Right::none);
}

}  // namespace
}  // namespace orvo::directory::embedded
