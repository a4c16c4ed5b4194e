#include "suite/authfilter/filter_connector.h"

#include <gtest/gtest.h>

#include "platform/interfaces/call.h"
#include "platform/interfaces/late_call.h"
#include "platform/values/values.h"
#include "suite/authfilter/memory_store.h"
#include "tests/support/clear_text.h"
#include "tests/support/raised.h"

namespace orvo::authfilter {
namespace {

class FilterConnectorTest : public testing::Test {
protected:
    Ref<FilterUser> create(const Text& guid) {
        return call<&FilterConnector::CreateUserWithGUID>(connector_, guid);
    }
    Ref<FilterUser> find(const Text& guid) {
        return call<&FilterConnector::FindUserByGUID>(connector_, guid);
    }
    bool login(const Text& user, const Variant& applications, const Text& guid,
               std::int32_t timeout = 10) {
        return call<&FilterConnector::RegisterLogin>(connector_, user, applications, guid,
                                                     std::int16_t{1}, timeout);
    }
    bool is_logged_in(const Text& guid, std::int32_t application) {
        return call<&FilterConnector::IsLoggedIn>(connector_, guid, application);
    }

    Clock::time_point now_{};
    MemoryStore store_{Limits{}, [this] { return now_; }};
    Ref<FilterConnector> connector_ = make<FilterConnectorObject>(store_);
};

TEST_F(FilterConnectorTest, FindsNothingUnderAGuidThatNobodyCreated) {
    EXPECT_FALSE(find(u"g"));
    EXPECT_FALSE(find(u""));
    EXPECT_FALSE(find(Text(257, u'x')));
}

TEST_F(FilterConnectorTest, ASecondCreatorOfAGuidGetsNothing) {
    EXPECT_TRUE(create(u"g"));
    EXPECT_FALSE(create(u"g"));
    EXPECT_TRUE(find(u"g"));
}

TEST_F(FilterConnectorTest, WhatIsPutIsPrivateUntilItIsSaved) {
    const auto user = create(u"g");
    call<&FilterUser::put_UserName>(user, u"smith");
    call<&FilterUser::put_AccountPath>(user, u"cn=smith,ou=Users,o=Shop");
    call<&FilterUser::put_Password>(user, Secret(u"pässword"));
    call<&FilterUser::put_NTUser>(user, u"DOMAIN\\smith");
    call<&FilterUser::put_NTPassword>(user, Secret(u"nt secret"));
    EXPECT_EQ(call<&FilterUser::UserName>(find(u"g")), u"");
    EXPECT_EQ(clear_text(call<&FilterUser::Password>(find(u"g"))), u"");

    call<&FilterUser::Save>(user);
    const auto found = find(u"g");
    EXPECT_EQ(call<&FilterUser::GUID>(found), u"g");
    EXPECT_EQ(call<&FilterUser::UserName>(found), u"smith");
    EXPECT_EQ(call<&FilterUser::AccountPath>(found), u"cn=smith,ou=Users,o=Shop");
    EXPECT_EQ(clear_text(call<&FilterUser::Password>(found)), u"pässword");
    EXPECT_EQ(call<&FilterUser::NTUser>(found), u"DOMAIN\\smith");
    EXPECT_EQ(clear_text(call<&FilterUser::NTPassword>(found)), u"nt secret");
}

TEST_F(FilterConnectorTest, ARecordHandedOutKeepsWhatItHadWhenAnotherIsSaved) {
    const auto first = create(u"g");
    const auto second = find(u"g");
    call<&FilterUser::put_UserName>(second, u"jones");
    call<&FilterUser::Save>(second);
    EXPECT_EQ(call<&FilterUser::UserName>(first), u"");
}

TEST_F(FilterConnectorTest, ARecordThatTheFilterHasForgottenIsStoredAnewBySaving) {
    const auto user = create(u"g");
    call<&FilterConnector::Logout>(connector_, u"g");
    EXPECT_FALSE(find(u"g"));
    call<&FilterUser::Save>(user);
    EXPECT_TRUE(find(u"g"));
    EXPECT_FALSE(is_logged_in(u"g", 1)) << "a record alone is no login";
}

TEST_F(FilterConnectorTest, ALoginHasTheApplicationsOfTheArrayWhateverTypeTheyHave) {
    EXPECT_TRUE(login(u"smith", Values{1, u"22", std::int16_t{10}}, u"g"));
    EXPECT_TRUE(is_logged_in(u"g", 1));
    EXPECT_TRUE(is_logged_in(u"g", 22));
    EXPECT_TRUE(is_logged_in(u"g", 10));
    EXPECT_FALSE(is_logged_in(u"g", 2));
}

TEST_F(FilterConnectorTest, AnyConnectorOfTheStoreSeesTheLogin) {
    const Ref<FilterConnector> other = make<FilterConnectorObject>(store_);
    login(u"smith", Values{1}, u"g");
    EXPECT_TRUE(call<&FilterConnector::IsLoggedIn>(other, u"g", 1));
    call<&FilterConnector::Logout>(other, u"g");
    EXPECT_FALSE(is_logged_in(u"g", 1));
}

TEST_F(FilterConnectorTest, ConnectorsMadeByProgIdShareTheProcessesStore) {
    const auto first = make<FilterConnectorObject>();
    const auto second = make<FilterConnectorObject>();
    EXPECT_TRUE(call<&FilterConnector::CreateUserWithGUID>(first, u"process"));
    EXPECT_FALSE(call<&FilterConnector::CreateUserWithGUID>(second, u"process"));
    call<&FilterConnector::Logout>(second, u"process");
    EXPECT_FALSE(call<&FilterConnector::FindUserByGUID>(first, u"process"));
}

TEST_F(FilterConnectorTest, ATimeoutBelowOneIsTenMinutes) {
    for (const std::int32_t timeout : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
        login(u"smith", Values{1}, u"g", timeout);
        now_ += std::chrono::minutes(10) - std::chrono::seconds(1);
        EXPECT_TRUE(is_logged_in(u"g", 1)) << timeout;
        now_ += std::chrono::minutes(10);
        EXPECT_FALSE(is_logged_in(u"g", 1)) << timeout;
    }
}

TEST_F(FilterConnectorTest, AHugeTimeoutIsAYear) {
    login(u"smith", Values{1}, u"g", std::numeric_limits<std::int32_t>::max());
    now_ += std::chrono::days(365) - std::chrono::seconds(1);
    EXPECT_TRUE(is_logged_in(u"g", 1));
    now_ += std::chrono::days(365);
    EXPECT_FALSE(is_logged_in(u"g", 1));
}

TEST_F(FilterConnectorTest, RefusesALoginWithoutAGuidOrAUserAndKeepsNothingOfIt) {
    const Failure guid = raised_by([&] { login(u"smith", Values{1}, u""); });
    EXPECT_EQ(guid.number, 5);
    EXPECT_EQ(guid.source, u"TavikAuthFilter.Connector");
    EXPECT_EQ(guid.description, u"A GUID has 1 to 256 characters, this one has 0");
    const Failure user = raised_by([&] { login(u"", Values{1}, u"g"); });
    EXPECT_EQ(user.number, 5);
    EXPECT_EQ(user.description, u"A login needs the name of its user");
    EXPECT_EQ(raised_by([&] { create(Text(257, u'x')); }).description,
              u"A GUID has 1 to 256 characters, this one has 257");
    EXPECT_EQ(store_.login_count() + store_.record_count(), 0u);
}

TEST_F(FilterConnectorTest, RefusesApplicationsThatAreNoArrayOfNumbersAndKeepsTheOldLogin) {
    login(u"smith", Values{1}, u"g");
    EXPECT_EQ(raised_by([&] { login(u"smith", Variant(7), u"g"); }).number, 13);
    EXPECT_EQ(raised_by([&] { login(u"smith", Values{1, u"two"}, u"g"); }).number, 13);
    EXPECT_TRUE(is_logged_in(u"g", 1));
}

TEST_F(FilterConnectorTest, ALoginWithoutApplicationsIsAllowedNone) {
    EXPECT_TRUE(login(u"smith", Values{}, u"g"));
    EXPECT_FALSE(is_logged_in(u"g", 0));
}

TEST_F(FilterConnectorTest, IsUsedLateBoundByName) {
    const Object connector = connector_.object();
    const Object user = late::call(connector, u"createuserwithguid", {u"g"}).to<Object>();
    late::put(user, u"UserName", u"smith");
    late::call(user, u"Save");
    EXPECT_EQ(late::get(late::call(connector, u"FindUserByGUID", {u"g"}).to<Object>(), u"UserName"),
              Variant(u"smith"));
    EXPECT_FALSE(late::call(connector, u"FindUserByGUID", {u"h"}).to<Object>());
    EXPECT_EQ(late::call(connector, u"RegisterLogin", {u"smith", Values{3}, u"g", 1, 10}),
              Variant(true));
    EXPECT_EQ(late::call(connector, u"IsLoggedIn", {u"g", 3}), Variant(true));
}

}  // namespace
}  // namespace orvo::authfilter
