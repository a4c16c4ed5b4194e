#include "suite/throttle/gate.h"

#include <gmock/gmock.h>

#include "suite/throttle/memory_counters.h"

namespace orvo::throttle {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

const Attempt jsmith{"jsmith", "203.0.113.7"};

class GateTest : public testing::Test {
protected:
    bool guess() {
        const auto ticket = gate_.admit(jsmith, settings_);
        if (ticket) gate_.settle(*ticket, Outcome::wrong, settings_);
        return ticket.has_value();
    }

    Settings settings_{.is_on = true, .attempts = 8, .undelayed = 2};
    Moment now_ = 1'000'000s;
    MemoryCounters counters_{[this] { return now_; }};
    std::vector<milliseconds> pauses_;
    std::function<void()> meanwhile_ = [] {};
    Gate gate_{counters_, [this](milliseconds time) {
                   pauses_.push_back(time);
                   now_ += time;
                   meanwhile_();
               }};
};

TEST_F(GateTest, DelaysMoreWithEachWrongAttemptAndThenRefuses) {
    int admitted = 0;
    while (guess()) ++admitted;
    EXPECT_EQ(admitted, 8);
    EXPECT_THAT(pauses_, ElementsAre(250ms, 500ms, 1000ms, 2000ms, 2000ms, 2000ms));
    pauses_.clear();
    EXPECT_FALSE(guess());
    EXPECT_THAT(pauses_, IsEmpty()) << "who is refused hears it at once";
}

TEST_F(GateTest, DelaysNobodyWhoIsRight) {
    for (int i = 0; i < 20; ++i) {
        const auto ticket = gate_.admit(jsmith, settings_);
        ASSERT_TRUE(ticket);
        gate_.settle(*ticket, Outcome::right, settings_);
    }
    EXPECT_THAT(pauses_, IsEmpty());
}

TEST_F(GateTest, DelaysAreNeverLongerThanTheLongest) {
    settings_.attempts = 10'000;
    settings_.longest_delay = 700ms;
    EXPECT_EQ(delay_after(1, settings_), 0ms);
    EXPECT_EQ(delay_after(2, settings_), 250ms);
    EXPECT_EQ(delay_after(4, settings_), 700ms);
    EXPECT_EQ(delay_after(9'999, settings_), 700ms);
}

TEST_F(GateTest, RefusesWhoWouldWaitWhereManyWait) {
    settings_.most_waiting = 2;
    for (int i = 0; i < 3; ++i) guess();
    pauses_.clear();
    int depth = 0;
    std::vector<bool> admitted;
    meanwhile_ = [&] {
        if (++depth <= 2) admitted.push_back(guess());
    };
    EXPECT_TRUE(guess());
    EXPECT_THAT(admitted, ElementsAre(false, true)) << "the third within the second";
    EXPECT_EQ(gate_.figures().waiting, 0);
    meanwhile_ = [] {};
    int left = 0;
    while (guess()) ++left;
    EXPECT_EQ(left, 3) << "and the one that was refused has not counted";
}

TEST_F(GateTest, OneThatMayStillHaveRoomWaitsForThoseThatAreUnderWay) {
    settings_.attempts = 2;
    const auto first = gate_.admit(jsmith, settings_), second = gate_.admit(jsmith, settings_);
    ASSERT_TRUE(first && second);
    meanwhile_ = [&] {
        if (pauses_.size() == 3) gate_.settle(*second, Outcome::right, settings_);
    };
    EXPECT_TRUE(gate_.admit(jsmith, settings_));
    EXPECT_THAT(pauses_, ElementsAre(10ms, 10ms, 10ms));
}

TEST_F(GateTest, OneThatWaitsForOthersIsRefusedWhenTheyAreWrong) {
    settings_.attempts = 2;
    const auto first = gate_.admit(jsmith, settings_), second = gate_.admit(jsmith, settings_);
    meanwhile_ = [&] {
        if (pauses_.size() == 1) gate_.settle(*first, Outcome::wrong, settings_);
        if (pauses_.size() == 2) gate_.settle(*second, Outcome::wrong, settings_);
    };
    EXPECT_FALSE(gate_.admit(jsmith, settings_));
    EXPECT_EQ(pauses_.size(), 2u);
}

TEST_F(GateTest, OneDoesNotWaitForOthersForEver) {
    settings_.attempts = 1;
    ASSERT_TRUE(gate_.admit(jsmith, settings_));
    EXPECT_FALSE(gate_.admit(jsmith, settings_));
    EXPECT_EQ(pauses_.size(), 1000u);
    EXPECT_THAT(pauses_, Each(10ms));
}

TEST_F(GateTest, OneDoesNotWaitForThoseThatWaitThemselves) {
    settings_.attempts = 3;
    guess();
    guess();
    pauses_.clear();
    meanwhile_ = [&] {
        if (pauses_.size() > 1) return;
        EXPECT_FALSE(gate_.admit(jsmith, settings_));
    };
    EXPECT_TRUE(gate_.admit(jsmith, settings_));
    EXPECT_THAT(pauses_, ElementsAre(250ms));
}

class GateOfSeveralNames : public GateTest {
protected:
    GateOfSeveralNames() { settings_.attempts = 4; }

    enum class Came { refused, refused_as_user, wrong };
    // A wrong password of the user whose entry is "entry".
    Came guess_as(const std::string& name) {
        auto ticket = gate_.admit({name, "203.0.113.7"}, settings_);
        if (!ticket) return Came::refused;
        const bool has_room = gate_.admit_found(*ticket, "entry", settings_);
        gate_.settle(*ticket, Outcome::wrong, settings_);
        return has_room ? Came::wrong : Came::refused_as_user;
    }
    int checked(const std::string& name) {
        int checked = 0;
        for (int i = 0; i < 20; ++i) checked += guess_as(name) == Came::wrong;
        return checked;
    }
};

TEST_F(GateOfSeveralNames, AUserHasOneBudgetWhateverTheName) {
    EXPECT_EQ(checked("name"), 4);
    EXPECT_EQ(checked("mail"), 0);
    EXPECT_EQ(checked("entry"), 0);
}

TEST_F(GateOfSeveralNames, AnotherNameOfARefusedUserFaresAsOneThatIsNobodys) {
    checked("name");
    pauses_.clear();
    for (int i = 0; i < 4; ++i) EXPECT_EQ(guess_as("mail"), Came::refused_as_user);
    const auto delays = std::exchange(pauses_, {});
    EXPECT_EQ(guess_as("mail"), Came::refused) << "and the directory is not asked whose it is";
    for (int i = 0; i < 4; ++i) {
        const auto ticket = gate_.admit({"nobodys", "203.0.113.7"}, settings_);
        ASSERT_TRUE(ticket);
        gate_.settle(*ticket, Outcome::wrong, settings_);
    }
    EXPECT_EQ(pauses_, delays);
    EXPECT_FALSE(gate_.admit({"nobodys", "203.0.113.7"}, settings_));
}

TEST_F(GateOfSeveralNames, ALoginMakesItsAddressKnownForTheNameAndTheUser) {
    auto login = gate_.admit({"name", "198.51.100.1"}, settings_);
    ASSERT_TRUE(gate_.admit_found(*login, "entry", settings_));
    gate_.settle(*login, Outcome::right, settings_);
    checked("name");
    login = gate_.admit({"name", "198.51.100.1"}, settings_);
    ASSERT_TRUE(login);
    EXPECT_TRUE(gate_.admit_found(*login, "entry", settings_));
}

TEST_F(GateOfSeveralNames, AnAttemptCountsOnceForItsAddressAndOnceWhereTheNameIsTheUsersOwn) {
    guess_as("name");
    guess_as("entry");
    const auto state = counters_.state({"entry", "203.0.113.7"}, limits_of(settings_));
    EXPECT_EQ(state.front().wrong, 2);
    EXPECT_EQ(state.back().wrong, 2);
    EXPECT_EQ(gate_.figures().wrong, 2u);
}

TEST_F(GateTest, HasFiguresOfWhatItDid) {
    while (guess()) {
    }
    const Gate::Figures figures = gate_.figures();
    EXPECT_EQ(figures.admitted, 8u);
    EXPECT_EQ(figures.delayed, 6u);
    EXPECT_EQ(figures.refused, 1u);
    EXPECT_EQ(figures.wrong, 8u);
    EXPECT_EQ(figures.waiting, 0);
}

}  // namespace
}  // namespace orvo::throttle
