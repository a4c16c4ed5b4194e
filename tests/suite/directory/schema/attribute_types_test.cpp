#include "suite/directory/schema/attribute_types.h"

#include <gtest/gtest.h>

namespace orvo::directory {
namespace {

AttributeTypes types_of(std::vector<std::string> descriptions) {
    return AttributeTypes::from_descriptions(descriptions);
}

TEST(AttributeTypes, AreFoundByEveryNameAndTheNumberInAnyCase) {
    const AttributeTypes types = types_of({"( 2.5.4.3 NAME ( 'cn' 'commonName' ) SUP name )"});
    const AttributeType* cn = types.find("cn");
    ASSERT_NE(cn, nullptr);
    EXPECT_EQ(types.find("COMMONNAME"), cn);
    EXPECT_EQ(types.find("2.5.4.3"), cn);
    EXPECT_EQ(types.find("cn;lang-de"), cn);
    EXPECT_EQ(cn->names, (std::vector<std::string>{"cn", "commonName"}));
    EXPECT_EQ(types.find("sn"), nullptr);
}

TEST(AttributeTypes, HaveTheSyntaxOfTheirValues) {
    const AttributeTypes types = types_of({
        "( 1.1.1 NAME 'anInteger' SYNTAX 1.3.6.1.4.1.1466.115.121.1.27 SINGLE-VALUE )",
        "( 1.1.2 NAME 'aBoolean' SYNTAX 1.3.6.1.4.1.1466.115.121.1.7 )",
        "( 1.1.3 NAME 'aTime' SYNTAX 1.3.6.1.4.1.1466.115.121.1.24 )",
        "( 1.1.4 NAME 'aKey' SYNTAX 1.3.6.1.4.1.1466.115.121.1.40{128} )",
        "( 1.1.5 NAME 'aPicture' SYNTAX 1.3.6.1.4.1.1466.115.121.1.28 )",
        "( 1.1.6 NAME 'aText' SYNTAX 1.3.6.1.4.1.1466.115.121.1.15{64} )",
    });
    EXPECT_EQ(types.find("aninteger")->syntax, Syntax::integer);
    EXPECT_TRUE(types.find("aninteger")->single_value);
    EXPECT_EQ(types.find("aboolean")->syntax, Syntax::boolean);
    EXPECT_FALSE(types.find("aboolean")->single_value);
    EXPECT_EQ(types.find("atime")->syntax, Syntax::time);
    EXPECT_EQ(types.find("akey")->syntax, Syntax::bytes);
    EXPECT_EQ(types.find("apicture")->syntax, Syntax::bytes);
    EXPECT_EQ(types.find("atext")->syntax, Syntax::text);
}

TEST(AttributeTypes, WithoutASyntaxHaveTheirSuperiors) {
    const AttributeTypes types = types_of({
        "( 1.1.3 NAME 'grandchild' SUP 1.1.2 )",
        "( 1.1.2 NAME 'child' SUP PARENT SINGLE-VALUE )",
        "( 1.1.1 NAME 'parent' SYNTAX 1.3.6.1.4.1.1466.115.121.1.27 )",
        "( 1.1.4 NAME 'orphan' SUP nobody )",
    });
    EXPECT_EQ(types.find("grandchild")->syntax, Syntax::integer);
    EXPECT_EQ(types.find("child")->syntax, Syntax::integer);
    EXPECT_EQ(types.find("orphan")->syntax, Syntax::text);
}

TEST(AttributeTypes, HaveTheMatchingRulesOfTheirOwnOrTheirSuperiors) {
    const AttributeTypes types = types_of({
        "( 2.5.4.41 NAME 'name' EQUALITY caseIgnoreMatch SUBSTR caseIgnoreSubstringsMatch "
        "SYNTAX 1.3.6.1.4.1.1466.115.121.1.15{32768} )",
        "( 2.5.4.3 NAME ( 'cn' 'commonName' ) SUP name )",
        "( 1.1.1 NAME 'exact' SUP cn EQUALITY caseExactMatch ORDERING 2.5.13.6 )",
    });
    EXPECT_EQ(types.find("cn")->equality, "caseIgnoreMatch");
    EXPECT_EQ(types.find("cn")->ordering, "");
    EXPECT_EQ(types.find("cn")->substrings, "caseIgnoreSubstringsMatch");
    EXPECT_EQ(types.find("exact")->equality, "caseExactMatch");
    EXPECT_EQ(types.find("exact")->ordering, "2.5.13.6");
    EXPECT_EQ(types.find("exact")->substrings, "caseIgnoreSubstringsMatch");
}

TEST(AttributeTypes, ThatAreTheirOwnSuperiorsEndInText) {
    const AttributeTypes types =
        types_of({"( 1.1.1 NAME 'one' SUP two )", "( 1.1.2 NAME 'two' SUP one )"});
    EXPECT_EQ(types.find("one")->syntax, Syntax::text);
}

TEST(AttributeTypes, AreReadWithEverythingThatADescriptionMayHold) {
    const AttributeTypes types = types_of({
        "( 1.1.1 NAME 'full' DESC 'with ( and ) and SYNTAX' OBSOLETE SUP name EQUALITY "
        "integerMatch ORDERING integerOrderingMatch SUBSTR x SYNTAX "
        "'1.3.6.1.4.1.1466.115.121.1.27' SINGLE-VALUE COLLECTIVE NO-USER-MODIFICATION USAGE "
        "directoryOperation X-ORIGIN ( 'a' 'b' ) X-ORDERED 'VALUES' )",
        "(1.1.2 NAME('tight' 'close')SYNTAX 1.3.6.1.4.1.1466.115.121.1.7)",
        "( OrvoAttribute:1 NAME 'byName' SYNTAX 1.3.6.1.4.1.1466.115.121.1.27 )",
        "( 1.1.3 )",
    });
    EXPECT_EQ(types.find("full")->syntax, Syntax::integer);
    EXPECT_TRUE(types.find("full")->is_operational);
    EXPECT_TRUE(types.find("full")->no_user_modification);
    EXPECT_FALSE(types.find("tight")->is_operational);
    EXPECT_FALSE(types.find("tight")->no_user_modification);
    EXPECT_EQ(types.find("close")->syntax, Syntax::boolean);
    EXPECT_EQ(types.find("byname")->syntax, Syntax::integer);
    EXPECT_EQ(types.find("1.1.3")->syntax, Syntax::text);
}

TEST(AttributeTypes, LeaveOutWhatCannotBeRead) {
    const AttributeTypes types =
        types_of({"", "(", "( )", "1.1.1 NAME 'a'", "( 1.1.1 NAME 'a'", "( 1.1.1 NAME ( 'a' )",
                  "( 1.1.1 NAME 'a )", "( 1.1.2 NAME 'good' )"});
    EXPECT_EQ(types.find("a"), nullptr);
    EXPECT_EQ(types.find("1.1.1"), nullptr);
    EXPECT_NE(types.find("good"), nullptr);
}

TEST(AttributeTypes, TellWhetherTwoDescriptionsMeanTheSame) {
    const AttributeTypes types =
        types_of({"( 2.5.4.3 NAME ( 'cn' 'commonName' ) )", "( 2.5.4.36 NAME 'userCertificate' )"});
    EXPECT_TRUE(types.same("CN", "commonname"));
    EXPECT_TRUE(types.same("2.5.4.3", "cn"));
    EXPECT_TRUE(types.same("cn;lang-de;x-a", "commonName;X-A;LANG-DE"));
    EXPECT_TRUE(types.same("userCertificate;binary", "usercertificate"));
    EXPECT_TRUE(types.same("unknown", "UNKNOWN"));
    EXPECT_FALSE(types.same("cn", "cn;lang-de"));
    EXPECT_FALSE(types.same("cn", "userCertificate"));
    EXPECT_FALSE(types.same("unknown", "other"));
}

TEST(AttributeTypes, WithoutASchemaAreEmpty) {
    EXPECT_TRUE(AttributeTypes().empty());
    EXPECT_TRUE(types_of({}).empty());
    EXPECT_EQ(AttributeTypes().find("cn"), nullptr);
}

}  // namespace
}  // namespace orvo::directory
