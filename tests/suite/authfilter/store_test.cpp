#include "tests/suite/authfilter/store_test.h"

namespace orvo::authfilter {
namespace {

using std::chrono::minutes;
using std::chrono::seconds;

TEST_P(EveryStore, AllowsALoginTheApplicationsItBeganWithAndNoOther) {
    begin(u"g", u"smith");
    EXPECT_TRUE(store_->ask(u"g", 2));
    EXPECT_TRUE(store_->ask(u"g", 7));
    EXPECT_FALSE(store_->ask(u"g", 10));
    EXPECT_FALSE(store_->ask(u"g", 0));
    store_->begin({u"none", u"smith", {}, false, minutes(10)});
    EXPECT_FALSE(store_->ask(u"none", 0));
}

TEST_P(EveryStore, ComparesGuidsExactly) {
    begin(u"Guid", u"smith");
    EXPECT_FALSE(is_live(u"guid"));
    EXPECT_FALSE(is_live(u"Guid "));
    EXPECT_TRUE(store_->try_create(u"Guid"));
    EXPECT_TRUE(store_->try_create(u"guid"));
}

TEST_P(EveryStore, EndsALoginAfterItsTimeoutWithoutAQuestion) {
    begin(u"g", u"smith");
    pass(minutes(10) - seconds(1));
    EXPECT_TRUE(is_live(u"g"));
    pass(minutes(10));
    EXPECT_FALSE(is_live(u"g"));
    EXPECT_FALSE(is_live(u"g")) << "also for the next question";
}

TEST_P(EveryStore, KeepsALoginAliveByAQuestionForAnotherApplication) {
    begin(u"g", u"smith");
    pass(minutes(9));
    EXPECT_FALSE(store_->ask(u"g", 99));
    pass(minutes(9));
    EXPECT_TRUE(is_live(u"g"));
}

TEST_P(EveryStore, EndsTheUsersOthersWhereALoginMustBeTheOnlyOneWhateverTheCase) {
    begin(u"a", u"Smith");
    begin(u"b", u"jones");
    save(u"a", u"one");
    EXPECT_TRUE(is_live(u"a"));
    begin(u"c", u"sMITH", true);
    EXPECT_FALSE(is_live(u"a"));
    EXPECT_FALSE(store_->find(u"a"));
    EXPECT_TRUE(is_live(u"b"));
    EXPECT_TRUE(is_live(u"c"));
}

TEST_P(EveryStore, GivesAUserManyLoginsWhereNoneMustBeTheOnlyOne) {
    begin(u"a", u"smith", true);
    begin(u"b", u"smith");
    EXPECT_TRUE(is_live(u"a"));
    EXPECT_TRUE(is_live(u"b"));
}

TEST_P(EveryStore, RenewsALoginUnderTheSameGuid) {
    begin(u"g", u"smith", true, minutes(10));
    save(u"g", u"pw");
    EXPECT_TRUE(is_live(u"g"));
    const std::uint64_t number = store_->logins_of(u"g").at(0).number;
    pass(minutes(9));
    store_->begin({u"g", u"smith", {5}, true, minutes(20)});
    pass(minutes(19));
    EXPECT_TRUE(store_->ask(u"g", 5));
    EXPECT_FALSE(store_->ask(u"g", 2));
    ASSERT_EQ(store_->logins_of(u"g").size(), 1u);
    EXPECT_NE(store_->logins_of(u"g").at(0).number, number);
    EXPECT_TRUE(store_->find(u"g"));
}

TEST_P(EveryStore, PutsAnotherUsersLoginUnderTheSameGuidInItsPlace) {
    begin(u"g", u"smith");
    begin(u"g", u"jones");
    begin(u"h", u"smith", true);
    EXPECT_TRUE(is_live(u"g")) << "it is no longer smith's";
    begin(u"h", u"jones", true);
    EXPECT_FALSE(is_live(u"g"));
}

TEST_P(EveryStore, EndsTheLoginThatAGuidHadWithARecordOfAnotherUser) {
    save_account(u"g", u"admin", u"cn=admin,o=Shop");
    begin(u"g", u"admin");
    save_account(u"g", u"admin", u"cn=admin,o=Shop");
    EXPECT_TRUE(is_live(u"g")) << "the same user goes on";
    save_account(u"g", u"norole", u"cn=norole,o=Shop");
    EXPECT_FALSE(is_live(u"g"));
    begin(u"h", u"smith");
    save_account(u"h", u"norole", u"cn=norole,o=Shop");
    EXPECT_FALSE(is_live(u"h")) << "nor does a login without a record survive one";
    begin(u"i", u"Smith");
    save_account(u"i", u"smith", u"cn=smith,o=Shop");
    EXPECT_TRUE(is_live(u"i")) << "unless it is the same user's";
}

TEST_P(EveryStore, TellsByTheAccountThatTwoSpellingsAreOneUser) {
    save_account(u"a", u"jsmith", u"cn=jsmith,ou=Users,o=Shop");
    begin(u"a", u"jsmith", true);
    save_account(u"b", u" j\\73mith ", u"CN=j\\73mith , ou=Users,o=Shop");
    begin(u"b", u" j\\73mith ", true);
    EXPECT_FALSE(is_live(u"a"));
    EXPECT_TRUE(is_live(u"b"));
}

TEST_P(EveryStore, CreatesARecordOnce) {
    EXPECT_FALSE(store_->find(u"g"));
    EXPECT_TRUE(store_->try_create(u"g"));
    EXPECT_FALSE(store_->try_create(u"g"));
    ASSERT_TRUE(store_->find(u"g"));
    EXPECT_EQ(store_->find(u"g")->user_name, u"");
}

TEST_P(EveryStore, ReplacesTheWholeRecord) {
    save(u"g", u"first");
    Record record{u"sm\xD83Dith", u"cn=smith,o=Shop", Secret(u"pass wörd €"), u"SHOP\\nt",
                  Secret(u"")};
    store_->save(u"g", record);
    const auto found = store_->find(u"g");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->user_name, record.user_name);
    EXPECT_EQ(found->account_path, record.account_path);
    EXPECT_TRUE(found->password.is_same_as(record.password));
    EXPECT_EQ(found->nt_user, record.nt_user);
    EXPECT_TRUE(found->nt_password.empty());
}

TEST_P(EveryStore, ForgetsARecordWithoutALoginAfterItsLifetime) {
    save(u"g", u"pw");
    pass(minutes(59));
    EXPECT_TRUE(store_->find(u"g")) << "and finding it keeps it";
    pass(minutes(59));
    EXPECT_TRUE(store_->find(u"g"));
    pass(minutes(60));
    EXPECT_FALSE(store_->find(u"g"));
    EXPECT_TRUE(store_->try_create(u"g"));
}

TEST_P(EveryStore, KeepsARecordAsLongAsItsLogin) {
    save(u"g", u"pw");
    begin(u"g", u"smith", false, minutes(200));
    pass(minutes(150));
    EXPECT_TRUE(store_->find(u"g"));
    pass(minutes(201));
    EXPECT_FALSE(store_->find(u"g"));
}

TEST_P(EveryStore, ForgetsLoginAndRecordTogether) {
    save(u"g", u"pw");
    begin(u"g", u"smith");
    EXPECT_TRUE(is_live(u"g"));
    store_->forget(u"g");
    EXPECT_FALSE(is_live(u"g"));
    EXPECT_FALSE(store_->find(u"g"));
    EXPECT_EQ(store_->user_of(u"g"), u"");
    store_->forget(u"never heard of");
}

TEST_P(EveryStore, KnowsWhoIsLoggedInByTheAccountOrElseByName) {
    begin(u"g", u"Smith");
    EXPECT_EQ(store_->user_of(u"g"), u"Smith");
    EXPECT_TRUE(is_live(u"g"));
    EXPECT_EQ(store_->user_of(u"g"), u"Smith");
    log_in(u"h", u"jones");
    EXPECT_EQ(store_->user_of(u"h"), u"cn=jones,o=Shop");
    save(u"i", u"pw");
    EXPECT_EQ(store_->user_of(u"i"), u"") << "a record is no login";
    pass(minutes(9));
    EXPECT_EQ(store_->user_of(u"g"), u"Smith");
    pass(minutes(1));
    EXPECT_EQ(store_->user_of(u"g"), u"") << "being named keeps no login alive";
}

TEST_P(EveryStore, KeepsSoManyLoginsOfAUserAndEndsTheOneThatWasUsedLongestAgo) {
    store_->set_most_of_user(2);
    for (const char16_t* guid : {u"a", u"b"}) {
        log_in(guid, u"smith");
        pass(seconds(1));
    }
    EXPECT_TRUE(is_live(u"a"));
    pass(seconds(1));
    save_account(u"c", u"SMITH", u"CN=Smith,o=Shop");
    begin(u"c", u"SMITH");
    EXPECT_TRUE(is_live(u"a")) << "the first, but used since";
    EXPECT_FALSE(is_live(u"b"));
    EXPECT_FALSE(store_->find(u"b"));
    EXPECT_TRUE(is_live(u"c"));
    begin(u"a", u"smith");
    EXPECT_TRUE(is_live(u"c")) << "a renewed login is not one more";
    EXPECT_EQ(store_->logins_of(u"a").size(), 2u);
}

TEST_P(EveryStore, CountsLoginsThatHaveEndedForNothing) {
    store_->set_most_of_user(2);
    begin(u"a", u"smith", false, minutes(100));
    begin(u"b", u"smith", false, minutes(1));
    pass(minutes(2));
    begin(u"c", u"smith", false, minutes(100));
    EXPECT_TRUE(is_live(u"a"));
    EXPECT_TRUE(is_live(u"c"));
}

TEST_P(EveryStore, CountsEachUsersLoginsForThemselves) {
    store_->set_most_of_user(2);
    begin(u"other", u"jones");
    for (int i = 0; i < 10; ++i) begin(decimal(i), u"smith");
    EXPECT_TRUE(is_live(u"other"));
    EXPECT_EQ(store_->logins_of(u"9").size(), 2u);
}

TEST_P(EveryStore, CountsRecordsOfAUserAndDropsThoseWithoutALoginFirst) {
    store_->set_most_of_user(2);
    save_account(u"other", u"jones", u"cn=jones,o=Shop");
    log_in(u"a", u"smith");
    for (int i = 0; i < 10; ++i) {
        pass(seconds(1));
        save_account(decimal(i), u"smith", u"cn=smith,o=Shop");
    }
    EXPECT_TRUE(store_->find(u"other"));
    EXPECT_TRUE(is_live(u"a"));
    EXPECT_FALSE(store_->find(u"8"));
    EXPECT_TRUE(store_->find(u"9"));
}

TEST_P(EveryStore, ListsTheLiveLoginsOfAUserTheLastOneFirst) {
    log_in(u"a", u"smith");
    log_in(u"b", u"jones");
    pass(seconds(60));
    log_in(u"c", u"smith");
    pass(seconds(5));
    EXPECT_TRUE(is_live(u"a"));
    pass(seconds(2));
    const auto logins = store_->logins_of(u"a");
    ASSERT_EQ(logins.size(), 2u);
    EXPECT_EQ(logins[0].age, seconds(7));
    EXPECT_EQ(logins[0].idle, seconds(7));
    EXPECT_FALSE(logins[0].is_asker);
    EXPECT_EQ(logins[1].age, seconds(67));
    EXPECT_EQ(logins[1].idle, seconds(2));
    EXPECT_TRUE(logins[1].is_asker);
    EXPECT_GT(logins[0].number, logins[1].number);
    EXPECT_TRUE(store_->logins_of(u"nobody").empty());
    pass(minutes(10) - seconds(7));
    EXPECT_TRUE(store_->logins_of(u"c").empty()) << "it has ended";
    EXPECT_EQ(store_->logins_of(u"a").size(), 1u);
}

TEST_P(EveryStore, EndsOneOfAUsersLoginsForTheUserAlone) {
    log_in(u"a", u"smith");
    log_in(u"b", u"smith");
    log_in(u"c", u"jones");
    EXPECT_TRUE(is_live(u"b"));
    const std::uint64_t second = store_->logins_of(u"a").at(0).number;
    EXPECT_FALSE(store_->try_end(u"c", second)) << "another's";
    EXPECT_FALSE(store_->try_end(u"nobody", second));
    EXPECT_FALSE(store_->try_end(u"a", second + 100));
    EXPECT_TRUE(store_->try_end(u"a", second));
    EXPECT_FALSE(is_live(u"b"));
    EXPECT_FALSE(store_->find(u"b"));
    EXPECT_FALSE(store_->try_end(u"a", second)) << "it is gone";
    EXPECT_TRUE(is_live(u"a"));
}

TEST_P(EveryStore, EndsAllLoginsOfAUserButOne) {
    for (const char16_t* guid : {u"a", u"b", u"c"}) log_in(guid, u"smith");
    log_in(u"d", u"jones");
    EXPECT_TRUE(is_live(u"c"));
    EXPECT_EQ(store_->end_others(u"nobody"), 0u);
    EXPECT_EQ(store_->end_others(u"b"), 2u);
    EXPECT_EQ(store_->end_others(u"b"), 0u);
    EXPECT_FALSE(is_live(u"a"));
    EXPECT_FALSE(is_live(u"c"));
    EXPECT_FALSE(store_->find(u"c"));
    EXPECT_TRUE(is_live(u"b"));
    EXPECT_TRUE(is_live(u"d"));
    EXPECT_EQ(store_->end_others(u"a"), 0u) << "it has ended itself";
}

TEST_P(EveryStore, EndsAllLoginsOfAnAccountAndTakesItsRecordsAlong) {
    log_in(u"a", u"smith");
    log_in(u"b", u"smith");
    save_account(u"beginning", u"smith", u"cn=smith,o=Shop");
    log_in(u"d", u"jones");
    EXPECT_TRUE(is_live(u"a"));
    EXPECT_EQ(store_->end_all_of(u"cn=nobody,o=Shop", u""), 0u);
    EXPECT_EQ(store_->end_all_of(u"CN=Smith , o=Shop", u"b"), 1u);
    EXPECT_FALSE(is_live(u"a"));
    EXPECT_TRUE(is_live(u"b"));
    EXPECT_TRUE(store_->find(u"b"));
    EXPECT_FALSE(store_->find(u"beginning")) << "a login with the old password is under way";
    EXPECT_EQ(store_->end_all_of(u"cn=smith,o=Shop", u""), 1u);
    EXPECT_FALSE(is_live(u"b"));
    EXPECT_TRUE(is_live(u"d"));
    begin(u"e", u"Walker");
    EXPECT_EQ(store_->end_all_of(u"walker", u""), 1u) << "without a record it is the name";
    EXPECT_FALSE(is_live(u"e"));
}

}  // namespace
}  // namespace orvo::authfilter
