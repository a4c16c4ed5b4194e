#include "suite/directory/ldap/wire/unicode_password.h"

#include <gtest/gtest.h>

namespace orvo::directory::ldap {
namespace {

TEST(UnicodePassword, StandsBetweenQuotesInUtf16WithTheLowByteFirst) {
    using namespace std::string_view_literals;
    EXPECT_EQ(unicode_password(Secret(u"a\u0416\U0001F600\"")).reveal(),
              "\"\0a\0\x16\x04\x3D\xD8\x00\xDE\"\0\"\0"sv);
    EXPECT_EQ(unicode_password(Secret()).reveal(), "\"\0\"\0"sv);
}

}  // namespace
}  // namespace orvo::directory::ldap
