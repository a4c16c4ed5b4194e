#include "suite/throttle/suite_throttle.h"

#include <gmock/gmock.h>

#include "platform/interfaces/call.h"
#include "platform/interfaces/late_call.h"
#include "platform/module/local_class.h"
#include "platform/objects/context/app_server.h"
#include "platform/objects/context/context_scope.h"
#include "suite/configuration/ini_parser.h"
#include "suite/throttle/throttle_call.h"
#include "tests/support/addressed_request.h"
#include "tests/support/environment.h"
#include "tests/support/raised.h"
#include "tests/support/temp_folder.h"

namespace orvo::throttle {
namespace {

using testing::ElementsAre;

const Text jsmith = u"cn=jsmith,ou=Users,o=Shop";

class SuiteThrottleTest : public testing::Test {
protected:
    void configure(const std::string& section) {
        folder_.write("site.ini", "[THROTTLE]\n" + section);
    }
    // A check of a password by the calling thread's page; nothing where it was not admitted.
    bool checked(std::int32_t result, const Text& user = jsmith) {
        SuiteThrottle throttle(process_);
        if (!throttle.Admit(user)) return false;
        throttle.Settle(result);
        return true;
    }
    bool checked_from(const Text& address, std::int32_t result) {
        const ContextScope page({{u"Request", make<AddressedRequest>(address).object()}});
        return checked(result);
    }
    int guesses() {
        int admitted = 0;
        while (admitted < 20 && checked(-1)) ++admitted;
        return admitted;
    }
    // "unknown addresses 2 of 3, 0 s"; "*" marks the one that is asked.
    std::vector<std::string> state(const Text& address = {}) {
        std::vector<std::string> rows;
        const Object table = SuiteThrottle(process_).State(jsmith, address);
        const auto cell = [&](TextView name) {
            return to_utf8(late::get(table, u"Collect", {name}).to<Text>());
        };
        for (; !late::get(table, u"EOF").to<bool>(); late::call(table, u"MoveNext"))
            rows.push_back(cell(u"Budget") + " " + cell(u"Wrong") + " of " + cell(u"Most") +
                           (cell(u"Seconds") == "0" ? "" : ", wait") +
                           (cell(u"IsAsked") == "True" ? " *" : ""));
        return rows;
    }

