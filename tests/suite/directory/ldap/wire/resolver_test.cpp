#include "suite/directory/ldap/wire/resolver.h"

#include <gmock/gmock.h>
#include <netinet/in.h>

#include <chrono>

namespace orvo::directory::ldap::detail {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

// A resolver that waits, as its user sees it, for as long as it is given and finds nothing.
struct Silent {
    static inline int started = 0;
    static inline int interruptions = 0;
    static inline std::vector<milliseconds> waited;

    static int start(gaicb*) {
        ++started;
        return 0;
    }
    static int wait(gaicb*, const timespec& limit) {
        waited.push_back(std::chrono::duration_cast<milliseconds>(
            std::chrono::seconds(limit.tv_sec) + std::chrono::nanoseconds(limit.tv_nsec)));
        return interruptions-- > 0 ? EAI_INTR : EAI_AGAIN;
    }
    static Resolver resolver(int interruptions_first = 0) {
        started = 0;
        interruptions = interruptions_first;
        waited.clear();
        return {start, wait};
    }
};

TEST(Resolver, IsGivenNoMoreTimeThanThereIs) {
    Result why;
    EXPECT_FALSE(find_addresses({"dir01"}, Deadline(1500ms), why, Silent::resolver()));
    EXPECT_EQ(why.code, 85);
    EXPECT_EQ(why.message, "its address was not found");
    ASSERT_EQ(Silent::waited.size(), 1u);
    EXPECT_LE(Silent::waited[0], 1500ms);
    EXPECT_GT(Silent::waited[0], 0ms);
}

TEST(Resolver, WaitsOnForTheRestAfterASignal) {
    Result why;
    EXPECT_FALSE(find_addresses({"dir01"}, Deadline(1500ms), why, Silent::resolver(2)));
    EXPECT_EQ(why.code, 85);
    EXPECT_THAT(Silent::waited, testing::SizeIs(3));
    EXPECT_THAT(Silent::waited, testing::Each(testing::Le(1500ms)));
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
