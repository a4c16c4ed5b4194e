#include "suite/directory/ldif/ldif_writer.h"

#include <gmock/gmock.h>

#include <random>
#include <sstream>

#include "suite/directory/ldif/ldif_reader.h"

namespace orvo::directory {
namespace {

std::string written(const EntryData& entry) {
    std::string text;
    append_ldif(text, entry);
    return text;
}

TEST(AnEntry, IsWrittenAsTheStandardHasIt) {
    EXPECT_EQ(written({"cn=a,o=Shop", {{"objectClass", {"orvoPerson", "top"}}, {"cn", {"a"}}}}),
              "dn: cn=a,o=Shop\nobjectClass: orvoPerson\nobjectClass: top\ncn: a\n\n");
    EXPECT_EQ(written({"cn=\xC3\xA9", {{"cn", {"\xC3\xA9"}}}}), "dn:: Y249w6k=\ncn:: w6k=\n\n");
}

TEST(AValue, IsEncodedWhereItWouldBeReadAsSomethingElse) {
    for (const char* value : {" a", "a ", ":a", "<a", "a\nb", "a\r", "\xC3\xA9", "a\tb", "\x7F"})
        EXPECT_TRUE(written({"", {{"cn", {value}}}}).starts_with("dn:\ncn:: ")) << value;
    for (const char* value : {"a", "a b", "-", "#a", "a:<", "dn: x", "a  b"})
        EXPECT_EQ(written({"", {{"cn", {value}}}}), "dn:\ncn: " + std::string(value) + "\n\n");
    EXPECT_EQ(written({"", {{"cn", {std::string(1, '\0')}}}}), "dn:\ncn:: AA==\n\n");
    EXPECT_EQ(written({"", {{"cn", {""}}}}), "dn:\ncn:\n\n");
}

TEST(ALine, IsFoldedWhereItIsLong) {
    const std::string seventy(70, 'x');
    EXPECT_EQ(written({"cn=" + seventy.substr(0, 69), {}}),
              "dn: cn=" + seventy.substr(0, 69) + "\n\n");
    EXPECT_EQ(written({"cn=" + seventy, {}}), "dn: cn=" + seventy.substr(0, 69) + "\n x\n\n");
    EXPECT_EQ(written({"cn=" + seventy + seventy + seventy, {}}),
              "dn: cn=" + seventy.substr(0, 69) + "\n " + std::string(75, 'x') + "\n " +
                  std::string(66, 'x') + "\n\n");
}

using Dice = std::mt19937;

std::string random_value(Dice& dice) {
    static const std::string octets("aZ0 :<#-;\n\r\t\0\x7F\x80\xC3\xA9\xFF=", 19);
    std::string value;
    const std::size_t size = dice() % (dice() % 8 == 0 ? 400 : 8);
    const bool is_plain = dice() % 2 == 0;
    while (value.size() < size)
        value += is_plain ? octets[dice() % 4] : octets[dice() % octets.size()];
    return value;
}

std::vector<EntryData> random_entries(Dice& dice) {
    std::vector<EntryData> entries(dice() % 5);
    for (EntryData& entry : entries) {
        entry.name = random_value(dice);
        for (std::size_t left = dice() % 6; left > 0; --left) {
            Attribute& attribute = entry.attributes.emplace_back();
            attribute.name = "a" + std::to_string(left) + std::string(dice() % 3 ? 0 : 90, 'x') +
                             (dice() % 3 ? "" : ";lang-de");
            for (std::size_t values = 1 + dice() % 3; values > 0; --values)
                attribute.values.push_back(random_value(dice));
        }
    }
    return entries;
}

// What a text editor or another program could have made of the same entries.
std::string rewritten(const std::string& text, Dice& dice) {
    std::string result;
    bool at_begin = true;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (at_begin && dice() % 20 == 0 && text[at] != ' ') result += "# dn: cn=x\n  y\n";
        at_begin = text[at] == '\n';
        if (at_begin && dice() % 2 == 0) result += '\r';
        result += text[at];
        const bool may_fold = !at_begin && at + 1 < text.size() && text[at + 1] != '\n';
        if (may_fold && dice() % 30 == 0) result += "\n ";
        if (at_begin && at > 0 && text[at - 1] == '\n' && dice() % 3 == 0) result += "\n";
    }
    return result;
}

void expect_equal(const std::vector<EntryData>& entries, const std::string& text) {
    std::istringstream in(text);
    LdifReader reader(in);
    for (const EntryData& entry : entries) {
        const std::optional<LdifRecord> read = reader.next();
        ASSERT_TRUE(read);
        EXPECT_EQ(read->entry.name, entry.name);
        ASSERT_EQ(read->entry.attributes.size(), entry.attributes.size());
        for (std::size_t index = 0; index < entry.attributes.size(); ++index) {
            EXPECT_EQ(read->entry.attributes[index].name, entry.attributes[index].name);
            EXPECT_EQ(read->entry.attributes[index].values, entry.attributes[index].values);
        }
    }
    EXPECT_FALSE(reader.next());
}

TEST(Entries, AreReadAsTheyWereWritten) {
    for (std::uint32_t seed = 1; seed <= 2000; ++seed) {
        Dice dice(seed);
        SCOPED_TRACE(seed);
        const std::vector<EntryData> entries = random_entries(dice);
        std::string text;
        for (const EntryData& entry : entries) append_ldif(text, entry);
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = text.find('\n', at);
            ASSERT_LE(end - at, 76u);
            at = end + 1;
        }
        expect_equal(entries, text);
        expect_equal(entries, rewritten(text, dice));
        if (testing::Test::HasFailure()) return;
    }
}

}  // namespace
}  // namespace orvo::directory
