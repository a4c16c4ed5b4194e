#include "suite/directory/schema/equality.h"

#include <gtest/gtest.h>

namespace orvo::directory {
namespace {

const Schema& schema() { return Schema::of_product(); }

bool are_equal(const char* attribute, std::string_view one, std::string_view other) {
    const AttributeType& type = *schema().types.find(attribute);
    return equality_key(schema(), type, one) == equality_key(schema(), type, other);
}

TEST(Values, AreEqualByTheRuleOfTheirAttribute) {
    EXPECT_TRUE(are_equal("sn", "de  Vries", "De vries"));
    EXPECT_FALSE(are_equal("DefaultURL", "/a", "/A"));
    EXPECT_TRUE(are_equal("telephoneNumber", "+44 1-2", "+4412"));
    EXPECT_TRUE(are_equal("member", "cn=a, o=b", "CN=A,o=B"));
    EXPECT_FALSE(are_equal("userPassword", "a", "A"));
}

TEST(Values, AreEqualOctetByOctetWhereThereIsNoRule) {
    EXPECT_TRUE(are_equal("facsimileTelephoneNumber", "1", "1"));
    EXPECT_FALSE(are_equal("facsimileTelephoneNumber", "a", "A"));
}

TEST(Values, AreEqualWhereTheyNameTheSameTypeOrClass) {
    EXPECT_TRUE(are_equal("objectClass", "PERSON", "2.5.6.6"));
    EXPECT_TRUE(are_equal("pwdAttribute", "userPassword", "2.5.4.35"));
    EXPECT_FALSE(are_equal("objectClass", "person", "organizationalPerson"));
    EXPECT_TRUE(are_equal("objectClass", "Nowhere", "nowhere"));
}

TEST(TimesOfOneSecond, AreEqualOnlyWithEqualFractions) {
    EXPECT_TRUE(are_equal("pwdFailureTime", "20200101000000Z", "20200101000000.0Z"));
    EXPECT_TRUE(are_equal("pwdFailureTime", "20200101000000.1Z", "20200101000000,10Z"));
    EXPECT_FALSE(are_equal("pwdFailureTime", "20200101000000.000001Z", "20200101000000.000002Z"));
}

TEST(ARepeatedValue, IsFoundWhereItIsFirst) {
    const AttributeType& role = *schema().types.find("OrvoRole");
    const std::vector<std::string> none = {"1", "2", "3"};
    const std::vector<std::string> some = {"1", "2", "3", "3", "2"};
    EXPECT_EQ(find_repeated(schema(), role, none), std::nullopt);
    EXPECT_EQ(find_repeated(schema(), role, some), 2u);
    EXPECT_EQ(find_value(schema(), role, some, "2"), 1u);
    EXPECT_EQ(find_value(schema(), role, some, "4"), std::nullopt);
}

}  // namespace
}  // namespace orvo::directory
