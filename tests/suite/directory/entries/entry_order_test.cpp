#include "suite/directory/entries/entry_order.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <tuple>

namespace orvo::directory {
namespace {

using testing::ElementsAre;

EntryData entry(const std::string& name) { return {name, {{"name", {name}}}}; }

// Rows of one column, the last attribute's first value.
FirstRows first_rows(std::size_t wanted = FirstRows::all) {
    return {wanted, [](const EntryData& entry) {
                return FirstRows::Row{from_utf8(entry.attributes.back().values.front())};
            }};
}

std::vector<std::string> in_order(FirstRows& rows) {
    std::vector<std::string> names;
    rows.take_each([&](FirstRows::Row&& row) { names.push_back(to_utf8(row[0].text_view())); });
    return names;
}

TEST(TheNamingPart, IsTheFirstAttributeOfANameAndItsValueWithoutEscapes) {
    const std::tuple<std::string_view, std::string_view, std::string> names[] = {
        {"cn=Smith,ou=Users,o=Shop", "cn", "Smith"},
        {"CN=Smith\\, John,o=Shop", "CN", "Smith, John"},
        {"cn=Smith\\2C John,o=Shop", "cn", "Smith, John"},
        {"cn=J\\C3\\B6rg,o=Shop", "cn", "J\xC3\xB6rg"},
        {"cn=a\\+b,o=Shop", "cn", "a+b"},
        {"cn=a=b", "cn", "a=b"},
        {"cn=a+sn=b,o=Shop", "cn", "a"},
        {"cn=\\FF,o=Shop", "cn", "\xFF"},
        {"cn=a\\2", "cn", "a2"},
        {"cn=a\\", "cn", "a\\"},
        {"cn=", "cn", ""},
        {"=", "", ""},
        {"cn", "cn", ""},
        {"", "", ""},
    };
    for (const auto& [name, attribute, value] : names) {
        const NamingPart part = naming_part(name);
        EXPECT_EQ(part.attribute, attribute) << name;
        EXPECT_EQ(part.value, value) << name;
    }
}

TEST(EntryOrder, IsThatOfTheNamingAttributeWithoutRegardToCase) {
    const char* const names[] = {
        "cn=\xC3\x84rne",       "cn=JONES,o=Shop",  "cn=Smith,ou=Users,o=Shop", "cn=smith!,o=Shop",
        "cn=SMITH John,o=Shop", "cn=Smith\\, John", "cn=smithers,o=Shop",       "cn=Zo\xC3\xAB"};
    for (std::size_t next = 1; next < std::size(names); ++next)
        EXPECT_LT(order_key(names[next - 1]), order_key(names[next])) << names[next];
}

TEST(FirstRows, AreHandedOverInOrder) {
    FirstRows rows = first_rows();
    for (const char* name : {"cn=b", "cn=C", "cn=a"}) rows.add(entry(name));
    EXPECT_EQ(rows.size(), 3u);
    EXPECT_THAT(in_order(rows), ElementsAre("cn=a", "cn=b", "cn=C"));
    EXPECT_EQ(rows.size(), 0u);
}

TEST(FirstRows, OfEqualNamesAreOrderedByTheWholeName) {
    FirstRows rows = first_rows(2);
    for (const char* name : {"cn=a,ou=z", "cn=a,ou=x", "cn=a,ou=y"}) rows.add(entry(name));
    EXPECT_THAT(in_order(rows), ElementsAre("cn=a,ou=x", "cn=a,ou=y"));
}

TEST(FirstRows, AreThoseInWhateverOrderTheyCame) {
    std::mt19937 random(20);
    std::vector<std::string> names;
    for (int number = 100; number < 400; ++number) names.push_back("cn=" + std::to_string(number));
    for (const std::size_t wanted : {1u, 2u, 7u, 299u, 300u, 301u}) {
        std::shuffle(names.begin(), names.end(), random);
        FirstRows rows = first_rows(wanted);
        for (const std::string& name : names) {
            rows.add(entry(name));
            ASSERT_LE(rows.size(), wanted);
        }
        std::vector<std::string> expected = names;
        std::sort(expected.begin(), expected.end());
        expected.resize(std::min(wanted, expected.size()));
        EXPECT_EQ(in_order(rows), expected) << wanted;
    }
}

TEST(FirstRows, TellByTheNameAloneWhatTheyWouldKeep) {
    FirstRows rows = first_rows(2);
    EXPECT_TRUE(rows.wants("cn=z"));
    for (const char* name : {"cn=d", "cn=b"}) rows.add(entry(name));
    EXPECT_TRUE(rows.wants("cn=c"));
    EXPECT_FALSE(rows.wants("cn=e"));
    EXPECT_FALSE(rows.wants("cn=d")) << "it is there already";
    rows.add(entry("cn=c"));
    EXPECT_FALSE(rows.wants("cn=d"));
}

TEST(FirstRows, CanBeginAgain) {
    FirstRows rows = first_rows(1);
    rows.add(entry("cn=a"));
    rows.clear();
    rows.add(entry("cn=b"));
    EXPECT_THAT(in_order(rows), ElementsAre("cn=b"));
}

}  // namespace
}  // namespace orvo::directory
