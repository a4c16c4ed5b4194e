#include "component/common/Lib_ErrorHandling.h"

#include "component/common/OrvoMemErrors.h"
#include "tests/component/component_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(FormatErrorText, IsAnEmptyLineNumberMethodAndDescription) {
    EXPECT_EQ(
        FormatErrorText(u"Not bound to the Members Organizational Unit", emErrNotBoundToMembers,
                        u"OrvoMembership.Members.DeleteUser", Variant::missing()),
        u"\r\n"
        u"ERROR 0x80040323\r\n"
        u" METHOD: OrvoMembership.Members.DeleteUser\r\n"
        u" DESC: Not bound to the Members Organizational Unit.\r\n");
}

TEST(FormatErrorText, EndsInALineOfInformationWhereSomeWasGiven) {
    EXPECT_EQ(FormatErrorText(u"d", 5, u"m", u"more"),
              u"\r\nERROR 0x5\r\n METHOD: m\r\n DESC: d.\r\n INFO: more.\r\n");
}

TEST(FormatErrorText, HasALineOfInformationAlsoForAnEmptyText) {
    EXPECT_EQ(FormatErrorText(u"d", 5, u"m", u""),
              u"\r\nERROR 0x5\r\n METHOD: m\r\n DESC: d.\r\n INFO: .\r\n");
    EXPECT_EQ(FormatErrorText(u"d", 5, u"m", Variant()),
              u"\r\nERROR 0x5\r\n METHOD: m\r\n DESC: d.\r\n INFO: .\r\n");
}

TEST(FormatErrorText, ConvertsTheInformationToText) {
    EXPECT_EQ(FormatErrorText(u"d", 5, u"m", 42),
              u"\r\nERROR 0x5\r\n METHOD: m\r\n DESC: d.\r\n INFO: 42.\r\n");
}

TEST(FormatErrorText, WritesTheNumberInUpperCaseHexadecimalWithoutSignAndZeros) {
    const auto second_line = [](std::int32_t number) {
        const Text text = FormatErrorText(u"d", number, u"m", Variant::missing());
        return to_utf8(split(text, u"\r\n")[1]);
    };
    EXPECT_EQ(second_line(0), "ERROR 0x0");
    EXPECT_EQ(second_line(5), "ERROR 0x5");
    EXPECT_EQ(second_line(429), "ERROR 0x1AD");
    EXPECT_EQ(second_line(emErrServerInfoNotCreated), "ERROR 0x80040321");
    EXPECT_EQ(second_line(emErrAppNoAccess), "ERROR 0x8004032B");
    EXPECT_EQ(second_line(-1), "ERROR 0xFFFFFFFF");
}

class ErrorHandling : public ComponentTest {
protected:
    // A failure of every field, as somebody below raises it.
    static Failure sample() {
        return {emErrNotBoundToMembers, u"Some.Source", u"Something broke", u"help.chm", 77};
    }
    static void fail_once() {
        trapped(u"Shop.Inner", [] { throw sample(); });
    }
    static void fail_twice() {
        trapped_with_info(
            u"Shop.Outer", [] { return u"twice"; }, [] { fail_once(); });
    }
};

TEST_FRESH(ErrorHandling, WithoutAPendingErrorNothingIsWrittenAndNothingRaised) {
    HandleError(u"Shop.Method");
    HandleError(u"Shop.Method", u"some information");
    EXPECT_THAT(log_.take(), IsEmpty());
    EXPECT_EQ(log_.created, 0);
}

TEST_FRESH(ErrorHandling, WhatABodyAnswersPassesThroughTheFrame) {
    EXPECT_EQ(trapped(u"Shop.Method", [] { return 5; }), 5);
    EXPECT_EQ(trapped_with_info(
                  u"Shop.Method", [] { return u"info"; }, [] { return Text(u"t"); }),
              u"t");
    EXPECT_EQ(trapped_rewording(
                  u"Shop.Method", [](Failure&) {}, [] { return true; }),
              true);
    EXPECT_THAT(log_.take(), IsEmpty());
}

