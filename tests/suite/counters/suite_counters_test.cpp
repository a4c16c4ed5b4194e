#include "suite/counters/suite_counters.h"

#include <gtest/gtest.h>

#include <map>
#include <thread>
#include <vector>

#include "platform/interfaces/late_call.h"
#include "platform/module/local_class.h"
#include "suite/counters/count_event.h"
#include "suite/directory/entries/audited.h"
#include "suite/directory/policy/password_check.h"
#include "tests/support/environment.h"
#include "tests/support/raised.h"
#include "tests/support/temp_folder.h"

namespace orvo::counters {
namespace {

class CountersTest : public testing::Test {
protected:
    static std::map<Text, double> counted(const Text& name) {
        const Object rows = SuiteCounters().Rows();
        const Object fields = late::get(rows, u"Fields").to<Object>();
        const auto value = [&](const Text& column) {
            return late::get(late::get(fields, u"Item", {column}).to<Object>(), u"Value");
        };
        std::map<Text, double> counts;
        for (; late::get(rows, u"EOF") == Variant(false); late::call(rows, u"MoveNext"))
            if (value(u"Name").to<Text>() == name)
                counts[value(u"Kind").to<Text>()] = value(u"Count").to<double>();
        return counts;
    }
    static void check(std::int32_t answer) {
        directory::audited_check(u"server", u"user",
                                 [=] { return directory::CheckAnswer{answer}; });
    }

    Environment no_components_{"ORVO_COMPONENTS", "/none"};
};

TEST_F(CountersTest, AreOneSetForTheProcessWhateverObjectAndThreadCounts) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int n = 0; n < 500; ++n) SuiteCounters().Count(u"jobs", u"done");
        });
    for (std::thread& thread : threads) thread.join();
    SuiteCounters().Count(u"jobs", u"lost");
    EXPECT_EQ(counted(u"jobs"), (std::map<Text, double>{{u"done", 2000}, {u"lost", 1}}));
}

TEST_F(CountersTest, CountEachPasswordCheckByItsOutcomeAlsoWithoutAnAudit) {
    const LocalClass counters = local_class<SuiteCounters>();
    using namespace directory;
    for (const std::int32_t number :
         {password_check::right, password_check::wrong, password_check::wrong,
          password_check::locked, password_check::disabled, password_check::expired,
          password_check::too_many_failures})
        check(number);
    const Failure failure = raised_by([] {
        audited_check(u"server", u"user", []() -> CheckAnswer { throw Failure(5, u"s", u"d"); });
    });
    EXPECT_EQ(failure.number, 5);
    audited_check(u"server", u"user", [] {
        return CheckAnswer{password_check::too_many_failures, true};
    });
    EXPECT_EQ(counted(logins), (std::map<Text, double>{{u"right", 1},
                                                       {u"wrong", 2},
                                                       {u"locked", 1},
                                                       {u"disabled", 1},
                                                       {u"expired", 1},
                                                       {u"too many failures", 1},
                                                       {u"throttled", 1},
                                                       {u"failure", 1}}));
}

TEST_F(CountersTest, AreNoReasonForAFailureWhereThereAreNone) {
    const auto before = counted(logins);
    EXPECT_NO_THROW(check(directory::password_check::right));
    EXPECT_EQ(counted(logins), before);
}

TEST_F(CountersTest, TellNothingOfASharedStoreWhereTheSiteHasNone) {
    const TempFolder folder;
    const Environment site("ORVO_SITE_CONFIG", folder.write("site.ini", "").string());
    const Object rows = SuiteCounters().Store();
    EXPECT_EQ(late::get(late::get(rows, u"Fields").to<Object>(), u"Count"), Variant(8));
    EXPECT_EQ(late::get(rows, u"EOF"), Variant(true));
}

// It fills them, so it stands last where all run in one process.
TEST_F(CountersTest, TakeNoMoreMemoryThanThereIsForThem) {
    for (int i = 0; i < 300; ++i) SuiteCounters().Count(u"name", decimal(i));
    const std::size_t known = counted(u"name").size();
    EXPECT_LE(known, 200u);
    SuiteCounters().Count(u"name", u"0");
    EXPECT_EQ(counted(u"name").at(u"0"), 2) << "what is known goes on";
    EXPECT_EQ(counted(u"name").size(), known);
}

}  // namespace
}  // namespace orvo::counters
