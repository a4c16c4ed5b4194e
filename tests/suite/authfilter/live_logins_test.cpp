#include "suite/authfilter/live_logins.h"

#include <gtest/gtest.h>

#include "platform/interfaces/late_call.h"
#include "platform/values/values.h"
#include "suite/authfilter/memory_store.h"
#include "tests/support/raised.h"

namespace orvo::authfilter {
namespace {

// As a page uses them: by name.
class LiveLoginsTest : public testing::Test {
protected:
    void login(const Text& guid, const Text& path) {
        Record record;
        record.user_name = u"name";
        record.account_path = path;
        store_.save(guid, record);
        store_.begin({guid, u"name", {1}, false, std::chrono::minutes(10)});
    }
    Values logins_of(const Text& guid) {
        return late::call(logins_, u"LoginsOf", {guid}).to<Values>();
    }
    Text id_of(const Values& logins, std::int32_t index) {
        return late::get(logins[index].to<Object>(), u"ID").to<Text>();
    }
    bool end(const Text& guid, const Text& id) {
        return late::call(logins_, u"EndLogin", {guid, id}).to<bool>();
    }

    Clock::time_point now_{};
    MemoryStore store_{{}, [this] { return now_; }};
    const Object logins_ = make<LiveLogins>(store_).object();
};

TEST_F(LiveLoginsTest, AreThoseOfOneAccountTheLastOneFirst) {
    login(u"G1", u"cn=smith,ou=Users,o=Shop");
    login(u"G2", u"cn=jones,ou=Users,o=Shop");
    now_ += std::chrono::seconds(60);
    login(u"G3", u"CN=Smith, ou=Users, o=Shop");
    now_ += std::chrono::seconds(5);
    store_.ask(u"G1", 1);
    now_ += std::chrono::seconds(2);

    const Values logins = logins_of(u"G1");
    ASSERT_EQ(logins.upper_bound(), 1);
    const auto facts = [&](std::int32_t index) {
        const Object login = logins[index].to<Object>();
        return std::tuple(late::get(login, u"Age"), late::get(login, u"IdleTime"),
                          late::get(login, u"IsThisOne"));
    };
    EXPECT_EQ(facts(0), std::tuple(Variant(7.0), Variant(7.0), Variant(false)));
    EXPECT_EQ(facts(1), std::tuple(Variant(67.0), Variant(2.0), Variant(true)));
    EXPECT_NE(id_of(logins, 0), id_of(logins, 1));
}

TEST_F(LiveLoginsTest, AreNotToldToWhoHasNoLiveLogin) {
    login(u"G1", u"cn=smith,o=Shop");
    login(u"G2", u"cn=smith,o=Shop");
    const Text id = id_of(logins_of(u"G1"), 0);
    for (const char16_t* guid : {u"", u"g1", u"G3"}) {
        EXPECT_EQ(logins_of(guid).upper_bound(), -1) << to_utf8(guid);
        EXPECT_FALSE(end(guid, id)) << to_utf8(guid);
    }
    now_ += std::chrono::minutes(9);
    store_.ask(u"G2", 1);
    now_ += std::chrono::minutes(1);
    EXPECT_EQ(logins_of(u"G1").upper_bound(), -1) << "its own has ended";
    EXPECT_EQ(logins_of(u"G2").upper_bound(), 0);
}

TEST_F(LiveLoginsTest, AreEndedByTheirOwnUserOnly) {
    login(u"G1", u"cn=smith,o=Shop");
    login(u"G2", u"cn=smith,o=Shop");
    login(u"G3", u"cn=jones,o=Shop");
    const Text second = id_of(logins_of(u"G1"), 0);
    EXPECT_FALSE(end(u"G3", second)) << "another's";
    EXPECT_FALSE(end(u"G1", u"x"));
    EXPECT_FALSE(end(u"G1", u""));
    EXPECT_TRUE(store_.ask(u"G2", 1));

    EXPECT_TRUE(end(u"G1", second));
    EXPECT_FALSE(store_.ask(u"G2", 1));
    EXPECT_FALSE(store_.find(u"G2"));
    EXPECT_FALSE(end(u"G1", second)) << "it is gone";
    EXPECT_TRUE(store_.ask(u"G1", 1));
}

TEST_F(LiveLoginsTest, AreAllButOneEndedAtOnce) {
    for (const char16_t* guid : {u"G1", u"G2", u"G3"}) login(guid, u"cn=smith,o=Shop");
    login(u"G4", u"cn=jones,o=Shop");
    EXPECT_EQ(late::call(logins_, u"EndOthers", {u"G2"}), Variant(2));
    EXPECT_EQ(late::call(logins_, u"EndOthers", {u"G2"}), Variant(0));
    EXPECT_EQ(late::call(logins_, u"EndOthers", {u"G1"}), Variant(0)) << "it has ended";
    EXPECT_FALSE(store_.ask(u"G1", 1));
    EXPECT_FALSE(store_.find(u"G3"));
    EXPECT_TRUE(store_.ask(u"G2", 1));
    EXPECT_TRUE(store_.ask(u"G4", 1));
}

TEST_F(LiveLoginsTest, OfAnAccountAreEndedOnAnAdministratorsWord) {
    login(u"G1", u"cn=smith,o=Shop");
    login(u"G2", u"cn=smith,o=Shop");
    login(u"G3", u"cn=jones,o=Shop");
    EXPECT_EQ(late::call(logins_, u"EndAllOf", {u"cn=nobody,o=Shop"}), Variant(0));
    EXPECT_EQ(late::call(logins_, u"EndAllOf", {u"CN=Smith, o=Shop"}), Variant(2));
    EXPECT_FALSE(store_.ask(u"G1", 1));
    EXPECT_FALSE(store_.find(u"G2"));
    EXPECT_TRUE(store_.ask(u"G3", 1));
    login(u"G1", u"cn=smith,o=Shop");
    login(u"G2", u"cn=smith,o=Shop");
    EXPECT_EQ(late::call(logins_, u"EndAllOf", {u"cn=smith,o=Shop", u"G2"}), Variant(1));
    EXPECT_TRUE(store_.ask(u"G2", 1));
    EXPECT_TRUE(store_.find(u"G2"));
}

TEST_F(LiveLoginsTest, ALookAtThemKeepsNoneAlive) {
    login(u"G1", u"cn=smith,o=Shop");
    now_ += std::chrono::minutes(9);
    logins_of(u"G1");
    now_ += std::chrono::minutes(1);
    EXPECT_FALSE(store_.ask(u"G1", 1));
}

TEST_F(LiveLoginsTest, ARenewedLoginHasAnIdOfItsOwn) {
    login(u"G1", u"cn=smith,o=Shop");
    const Text before = id_of(logins_of(u"G1"), 0);
    login(u"G1", u"cn=smith,o=Shop");
    EXPECT_FALSE(end(u"G1", before));
    EXPECT_EQ(logins_of(u"G1").upper_bound(), 0);
}

TEST_F(LiveLoginsTest, HowManyOneUserHasIsSettledByTheSite) {
    late::put(logins_, u"MostOfOneUser", 1);
    login(u"G1", u"cn=smith,o=Shop");
    login(u"G2", u"cn=smith,o=Shop");
    EXPECT_FALSE(store_.ask(u"G1", 1));
    EXPECT_TRUE(store_.ask(u"G2", 1));
    const Failure none = raised_by([&] { late::put(logins_, u"MostOfOneUser", 0); });
    EXPECT_EQ(none.number, 5);
    EXPECT_EQ(none.description, u"A user has at least one login, not 0");
}

}  // namespace
}  // namespace orvo::authfilter