TEST_FRESH(ErrorHandling, AFailureIsRaisedAgainWithTheBlockAsItsDescription) {
    const Failure failure = raised_by(fail_once);
    expect_failure(failure, error_number(0x80040323), u"Some.Source",
                   "\r\n"
                   "ERROR 0x80040323\r\n"
                   " METHOD: Shop.Inner\r\n"
                   " DESC: Something broke.\r\n");
    EXPECT_EQ(failure.help_file, u"help.chm");
    EXPECT_EQ(failure.help_context, 77);
}

TEST_FRESH(ErrorHandling, TheLoggedMessageHoldsTheBlockTwice) {
    raised_by(fail_once);
    EXPECT_THAT(log_.take(), ElementsAre(LogEntry{"LogMessage", "Some.Source",
                                                  "\r\n"
                                                  "ERROR 0x80040323\r\n"
                                                  " METHOD: Shop.Inner\r\n"
                                                  " DESC: \r\n"
                                                  "ERROR 0x80040323\r\n"
                                                  " METHOD: Shop.Inner\r\n"
                                                  " DESC: Something broke.\r\n"
                                                  ".\r\n",
                                                  0}));
}

TEST_FRESH(ErrorHandling, InformationStandsInBothBlocksOfTheEntryAndInTheRaisedOne) {
    const Failure failure = raised_by([] {
        trapped_with_info(
            u"Shop.Method", [] { return u"more"; }, [] { throw sample(); });
    });
    EXPECT_EQ(to_utf8(failure.description),
              "\r\nERROR 0x80040323\r\n METHOD: Shop.Method\r\n DESC: Something broke.\r\n"
              " INFO: more.\r\n");
    const auto entries = log_.take();
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].message,
              "\r\nERROR 0x80040323\r\n METHOD: Shop.Method\r\n DESC: "
              "\r\nERROR 0x80040323\r\n METHOD: Shop.Method\r\n DESC: Something broke.\r\n"
              " INFO: more.\r\n"
              ".\r\n INFO: more.\r\n");
}

TEST_FRESH(ErrorHandling, TwoLevelsWrapTheDescriptionTwiceTheInnermostInside) {
    const Failure failure = raised_by(fail_twice);
    expect_failure(failure, error_number(0x80040323), u"Some.Source",
                   "\r\n"
                   "ERROR 0x80040323\r\n"
                   " METHOD: Shop.Outer\r\n"
                   " DESC: \r\n"
                   "ERROR 0x80040323\r\n"
                   " METHOD: Shop.Inner\r\n"
                   " DESC: Something broke.\r\n"
                   ".\r\n"
                   " INFO: twice.\r\n");
    EXPECT_EQ(failure.help_file, u"help.chm");
    EXPECT_EQ(failure.help_context, 77);
}

TEST_FRESH(ErrorHandling, EachLevelWritesAnEntryOfItsOwn) {
    raised_by(fail_twice);
    const std::string inner = block("80040323", "Shop.Inner", "Something broke");
    const std::string outer = block("80040323", "Shop.Outer", inner, "twice");
    EXPECT_THAT(log_.take(),
                ElementsAre(LogEntry{"LogMessage", "Some.Source",
                                     block("80040323", "Shop.Inner", inner), 0},
                            LogEntry{"LogMessage", "Some.Source",
                                     block("80040323", "Shop.Outer", outer, "twice"), 0}));
}

TEST_FRESH(ErrorHandling, AFailureToldInOtherWordsIsLoggedInTheseAlone) {
    const auto reword = [](Failure& failure) {
        failure.source = u"Shop.Method";
        failure.description = u"No such shop";
    };
    const Failure failure =
        raised_by([&] { trapped_rewording(u"Shop.Method", reword, [] { throw sample(); }); });
    const std::string told = block("80040323", "Shop.Method", "No such shop");
    expect_failure(failure, error_number(0x80040323), u"Shop.Method", told);
    EXPECT_THAT(log_.take(), ElementsAre(LogEntry{"LogMessage", "Shop.Method",
                                                  block("80040323", "Shop.Method", told), 0}));
}

