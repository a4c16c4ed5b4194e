#include "suite/directory/ldap/wire/paged_results.h"

#include <gtest/gtest.h>

#include <vector>

namespace orvo::directory::ldap {
namespace {

using namespace std::literals;

std::optional<std::string> next_page(std::string_view value) {
    const std::vector<Control> controls = {{"1.2.3", "x"},
                                           {std::string(paged_results_oid), std::string(value)}};
    return try_next_page(controls);
}

TEST(PagedResults, AreAskedForWithASizeAndAPlace) {
    EXPECT_EQ(paged_results_value(1000, ""), "\x30\x06\x02\x02\x03\xE8\x04\x00"sv);
    EXPECT_EQ(paged_results_value(5, "next"), "\x30\x09\x02\x01\x05\x04\x04next"sv);
}

TEST(PagedResults, NameThePageThatFollows) {
    EXPECT_EQ(next_page("\x30\x09\x02\x01\x00\x04\x04next"sv), "next");
    EXPECT_EQ(next_page("\x30\x05\x02\x01\x00\x04\x00"sv), "");
}

TEST(PagedResults, EndWhereTheServerSaysNothingOfPages) {
    EXPECT_EQ(try_next_page({}), "");
    const std::vector<Control> others = {{"1.2.3", "x"}};
    EXPECT_EQ(try_next_page(others), "");
}

TEST(PagedResults, AreNotGuessedFromWhatCannotBeRead) {
    for (std::string_view value : {""sv, "\x30"sv, "\x30\x03\x02\x01\x00"sv, "\x04\x00"sv,
                                   "\x30\x06\x02\x01\x00\x02\x01\x00"sv})
        EXPECT_FALSE(next_page(value));
    const std::vector<Control> unreadable = {{std::string(paged_results_oid), ""}};
    EXPECT_EQ(paged({}, unreadable).code, 84);
    EXPECT_EQ(paged({32, {}, {}}, unreadable).code, 32);
}

}  // namespace
}  // namespace orvo::directory::ldap
