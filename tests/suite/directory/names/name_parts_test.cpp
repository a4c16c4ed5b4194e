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

TEST(JoinedParts, AreTheNameAgain) {
    for (const char* name : {"cn=jsmith,ou=Users,o=Shop", "cn=Smith\\, John+sn=x,o=Shop",
                             "cn=\\ x\\ ,o=\\#1", "cn=a\\00b", "", "cn=\xC3\xA9"})
        EXPECT_EQ(joined_name(*try_name_parts(name)), name);
    EXPECT_EQ(joined_name(*try_name_parts(" cn = a , o = \\41")), "cn=a,o=A");
    EXPECT_EQ(joined_name(*try_name_parts("cn=a\\FF")), "cn=\\61\\ff");
}

}  // namespace
}  // namespace orvo::directory
