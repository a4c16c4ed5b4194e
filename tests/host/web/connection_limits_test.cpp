#include "host/web/server/connection_limits.h"

#include <gtest/gtest.h>

#include <vector>

namespace orvo::web {
namespace {

class ConnectionLimitsTest : public testing::Test {
protected:
    ConnectionLimits::Clock::time_point now_{};
    std::vector<std::string> notices_;
    ConnectionLimits limits_{3, 2,
                             [this](const std::string& notice) { notices_.push_back(notice); },
                             [this] { return now_; }};
};

TEST_F(ConnectionLimitsTest, LetsInAsManyAsTheyAre) {
    EXPECT_TRUE(limits_.try_enter("a"));
    EXPECT_TRUE(limits_.try_enter("a"));
    EXPECT_FALSE(limits_.try_enter("a")) << "two of one address";
    EXPECT_TRUE(limits_.try_enter("b"));
    EXPECT_FALSE(limits_.try_enter("c")) << "three in all";
    limits_.leave("a");
    EXPECT_TRUE(limits_.try_enter("c"));
    limits_.leave("c");
    EXPECT_TRUE(limits_.try_enter("a"));
    EXPECT_EQ(limits_.count(), 3u);
    EXPECT_EQ(limits_.refused_of_one_address(), 1u);
    EXPECT_EQ(limits_.refused_in_all(), 1u);
}

TEST_F(ConnectionLimitsTest, CountSomeInAllAlone) {
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(limits_.try_enter(""));
    EXPECT_FALSE(limits_.try_enter("")) << "three in all";
    limits_.leave("");
    EXPECT_TRUE(limits_.try_enter("a"));
}

TEST_F(ConnectionLimitsTest, CountForAnotherAddressWhereThatHasRoom) {
    std::string first, second;
    EXPECT_TRUE(limits_.try_enter(first));
    EXPECT_TRUE(limits_.try_enter(second));
    EXPECT_TRUE(limits_.try_enter("a"));
    EXPECT_TRUE(limits_.try_change(first, "a"));
    EXPECT_EQ(first, "a");
    EXPECT_TRUE(limits_.try_change(first, "a"));
    EXPECT_FALSE(limits_.try_change(second, "a")) << "two of one address";
    EXPECT_EQ(second, "");
    EXPECT_TRUE(limits_.try_change(first, "b"));
    EXPECT_TRUE(limits_.try_change(second, "a"));
    EXPECT_EQ(limits_.count(), 3u);
}

TEST_F(ConnectionLimitsTest, TellOfRefusalsOnceInAWhile) {
    for (int i = 0; i < 5; ++i) limits_.try_enter("a");
    EXPECT_EQ(notices_, (std::vector<std::string>{"1 connection refused: a has 2"}));
    now_ += std::chrono::seconds(10);
    limits_.try_enter("b");
    limits_.try_enter("c");
    EXPECT_EQ(notices_.size(), 2u);
    EXPECT_EQ(notices_.back(), "3 connections refused since the last such line: there are 3");
}

}  // namespace
}  // namespace orvo::web
