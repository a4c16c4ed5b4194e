#include "suite/directory/filters/filter_split.h"

#include <gmock/gmock.h>

#include "suite/directory/filters/filter_match.h"
#include "tests/suite/directory/filters/filter_random.h"
#include "tests/suite/directory/filters/plain_entry.h"

namespace orvo::directory {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

bool is_kept(const Filter& item) {
    return (item.kind == Filter::Kind::at_least || item.kind == Filter::Kind::at_most) &&
           item.attribute == "cn";
}

SplitFilter split_text(TextView text) { return split(Filter::parse(text), is_kept); }

TEST(ASplitFilter, IsSentAsItStandsWhereNothingIsKeptBack) {
    const SplitFilter whole = split_text(u"(&(a=b)(|(c>=d)(!(e=f))))");
    EXPECT_EQ(whole.sent.text(), "(&(a=b)(|(c>=d)(!(e=f))))");
    EXPECT_FALSE(whole.kept);
    EXPECT_THAT(whole.attributes, IsEmpty());
}

TEST(ASplitFilter, AsksForMoreThanTheFilterAndKeepsTheRest) {
    struct Row {
        const char16_t* filter;
        const char* sent;
        const char* kept;
    };
    const Row rows[] = {
        {u"(cn>=a)", "(cn=*)", "(&(cn>=a))"},
        {u"(& (objectClass=p)(OrvoUserType=*)(cn>=Smith!))",
         "(&(objectClass=p)(OrvoUserType=*)(cn=*))", "(&(cn>=Smith!))"},
        {u"(&(a=b)(&(cn>=m)(c=d)(cn<=n)))", "(&(a=b)(&(cn=*)(c=d)(cn=*)))", "(&(cn>=m)(cn<=n))"},
        {u"(|(cn>=m)(mail=a))", "(|(cn=*)(mail=a))", "(&(|(cn>=m)(mail=a)))"},
        {u"(&(a=b)(|(&(cn>=m)(x=y))(mail=a)))", "(&(a=b)(|(&(cn=*)(x=y))(mail=a)))",
         "(&(|(&(cn>=m)(x=y))(mail=a)))"},
        {u"(!(cn>=m))", "(objectClass=*)", "(&(!(cn>=m)))"},
        {u"(&(a=b)(!(cn>=m)))", "(&(a=b))", "(&(!(cn>=m)))"},
        {u"(!(!(cn>=m)))", "(cn=*)", "(&(!(!(cn>=m))))"},
        {u"(!(&(cn>=m)(a=b)))", "(objectClass=*)", "(&(!(&(cn>=m)(a=b))))"},
        {u"(!(|(cn>=m)(a=b)))", "(&(!(a=b)))", "(&(!(|(cn>=m)(a=b))))"},
        {u"(!(&(!(cn>=m))(a=b)))", "(|(cn=*)(!(a=b)))", "(&(!(&(!(cn>=m))(a=b))))"},
    };
    for (const Row& row : rows) {
        const SplitFilter parts = split_text(row.filter);
        EXPECT_EQ(parts.sent.text(), row.sent) << to_utf8(row.filter);
        ASSERT_TRUE(parts.kept);
        EXPECT_EQ(parts.kept->text(), row.kept) << to_utf8(row.filter);
    }
}

TEST(ASplitFilter, NamesTheAttributesOfWhatIsKept) {
    EXPECT_THAT(split_text(u"(&(a=b)(cn>=m)(|(mail=x)(cn<=n)(!(sn=y))))").attributes,
                ElementsAre("cn", "mail", "sn"));
}

// Whatever the filter: what is sent and what is kept are true together where the filter is.
TEST(ASplitFilter, MeansTheSameAsTheWhole) {
    const MatchingLookup lookup = [](std::string_view name) -> std::optional<AttributeMatching> {
        if (name.find('-') != std::string_view::npos) return std::nullopt;
        return AttributeMatching{MatchingRule::case_ignore};
    };
    const PlainEntry::Attributes attributes[] = {
        {{"objectClass", {"x"}}},
        {{"objectClass", {"x"}}, {"cn", {"a"}}, {"OrvoUserType", {"b", "("}}},
        {{"objectClass", {"x"}}, {"cn", {"!b", "z"}}, {"2.5.4.3", {"a"}}},
        {{"objectClass", {"x"}}, {"CN", {"\\"}}, {"OrvoUserType", {"a"}}},
        {{"objectClass", {"x"}}, {"OrvoUserType", {"*"}}},
    };
    int split_ones = 0;
    for (std::uint32_t seed = 1; seed <= 10000; ++seed) {
        const Filter filter = FilterDice(seed).tree(5);
        const SplitFilter parts = split(filter, is_kept);
        if (!parts.kept) continue;
        ++split_ones;
        const FilterMatcher whole(filter, lookup), sent(parts.sent, lookup),
            kept(*parts.kept, lookup);
        for (const PlainEntry::Attributes& held : attributes) {
            const PlainEntry entry(held);
            ASSERT_EQ(sent.matches(entry) && kept.matches(entry), whole.matches(entry))
                << "seed " << seed << ": " << filter.text();
        }
    }
    EXPECT_GT(split_ones, 500);
}

}  // namespace
}  // namespace orvo::directory
