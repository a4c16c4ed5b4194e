#include <gmock/gmock.h>

#include "tests/suite/directory/embedded/access/access_fixture.h"
#include "tests/suite/directory/expect_failure.h"

namespace orvo::directory::embedded {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::shared_ptr<const Schema> schema = schema_of({"cn", "sn", "mail"});

AccessRules parse(std::string_view text) { return AccessRules::parse(text, schema); }

TEST(AccessRulesText, IsRead) {
    const AccessRules rules = parse(
        "# who administers\n"
        "group admins\n"
        "    entries one ou=Users,o=Shop\n"
        "\tfilter (OrvoUserType=4)\n"
        "\n"
        "rule\r\n"
        "  entries subtree ou=Users, o=Shop  \n"
        "  attributes sn   mail\n"
        "  attributes entry\n"
        "  write group admins\n"
        "  # others\n"
        "  read name cn=a b,o=Shop\n"
        "  authenticate anonymous\n"
        "rule\n"
        "read users");
    ASSERT_THAT(rules.rules(), SizeIs(2));
    const AccessRule& first = rules.rules()[0];
    EXPECT_EQ(first.entries->scope, Scope::subtree);
    EXPECT_EQ(first.entries->written, "ou=Users, o=Shop");
    EXPECT_EQ(first.entries->name, dn("ou=users,o=shop"));
    EXPECT_THAT(first.attributes, ElementsAre("sn", "mail", "entry"));
    ASSERT_THAT(first.grants, SizeIs(3));
    EXPECT_EQ(first.grants[0], (AccessGrant{Right::write, AccessGrant::To::group, "admins", {}}));
    EXPECT_EQ(first.grants[1], (AccessGrant{Right::read, AccessGrant::To::name, "cn=a b,o=Shop",
                                            dn("cn=a b,o=Shop")}));
    EXPECT_EQ(first.grants[2],
              (AccessGrant{Right::authenticate, AccessGrant::To::anonymous, {}, {}}));
    const AccessRule& second = rules.rules()[1];
    EXPECT_FALSE(second.entries);
    EXPECT_THAT(second.attributes, IsEmpty());
    EXPECT_THAT(second.grants,
                ElementsAre(AccessGrant{Right::read, AccessGrant::To::users, {}, {}}));
}

TEST(AccessRulesText, MayBeEmpty) {
    EXPECT_THAT(parse("").rules(), IsEmpty());
    EXPECT_THAT(parse("# nothing\n\n  # at all").rules(), IsEmpty());
    EXPECT_EQ(parse("").text(), "");
}

TEST(AccessRulesText, IsWrittenAsItIsRead) {
    constexpr const char* text =
        "group admins\n"
        "    entries one ou=Users,o=Shop\n"
        "    filter (&(OrvoUserType=4)(mail=*))\n"
        "\n"
        "group others\n"
        "    entries base cn=a,o=Shop\n"
        "    filter (!(sn=b))\n"
        "\n"
        "rule\n"
        "    entries subtree o=Shop\n"
        "    attributes mail entry children SN-alias\n"
        "    none name cn=a\\, b,o=Shop\n"
        "    authenticate anonymous\n"
        "    read self\n"
        "    write group others\n"
        "    read everyone\n"
        "\n"
        "rule\n"
        "    read users\n"
        "\n"
        "rule\n";
    EXPECT_EQ(parse(text).text(), text);
    EXPECT_EQ(parse(parse(text).text()), parse(text));
}

TEST(AccessRulesText, HasLinesOfAReadableLength) {
    std::string text = "rule\n    attributes";
    for (int count = 0; count < 40; ++count) text += " mail";
    const std::string written = parse(text).text();
    EXPECT_EQ(parse(written), parse(text));
    for (std::size_t begin = 0, end = 0; begin < written.size(); begin = end + 1) {
        end = written.find('\n', begin);
        EXPECT_LE(end - begin, 100u);
    }
}

TEST(AccessRules, AreEqualWhereTheySayTheSame) {
    const AccessRules rules = parse("rule\n entries base o=Shop\n attributes sn\n read self");
    EXPECT_EQ(rules, parse("# x\nrule\nentries base o=Shop\nattributes sn\nread self\n"));
    for (const char* other : {
             "rule\n entries base o=Shop\n attributes sn\n write self",
             "rule\n entries base o=Shop\n attributes sn\n read users",
             "rule\n entries base o=Shop\n attributes sn mail\n read self",
             "rule\n entries one o=Shop\n attributes sn\n read self",
             "rule\n attributes sn\n read self",
             "rule\n entries base o=Other\n attributes sn\n read self",
             "rule\n entries base o=Shop\n attributes sn\n read self\nrule",
             "group a\n entries base o=Shop\n filter (sn=a)\n"
             "rule\n entries base o=Shop\n attributes sn\n read self",
         })
        EXPECT_FALSE(rules == parse(other)) << other;
    EXPECT_FALSE(parse("group a\n entries base o=Shop\n filter (sn=a)") ==
                 parse("group a\n entries base o=Shop\n filter (sn=b)"));
}

TEST(AccessRules, OfTheProductAreRead) {
    const auto all = schema_of({"cn",
                                "sn",
                                "mail",
                                "givenName",
                                "PhoneNumber",
                                "facsimileTelephoneNumber",
                                "Modem",
                                "c",
                                "Position",
                                "ILSServer",
                                "ShowExplain",
                                "OutOfOfficeOn",
                                "OutOfOfficeApprover",
                                "SubstituteBuyer",
                                "LanguageID",
                                "Locale",
                                "DefaultURL",
                                "DeliveryAddressID",
                                "OrvoBillAddress",
                                "OrvoShipAddress",
                                "objectClass",
                                "ou",
                                "BusinessPartnerID",
                                "OrvoRole",
                                "ProfileCN",
                                "LocalAdminProfileCN"});
    const std::string text = AccessRules::text_of_product("o=My Shop,c=GB");
    EXPECT_THAT(text, testing::Not(testing::HasSubstr("@")));
    EXPECT_THAT(text,
                testing::HasSubstr("    write name cn=orvo-service,ou=Services,o=My Shop,c=GB\n"));
    const AccessRules rules = AccessRules::parse(text, all);
    EXPECT_THAT(rules.rules(), SizeIs(11));
    EXPECT_EQ(AccessRules::parse(rules.text(), all), rules);
}

struct Refused {
    const char* text;
    const char* reason;
};

TEST(AccessRulesText, IsRefusedWithTheLineAndTheReason) {
    for (const Refused& refused : {
             Refused{"wriet self", "line 1: 'wriet' is no word that a line begins with."},
             {"rule\n\n# x\nRead self", "line 4: 'Read' is no word that a line begins with."},
             {"read self", "line 1: The line belongs to a rule."},
             {"attributes sn", "line 1: The line belongs to a rule."},
             {"entries base o=Shop", "line 1: The line belongs to a rule."},
             {"rule x", "line 1: Nothing stands behind \"rule\"."},
             {"rule\nentries all o=Shop",
              "line 2: \"entries\" are base, one or subtree, not 'all'."},
             {"rule\nentries", "line 2: \"entries\" are base, one or subtree, not ''."},
             {"rule\nentries base", "line 2: '' is no distinguished name."},
             {"rule\nentries base Shop", "line 2: 'Shop' is no distinguished name."},
             {"rule\nentries base o=A\nentries base o=B",
              "line 3: \"entries\" stands here a second time."},
             {"rule\nattributes", "line 2: \"attributes\" has no names."},
             {"rule\nattributes sn surname", "line 2: The schema has no attribute 'surname'."},
             {"rule\nread",
              "line 2: A right is that of name, self, group, users, anonymous or "
              "everyone, not of ''."},
             {"rule\nread somebody",
              "line 2: A right is that of name, self, group, users, "
              "anonymous or everyone, not of 'somebody'."},
             {"rule\nread self o=Shop", "line 2: Nothing stands behind 'self'."},
             {"rule\nread name", "line 2: '' is no distinguished name."},
             {"rule\nread group a", "line 2: There is no group 'a' above."},
             {"rule\nfilter (a=b)", "line 2: A filter belongs to a group."},
             {"group", "line 1: A group has one word as its name."},
             {"group a b", "line 1: A group has one word as its name."},
             {"group a\nread self", "line 2: The line belongs to a rule."},
             {"group a\nattributes sn", "line 2: The line belongs to a rule."},
             {"group a\nfilter (sn=a)\nrule",
              "line 3: The group 'a' above lacks entries or a filter."},
             {"group a\nentries base o=A",
              "line 2: The group 'a' above lacks entries or a filter."},
             {"group a\nfilter (sn=a)\nfilter (sn=b)",
              "line 3: \"filter\" stands here a second time."},
             {"group a\nentries base o=A\nentries base o=A",
              "line 3: \"entries\" stands here a second time."},
             {"group a\nentries base o=A\nfilter (sn=a)\ngroup a",
              "line 4: There is a group 'a' already."},
         })
        EXPECT_EQ(
            to_utf8(failure_of([&] { parse(refused.text); }).description),
            "(89) A setting or argument is not valid. Access rules, " + std::string(refused.reason))
            << refused.text;
}

TEST(AccessRulesText, IsRefusedForAFilterThatCannotBeRead) {
    EXPECT_THAT(to_utf8(failure_of([] { parse("group a\nfilter (sn=a"); }).description),
                testing::StartsWith("(89) A setting or argument is not valid. Access rules, line "
                                    "2: (87) The search filter is not valid."));
}

}  // namespace
}  // namespace orvo::directory::embedded
