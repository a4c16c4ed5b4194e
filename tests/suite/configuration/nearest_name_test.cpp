#include "suite/configuration/nearest_name.h"

#include <gtest/gtest.h>

namespace orvo {
namespace {

TEST(NearestName, IsWhatSomebodyMeantWhoMistypedIt) {
    constexpr TextView known[] = {u"Guard", u"LoginPage", u"LoginCookie", u"PageTimeout"};
    const std::pair<TextView, TextView> rows[] = {{u"Gaurd", u"Guard"},
                                                  {u"Guards", u"Guard"},
                                                  {u"guard", u"Guard"},
                                                  {u"LoginPages", u"LoginPage"},
                                                  {u"Loginpag", u"LoginPage"},
                                                  {u"CookieLogin", u""},
                                                  {u"PageTimeuot", u"PageTimeout"},
                                                  {u"", u""},
                                                  {u"Colour", u""},
                                                  {u"x", u""}};
    for (const auto& [given, expected] : rows)
        EXPECT_EQ(to_utf8(nearest_name(given, known)), to_utf8(expected)) << to_utf8(given);
    EXPECT_EQ(nearest_name(u"Guard", {}), u"");
    EXPECT_EQ(nearest_name(Text(100'000, u'x'), known), u"");
}

}  // namespace
}  // namespace orvo
