#include "suite/directory/ldap/memory/write_marks.h"

#include <gtest/gtest.h>

namespace orvo::directory::ldap {
namespace {

const EntryKey entry("cn=a,o=Shop");

WriteMarks marks;

bool changes(const EntryKey& read, const EntryKey& written) {
    const std::uint64_t before = marks.mark(read);
    marks.note(written);
    return marks.mark(read) != before;
}

TEST(TheWriteMark, ChangesWithAWriteToTheEntryAndOnlyThen) {
    const std::uint64_t before = marks.mark(entry);
    EXPECT_EQ(marks.mark(entry), before);
    EXPECT_TRUE(changes(entry, entry));
    EXPECT_FALSE(changes(entry, EntryKey("cn=b,o=Shop")));
}

TEST(TheWriteMark, ChangesUnderWhateverNameTheEntryIsWritten) {
    for (const char* other : {"CN = A, O = shop", "surname=a,2.5.4.10=Shop", "cn=\\61,o=Shop",
                              "cn=\xEF\xBC\xA1,o=Shop", "cn=a\xCC\x81,o=Shop"})
        EXPECT_TRUE(changes(entry, EntryKey(other))) << other;
}

TEST(TheWriteMark, ChangesWithAWriteToWhatMayBeAnyEntry) {
    for (const char* any : {"cn=#040161,o=Shop", "cn=a;o=Shop", ""}) {
        EXPECT_TRUE(changes(entry, EntryKey(any))) << any;
        EXPECT_TRUE(changes(EntryKey(any), entry)) << any;
        EXPECT_TRUE(changes(EntryKey(any), EntryKey("cn=b,o=Shop"))) << any;
    }
}

TEST(AnEntryKey, TellsWhatIsTheSameForCertainFromWhatMayBe) {
    EXPECT_EQ(entry, EntryKey("commonName=A,o=Shop"));
    EXPECT_FALSE(entry == EntryKey("sn=a,o=Shop"));
    EXPECT_TRUE(entry.may_be(EntryKey("sn=a,o=Shop")));
    EXPECT_FALSE(entry.may_be(EntryKey("cn=b,o=Shop")));
    EXPECT_FALSE(entry == EntryKey("cn=#040161,o=Shop"));
    EXPECT_TRUE(entry.may_be(EntryKey("cn=#040161,o=Shop")));
    EXPECT_EQ(EntryKey("cn=a;o=Shop"), EntryKey("cn=a;o=Shop"));
    EXPECT_FALSE(EntryKey("cn=a;o=Shop") == EntryKey("cn=A;o=Shop"));
}

}  // namespace
}  // namespace orvo::directory::ldap
