#include "host/web/sessions/memory_sessions.h"

#include <gtest/gtest.h>

namespace orvo::web {
namespace {

using namespace std::chrono_literals;

class SessionMemoryTest : public testing::Test {
protected:
    std::string create() {
        const auto lease = sessions_.create();
        lease->data().values.put(u"v", Text(10'000, u'x'));
        return lease->id();
    }
    bool is_there(const std::string& id) { return sessions_.open(id, 0ms) != nullptr; }

    MemorySessions sessions_;
};

TEST_F(SessionMemoryTest, ThatIsGivenBackCountsNoMore) {
    const std::string id = create();
    sessions_.open(id, 0ms)->data().values.remove_all();
    EXPECT_EQ(sessions_.counts().bytes, 0u);
    create();
    const std::string other = create();
    sessions_.open(other, 0ms)->abandon();
    EXPECT_LT(sessions_.counts().bytes, 25'000u);
    EXPECT_GT(sessions_.counts().bytes, 20'000u);
}

TEST_F(SessionMemoryTest, IsBoundedByANewLimitFromTheNextRequestOn) {
    const std::string first = create(), second = create();
    sessions_.set_limits({.most_bytes = 30'000});
    EXPECT_TRUE(is_there(second));
    EXPECT_FALSE(is_there(first));
}

TEST(MemorySessions, AreCountedAsTheyComeAndGo) {
    SessionClock::time_point now{};
    MemorySessions sessions({.timeout = 20min, .absolute = 60min, .most = 3}, [&] { return now; });
    const auto create = [&] { return sessions.create()->id(); };
    const std::string id = create();
    sessions.open(id, 0ms)->data().values.put(u"v", 1);
    SessionCounts counts = sessions.counts();
    EXPECT_EQ(counts.live, 1u);
    EXPECT_GT(counts.bytes, 0u);
    EXPECT_EQ(counts.created, 1u);
    EXPECT_EQ(counts.ended, (std::array<std::uint64_t, 5>{}));

    sessions.open(id, 0ms)->abandon();
    create();
    now += 20min;
    sessions.end_idle();
    const std::string busy = create();
    for (int i = 0; i < 6; ++i) {
        now += 10min;
        sessions.open(busy, 0ms);
    }
    for (int i = 0; i < 4; ++i) create();
    sessions.end_all();
    counts = sessions.counts();
    EXPECT_EQ(counts.live, 0u);
    EXPECT_EQ(counts.bytes, 0u);
    EXPECT_EQ(counts.created, 7u);
    // By a page, idle, after its lifetime, for newer ones, with the program.
    EXPECT_EQ(counts.ended, (std::array<std::uint64_t, 5>{1, 1, 1, 1, 3}));
}

}  // namespace
}  // namespace orvo::web
