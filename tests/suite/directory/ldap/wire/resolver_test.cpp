#include "suite/directory/ldap/wire/resolver.h"

#include <gmock/gmock.h>
#include <netinet/in.h>

#include <chrono>

namespace orvo::directory::ldap::detail {
namespace {

using namespace std::chrono_literals;

// A resolver that finds nothing for as long as it is asked.
struct Silent {
    static inline int started = 0;
    static inline int asked = 0;

    static int start(gaicb*) {
        ++started;
        return 0;
    }
    static int state(gaicb*) {
        ++asked;
        return EAI_INPROGRESS;
    }
    static Resolver resolver() {
        started = asked = 0;
        return {start, state};
    }
};

TEST(Resolver, IsGivenNoMoreTimeThanThereIs) {
    const auto begin = std::chrono::steady_clock::now();
    Result why;
    EXPECT_FALSE(find_addresses({"dir01"}, Deadline(40ms), why, Silent::resolver()));
    EXPECT_EQ(why.code, 85);
    EXPECT_EQ(why.message, "its address was not found");
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 40ms);
    EXPECT_EQ(Silent::started, 1);
    EXPECT_LE(Silent::asked, 8) << "after pauses that grow";
}

TEST(Resolver, IsNotAskedForNumericAddresses) {
    for (const char* address : {"127.0.0.1", "::1"}) {
        Result why;
        const Addresses found =
            find_addresses({address, 3890}, Deadline(0ms), why, Silent::resolver());
        ASSERT_TRUE(found) << address;
        EXPECT_EQ(Silent::started, 0);
        EXPECT_EQ(reinterpret_cast<sockaddr_in*>(found->ai_addr)->sin_port, htons(3890));
    }
}

TEST(Resolver, FindsAHostByItsName) {
    Result why;
    EXPECT_TRUE(find_addresses({"localhost"}, Deadline(10s), why)) << why.message;
}

TEST(Resolver, SaysThatAHostIsNotKnown) {
    Result why;
    EXPECT_FALSE(find_addresses({"no-such-host.invalid"}, Deadline(60s), why));
    EXPECT_EQ(why.code, 81);
    EXPECT_NE(why.message, "");
}

TEST(Resolver, GoesOnAfterALookUpThatTookTooLong) {
    Result why;
    for (int round = 0; round < 50; ++round)
        find_addresses({"no-such-host.invalid"}, Deadline(0ms), why);
    EXPECT_TRUE(find_addresses({"localhost"}, Deadline(60s), why)) << why.message;
}

}  // namespace
}  // namespace orvo::directory::ldap::detail
