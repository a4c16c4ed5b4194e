#include <gtest/gtest.h>

#include <string>

#include "suite/directory/filters/filter.h"
#include "tests/suite/directory/filters/filter_texts.h"
#include "tests/support/raised.h"

namespace orvo::directory {
namespace {

using Kind = Filter::Kind;

Filter parse(TextView text) { return Filter::parse(text); }

Text refusal(TextView text) {
    return raised_by([&] { parse(text); }).description;
}

TEST(AFilter, IsReadLenientlyAndWrittenStrictly) {
    for (const AcceptedFilter& row : accepted_filters)
        EXPECT_EQ(parse(row.text).text(), row.strict) << to_utf8(row.text);
}

TEST(AFilter, ReadFromItsStrictTextIsTheSame) {
    for (const AcceptedFilter& row : accepted_filters)
        EXPECT_EQ(parse(from_utf8(row.strict)), parse(row.text)) << row.strict;
}

TEST(AFilter, ThatCannotBeReadIsRefusedWithThePlaceAndTheReason) {
    for (const RefusedFilter& row : refused_filters) {
        Text expected = u"(87) The search filter is not valid. ";
        expected += row.reason;
        expected += u". The filter is '";
        expected += row.text;
        expected += u"'.";
        EXPECT_EQ(to_utf8(refusal(row.text)), to_utf8(expected));
    }
}

TEST(AFilter, IsRefusedUnderTheCallersSource) {
    const Failure failure = raised_by([] { Filter::parse(u"(& (cn=a)"); });
    EXPECT_EQ(failure.number, error_number(0x8007203E));
    EXPECT_EQ(failure.description,
              u"(87) The search filter is not valid. Character 1: the parenthesis is not closed. "
              u"The filter is '(& (cn=a)'.");
}

TEST(AFilter, IsATreeOfItsParts) {
    const Filter filter = parse(u"(&(!cn;x-a=*b*c)(:dn:caseExactMatch:=\\ff))");
    ASSERT_EQ(filter.kind, Kind::all_of);
    ASSERT_EQ(filter.parts.size(), 2u);
    ASSERT_EQ(filter.parts[0].kind, Kind::negation);
    ASSERT_EQ(filter.parts[0].parts.size(), 1u);
    const Filter& substrings = filter.parts[0].parts[0];
    EXPECT_EQ(substrings.kind, Kind::substrings);
    EXPECT_EQ(substrings.attribute, "cn;x-a");
    EXPECT_EQ(substrings.pieces, (std::vector<std::string>{"", "b", "c"}));
    const Filter& extensible = filter.parts[1];
    EXPECT_EQ(extensible.kind, Kind::extensible);
    EXPECT_EQ(extensible.attribute, "");
    EXPECT_EQ(extensible.rule, "caseExactMatch");
    EXPECT_TRUE(extensible.of_name);
    EXPECT_EQ(extensible.value, "\xFF");
}

Text repeated(TextView text, std::size_t times) {
    Text result;
    for (std::size_t i = 0; i < times; ++i) result += text;
    return result;
}

TEST(AFilter, MayBeAHundredLevelsDeep) {
    EXPECT_EQ(parse(repeated(u"(!", 99) + u"(cn=a)" + repeated(u")", 99)).text(),
              std::string(to_utf8(repeated(u"(!", 99))) + "(cn=a)" + std::string(99, ')'));
    const TextView reason = u"more than 100 filters stand one inside another";
    EXPECT_NE(refusal(repeated(u"(!", 100) + u"(cn=a)" + repeated(u")", 100))
                  .find(u"Character 201: " + Text(reason)),
              Text::npos);
    EXPECT_NE(
        refusal(u"(" + repeated(u"!", 100) + u"cn=a)").find(u"Character 102: " + Text(reason)),
        Text::npos);
    EXPECT_NE(refusal(repeated(u"(", 500'000)).find(u"Character 101: " + Text(reason)), Text::npos);
}

TEST(AFilter, MayHaveAMillionCharacters) {
    const Text longest = u"(cn=" + Text(999'995, u'a') + u")";
    EXPECT_EQ(parse(longest).value.size(), 999'995u);
    EXPECT_EQ(refusal(u"(cn=" + Text(999'996, u'a') + u")"),
              u"(87) The search filter is not valid. Character 1000001: the filter has more than "
              u"1000000 characters. The filter is '(cn=" +
                  Text(196, u'a') + u"...'.");
}

TEST(AFilter, FullOfParenthesesInItsValuesIsReadOrRefusedAtOnce) {
    const Text open = repeated(u"( a", 200'000);
    EXPECT_NE(refusal(u"(cn=" + open + u")").find(u"Character 5: the parenthesis is not closed"),
              Text::npos);
    EXPECT_EQ(parse(u"(cn=" + open + repeated(u")", 200'000) + u")").value.size(), 800'000u);
}

}  // namespace
}  // namespace orvo::directory
