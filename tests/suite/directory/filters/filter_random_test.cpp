#include "tests/suite/directory/filters/filter_random.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/values/failure.h"
#include "suite/directory/filters/filter_match.h"
#include "tests/suite/directory/filters/filter_texts.h"

namespace orvo::directory {
namespace {

TEST(ARandomFilterTree, IsReadBackFromItsText) {
    for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
        const Filter filter = FilterDice(seed).tree(6);
        const std::string text = filter.text();
        const Filter again = Filter::parse(from_utf8(text));
        ASSERT_EQ(again, filter) << "seed " << seed << ": " << text;
        ASSERT_EQ(again.text(), text) << "seed " << seed;
    }
}

// An entry whose every attribute has the same values.
class AnyEntry : public MatchedEntry {
public:
    void append_values(std::string_view, std::vector<std::string_view>& values) const override {
        values.insert(values.end(), {"a", "20240229123000Z", "-17", "TRUE", "a b (c)"});
    }
    void append_attributes(std::vector<std::string_view>& names) const override {
        names.push_back("cn");
    }
    void append_name_values(std::string_view,
                            std::vector<std::string_view>& values) const override {
        values.push_back("Users");
    }
    void append_name_attributes(std::vector<std::string_view>& names) const override {
        names.push_back("ou");
    }
};

std::optional<AttributeMatching> any_rule(std::string_view name) {
    const std::size_t rule = name.size() % 9;
    if (rule == 8) return std::nullopt;
    return AttributeMatching{static_cast<MatchingRule>(rule)};
}

// Whatever is read has a strict text that means the same and can be evaluated; whatever is not is
// refused as a filter is.
bool survives(const Text& text) {
    try {
        const Filter filter = Filter::parse(text);
        FilterMatcher(filter, any_rule).evaluate(AnyEntry());
        EXPECT_EQ(Filter::parse(from_utf8(filter.text())), filter) << to_utf8(text);
        return true;
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, error_number(0x8007203E)) << to_utf8(text);
        return false;
    }
}

TEST(ARandomlyChangedFilterText, IsReadOrRefusedAndDoesNoHarm) {
    std::vector<TextView> seeds;
    for (const AcceptedFilter& row : accepted_filters) seeds.push_back(row.text);
    for (const RefusedFilter& row : refused_filters) seeds.push_back(row.text);
    constexpr int rounds = 20'000;
    int read = 0;
    for (std::uint32_t seed = 1; seed <= rounds; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        FilterDice dice(seed);
        const TextView text = seeds[dice.roll(seeds.size())];
        read += survives(dice.changed(text, seeds[dice.roll(seeds.size())])) ? 1 : 0;
        if (HasFailure()) return;
    }
    // Neither side of the grammar is left out.
    EXPECT_GT(read, rounds / 10);
    EXPECT_LT(read, rounds * 9 / 10);
}

}  // namespace
}  // namespace orvo::directory
