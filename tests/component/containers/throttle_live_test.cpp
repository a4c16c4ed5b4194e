// What the throttle of a site does to password checks, with everything real behind it.

#include <fstream>

#include "platform/objects/context/context_scope.h"
#include "tests/component/containers/containers_live_test.h"
#include "tests/support/addressed_request.h"
#include "tests/support/throttle_setting.h"

namespace orvo {
namespace {

constexpr auto not_correct = error_number(0x80040325);

template <class Site>
class ThrottledSite : public Site {
protected:
    template <class... Arguments>
    explicit ThrottledSite(Arguments&&... arguments) : Site(std::forward<Arguments>(arguments)...) {
        switch_on();
        std::ofstream(this->shop_.site_ini(), std::ios::app) << "\n[AUDIT]\nFile=audit.jsonl\n";
        in_fresh_thread([] {
            for (const char16_t* user : {u"djansen", u"nobody", u"jsmith"}) clear(user);
        });
    }

    void switch_on() {
        write_throttle_section(this->shop_.site_ini(), "On=yes\nAttempts=2\nLongestDelay=0\n");
    }
    static Text dn(const Text& user) { return u"cn=" + user + u",ou=Users,o=Shop"; }
    static bool clear(const Text& user) {
        return late::call(create_object(u"OrvoSuite.Throttle"), u"Clear", {dn(user)}).to<bool>();
    }
    std::int32_t check(const Text& user, const Text& password) {
        this->load_settings();
        const Object validator = create_object(u"OrvoMembership.Validator");
        return late::call(validator, u"ValidatePassword", {user, password}).to<std::int32_t>();
    }
    std::int32_t check_from(const Text& address, const Text& user, const Text& password) {
        const ContextScope page({{u"Request", make<AddressedRequest>(address).object()}});
        return check(user, password);
    }
    std::vector<std::int32_t> checks(const Text& user,
                                     std::initializer_list<const char16_t*> passwords) {
        std::vector<std::int32_t> numbers;
        for (const char16_t* password : passwords) numbers.push_back(check(user, password));
        return numbers;
    }
    std::size_t audited(const std::string& result) const {
        std::ifstream file(this->shop_.site_ini().parent_path() / "audit.jsonl");
        std::size_t count = 0;
        for (std::string line; std::getline(file, line);)
            count += line.find("\"event\":\"check\",\"result\":\"" + result + '"') != line.npos;
        return count;
    }
};

class ThrottleLive : public ThrottledSite<ContainersLive> {
protected:
    ThrottleLive() : ThrottledSite(DirectoryOptions{.password_policy = true}) {}
};

TEST_FRESH_FOR_EACH(ThrottleLive, AfterTooManyWrongPasswordsTheDirectoryIsNotAsked) {
    EXPECT_THAT(checks(u"djansen", {u"one", u"two", u"three", u"shop-sample"}),
                ElementsAre(-1, -1, -5, -5));
    EXPECT_EQ(stored("djansen", "pwdFailureTime").size(), 2u);
    EXPECT_EQ(audited("wrong"), 2u);
    EXPECT_EQ(audited("throttled"), 2u);
    EXPECT_EQ(check(u"jsmith", u"shop-sample"), 0) << "who is somebody else";
}

TEST_FRESH_FOR_EACH(ThrottleLive, ANameThatIsNotThereFaresAsOneThatIs) {
    for (const char16_t* user : {u"djansen", u"nobody"})
        EXPECT_THAT(checks(user, {u"one", u"two", u"three"}), ElementsAre(-1, -1, -5));
}

TEST_FRESH_FOR_EACH(ThrottleLive, ALockedAccountFaresAsAnyOther) {
    shop_.replace(shop_.user_dn("djansen"), "pwdAccountLockedTime", {"000001010000Z"});
    EXPECT_THAT(checks(u"djansen", {u"one", u"shop-sample", u"three"}), ElementsAre(-2, -2, -5));
}

TEST_FRESH_FOR_EACH(ThrottleLive, SpellingsOfAUsersNameAreOneUser) {
    EXPECT_EQ(check(u"djansen", u"one"), -1);
    EXPECT_EQ(check(u"DJANSEN", u"two"), -1);
    for (const char16_t* spelling :
         {u"djansen", u"cn=djansen", u"CN = DJansen ", u"commonName=djansen", u"2.5.4.3=djansen",
          u"\\64jansen", u"cn=\xFF44jansen"})
        EXPECT_EQ(check(spelling, u"shop-sample"), -5) << to_utf8(spelling);
}

TEST_FRESH_FOR_EACH(ThrottleLive, ARightPasswordEndsTheWrongOnes) {
    for (int i = 0; i < 5; ++i)
        EXPECT_THAT(checks(u"djansen", {u"one", u"shop-sample"}), ElementsAre(-1, 0));
}

TEST_FRESH_FOR_EACH(ThrottleLive, WhatIsNoPasswordIsNoAttempt) {
    EXPECT_THAT(checks(u"djansen", {u"", u"", u"", u"shop-sample"}), ElementsAre(-1, -1, -1, 0));
}

TEST_FRESH_FOR_EACH(ThrottleLive, GuessesFromManyAddressesLeaveTheUserIn) {
    ASSERT_EQ(check_from(u"198.51.100.1", u"djansen", u"shop-sample"), 0);
    std::vector<std::int32_t> numbers;
    for (int i = 0; i < 5; ++i)
        numbers.push_back(check_from(u"203.0.113." + decimal(i), u"djansen", u"guess"));
    EXPECT_THAT(numbers, ElementsAre(-1, -1, -5, -5, -5));
    EXPECT_EQ(check_from(u"203.0.113.1", u"djansen", u"shop-sample"), -5);
    EXPECT_EQ(check_from(u"198.51.100.1", u"djansen", u"shop-sample"), 0);
    EXPECT_EQ(check(u"djansen", u"shop-sample"), 0) << "a program of the machine itself";
}

TEST_FRESH_FOR_EACH(ThrottleLive, AChangeOfThePasswordIsNoWayRound) {
    load_settings();
    const auto change = [&](const Text& old) {
        late::call(create_object(u"OrvoMembership.Validator"), u"ChangePassword",
                   {u"djansen", old, u"second-sample"});
    };
    for (const char16_t* old : {u"one", u"two", u"shop-sample"})
        EXPECT_EQ(raised_by([&] { change(old); }).number, not_correct) << to_utf8(old);
    EXPECT_EQ(audited("wrong"), 2u);
    EXPECT_EQ(check(u"djansen", u"shop-sample"), -5);
    EXPECT_TRUE(clear(u"djansen"));
    change(u"shop-sample");
    EXPECT_EQ(check(u"djansen", u"second-sample"), 0);
}

// A password that is right but has to be changed is right.
TEST_FRESH_FOR_EACH(ThrottleLive, AnExpiredPasswordIsNoWrongOne) {
    shop_.replace(shop_.user_dn("djansen"), "pwdReset", {"TRUE"});
    EXPECT_THAT(checks(u"djansen", {u"shop-sample", u"shop-sample", u"shop-sample", u"one"}),
                ElementsAre(-4, -4, -4, -1));
}

class ThrottleOverLdap : public ThrottledSite<ContainersOverLdap> {};

TEST_FRESH(ThrottleOverLdap, ADirectoryThatIsAwayCountsNothing) {
    EXPECT_EQ(check(u"djansen", u"one"), -1);
    server_.stop();
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(raised_by([&] { check(u"djansen", u"two"); }).number, unreachable);
    server_.start();  // with settings of its own
    switch_on();
    EXPECT_THAT(checks(u"djansen", {u"two", u"three"}), ElementsAre(-1, -5));
}

TEST_FRESH(ThrottleOverLdap, SettingsThatAreWrongLetNobodyIn) {
    std::ofstream(shop_.site_ini(), std::ios::app) << "\n[THROTTLE]\nUndelayed=3\n";
    EXPECT_THAT(to_utf8(raised_by([&] { check(u"jsmith", u"shop-sample"); }).description),
                HasSubstr("[THROTTLE] Undelayed: there is no such key"));
}

}  // namespace
}  // namespace orvo
