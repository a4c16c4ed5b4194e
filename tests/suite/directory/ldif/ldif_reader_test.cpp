#include "suite/directory/ldif/ldif_reader.h"

#include <gmock/gmock.h>

#include <sstream>

#include "suite/directory/ldif/base64.h"

namespace orvo::directory {
namespace {

using testing::ElementsAre;
using testing::SizeIs;
using Kind = LdifRecord::Kind;

std::vector<LdifRecord> records_of(const std::string& text) {
    std::istringstream in(text);
    LdifReader reader(in);
    std::vector<LdifRecord> records;
    while (std::optional<LdifRecord> record = reader.next()) records.push_back(*std::move(record));
    return records;
}

std::string refusal_of(const std::string& text) {
    try {
        records_of(text);
    } catch (const LdifError& error) {
        return error.what();
    }
    return "taken";
}

constexpr const char* two = R"(version: 1
# A comment
  that goes on

dn: cn=jsmith,ou=Users,o=Shop
objectClass: orvoPerson
cn: jsmith
# in between
OBJECTCLASS: top
description: a long
  value in
 to which no blank is put
sn:: w5xuYWw=
empty:
blanks:   x 


dn:: Y24964Kg
cn:: 64Kg)";

TEST(AnLdifFile, HasEntries) {
    const std::vector<LdifRecord> records = records_of(two);
    ASSERT_THAT(records, SizeIs(2));
    const LdifRecord& first = records[0];
    EXPECT_EQ(first.kind, Kind::entry);
    EXPECT_EQ(first.line, 5);
    EXPECT_EQ(first.entry.name, "cn=jsmith,ou=Users,o=Shop");
    ASSERT_THAT(first.entry.attributes, SizeIs(6));
    EXPECT_EQ(first.entry.attributes[0].name, "objectClass");
    EXPECT_THAT(first.entry.attributes[0].values, ElementsAre("orvoPerson", "top"));
    EXPECT_THAT(first.entry.attributes[2].values,
                ElementsAre("a long value into which no blank is put"));
    EXPECT_THAT(first.entry.attributes[3].values, ElementsAre("\xC3\x9Cnal"));
    EXPECT_THAT(first.entry.attributes[4].values, ElementsAre(""));
    EXPECT_THAT(first.entry.attributes[5].values, ElementsAre("x "));
    EXPECT_EQ(records[1].entry.name, "cn=\xEB\x82\xA0");
    EXPECT_EQ(records[1].line, 18);
}

TEST(AnLdifFile, MayEndItsLinesInTwoCharacters) {
    std::string text = two;
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
        text.insert(at, "\r");
    const std::vector<LdifRecord> records = records_of(text);
    ASSERT_THAT(records, SizeIs(2));
    EXPECT_THAT(records[0].entry.attributes[2].values,
                ElementsAre("a long value into which no blank is put"));
}

TEST(AnLdifFile, MayBeEmpty) {
    for (const char* text : {"", "\n\n", "# x", "version: 1\n", "version: 1"})
        EXPECT_THAT(records_of(text), SizeIs(0)) << text;
}

TEST(AnLdifFile, HasChanges) {
    const std::vector<LdifRecord> records = records_of(
        "version: 1\n"
        "dn: cn=a\nchangetype: add\ncn: a\n\n"
        "dn: cn=b\nChangeType: DELETE\n\n"
        "dn: cn=c\nchangetype: modify\n"
        "add: mail\nmail: x\nMAIL: y\n-\n"
        "delete: sn\n-\n"
        "delete: sn\nsn: z\n-\n"
        "replace: description\ndescription:: eA==\n\n"
        "dn: cn=d\nchangetype: delete\n");
    ASSERT_THAT(records, SizeIs(4));
    EXPECT_EQ(records[3].entry.name, "cn=d");
    EXPECT_EQ(records[0].kind, Kind::add);
    EXPECT_THAT(records[0].entry.attributes, SizeIs(1));
    EXPECT_EQ(records[1].kind, Kind::remove);
    EXPECT_EQ(records[1].entry.name, "cn=b");
    EXPECT_EQ(records[2].kind, Kind::modify);
    ASSERT_THAT(records[2].changes, SizeIs(4));
    const std::vector<Replacement>& changes = records[2].changes;
    EXPECT_EQ(changes[0].kind, Change::add);
    EXPECT_EQ(changes[0].attribute, "mail");
    EXPECT_THAT(changes[0].values, ElementsAre("x", "y"));
    EXPECT_EQ(changes[1].kind, Change::remove);
    EXPECT_THAT(changes[1].values, SizeIs(0));
    EXPECT_THAT(changes[2].values, ElementsAre("z"));
    EXPECT_EQ(changes[3].kind, Change::replace);
    EXPECT_THAT(changes[3].values, ElementsAre("x"));
}

TEST(AnLdifFile, IsRefusedWithTheLineAndTheReason) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"version: 2\n\ndn: cn=a\n", "1: version '2' is not known"},
        {"cn: a\n", "1: a record begins with 'dn:'"},
        {"dn: cn=a\ncn: a\n\nsearch: 2\nresult: 0 Success\n", "4: a record begins with 'dn:'"},
        {"\n\ndn: cn=a\ncn\n", "4: there is no ':'"},
        {"dn: cn=a\nc n: x\n", "2: 'c n' is no attribute"},
        {"dn: cn=a\n: x\n", "2: '' is no attribute"},
        {"dn: cn=a\nchangetype: modify\nadd: cn\ncn: x\n-: y\n", "5: '-' is no attribute"},
        {"dn: cn=a\nphoto:< file:///etc/passwd\n",
         "2: values that stand in another file are not "
         "read"},
        {"dn: cn=a\ncn:: abc\n", "2: the value is not base64"},
        {"dn: cn=a\ncn:: ab!=\n", "2: the value is not base64"},
        {" dn: cn=a\n", "1: nothing stands before this line that it could continue"},
        {"dn: cn=a\n\n cn: a\n", "3: nothing stands before this line that it could continue"},
        {"dn: cn=a\ncontrol: 1.2.3 true\nchangetype: delete\n", "2: controls are not read"},
        {"dn: cn=a\ncn: a\ndn: cn=b\n", "3: 'dn' is not expected here"},
        {"dn: cn=a\ncn: a\nchangetype: add\n", "3: 'changetype' is not expected here"},
        {"dn: cn=a\ncn: a\n-\n", "3: '-' is not expected here"},
        {"dn: cn=a\nchangetype: modrdn\nnewrdn: cn=b\n", "2: entries are not renamed"},
        {"dn: cn=a\nchangetype: moddn\n", "2: entries are not renamed"},
        {"dn: cn=a\nchangetype: paint\n", "2: 'paint' is no kind of change"},
        {"dn: cn=a\nchangetype: delete\ncn: a\n", "3: nothing is expected here"},
        {"dn: cn=a\nchangetype: modify\nincrement: x\n",
         "3: 'add:', 'delete:' or 'replace:' is expected here"},
        {"dn: cn=a\nchangetype: modify\n-\n",
         "3: 'add:', 'delete:' or 'replace:' is expected here"},
        {"dn: cn=a\nchangetype: modify\nadd: cn\nsn: x\n", "4: a value of 'cn' is expected here"},
        {"dn: cn=a\nchangetype: modify\nadd: c n\n", "3: 'c n' is no attribute"},
    };
    for (const auto& [text, reason] : cases) EXPECT_EQ(refusal_of(text), "line " + reason) << text;
}

