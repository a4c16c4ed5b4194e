#include "tests/suite/throttle/counters_test.h"

#include <gmock/gmock.h>

#include "suite/throttle/memory_counters.h"
#include "suite/throttle/redis_counters.h"
#include "tests/support/store_settings.h"

namespace orvo::throttle {
namespace {

using testing::ElementsAre;
using Of = CountedBudget::Of;

const RedisServer& redis_server() {
    static const RedisServer server;
    return server;
}

const CountersKind kinds[] = {
    {"memory",
     [](std::function<Moment()> now) -> std::unique_ptr<Counters> {
         return std::make_unique<MemoryCounters>(std::move(now));
     }},
    {"redis",
     [](std::function<Moment()> now) -> std::unique_ptr<Counters> {
         redis_server().ask({"FLUSHALL"});
         return std::make_unique<RedisCounters>(store_of(redis_server()), std::move(now));
     }},
};
INSTANTIATE_TEST_SUITE_P(Stores, CountersTest, testing::ValuesIn(kinds),
                         [](const auto& info) { return info.param.name; });

TEST_P(CountersTest, LetAsManyGuessesThroughAsThereMayBe) {
    EXPECT_EQ(guesses(jsmith_elsewhere), 3);
    EXPECT_EQ(reserve(jsmith_elsewhere).room, Room::none);
    EXPECT_EQ(reserve({"djansen", "203.0.113.7"}).room, Room::free);
}

TEST_P(CountersTest, TellHowManyWereWrong) {
    EXPECT_EQ(reserve(jsmith_elsewhere).wrong, 0);
    guess(jsmith_elsewhere);
    guess({"jsmith", "203.0.113.8"});
    EXPECT_EQ(reserve({"jsmith", "203.0.113.9"}).wrong, 2);
}

TEST_P(CountersTest, CountGuessesFromManyAddressesTogether) {
    EXPECT_EQ(guesses(from_many_places), 3);
}

TEST_P(CountersTest, KeepABudgetForTheAddressFromWhichTheUserHasLoggedIn) {
    ASSERT_TRUE(log_in(jsmith_at_home));
    EXPECT_EQ(guesses(from_many_places), 3);
    EXPECT_TRUE(log_in(jsmith_at_home));
    EXPECT_EQ(guesses(jsmith_at_home), 3) << "which has an end, too";
}

TEST_P(CountersTest, OneUsersAddressIsUnknownForAnother) {
    ASSERT_TRUE(log_in({"djansen", "198.51.100.1"}));
    EXPECT_EQ(guesses(from_many_places), 3);
    EXPECT_FALSE(log_in(jsmith_at_home));
}

TEST_P(CountersTest, ARightAttemptEndsTheWrongOnesOfItsUserFromThere) {
    ASSERT_TRUE(log_in(jsmith_at_home));
    guess(jsmith_at_home);
    guess(jsmith_at_home);
    ASSERT_TRUE(log_in(jsmith_at_home));
    EXPECT_EQ(guesses(jsmith_at_home), 3);
}

TEST_P(CountersTest, ARightAttemptEndsNoOthers) {
    guess({"jsmith", "203.0.113.1"});
    guess({"jsmith", "203.0.113.2"});
    ASSERT_TRUE(log_in(jsmith_at_home));
    EXPECT_EQ(guesses(jsmith_elsewhere), 1);
}

// Who has an account of his own could guess for ever otherwise.
TEST_P(CountersTest, ARightAttemptEndsNotThoseOfItsAddress) {
    for (int i = 0; i < 4; ++i) guess({"user" + std::to_string(i), "203.0.113.7"});
    ASSERT_TRUE(log_in({"attacker", "203.0.113.7"}));
    EXPECT_TRUE(guess({"other", "203.0.113.7"}));
    EXPECT_FALSE(guess({"another", "203.0.113.7"}));
}

TEST_P(CountersTest, AnAddressThatTriesManyUsersIsRefused) {
    const auto spray = [](int i) { return Attempt{"user" + std::to_string(i), "203.0.113.7"}; };
    EXPECT_EQ(guesses(spray), 5);
    EXPECT_TRUE(guess({"user9", "203.0.113.8"}));
}

TEST_P(CountersTest, AnAddressThatTriesManyUsersIsGoodForItsOwn) {
    ASSERT_TRUE(log_in(jsmith_elsewhere));
    guesses([](int i) { return Attempt{"user" + std::to_string(i), "203.0.113.7"}; });
    EXPECT_TRUE(log_in(jsmith_elsewhere));
}

TEST_P(CountersTest, ProgramsHaveABudgetOfTheirOwnAndNoAddress) {
    EXPECT_EQ(guesses(jsmith_elsewhere), 3);
    EXPECT_EQ(guesses(jsmith_in_program), 3);
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(guess({"user" + std::to_string(i), ""})) << "programs are not told apart";
}

TEST_P(CountersTest, ForgetOneWrongAttemptAfterTheOther) {
    guesses(jsmith_elsewhere);
    now_ += 20min;
    EXPECT_EQ(guesses(jsmith_elsewhere), 1);
    now_ += 40min;
    EXPECT_EQ(guesses(jsmith_elsewhere), 2);
    now_ += 60min;
    EXPECT_EQ(guesses(jsmith_elsewhere), 3);
}

TEST_P(CountersTest, AnAddressIsKnownForAWhile) {
    ASSERT_TRUE(log_in(jsmith_at_home));
    now_ += 719h;
    guesses(from_many_places);
    EXPECT_TRUE(log_in(jsmith_at_home)) << "and for as long again";
    now_ += 719h;
    guesses(from_many_places);
    EXPECT_TRUE(log_in(jsmith_at_home));
    now_ += 720h;
    guesses(from_many_places);
    EXPECT_FALSE(log_in(jsmith_at_home));
}

TEST_P(CountersTest, OfAUsersAddressesThoseUsedLastAreKnown) {
    const auto place = [](std::size_t i) {
        return Attempt{"jsmith", "198.51.100." + std::to_string(i)};
    };
    for (std::size_t i = 0; i <= Counters::most_known_addresses; ++i) {
        now_ += 1s;
        ASSERT_TRUE(log_in(place(i)));
        now_ += 1s;
        ASSERT_TRUE(log_in(place(0)));
    }
    guesses(from_many_places);
    EXPECT_TRUE(log_in(place(0)));
    EXPECT_FALSE(log_in(place(1)));
    EXPECT_TRUE(log_in(place(2)));
}

TEST_P(CountersTest, AnAttemptThatWasNotJudgedIsNotCounted) {
    for (int i = 0; i < 20; ++i) ASSERT_TRUE(try_with(jsmith_elsewhere, Outcome::none));
    EXPECT_EQ(reserve(jsmith_elsewhere).wrong, 0);
    EXPECT_EQ(reserve(jsmith_at_home).source, Source::unknown_addresses);
}

TEST_P(CountersTest, AttemptsUnderWayTakeTheirPlaceFromTheBeginning) {
    Place places[3];
    for (Place& place : places) {
        place = reserve(jsmith_elsewhere);
        EXPECT_EQ(place.room, Room::free);
        EXPECT_EQ(place.wrong, 0);
    }
    EXPECT_EQ(reserve(jsmith_elsewhere).room, Room::busy);
    settle(jsmith_elsewhere, places[0], Outcome::wrong);
    EXPECT_EQ(reserve(jsmith_elsewhere).room, Room::busy);
    settle(jsmith_elsewhere, places[1], Outcome::none);
    const Place fourth = reserve(jsmith_elsewhere);
    EXPECT_EQ(fourth.room, Room::free);
    settle(jsmith_elsewhere, places[2], Outcome::wrong);
    settle(jsmith_elsewhere, fourth, Outcome::wrong);
    EXPECT_EQ(reserve(jsmith_elsewhere).room, Room::none);
}

TEST_P(CountersTest, AttemptsUnderWayTakeTheirPlaceOfTheAddress) {
    for (int i = 0; i < 5; ++i)
        ASSERT_EQ(reserve({"user" + std::to_string(i), "203.0.113.7"}).room, Room::free);
    EXPECT_EQ(reserve({"another", "203.0.113.7"}).room, Room::busy);
}

TEST_P(CountersTest, WhoeverHasGoneAwayIsNotWaitedForForEver) {
    for (int i = 0; i < 3; ++i) reserve(jsmith_elsewhere);
    const Place late = {.source = Source::unknown_addresses};
    now_ += longest_attempt;
    EXPECT_EQ(guesses(jsmith_elsewhere), 3);
    now_ += 20min;
    settle(jsmith_elsewhere, late, Outcome::wrong);
    EXPECT_EQ(reserve(jsmith_elsewhere).room, Room::none) << "and counts when it comes back";
}

TEST_P(CountersTest, ClearForgetsAUsersWrongAttemptsAndNotTheAddresses) {
    EXPECT_FALSE(counters_->clear("jsmith"));
    ASSERT_TRUE(log_in(jsmith_at_home));
    EXPECT_FALSE(counters_->clear("jsmith"));
    guesses(jsmith_at_home);
    guesses(jsmith_elsewhere);
    guesses(jsmith_in_program);
    guesses({"djansen", "203.0.113.8"});
    EXPECT_TRUE(counters_->clear("jsmith"));
    EXPECT_FALSE(counters_->clear("jsmith"));
    EXPECT_EQ(reserve(jsmith_at_home).source, Source::known_address);
    EXPECT_TRUE(guess(jsmith_at_home));
    EXPECT_TRUE(guess(jsmith_elsewhere));
    EXPECT_TRUE(guess(jsmith_in_program));
    EXPECT_FALSE(guess({"djansen", "203.0.113.8"}));
}

TEST_P(CountersTest, ClearAddressForgetsWhatItHasTriedWithAllUsers) {
    const Attempt sprayed{"djansen", "203.0.113.7"};
    EXPECT_FALSE(counters_->clear_address("203.0.113.7"));
    guesses([](int i) { return Attempt{"user" + std::to_string(i), "203.0.113.7"}; });
    guesses([](int i) { return Attempt{"user" + std::to_string(i), "203.0.113.8"}; });
    ASSERT_FALSE(guess(sprayed));
    EXPECT_TRUE(counters_->clear_address("203.0.113.7"));
    EXPECT_FALSE(counters_->clear_address("203.0.113.7"));
    EXPECT_EQ(reserve({"user0", "203.0.113.9"}).wrong, 2) << "which is the user's";
    EXPECT_EQ(guesses([](int i) {
                  return Attempt{"other" + std::to_string(i), "203.0.113.7"};
              }),
              5);
    EXPECT_FALSE(guess({"another", "203.0.113.8"}));
}

TEST_P(CountersTest, AnAttemptOfItsUserOnlyIsNoneOfItsAddress) {
    const auto same = [](int i) {
        return Attempt{"user" + std::to_string(i), "203.0.113.7", true};
    };
    EXPECT_EQ(guesses(same), 20);
    EXPECT_EQ(counters_->state(jsmith_elsewhere, limits_).back().wrong, 0);
    const Attempt found{"jsmith", "198.51.100.1", true};
    ASSERT_TRUE(log_in(found));
    EXPECT_EQ(reserve(found).source, Source::known_address) << "which it knows all the same";
}

TEST_P(CountersTest, NobodyWaitsAtAnAddressThatHasUsedUpHalfOfItsBudget) {
    const auto of_user = [](int i) { return Attempt{"user" + std::to_string(i), "203.0.113.7"}; };
    guess(of_user(0));
    guess(of_user(1));
    for (int i = 2; i < 5; ++i) ASSERT_EQ(reserve(of_user(i)).room, Room::free);
    EXPECT_EQ(reserve(of_user(5)).room, Room::busy);
    now_ += longest_attempt;
    guess(of_user(6));
    for (int i = 7; i < 9; ++i) ASSERT_EQ(reserve(of_user(i)).room, Room::free);
    EXPECT_EQ(reserve(of_user(9)).room, Room::none);
}

// A store's clock is that of whichever machine is its master.
TEST_P(CountersTest, AClockThatGoesBackMakesNothingLastLonger) {
    ASSERT_TRUE(log_in(jsmith_at_home));
    guesses(jsmith_elsewhere);
    guesses([](int i) { return Attempt{"user" + std::to_string(i), "203.0.113.8"}; });
    for (int i = 0; i < 3; ++i) reserve(jsmith_in_program);
    now_ -= 240h;
    EXPECT_EQ(reserve(jsmith_elsewhere).room, Room::none);
    EXPECT_EQ(reserve({"another", "203.0.113.8"}).room, Room::none);
    EXPECT_EQ(reserve(jsmith_in_program).room, Room::busy);
    EXPECT_EQ(reserve(jsmith_at_home).source, Source::known_address);
    now_ += longest_attempt;
    EXPECT_EQ(reserve(jsmith_in_program).room, Room::free);
    now_ += 60min - longest_attempt;
    EXPECT_EQ(guesses(jsmith_elsewhere), 3);
    EXPECT_TRUE(guess({"another", "203.0.113.8"}));
}

TEST_P(CountersTest, TellWhatTheyCount) {
    EXPECT_THAT(counters_->state(jsmith_in_program, limits_),
                ElementsAre(CountedBudget{Of::unknown_addresses, 0, 3, 0ms, false},
                            CountedBudget{Of::programs, 0, 3, 0ms, true}));
    ASSERT_TRUE(log_in(jsmith_at_home));
    guess(jsmith_at_home);
    guesses(jsmith_elsewhere);
    now_ += 1min;
    EXPECT_THAT(counters_->state(jsmith_at_home, limits_),
                ElementsAre(CountedBudget{Of::unknown_addresses, 3, 3, 19min, false},
                            CountedBudget{Of::programs, 0, 3, 0ms, false},
                            CountedBudget{Of::known_address, 1, 3, 0ms, true},
                            CountedBudget{Of::address, 0, 5, 0ms, false}));
    EXPECT_THAT(counters_->state(jsmith_elsewhere, limits_),
                ElementsAre(CountedBudget{Of::unknown_addresses, 3, 3, 19min, true},
                            CountedBudget{Of::programs, 0, 3, 0ms, false},
                            CountedBudget{Of::known_address, 1, 3, 0ms, false},
                            CountedBudget{Of::address, 3, 5, 0ms, true}));
}

TEST_P(CountersTest, ALimitThatHasBecomeLowerHoldsAtOnce) {
    guess(jsmith_elsewhere);
    guess(jsmith_elsewhere);
    limits_.user = {2, 30min};
    EXPECT_EQ(reserve(jsmith_elsewhere).room, Room::none);
}

}  // namespace
}  // namespace orvo::throttle
