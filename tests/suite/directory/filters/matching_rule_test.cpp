#include "suite/directory/filters/matching_rule.h"

#include <gtest/gtest.h>

#include <vector>

namespace orvo::directory {
namespace {

using Rule = MatchingRule;

struct Order {
    Rule rule;
    std::vector<std::vector<std::string>> groups;  // equal within a group, ascending
};

const std::vector<Order> orders = {
    {Rule::case_ignore,
     {{"", " ", "\t\n", "\xE2\x80\x8B"},
      {"a", "A", " a ",
       "\xC2\xA0"
       "a"},
      {"a b", "A  B", " a\tb\r\n", "a \xE3\x80\x80 b"},
      {"ab",
       "a\xC2\xAD"
       "b"},
      {"\xC3\xA4", "\xC3\x84"},    // ä Ä
      {"\xD0\xB6", "\xD0\x96"}}},  // ж Ж
    {Rule::case_exact, {{"A", " A"}, {"A  B", "A B"}, {"a"}, {"\xC3\x84"}, {"\xC3\xA4"}}},
    {Rule::telephone, {{"+49 30 123-4", "+49301234", " +49-30-12 34"}, {"5"}}},
    {Rule::integer,
     {{"-10000000000000000000000", "-010000000000000000000000"},
      {"-100"},
      {"-99"},
      {"-2"},
      {"-1"},
      {"0", "-0", "000"},
      {"1", "01"},
      {"2"},
      {"10"},
      {"99999999999999999999"},
      {"100000000000000000000"}}},
    {Rule::boolean, {{"FALSE", "false"}, {"TRUE", "True"}}},
    {Rule::time,
     {{"18991229060000Z"},
      {"18991230000000Z"},
      {"20240229123000Z", "20240229133000+0100", "202402291230Z", "20240229073000.0-0500"},
      {"20240229123000.000001Z"},
      {"20240229123000.000002Z", "20240229123000.0000020Z"},
      {"20240229123000.5Z", "20240229123000,5Z", "20240229133000.50+0100"},
      {"20240229123001Z"}}},
    {Rule::distinguished_name, {{"cn=a,o=Shop", "CN = A, O=shop"}, {"cn=a,o=Shops"}}},
    {Rule::octets, {{""}, {"A"}, {"a"}, {"a "}, {"\xFF"}}},
};

TEST(AMatchingKey, IsEqualForEqualValuesAndInTheirOrder) {
    for (const Order& order : orders) {
        std::optional<std::string> before;
        for (const std::vector<std::string>& group : order.groups) {
            const std::optional<std::string> key = matching_key(order.rule, group.front());
            ASSERT_TRUE(key) << group.front();
            for (const std::string& value : group)
                EXPECT_EQ(matching_key(order.rule, value), key) << group.front() << " " << value;
            if (before) {
                EXPECT_LT(*before, *key) << group.front();
            }
            before = key;
        }
    }
}

TEST(AMatchingKey, IsNoneForAValueThatTheRuleCannotRead) {
    for (const char* text : {"", "-", "1.5", "1 ", "+1", "a", "--1"})
        EXPECT_FALSE(matching_key(Rule::integer, text)) << text;
    for (const char* text : {"", "1", "yes", "TRUE "})
        EXPECT_FALSE(matching_key(Rule::boolean, text)) << text;
    for (const char* text : {"", "2024", "20240230000000Z", "20240229123000", "20240229123000,1,2Z",
                             "99991231235959.5Z"})
        EXPECT_FALSE(matching_key(Rule::time, text)) << text;
    EXPECT_FALSE(matching_key(Rule::distinguished_name, "Shop"));
    EXPECT_FALSE(matching_key(Rule::case_ignore, "\xFF"));
    EXPECT_FALSE(piece_key(Rule::case_ignore, "\xC3", Place::any));
}

TEST(APieceOfAValue, KeepsTheBlankAtTheSideWhereTheValueGoesOn) {
    EXPECT_EQ(matching_key(Rule::case_ignore, "Foo bar"), " foo  bar ");
    EXPECT_EQ(piece_key(Rule::case_ignore, " Foo  ", Place::initial), " foo ");
    EXPECT_EQ(piece_key(Rule::case_ignore, "Foo", Place::initial), " foo");
    EXPECT_EQ(piece_key(Rule::case_ignore, "o b", Place::any), "o  b");
    EXPECT_EQ(piece_key(Rule::case_ignore, "  o ", Place::any), " o ");
    EXPECT_EQ(piece_key(Rule::case_ignore, "  ", Place::any), " ");
    EXPECT_EQ(piece_key(Rule::case_ignore, " bar ", Place::final), " bar ");
    EXPECT_EQ(piece_key(Rule::case_exact, "Bar", Place::final), "Bar ");
    EXPECT_EQ(piece_key(Rule::telephone, "0 30-1", Place::any), "0301");
}

TEST(AMatchingRule, HasAFiltersNameOrNumber) {
    EXPECT_EQ(try_matching_rule("CASEIGNOREMATCH"), Rule::case_ignore);
    EXPECT_EQ(try_matching_rule("2.5.13.5"), Rule::case_exact);
    EXPECT_EQ(try_matching_rule("integerOrderingMatch"), Rule::integer);
    EXPECT_EQ(try_matching_rule("generalizedTimeMatch"), Rule::time);
    EXPECT_EQ(try_matching_rule("wordMatch"), std::nullopt);
    EXPECT_EQ(try_matching_rule(""), std::nullopt);
}

TEST(AMatchingRule, FollowsFromASyntax) {
    EXPECT_EQ(matching_rule_of(Syntax::text), Rule::case_ignore);
    EXPECT_EQ(matching_rule_of(Syntax::integer), Rule::integer);
    EXPECT_EQ(matching_rule_of(Syntax::boolean), Rule::boolean);
    EXPECT_EQ(matching_rule_of(Syntax::time), Rule::time);
    EXPECT_EQ(matching_rule_of(Syntax::bytes), Rule::octets);
}

}  // namespace
}  // namespace orvo::directory
