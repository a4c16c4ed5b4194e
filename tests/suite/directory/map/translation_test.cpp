#include "suite/directory/map/translation.h"

#include <gmock/gmock.h>

#include "suite/directory/policy/result_codes.h"
#include "suite/directory/schema/schema.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/suite/directory/map/map_text.h"

namespace orvo::directory {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Values = std::vector<std::string>;

const std::vector<std::string> server_schema = {
    "( 2.5.4.3 NAME ( 'cn' 'commonName' ) EQUALITY caseIgnoreMatch SYNTAX "
    "1.3.6.1.4.1.1466.115.121.1.15 )",
    "( 0.9.2342.19200300.100.1.1 NAME ( 'uid' 'userid' ) EQUALITY caseIgnoreMatch SYNTAX "
    "1.3.6.1.4.1.1466.115.121.1.15 )",
    "( 9.9.1 NAME 'hiredOn' SYNTAX 1.3.6.1.4.1.1466.115.121.1.24 )"};

class TranslationTest : public testing::Test {
protected:
    void use(const std::string& lines) { map_ = map_of(lines); }
    Translation translation() const { return {*map_, types_}; }

    std::map<std::string, Values> ours(const std::vector<Attribute>& theirs,
                                       const Values& asked = {"*"}) {
        const EntryData entry = translation().ours({name_, theirs}, asked);
        std::map<std::string, Values> result;
        for (const Attribute& attribute : entry.attributes)
            result[attribute.name] = attribute.values;
        return result;
    }

    std::shared_ptr<const DirectoryMap> map_;
    AttributeTypes types_ = with_our_types(AttributeTypes::from_descriptions(server_schema));
    std::string name_ = "uid=jsmith,ou=Sales,ou=People,o=Company";
};

TEST_F(TranslationTest, TypesAreTheServersAndThoseThatItDoesNotKnowOurs) {
    ASSERT_TRUE(types_.find("hiredOn"));
    EXPECT_EQ(types_.find("OrvoUserType")->syntax, Syntax::integer);
    EXPECT_EQ(types_.find("commonName"), types_.find("cn"));
    EXPECT_TRUE(types_.find("cn")->ordering.empty());
}

TEST_F(TranslationTest, AsksForTheirNamesOnceAndLeavesOutWhatHasNoPlace) {
    use("[DIRECTORY.MAP]\ncn = uid\nOrvoRole = title\nOrvoGUID =\n");
    EXPECT_THAT(translation().asked(Values{"CN", "uid", "OrvoGUID", "mail", "OrvoRole"}),
                ElementsAre("uid", "mail", "title"));
    EXPECT_THAT(translation().asked(Values{"OrvoGUID"}), ElementsAre("1.1"));
    EXPECT_THAT(translation().asked(Values{"*"}), ElementsAre("*", "uid", "title"));
}

TEST_F(TranslationTest, AnEntryHasOurNamesAndHidesTheirsOfTheSameName) {
    use("[DIRECTORY.MAP]\ncn = uid\nOrvoRole = title\n");
    const auto entry = ours({{"uid", {"jsmith"}}, {"cn", {"John Smith"}}, {"title", {"24"}}});
    EXPECT_THAT(entry.at("cn"), ElementsAre("jsmith"));
    EXPECT_THAT(entry.at("OrvoRole"), ElementsAre("24"));
    EXPECT_THAT(entry.at("uid"), ElementsAre("jsmith"));
}

TEST_F(TranslationTest, AListGoesByOurNames) {
    use("[DIRECTORY.MAP]\ncn = uid\n");
    EXPECT_EQ(translation().ours({name_, {}}, {}).name, "cn=jsmith,ou=Sales,ou=People,o=Company");
    EXPECT_EQ(translation().ours({"cn=John Smith,o=Company", {{"uid", {"jsmith"}}}}, {}).name,
              "cn=jsmith,o=Company");
    EXPECT_EQ(translation().ours({"ou=Sales,o=Company", {}}, {}).name, "ou=Sales,o=Company");
}

TEST_F(TranslationTest, ATableKnowsSeveralOfTheirsAndNothingElse) {
    use("[DIRECTORY.MAP]\nOrvoUserType = title\n"
        "[DIRECTORY.MAP.VALUES.OrvoUserType]\n4 = boss | admin\n1 = clerk\n"
        "[DIRECTORY.MAP.DEFAULTS]\nOrvoUserType = 2\n");
    EXPECT_THAT(ours({{"title", {"Admin"}}}).at("OrvoUserType"), ElementsAre("4"));
    EXPECT_THAT(ours({{"title", {"guest"}}}).at("OrvoUserType"), ElementsAre("2"));
    EXPECT_THAT(ours({}).at("OrvoUserType"), ElementsAre("2"));
    const auto changes = translation().changes("orvousertype", {"4"});
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes[0].attribute, "title");
    EXPECT_THAT(changes[0].values, ElementsAre("boss"));
    const Failure failure = failure_of([&] { translation().changes("OrvoUserType", {"3"}); });
    EXPECT_EQ(failure.number, number_of_code(result_code::constraint_violation));
}