    TempFolder folder_;
    Environment components_{"ORVO_COMPONENTS", folder_.path().string()};
    Environment site_{"ORVO_SITE_CONFIG",
                      folder_.write("site.ini", "[THROTTLE]\nOn=yes\nAttempts=3\n").string()};
    LocalClass app_server_class_{app_server_progid, class_of<AppServerObject>.clsid,
                                 [] { return make<AppServerObject>().object(); }};
    LocalClass throttle_class_ = local_class<SuiteThrottle>();
    ProcessThrottle process_;
};

TEST_F(SuiteThrottleTest, IsOffUnlessTheSiteAsksForIt) {
    EXPECT_TRUE(try_throttle());
    configure("On=no\nAttempts=3\n");
    EXPECT_FALSE(try_throttle());
    EXPECT_EQ(guesses(), 20);
    folder_.write("site.ini", "");
    EXPECT_FALSE(try_throttle());
    configure("On=yes\nAttempts=3\n");
    EXPECT_EQ(guesses(), 3);
}

TEST_F(SuiteThrottleTest, WhatIsWrongWithTheSettingsIsRaised) {
    configure("On=yes\nAttemps=3\n");
    EXPECT_EQ(raised_by([] { try_throttle(); }).number, configuration_error::malformed_file);
}

TEST_F(SuiteThrottleTest, CountsEachWrongAnswerOnce) {
    EXPECT_TRUE(checked(-1));
    EXPECT_TRUE(checked(-2));
    EXPECT_THAT(state(), ElementsAre("unknown addresses 0 of 3", "programs 2 of 3 *"));
    EXPECT_TRUE(checked(-3));
    EXPECT_FALSE(checked(0));
    EXPECT_THAT(state(), ElementsAre("unknown addresses 0 of 3", "programs 3 of 3, wait *"));
}

TEST_F(SuiteThrottleTest, RightAnswersAreThoseThatTheContractSaysSo) {
    for (const std::int32_t right : {0, 1, -4}) {
        checked(-1);
        checked(-5);
        EXPECT_TRUE(checked(right));
        EXPECT_EQ(state()[1], "programs 0 of 3 *") << right;
    }
}

TEST_F(SuiteThrottleTest, AnAttemptWithoutAnAnswerIsNotCounted) {
    for (int i = 0; i < 20; ++i) ASSERT_TRUE(SuiteThrottle(process_).Admit(jsmith));
    EXPECT_EQ(state()[1], "programs 0 of 3 *");
}

TEST_F(SuiteThrottleTest, AnAnswerCountsOnceHoweverOftenItIsTold) {
    SuiteThrottle throttle(process_);
    throttle.Settle(-1);
    ASSERT_TRUE(throttle.Admit(jsmith));
    throttle.Settle(-1);
    throttle.Settle(-1);
    EXPECT_EQ(state()[1], "programs 1 of 3 *");
}

TEST_F(SuiteThrottleTest, TellsPagesApartByTheirBrowsersAddresses) {
    ASSERT_TRUE(checked_from(u"198.51.100.1", 0));
    int admitted = 0;
    for (int i = 0; i < 20; ++i) admitted += checked_from(u"203.0.113." + decimal(i), -1);
    EXPECT_EQ(admitted, 3);
    EXPECT_THAT(state(u"203.0.113.77"),
                ElementsAre("unknown addresses 3 of 3, wait *", "programs 0 of 3",
                            "known address 0 of 3", "address 0 of 100 *"));
    EXPECT_TRUE(checked_from(u"198.51.100.1", -1));
    EXPECT_THAT(state(u"198.51.100.1"),
                ElementsAre("unknown addresses 3 of 3, wait", "programs 0 of 3",
                            "known address 1 of 3 *", "address 0 of 100"));
}

TEST_F(SuiteThrottleTest, ClearIsTheEndOfIt) {
    EXPECT_EQ(guesses(), 3);
    EXPECT_TRUE(SuiteThrottle(process_).Clear(u"CN=JSmith, OU=users, O=shop"));
    EXPECT_FALSE(SuiteThrottle(process_).Clear(jsmith));
    EXPECT_EQ(guesses(), 3);
}

TEST_F(SuiteThrottleTest, AttemptsByAllNamesOfAUserCountTogether) {
    const auto guess_as = [&](const Text& name) {
        SuiteThrottle throttle(process_);
        if (!throttle.Admit(u"cn=" + name + u",ou=Users,o=Shop")) return Text(u"refused");
        const bool has_room = throttle.AdmitFound(jsmith);
        throttle.Settle(-1);
        return Text(has_room ? u"checked" : u"wrong");
    };
    EXPECT_EQ(guess_as(u"js"), u"checked");
    EXPECT_EQ(guess_as(u"john@shop.example"), u"checked");
    EXPECT_EQ(guess_as(u"JSmith"), u"checked");
    EXPECT_EQ(guess_as(u"js"), u"wrong");
    EXPECT_EQ(guess_as(u"js"), u"wrong");
    EXPECT_EQ(guess_as(u"js"), u"refused");
    EXPECT_FALSE(SuiteThrottle(process_).AdmitFound(jsmith)) << "which nobody has admitted";
    configure("On=no\n");
    EXPECT_TRUE(SuiteThrottle(process_).AdmitFound(jsmith));
}

TEST_F(SuiteThrottleTest, ClearAddressIsTheEndOfItForAnAddress) {
    const auto row = [&] { return state(u"203.0.113.7").back(); };
    checked_from(u"203.0.113.7", -1);
    EXPECT_EQ(row(), "address 1 of 100 *");
    EXPECT_TRUE(SuiteThrottle(process_).ClearAddress(u"::ffff:203.0.113.7"));
    EXPECT_FALSE(SuiteThrottle(process_).ClearAddress(u"203.0.113.7"));
    EXPECT_EQ(row(), "address 0 of 100 *");
}

TEST_F(SuiteThrottleTest, HasFigures) {
    guesses();
    const Object figures = SuiteThrottle(process_).Figures();
    const auto figure = [&](TextView name) {
        return late::get(figures, u"Collect", {name}).to<double>();
    };
    EXPECT_EQ(figure(u"Admitted"), 3);
    EXPECT_EQ(figure(u"Refused"), 1);
    EXPECT_EQ(figure(u"Wrong"), 3);
    EXPECT_EQ(figure(u"Delayed"), 0);
    EXPECT_EQ(figure(u"Waiting"), 0);
}

TEST_F(SuiteThrottleTest, IsOneForTheWholeProcess) {
    const Text user = u"cn=of-the-process,o=Shop";
    for (int i = 0; i < 3; ++i) {
        const auto throttle = try_throttle();
        ASSERT_TRUE(call<&Throttle::Admit>(throttle, user));
        call<&Throttle::Settle>(throttle, -1);
    }
    EXPECT_FALSE(call<&Throttle::Admit>(try_throttle(), user));
    EXPECT_TRUE(call<&Throttle::Clear>(try_throttle(), user));
}

}  // namespace
}  // namespace orvo::throttle
