#include "suite/throttle/attempt.h"

#include <gtest/gtest.h>

namespace orvo::throttle {
namespace {

TEST(UserKey, IsOneForAllSpellingsOfAName) {
    const std::string key = user_key(u"cn=jsmith,ou=Users,o=Shop");
    for (const char16_t* spelling :
         {u"cn=JSmith,ou=Users,o=Shop", u"CN = jsmith , OU=users, O=shop",
          u"commonName=jsmith,ou=Users,o=Shop", u"2.5.4.3=jsmith,ou=Users,o=Shop",
          u"cn=\\6asmith,ou=Users,o=Shop", u"cn=j\\smith,ou=Users,o=Shop",
          u"cn=\xFF4A\xFF53mith,ou=Users,o=Shop", u"uid=jsmith,ou=Users,o=Shop"})
        EXPECT_EQ(user_key(spelling), key) << to_utf8(spelling);
    EXPECT_EQ(user_key(u"cn=Smith\\, John,ou=Users,o=Shop"),
              user_key(u"cn=smith,  john,ou=Users,o=Shop"));
}

TEST(UserKey, IsAnotherForAnotherUser) {
    const std::string key = user_key(u"cn=jsmith,ou=Users,o=Shop");
    EXPECT_NE(user_key(u"cn=jsmith2,ou=Users,o=Shop"), key);
    EXPECT_NE(user_key(u"cn=djansen,ou=Users,o=Shop"), key);
    EXPECT_NE(user_key(u"cn=jsmith,ou=Staff,o=Shop"), key);
}

TEST(UserKey, OfWhatMayBeAnybodysNameIsOne) {
    const std::string key = user_key(u"cn=#04066a736d697468,ou=Users,o=Shop");
    EXPECT_FALSE(key.empty());
    EXPECT_EQ(user_key(u"cn=#0481066a736d697468,ou=Users,o=Shop"), key);
    EXPECT_EQ(user_key(u"no name at all"), key);
    EXPECT_EQ(user_key(u""), key);
}

TEST(UserKey, IsNeverLong) {
    EXPECT_EQ(user_key(u"cn=" + Text(5000, u'x') + u",o=Shop").size(), 256u);
}

TEST(AddressKey, IsTheAddressOrItsNetwork) {
    struct Known {
        const char16_t* address;
        const char* key;
    };
    for (const auto& [address, key] : {
             Known{u"203.0.113.7", "203.0.113.7"},
             Known{u"::ffff:203.0.113.7", "203.0.113.7"},
             Known{u"::FFFF:cb00:7107", "203.0.113.7"},
             Known{u"2001:db8:0:1:a:b:c:d", "2001:db8:0:1::/64"},
             Known{u"2001:DB8:0:1::7", "2001:db8:0:1::/64"},
             Known{u"2001:db8::1", "2001:db8:0:0::/64"},
             Known{u"fe80::1%eth0", "fe80:0:0:0::/64"},
             Known{u"::1", "0:0:0:0::/64"},
             Known{u"::", "0:0:0:0::/64"},
             Known{u"2001:db8:1:2:3:4:203.0.113.7", "2001:db8:1:2::/64"},
         })
        EXPECT_EQ(address_key(address), key) << to_utf8(address);
}

TEST(AddressKey, OfAnythingElseIsItself) {
    for (const char16_t* other :
         {u"unknown", u"203.0.113", u"203.0.113.256", u"203.0.113.7.8", u"1:2:3",
          u"1:2:3:4:5:6:7:8:9", u"1::2::3", u"12345::", u"1:2:3:4:5:6:7:", u":1:2:3:4:5:6:7",
          u"g::1", u"1.2.3.4::", u":::"})
        EXPECT_EQ(address_key(other), to_utf8(other));
    EXPECT_EQ(address_key(u""), "");
    EXPECT_EQ(address_key(Text(1000, u'x')).size(), 64u);
}

}  // namespace
}  // namespace orvo::throttle