TEST_F(TranslationTest, DefaultsAreThoseOfUsersWhoWereAskedForThem) {
    use("[DIRECTORY.MAP.DEFAULTS]\nOrvoUserType = 1\n");
    EXPECT_THAT(ours({}, {"OrvoUserType"}).at("OrvoUserType"), ElementsAre("1"));
    EXPECT_THAT(ours({}, {"mail"}), IsEmpty());
    name_ = "cn=Buyers,ou=Profiles,o=Company";
    EXPECT_THAT(ours({}, {"OrvoUserType"}), IsEmpty());
}

TEST_F(TranslationTest, WhatHasNoPlaceIsNotWrittenUnlessItSaysTheSame) {
    use("[DIRECTORY.MAP]\nOrvoGUID =\n[DIRECTORY.MAP.DEFAULTS]\nOrvoUserType = 1\n");
    EXPECT_THAT(translation().changes("OrvoUserType", {"1"}), IsEmpty());
    EXPECT_THAT(translation().changes("OrvoGUID", {}), IsEmpty());
    const Failure failure = failure_of([&] { translation().changes("OrvoUserType", {"4"}); });
    EXPECT_EQ(failure.description,
              u"(53) The server is unwilling to perform the request. This directory has no place "
              u"for OrvoUserType: its map gives it no attribute.");
}

TEST_F(TranslationTest, ANewEntryHasTheirNamesAndClasses) {
    use("[DIRECTORY.MAP]\ncn = uid | cn\nOrvoGUID =\n"
        "[DIRECTORY.MAP.CLASSES]\norvoPerson = inetOrgPerson | person\n");
    const std::vector<Attribute> created = translation().created(
        std::vector<Attribute>{{"cn", {"jdoe"}},
                               {"OrvoGUID", {"1"}},
                               {"uid", {"jdoe"}},
                               {"objectClass", {"orvoPerson", "person", "top"}}});
    ASSERT_EQ(created.size(), 3U);
    EXPECT_EQ(created[0].name, "uid");
    EXPECT_THAT(created[0].values, ElementsAre("jdoe"));
    EXPECT_EQ(created[1].name, "cn");
    EXPECT_THAT(created[2].values, ElementsAre("inetOrgPerson", "person", "top"));
}

TEST_F(TranslationTest, AUserRightBelowTheContainerIsNamedAsUsersAreThere) {
    use("[DIRECTORY.MAP]\ncn = uid\n");
    EXPECT_EQ(map_->their_name("cn=jsmith,ou=People,o=Company"), "uid=jsmith,ou=People,o=Company");
    EXPECT_EQ(map_->their_name("cn=Sales,ou=Groups,o=Company"), "cn=Sales,ou=Groups,o=Company");
    EXPECT_EQ(map_->their_name("cn=a,ou=Sales,ou=People,o=Company"),
              "cn=a,ou=Sales,ou=People,o=Company");
}

}  // namespace
}  // namespace orvo::directory
