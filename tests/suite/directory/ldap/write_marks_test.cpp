#include "suite/directory/ldap/write_marks.h"

#include <gtest/gtest.h>

namespace orvo::directory::ldap {
namespace {

TEST(WriteMark, ChangesWithAWriteToTheEntryAndOnlyThen) {
    const std::uint64_t before = write_mark("cn=a,o=shop");
    EXPECT_EQ(write_mark("cn=a,o=shop"), before);
    note_write("cn=a,o=shop");
    EXPECT_NE(write_mark("cn=a,o=shop"), before);
}

}  // namespace
}  // namespace orvo::directory::ldap
