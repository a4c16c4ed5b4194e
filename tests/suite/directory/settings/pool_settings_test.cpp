#include "suite/directory/settings/pool_settings.h"

#include <gtest/gtest.h>

#include "platform/values/values.h"
#include "suite/directory/settings/shared_settings.h"
#include "tests/suite/directory/expect_failure.h"

namespace orvo::directory {
namespace {

using namespace std::chrono_literals;

// What is said after the result number's own sentence; empty where nothing is raised.
std::string refusal(const Variant& names, const Variant& values) {
    const Failure failure = failure_of([&] { changed(PoolSettings(), names, values); });
    if (failure.number == 0) return {};
    EXPECT_EQ(failure.number, error_number(0x8007203F));
    const Text begin = u"(89) A setting or argument is not valid. ";
    EXPECT_EQ(failure.description.substr(0, begin.size()), begin);
    return to_utf8(failure.description.substr(begin.size()));
}

TEST(PoolSettings, HaveSensibleDefaults) {
    const PoolSettings settings;
    EXPECT_EQ(settings.maximum_size, 16u);
    EXPECT_EQ(settings.maximum_idle, 64u);
    EXPECT_EQ(settings.wait, 5s);
    EXPECT_EQ(settings.idle, 30s);
    EXPECT_EQ(settings.age, 300s);
    EXPECT_EQ(settings.recheck, 5s);
    EXPECT_EQ(settings.failback_after, 10s);
    EXPECT_EQ(settings.replica_lag, 5s);
    EXPECT_EQ(settings.limits.connect, 5s);
    EXPECT_EQ(settings.limits.answer, 3s);
    EXPECT_EQ(settings.limits.operation, 15s);
}

TEST(PoolSettings, TakeEachOfTheirNames) {
    const PoolSettings settings =
        changed(PoolSettings(),
                Values{u"MaximumSize", u"MaximumIdle", u"WaitLimit", u"IdleLimit", u"AgeLimit",
                       u"ConnectLimit", u"AnswerLimit", u"OperationLimit", u"RecheckAfter",
                       u"FailbackAfter", u"ReplicaLag"},
                Values{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
    EXPECT_EQ(settings.maximum_size, 1u);
    EXPECT_EQ(settings.maximum_idle, 2u);
    EXPECT_EQ(settings.wait, 3ms);
    EXPECT_EQ(settings.idle, 4s);
    EXPECT_EQ(settings.age, 5s);
    EXPECT_EQ(settings.limits.connect, 6ms);
    EXPECT_EQ(settings.limits.answer, 7ms);
    EXPECT_EQ(settings.limits.operation, 8ms);
    EXPECT_EQ(settings.recheck, 9s);
    EXPECT_EQ(settings.failback_after, 10s);
    EXPECT_EQ(settings.replica_lag, 11s);
}

TEST(PoolSettings, KeepWhatIsNotNamed) {
    const PoolSettings settings =
        changed(changed(PoolSettings(), Values{u"MaximumSize"}, Values{3}), Values{u"agelimit"},
                Values{60});
    EXPECT_EQ(settings.maximum_size, 3u);
    EXPECT_EQ(settings.age, 60s);
    EXPECT_EQ(changed(settings, Values{}, Values{}).maximum_size, 3u);
}

TEST(PoolSettings, TakeNumbersOfEveryTypeInArraysOfAnyBounds) {
    Values names(7, 1);
    names[7] = u"maximumSIZE";
    for (const Variant& number :
         {Variant(std::int16_t(12)), Variant(12), Variant(std::int64_t(12)), Variant(12.0),
          Variant(Currency{120000}), Variant(u"12"), Variant(u"012")}) {
        Values values(-3, 1);
        values[-3] = number;
        EXPECT_EQ(changed(PoolSettings(), names, values).maximum_size, 12u);
    }
}

TEST(PoolSettings, RefuseWhatTheyDoNotKnowOrCannotUse) {
    const std::string not_a_size =
        "The setting 'MaximumSize' has to be a whole number from 0 to 1000.";
    const std::string all =
        "There are: MaximumSize, MaximumIdle, WaitLimit, IdleLimit, AgeLimit, ConnectLimit, "
        "AnswerLimit, OperationLimit, RecheckAfter, FailbackAfter, ReplicaLag.";
    struct Case {
        Variant names, values;
        std::string why;
    };
    const Case cases[] = {
        {Values{u"Size"}, Values{1}, "There is no setting 'Size'. " + all},
        {Values{u""}, Values{1}, "There is no setting ''. " + all},
        {Values{u"MaximumSize "}, Values{1}, "There is no setting 'MaximumSize '. " + all},
        {Values{1}, Values{1}, "The name of a setting is not a text."},
        {Values{Variant()}, Values{1}, "The name of a setting is not a text."},
        {Values{u"AgeLimit", u"AGElimit"}, Values{1, 1}, "The setting 'AgeLimit' is given twice."},
        {Values{u"MaximumSize"}, Values{-1}, not_a_size},
        {Values{u"MaximumSize"}, Values{1001}, not_a_size},
        {Values{u"MaximumSize"}, Values{1.5}, not_a_size},
        {Values{u"MaximumSize"}, Values{1e300}, not_a_size},
        {Values{u"MaximumSize"}, Values{true}, not_a_size},
        {Values{u"MaximumSize"}, Values{u""}, not_a_size},
        {Values{u"MaximumSize"}, Values{u"many"}, not_a_size},
        {Values{u"MaximumSize"}, Values{u"-1"}, not_a_size},
        {Values{u"MaximumSize"}, Values{u" 1"}, not_a_size},
        {Values{u"MaximumSize"}, Values{u"1000000000000000000000"}, not_a_size},
        {Values{u"MaximumSize"}, Values{Variant()}, not_a_size},
        {Values{u"MaximumSize"}, Values{Variant::null()}, not_a_size},
        {Values{u"MaximumSize"}, Values{Variant(Values{1})}, not_a_size},
        {Values{u"MaximumSize"}, Values{date_from_parts({2031, 12, 31, 0, 0, 0})}, not_a_size},
        {Values{u"IdleLimit"}, Values{0},
         "The setting 'IdleLimit' has to be a whole number from 1 to 86400."},
        {Values{u"OperationLimit"}, Values{3600001},
         "The setting 'OperationLimit' has to be a whole number from 1 to 3600000."},
        {u"MaximumSize", Values{1}, "The names of the settings are not an array."},
        {Variant(), Variant(), "The names of the settings are not an array."},
        {Values{u"MaximumSize"}, 1, "The values of the settings are not an array."},
        {Values{u"MaximumSize"}, Values{}, "There are 1 names of settings and 0 values."},
        {Values{u"MaximumSize"}, Values{1, 2}, "There are 1 names of settings and 2 values."},
        {Values(0, 40'000), Values(0, 40'000), "The name of a setting is not a text."},
    };
    for (const Case& row : cases) EXPECT_EQ(refusal(row.names, row.values), row.why);
}

TEST(PoolSettings, ChangeAllTogetherOrNotAtAll) {
    SharedSettings shared;
    const auto initialize = [&](Values names, Values values) {
        Variant name_array = std::move(names), value_array = std::move(values);
        shared.change(name_array, value_array);
    };
    initialize({u"MaximumSize", u"WaitLimit"}, {3, 100});
    EXPECT_EQ(failure_of([&] {
                  initialize({u"MaximumSize", u"WaitLimit", u"IdleLimit"}, {9, 900, -1});
              }).number,
              error_number(0x8007203F));
    const PoolSettings settings = shared.get();
    EXPECT_EQ(settings.maximum_size, 3u);
    EXPECT_EQ(settings.wait, 100ms);
    EXPECT_EQ(settings.idle, 30s);
}

}  // namespace
}  // namespace orvo::directory
