#include "host/web/site/directory_health.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

#include "platform/values/failure.h"

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

TEST(DirectoryHealth, IsWhatTheLastAttemptShowed) {
    EXPECT_EQ(DirectoryHealth([] {}).trouble(), "");
    EXPECT_EQ(DirectoryHealth([] { throw Failure(91, {}, u"no provider"); }).trouble(),
              "no provider");
    EXPECT_EQ(DirectoryHealth([] { throw std::runtime_error("broken"); }).trouble(), "broken");
}

TEST(DirectoryHealth, IsNotAskedForAnewByEveryQuestion) {
    std::atomic<int> attempts = 0;
    DirectoryHealth health([&] { ++attempts; });
    for (int i = 0; i < 100; ++i) EXPECT_EQ(health.trouble(), "");
    EXPECT_LE(attempts, 2);
    EXPECT_GE(attempts, 1);
}

TEST(DirectoryHealth, DoesNotWaitForADirectoryThatIsSilent) {
    std::atomic<bool> may_end = false;
    const auto begin = std::chrono::steady_clock::now();
    {
        DirectoryHealth health(
            [&] {
                while (!may_end) std::this_thread::sleep_for(1ms);
            },
            100ms);
        // One waits for all that ask within two seconds.
        for (int i = 0; i < 100; ++i) EXPECT_EQ(health.trouble(), "The directory does not answer.");
        may_end = true;
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);
}

}  // namespace
}  // namespace orvo::web
