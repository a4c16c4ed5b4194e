#include "suite/directory/entries/search_condition.h"

#include <gmock/gmock.h>

#include <array>

namespace orvo::directory {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const AttributeTypes& types() {
    static const AttributeTypes made = AttributeTypes::from_descriptions(std::array<std::string, 5>{
        "( 2.5.4.3 NAME ( 'cn' 'commonName' ) EQUALITY caseIgnoreMatch "
        "SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )",
        "( 2.5.4.4 NAME 'sn' EQUALITY caseIgnoreMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )",
        "( 1.1.1 NAME 'profile' EQUALITY caseIgnoreMatch ORDERING caseIgnoreOrderingMatch "
        "SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )",
        "( 1.1.2 NAME 'role' EQUALITY integerMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.27 )",
        "( 1.1.3 NAME 'phone' EQUALITY telephoneNumberMatch "
        "SYNTAX 1.3.6.1.4.1.1466.115.121.1.50 )"});
    return made;
}

SearchCondition condition(TextView filter, const AttributeTypes& known = types()) {
    return SearchCondition(Filter::parse(filter), known);
}

TEST(ASearchCondition, LeavesToTheServerWhatItCanAnswer) {
    for (const char16_t* filter : {u"(&(cn=a*)(sn=b))", u"(profile>=m)", u"(role>=3)",
                                   u"(phone>=3)", u"(shoeSize>=4!)", u"(cn~=a!)"}) {
        const SearchCondition left = condition(filter);
        EXPECT_EQ(left.sent().text(), Filter::parse(filter).text());
        EXPECT_THAT(left.attributes(), IsEmpty());
        EXPECT_TRUE(left.is_true_of({"cn=x", {}}));
    }
}

TEST(ASearchCondition, DecidesTextWithoutAnOrderingRuleAndTextOfThePages) {
    const SearchCondition next = condition(u"(&(role=2)(commonName>=Smith!))");
    EXPECT_EQ(next.sent().text(), "(&(role=2)(commonName=*))");
    EXPECT_THAT(next.attributes(), ElementsAre("commonName"));
    EXPECT_EQ(condition(u"(cn<=m)").sent().text(), "(cn=*)");
    EXPECT_EQ(condition(u"(profile>=m!)").sent().text(), "(profile=*)");
}

TEST(ASearchCondition, WithoutASchemaDecidesTheTextOfThePages) {
    const AttributeTypes none;
    EXPECT_EQ(condition(u"(cn>=m!)", none).sent().text(), "(cn=*)");
    EXPECT_EQ(condition(u"(cn>=m)", none).sent().text(), "(cn>=m)");
    EXPECT_TRUE(condition(u"(cn>=m!)", none).is_true_of({"CN=m a", {}}));
}

TEST(ASearchCondition, TakesOfTheNamingAttributeTheValueInTheName) {
    const SearchCondition next = condition(u"(cn>=m!)");
    EXPECT_TRUE(next.is_true_of({"cn=N,o=Shop", {{"cn", {"a", "N"}}}}));
    EXPECT_TRUE(next.is_true_of({"2.5.4.3=N,o=Shop", {}}));
    EXPECT_FALSE(next.is_true_of({"cn=A,o=Shop", {{"cn", {"a", "N"}}}}));
    EXPECT_TRUE(next.is_true_of({"sn=A,o=Shop", {{"cn", {"a", "N"}}}}));
    EXPECT_FALSE(next.is_true_of({"sn=A,o=Shop", {{"sn", {"z"}}}}));
}

TEST(ASearchCondition, TellsByTheNameWhatItCannotBeTrueOf) {
    SearchCondition next = condition(u"(&(role=2)(&(cn>=M!)(cn>=a)))");
    EXPECT_FALSE(next.may_be_true_of("cn=M,o=Shop"));
    EXPECT_TRUE(next.may_be_true_of("cn=m a,o=Shop"));
    EXPECT_FALSE(next.may_be_true_of("commonName=L\\, a,o=Shop"));
    EXPECT_TRUE(next.may_be_true_of("sn=a,o=Shop"));
    EXPECT_TRUE(condition(u"(|(cn>=M!)(sn=a))").may_be_true_of("cn=a"));
    EXPECT_TRUE(condition(u"(!(cn>=M!))").may_be_true_of("cn=a"));
    EXPECT_TRUE(condition(u"(sn=a)").may_be_true_of("cn=a"));
}

}  // namespace
}  // namespace orvo::directory