// A file that is made while it is read.
class Repeated : public std::streambuf {
public:
    Repeated(std::string piece, std::int64_t times, std::string begin = {})
        : begin_(std::move(begin)), piece_(std::move(piece)), left_(times) {
        setg(begin_.data(), begin_.data(), begin_.data() + begin_.size());
    }

private:
    int_type underflow() override {
        if (left_-- == 0) return traits_type::eof();
        setg(piece_.data(), piece_.data(), piece_.data() + piece_.size());
        return traits_type::to_int_type(piece_.front());
    }

    std::string begin_;
    std::string piece_;
    std::int64_t left_;
};

TEST(AnLdifFile, MayBeLongerThanTheMemory) {
    Repeated entries("dn: cn=a,o=Shop\nobjectClass: top\ncn: a\n\n", 100'000);
    std::istream in(&entries);
    LdifReader reader(in);
    std::int64_t count = 0;
    std::int64_t line = 0;
    while (const std::optional<LdifRecord> record = reader.next()) {
        ++count;
        line = record->line;
    }
    EXPECT_EQ(count, 100'000);
    EXPECT_EQ(line, 99'999 * 4 + 1);
}

std::string refusal_of_endless(std::string piece, std::string begin) {
    Repeated endless(std::move(piece), std::int64_t{1} << 40, std::move(begin));
    std::istream in(&endless);
    try {
        LdifReader(in, 100'000).next();
    } catch (const LdifError& error) {
        return error.what();
    }
    return "taken";
}

TEST(AValue, IsNotReadWhereItIsTooLong) {
    const std::string many(1'000, 'a');
    EXPECT_EQ(refusal_of_endless(many, ""), "line 1: the line is too long");
    EXPECT_EQ(refusal_of_endless(" " + many + "\n", "dn: cn=a\ncn: a\n"),
              "line 2: the value is too long");
}

TEST(Base64, IsReadAsItIsWritten) {
    for (const char* octets : {"", "a", "ab", "abc", "abcd", "\xFF\xFE\xFD\xFC\xFB"})
        EXPECT_EQ(try_from_base64(base64(octets)), octets);
    EXPECT_EQ(base64("Man"), "TWFu");
    EXPECT_EQ(base64("M"), "TQ==");
    for (const char* wrong :
         {"A", "AB", "ABC", "TR==", "T===", "TQ= =", "TWF!", "====", "TQ==TQ=="})
        EXPECT_EQ(try_from_base64(wrong), std::nullopt) << wrong;
}

}  // namespace
}  // namespace orvo::directory