TEST_FRESH(ErrorHandling, TheInformationIsAskedForOnlyAfterAFailure) {
    int asked = 0;
    const auto info = [&] {
        ++asked;
        return Variant(u"late");
    };
    trapped_with_info(u"Shop.Method", info, [] {});
    EXPECT_EQ(asked, 0);
    const Failure failure =
        raised_by([&] { trapped_with_info(u"Shop.Method", info, [] { throw sample(); }); });
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(to_utf8(failure.description),
              block("80040323", "Shop.Method", "Something broke", "late"));
}

TEST_FRESH(ErrorHandling, ARunTimeErrorKeepsItsSmallNumber) {
    const Failure failure = raised_by(
        [] { trapped(u"Shop.Method", [] { raise_runtime_error(runtime_error::type_mismatch); }); });
    expect_failure(failure, 13, u"OrvoMembership", block("D", "Shop.Method", "Type mismatch"));
}

TEST_FRESH(ErrorHandling, AFailureWithoutASourceIsTheComponents) {
    raised_by([] { trapped(u"Shop.Method", [] { throw Failure(5, {}, u"d"); }); });
    EXPECT_THAT(log_.take_sources(), ElementsAre("OrvoMembership"));
}

TEST_FRESH(ErrorHandling, AnErrorObjectsEmptySourceStaysEmpty) {
    Failure nameless(5, {}, u"unreadable");
    nameless.keeps_empty_source = true;
    journal_.refuse("GetFolder", nameless);
    const auto configuration = configuration_.make_one();
    const auto by_slot = [&] { call<&Configuration::GetFolder>(configuration); };
    const auto by_name = [&] { late::call(configuration.object(), u"GetFolder"); };
    const auto handled_twice = [](auto body) {
        return raised_by([&] { trapped(u"Shop.Outer", [&] { trapped(u"Shop.Inner", body); }); });
    };
    const auto told = block("5", "Shop.Outer", block("5", "Shop.Inner", "unreadable"));
    expect_failure(handled_twice(by_slot), 5, u"", told);
    expect_failure(handled_twice(by_name), 5, u"", told);
    EXPECT_THAT(log_.take_sources(), ElementsAre("", "", "", ""));
}

TEST_FRESH(ErrorHandling, AnExceptionThatIsNoFailureBecomesOne) {
    const Failure failure = raised_by(
        [] { trapped(u"Shop.Method", [] { throw std::logic_error("a broken promise"); }); });
    expect_failure(failure, error_number(0x8000FFFF), u"OrvoMembership",
                   block("8000FFFF", "Shop.Method", "a broken promise"));
}

TEST_FRESH(ErrorHandling, AFailureOfNumberZeroIsNeitherLoggedNorFormattedAndStillRaised) {
    const Failure failure =
        raised_by([] { trapped(u"Shop.Method", [] { throw Failure(0, u"s", u"d"); }); });
    expect_failure(failure, 0, u"s", "d");
    EXPECT_THAT(log_.take(), IsEmpty());
}

TEST_FRESH(ErrorHandling, TheLogIsMadeForEachEntryAndReleasedAfterIt) {
    raised_by(fail_twice);
    EXPECT_EQ(log_.created, 2);
    EXPECT_EQ(log_.alive, 0);
}

TEST_FRESH(ErrorHandling, ALogThatThrowsNeverReplacesTheFailure) {
    log_.throws = true;
    const Failure failure = raised_by(fail_once);
    expect_failure(failure, error_number(0x80040323), u"Some.Source",
                   block("80040323", "Shop.Inner", "Something broke"));
    EXPECT_EQ(failure.help_file, u"help.chm");
    EXPECT_EQ(log_.take().size(), 1u) << "the log was asked";
    EXPECT_EQ(log_.alive, 0);
}

