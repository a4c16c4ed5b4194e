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

TEST(DirectoryHealth, WhatWasKnownHoldsUntilThereIsAnAnswer) {
    std::atomic<bool> stands_still = false;
    DirectoryHealth health(
        [&] {
            const bool has_stood_still = stands_still;
            while (stands_still) std::this_thread::sleep_for(1ms);
            if (has_stood_still) throw std::runtime_error("broken");
        },
        10min, 0ms);
    EXPECT_EQ(health.trouble(), "");
    stands_still = true;
    EXPECT_EQ(health.trouble(), "");
    EXPECT_EQ(health.trouble(), "");
    stands_still = false;
    std::string seen;
    for (int i = 0; i < 2000 && seen.empty(); ++i) seen = health.trouble();
    EXPECT_EQ(seen, "broken");
}

TEST(DirectoryHealth, OnlyWhoAsksWaitsForAnAnswer) {
    std::atomic<bool> stands_still = false;
    DirectoryHealth health(
        [&] {
            while (stands_still) std::this_thread::sleep_for(1ms);
        },
        10min, 0ms);
    EXPECT_EQ(health.trouble(), "");
    stands_still = true;
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i) EXPECT_EQ(health.trouble(), "");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 10s) << "a moment, but for the first";
    stands_still = false;
}

TEST(DirectoryHealth, ADirectoryThatFallsSilentIsTroubleAfterThePatience) {
    std::atomic<bool> stands_still = false;
    DirectoryHealth health(
        [&] {
            while (stands_still) std::this_thread::sleep_for(1ms);
        },
        300ms, 0ms);
    EXPECT_EQ(health.trouble(), "");
    stands_still = true;
    std::string seen;
    for (int i = 0; i < 2000 && seen.empty(); ++i) seen = health.trouble();
    EXPECT_EQ(seen, "The directory does not answer.");
    stands_still = false;
    for (int i = 0; i < 2000 && !seen.empty(); ++i) seen = health.trouble();
    EXPECT_EQ(seen, "");
}

}  // namespace
}  // namespace orvo::web
