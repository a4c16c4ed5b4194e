#include "suite/directory/names/name_parts.h"

#include <gtest/gtest.h>

namespace orvo::directory {
namespace {

std::string shown(std::string_view name) {
    const auto parts = try_name_parts(name);
    if (!parts) return "none";
    std::string text;
    for (const RelativeName& relative : *parts)
        for (const NamePart& part : relative)
            text +=
                (&part == &relative.front() ? "/" : "+") + part.attribute + "[" + part.value + "]";
    return text;
}

TEST(TheParts, AreThoseOfTheNameWithoutItsEscapes) {
    EXPECT_EQ(shown("cn=jsmith,ou=Users,o=Shop"), "/cn[jsmith]/ou[Users]/o[Shop]");
    EXPECT_EQ(shown("CN = a  b , sn=\\20x\\ + mail=y ,o=\\C3\\A9"),
              "/CN[a  b]/sn[ x ]+mail[y]/o[\xC3\xA9]");
    EXPECT_EQ(shown("cn=Smith\\, John\\+\\=\\\\,o=x=y"), "/cn[Smith, John+=\\]/o[x=y]");
    EXPECT_EQ(shown("cn=,o=x"), "/cn[]/o[x]");
    EXPECT_EQ(shown("cn=a\\00b"), "/cn[a" + std::string(1, '\0') + "b]");
    EXPECT_EQ(shown(""), "");
    EXPECT_EQ(shown("  "), "");
}

TEST(WhatIsNoName, HasNoParts) {
    for (const char* name : {"x", "cn", "cn=a,", ",cn=a", "cn=a,,o=b", "cn=#0401", "cn=a\\", "=a",
                             "cn=\xFF", "cn=\"a\""})
        EXPECT_EQ(shown(name), "none") << name;
}

TEST(JoinedParts, AreTheNameAsAServerWritesIt) {
    const auto joined = [](std::string_view name) { return joined_name(*try_name_parts(name)); };
    EXPECT_EQ(joined("cn=jsmith,ou=Users,o=Shop"), "cn=jsmith,ou=Users,o=Shop");
    EXPECT_EQ(joined(" cn = a  b , o = \\41"), "cn=a  b,o=A");
    EXPECT_EQ(joined("CN=X+SN=\\20y"), "CN=X+SN=\\20y");
    EXPECT_EQ(joined("cn=\\ a#b\\ "), "cn=\\20a#b\\20");
    EXPECT_EQ(joined("cn=\\#a"), "cn=\\23a");
    EXPECT_EQ(joined("cn=a\\=\\\"b\\<\\>\\;\\+\\,\\\\c"), "cn=a\\3D\\22b\\3C\\3E\\3B\\2B\\2C\\5Cc");
    EXPECT_EQ(joined("cn=\\00\\0d\\0A\t"), "cn=\\00\\0D\\0A\t");
    EXPECT_EQ(joined("cn=\\c3\\a9"), "cn=\xC3\xA9");
    EXPECT_EQ(joined("cn=a\\ff"), "cn=a\\FF");
    EXPECT_EQ(joined(""), "");
    const std::string odd = joined("cn=\\ \\,\\#+sn=\\#x");
    EXPECT_EQ(joined(odd), odd);
}

}  // namespace
}  // namespace orvo::directory
