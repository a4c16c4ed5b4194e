#include "platform/network/resolver.h"

#include <gmock/gmock.h>
#include <netinet/in.h>

#include <chrono>

namespace orvo {
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
    const FoundAddresses found = find_addresses("dir01", 389, Deadline(40ms), Silent::resolver());
    EXPECT_FALSE(found.list);
    EXPECT_EQ(found.error, EAI_INPROGRESS);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 40ms);
    EXPECT_EQ(Silent::started, 1);
    EXPECT_LE(Silent::asked, 8) << "after pauses that grow";
}

TEST(Resolver, IsNotAskedForNumericAddresses) {
    for (const char* address : {"127.0.0.1", "::1"}) {
        const FoundAddresses found =
            find_addresses(address, 3890, Deadline(0ms), Silent::resolver());
        ASSERT_TRUE(found.list) << address;
        EXPECT_EQ(Silent::started, 0);
        EXPECT_EQ(reinterpret_cast<sockaddr_in*>(found.list->ai_addr)->sin_port, htons(3890));
    }
}

TEST(Resolver, FindsAHostByItsName) {
    const FoundAddresses found = find_addresses("localhost", 1, Deadline(10s));
    EXPECT_TRUE(found.list) << gai_strerror(found.error);
}

TEST(Resolver, SaysThatAHostIsNotKnown) {
    const FoundAddresses found = find_addresses("no-such-host.invalid", 1, Deadline(60s));
    EXPECT_FALSE(found.list);
    EXPECT_NE(found.error, 0);
    EXPECT_NE(found.error, EAI_INPROGRESS);
}

TEST(Resolver, GoesOnAfterALookUpThatTookTooLong) {
    for (int round = 0; round < 50; ++round)
        find_addresses("no-such-host.invalid", 1, Deadline(0ms));
    const FoundAddresses found = find_addresses("localhost", 1, Deadline(60s));
    EXPECT_TRUE(found.list) << gai_strerror(found.error);
}

}  // namespace
}  // namespace orvo
