#include "suite/authfilter/memory_store.h"

#include <gtest/gtest.h>

#include "platform/values/failure.h"

namespace orvo::authfilter {
namespace {

using std::chrono::minutes;
using std::chrono::seconds;

class MemoryStoreTest : public testing::Test {
protected:
    void pass(Clock::duration time) { now_ += time; }
    void begin(const Text& guid, const Text& user, bool only_one = false,
               minutes timeout = minutes(10)) {
        store_.begin({guid, user, {2, 7}, only_one, timeout});
    }
    void save(const Text& guid, TextView password) {
        Record record;
        record.user_name = u"smith";
        record.password = Secret(password);
        store_.save(guid, record);
    }

    void save_account(const Text& guid, const Text& user, const Text& path) {
        Record record;
        record.user_name = user;
        record.account_path = path;
        store_.save(guid, record);
    }

    Clock::time_point now_{};
    MemoryStore store_{Limits{.most = 3, .record_lifetime = minutes(60)}, [this] { return now_; }};
};

TEST_F(MemoryStoreTest, ALoginIsAllowedTheApplicationsItBeganWithAndNoOther) {
    begin(u"g", u"smith");
    EXPECT_TRUE(store_.ask(u"g", 2));
    EXPECT_TRUE(store_.ask(u"g", 7));
    EXPECT_FALSE(store_.ask(u"g", 10));
    EXPECT_FALSE(store_.ask(u"g", 0));
}

TEST_F(MemoryStoreTest, GuidsAreComparedExactly) {
    begin(u"Guid", u"smith");
    EXPECT_FALSE(store_.ask(u"guid", 2));
    EXPECT_FALSE(store_.ask(u"Guid ", 2));
    EXPECT_TRUE(store_.try_create(u"Guid"));
    EXPECT_TRUE(store_.try_create(u"guid"));
}

TEST_F(MemoryStoreTest, ALoginEndsAfterItsTimeoutWithoutAQuestion) {
    begin(u"g", u"smith");
    pass(minutes(10) - seconds(1));
    EXPECT_TRUE(store_.ask(u"g", 2));
    pass(minutes(10));
    EXPECT_FALSE(store_.ask(u"g", 2));
}

TEST_F(MemoryStoreTest, AQuestionForAnotherApplicationKeepsTheLoginAlive) {
    begin(u"g", u"smith");
    pass(minutes(9));
    EXPECT_FALSE(store_.ask(u"g", 99));
    pass(minutes(9));
    EXPECT_TRUE(store_.ask(u"g", 2));
}

TEST_F(MemoryStoreTest, AnEndedLoginStaysEndedWhenTheClockIsNotAskedAgain) {
    begin(u"g", u"smith");
    pass(minutes(11));
    EXPECT_FALSE(store_.ask(u"g", 2));
    EXPECT_FALSE(store_.ask(u"g", 2));
}

TEST_F(MemoryStoreTest, ALoginThatMustBeTheOnlyOneEndsTheUsersOthersWhateverTheCase) {
    begin(u"a", u"Smith");
    begin(u"b", u"jones");
    save(u"a", u"one");
    begin(u"c", u"sMITH", true);
    EXPECT_FALSE(store_.ask(u"a", 2));
    EXPECT_FALSE(store_.find(u"a"));
    EXPECT_TRUE(store_.ask(u"b", 2));
    EXPECT_TRUE(store_.ask(u"c", 2));
}

TEST_F(MemoryStoreTest, AUserMayHaveManyLoginsWhereNoneMustBeTheOnlyOne) {
    begin(u"a", u"smith", true);
    begin(u"b", u"smith");
    EXPECT_TRUE(store_.ask(u"a", 2));
    EXPECT_TRUE(store_.ask(u"b", 2));
}

TEST_F(MemoryStoreTest, LoggingInAgainUnderTheSameGuidRenewsTheLogin) {
    begin(u"g", u"smith", true, minutes(10));
    save(u"g", u"pw");
    pass(minutes(9));
    store_.begin({u"g", u"smith", {5}, true, minutes(20)});
    pass(minutes(19));
    EXPECT_TRUE(store_.ask(u"g", 5));
    EXPECT_FALSE(store_.ask(u"g", 2));
    EXPECT_EQ(store_.login_count(), 1u);
    EXPECT_TRUE(store_.find(u"g"));
}

TEST_F(MemoryStoreTest, AnotherUsersLoginUnderTheSameGuidTakesItsPlace) {
    begin(u"g", u"smith");
    begin(u"g", u"jones");
    begin(u"h", u"smith", true);
    EXPECT_TRUE(store_.ask(u"g", 2)) << "it is no longer smith's";
    begin(u"h", u"jones", true);
    EXPECT_FALSE(store_.ask(u"g", 2));
}

TEST_F(MemoryStoreTest, ARecordOfAnotherUserEndsTheLoginThatTheGuidHad) {
    save_account(u"g", u"admin", u"cn=admin,o=Shop");
    begin(u"g", u"admin");
    save_account(u"g", u"admin", u"cn=admin,o=Shop");
    EXPECT_TRUE(store_.ask(u"g", 2)) << "the same user goes on";
    save_account(u"g", u"norole", u"cn=norole,o=Shop");
    EXPECT_FALSE(store_.ask(u"g", 2));
    begin(u"h", u"smith");
    save_account(u"h", u"norole", u"cn=norole,o=Shop");
    EXPECT_FALSE(store_.ask(u"h", 2)) << "nor does a login without a record survive one";
}

TEST_F(MemoryStoreTest, TheAccountTellsThatTwoSpellingsAreOneUser) {
    save_account(u"a", u"jsmith", u"cn=jsmith,ou=Users,o=Shop");
    begin(u"a", u"jsmith", true);
    save_account(u"b", u" j\\73mith ", u"CN=j\\73mith , ou=Users,o=Shop");
    begin(u"b", u" j\\73mith ", true);
    EXPECT_FALSE(store_.ask(u"a", 2));
    EXPECT_TRUE(store_.ask(u"b", 2));
}

TEST_F(MemoryStoreTest, ARecordIsCreatedOnce) {
    EXPECT_FALSE(store_.find(u"g"));
    EXPECT_TRUE(store_.try_create(u"g"));
    EXPECT_FALSE(store_.try_create(u"g"));
    ASSERT_TRUE(store_.find(u"g"));
    EXPECT_EQ(store_.find(u"g")->user_name, u"");
}

TEST_F(MemoryStoreTest, SavingReplacesTheWholeRecord) {
    save(u"g", u"first");
    save(u"g", u"second");
    EXPECT_EQ(store_.find(u"g")->password.reveal(), "second");
    EXPECT_EQ(store_.find(u"g")->user_name, u"smith");
    EXPECT_EQ(store_.record_count(), 1u);
}

TEST_F(MemoryStoreTest, ARecordWithoutALoginIsForgottenAfterItsLifetime) {
    save(u"g", u"pw");
    pass(minutes(59));
    EXPECT_TRUE(store_.find(u"g")) << "and finding it keeps it";
    pass(minutes(59));
    EXPECT_TRUE(store_.find(u"g"));
    pass(minutes(60));
    EXPECT_FALSE(store_.find(u"g"));
    EXPECT_TRUE(store_.try_create(u"g"));
}

TEST_F(MemoryStoreTest, ARecordLivesAsLongAsItsLogin) {
    save(u"g", u"pw");
    begin(u"g", u"smith", false, minutes(200));
    pass(minutes(150));
    EXPECT_TRUE(store_.find(u"g"));
    pass(minutes(201));
    EXPECT_FALSE(store_.find(u"g"));
}

TEST_F(MemoryStoreTest, ForgettingEndsTheLoginAndDropsTheRecord) {
    save(u"g", u"pw");
    begin(u"g", u"smith");
    store_.forget(u"g");
    EXPECT_FALSE(store_.ask(u"g", 2));
    EXPECT_FALSE(store_.find(u"g"));
    EXPECT_EQ(store_.record_count() + store_.login_count(), 0u);
    store_.forget(u"never heard of");
}

TEST_F(MemoryStoreTest, WhatHasEndedIsSweptWithTheFirstChangeAMinuteLater) {
    save(u"a", u"pw");
    begin(u"a", u"smith", false, minutes(10));
    pass(minutes(70));
    EXPECT_EQ(store_.login_count(), 1u);
    save(u"b", u"pw");
    EXPECT_EQ(store_.login_count(), 0u);
    EXPECT_EQ(store_.record_count(), 1u);
}

class OneUsersLoginsTest : public MemoryStoreTest {
protected:
    OneUsersLoginsTest() { store_.set_most_of_user(2); }
};

TEST_F(OneUsersLoginsTest, AreSoManyAndANewOneEndsTheOneThatWasUsedLongestAgo) {
    for (const char16_t* guid : {u"a", u"b"}) {
        save_account(guid, u"smith", u"cn=smith,o=Shop");
        begin(guid, u"smith");
        pass(seconds(1));
    }
    EXPECT_TRUE(store_.ask(u"a", 2));
    pass(seconds(1));
    save_account(u"c", u"SMITH", u"CN=Smith,o=Shop");
    begin(u"c", u"SMITH");
    EXPECT_TRUE(store_.ask(u"a", 2)) << "the first, but used since";
    EXPECT_FALSE(store_.ask(u"b", 2));
    EXPECT_FALSE(store_.find(u"b"));
    EXPECT_TRUE(store_.ask(u"c", 2));
    begin(u"a", u"smith");
    EXPECT_TRUE(store_.ask(u"c", 2)) << "a renewed login is not one more";
    EXPECT_EQ(store_.login_count(), 2u);
}

TEST_F(OneUsersLoginsTest, LeaveTheOthersTheirPlaces) {
    begin(u"other", u"jones");
    for (int i = 0; i < 100; ++i) begin(decimal(i), u"smith");
    EXPECT_TRUE(store_.ask(u"other", 2));
    EXPECT_EQ(store_.login_count(), 3u);
}

TEST_F(OneUsersLoginsTest, AreNotAllThatIsCountedSoAreTheRecords) {
    begin(u"a", u"smith");
    save_account(u"other", u"jones", u"cn=jones,o=Shop");
    save_account(u"a", u"smith", u"cn=smith,o=Shop");
    for (int i = 0; i < 100; ++i) {
        pass(seconds(1));
        save_account(decimal(i), u"smith", u"cn=smith,o=Shop");
    }
    EXPECT_TRUE(store_.find(u"other"));
    EXPECT_TRUE(store_.ask(u"a", 2)) << "what has no login goes first";
    EXPECT_TRUE(store_.find(u"99"));
    EXPECT_EQ(store_.record_count(), 3u);
}

template <class Action>
Text refusal_of(Action action) {
    try {
        action();
        return u"nothing was raised";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, runtime_error::out_of_memory);
        return failure.description;
    }
}

TEST_F(MemoryStoreTest, AFullStoreRefusesNewOnesAndKeepsThoseItHas) {
    for (const Text guid : {u"a", u"b", u"c"}) begin(guid, u"smith"), save(guid, u"pw");
    EXPECT_EQ(refusal_of([&] { begin(u"d", u"jones"); }),
              u"The authorization filter holds 3 live logins, its most; a new one is refused");
    EXPECT_EQ(refusal_of([&] { save(u"d", u"pw"); }),
              u"The authorization filter holds 3 live records, its most; a new one is refused");
    EXPECT_EQ(refusal_of([&] { store_.try_create(u"d"); }),
              u"The authorization filter holds 3 live records, its most; a new one is refused");
    begin(u"a", u"smith");
    save(u"a", u"new");
    EXPECT_TRUE(store_.ask(u"b", 2));
}

TEST_F(MemoryStoreTest, AFullStoreTakesALoginThatReplacesTheUsersOwn) {
    for (const char16_t* guid : {u"a", u"b", u"c"}) begin(guid, guid);
    begin(u"d", u"a", true);
    EXPECT_TRUE(store_.ask(u"d", 2));
    EXPECT_FALSE(store_.ask(u"a", 2));
}

TEST_F(MemoryStoreTest, AFullStoreMakesRoomByWhatHasEnded) {
    for (const Text guid : {u"a", u"b", u"c"}) begin(guid, u"user " + guid, false, minutes(1));
    pass(minutes(1));
    begin(u"d", u"smith");
    EXPECT_TRUE(store_.ask(u"d", 2));
    EXPECT_EQ(store_.login_count(), 1u);
}

}  // namespace
}  // namespace orvo::authfilter