TEST_FRESH(ErrorHandling, WhatTheLogDoesToItsArgumentsStaysWithTheLog) {
    log_.changes_arguments = true;
    const std::string inner = block("80040323", "Shop.Inner", "Something broke");
    const std::string outer = block("80040323", "Shop.Outer", inner, "twice");
    expect_failure(raised_by(fail_twice), error_number(0x80040323), u"Some.Source", outer);
    EXPECT_THAT(log_.take(),
                ElementsAre(LogEntry{"LogMessage", "Some.Source",
                                     block("80040323", "Shop.Inner", inner), 0},
                            LogEntry{"LogMessage", "Some.Source",
                                     block("80040323", "Shop.Outer", outer, "twice"), 0}));
}

TEST_FRESH(ErrorHandling, AMissingLogNeverReplacesTheFailure) {
    log_.remove();
    expect_failure(raised_by(fail_twice), error_number(0x80040323), u"Some.Source",
                   block("80040323", "Shop.Outer",
                         block("80040323", "Shop.Inner", "Something broke"), "twice"));
}

TEST_FRESH(ErrorHandling, NothingIsPendingAnyMoreWhenAFailureWasCaught) {
    raised_by(fail_once);
    log_.take();
    HandleError(u"Shop.Method");
    EXPECT_THAT(log_.take(), IsEmpty());
}

TEST_FRESH(ErrorHandling, ANoteSaysThatItIsNoErrorUnderTheMethodsName) {
    LogError(u"Shop.Method");
    EXPECT_THAT(log_.take(), ElementsAre(LogEntry{"LogMessage", "Shop.Method",
                                                  "\r\n"
                                                  "ERROR 0x0\r\n"
                                                  " METHOD: Shop.Method\r\n"
                                                  " DESC: Not an actual error.\r\n",
                                                  1}));
    EXPECT_EQ(log_.alive, 0);
}

TEST_FRESH(ErrorHandling, ANoteCarriesItsInformation) {
    LogError(u"Shop.Method", u"looked around");
    EXPECT_THAT(log_.take(),
                ElementsAre(LogEntry{"LogMessage", "Shop.Method",
                                     "\r\nERROR 0x0\r\n METHOD: Shop.Method\r\n"
                                     " DESC: Not an actual error.\r\n INFO: looked around.\r\n",
                                     1}));
}

TEST_FRESH(ErrorHandling, ANoteWithoutALogIsDropped) {
    log_.remove();
    LogError(u"Shop.Method", u"looked around");
}

TEST_FRESH(ErrorHandling, ANoteThatTheLogRefusesIsDropped) {
    log_.throws = true;
    LogError(u"Shop.Method");
    EXPECT_THAT(log_.take_sources(), ElementsAre("Shop.Method")) << "the log was asked";
}

// A log that itself fails through the component's frame, as one in the same process may.
class TalkingLog final : public Log {
public:
    Variant LogMessage(Text&, Text&, std::int32_t&) override {
        ++entries;
        trapped(u"Log.Inner", [] { throw Failure(7, {}, u"the log's own"); });
        return {};
    }
    Variant LogMessageAlternate(Text&, Text&, std::int32_t&) override { return {}; }

    static inline int entries = 0;
};
}  // namespace

template <>
inline constexpr auto class_of<TalkingLog> =
    describe_class<Log>("Quendra.Log", "7e57ab1e-0000-4000-8000-0000000000f1");

namespace {

TEST_FRESH(ErrorHandling, WhatFailsWhileAnEntryIsWrittenIsNotLoggedInTurn) {
    log_.remove();
    TalkingLog::entries = 0;
    const LocalClass talking = local_class<TalkingLog>();
    const Failure failure = raised_by(fail_once);
    EXPECT_EQ(to_utf8(failure.description), block("80040323", "Shop.Inner", "Something broke"));
    EXPECT_EQ(TalkingLog::entries, 1);
}

}  // namespace
}  // namespace orvo
