#include "platform/values/failure.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/support/raised.h"

namespace orvo {
namespace {

struct NumberCase {
    std::int32_t number;
    TextView text;
};

TEST(RuntimeErrorText, IsTheWordingThatScriptsKnow) {
    const NumberCase cases[] = {
        {5, u"Invalid procedure call or argument"},
        {6, u"Overflow"},
        {7, u"Out of memory"},
        {9, u"Subscript out of range"},
        {13, u"Type mismatch"},
        {91, u"Object variable or With block variable not set"},
        {94, u"Invalid use of Null"},
        {424, u"Object required"},
        {429, u"ActiveX component can't create object"},
        {438, u"Object doesn't support this property or method"},
        {449, u"Argument not optional"},
        {457, u"This key is already associated with an element of this collection"},
        {3021,
         u"Either BOF or EOF is True, or the current record has been deleted. Requested operation "
         u"requires a current record."},
        {3265,
         u"Item cannot be found in the collection corresponding to the requested name or ordinal."},
        {3704, u"Operation is not allowed when the object is closed."},
        {error_number(0x80040E21),
         u"Multiple-step operation generated errors. Check each status value."},
        {0, u""},
        {12, u""},
        {error_number(0x8004044F), u""},
    };
    for (const auto& [number, text] : cases) EXPECT_EQ(runtime_error_text(number), text) << number;
}

struct ResultCase {
    std::uint32_t result;
    std::int32_t number;
};

TEST(NumberOfResult, TranslatesTheResultsThatMeanARuntimeError) {
    const ResultCase cases[] = {
        {0x80070057, 5},   {0x8002000A, 6},   {0x8007000E, 7},   {0x8002000B, 9},
        {0x80028CA1, 9},   {0x8002000D, 10},  {0x80020012, 11},  {0x80020005, 13},
        {0x80028CA0, 13},  {0x80030050, 58},  {0x80070005, 70},  {0x80030005, 70},
        {0x80030003, 76},  {0x80040154, 429}, {0x800401F3, 429}, {0x800401E3, 429},
        {0x80080005, 429}, {0x80004002, 430}, {0x800401E6, 432}, {0x800401EA, 432},
        {0x80030002, 432}, {0x80020003, 438}, {0x80020006, 438}, {0x80020001, 438},
        {0x80004001, 445}, {0x80020007, 446}, {0x8002000C, 447}, {0x80020004, 448},
        {0x8002000F, 449}, {0x8002000E, 450}, {0x80020011, 451}, {0x80020008, 458},
        {0x800706BA, 462},
    };
    for (const auto& [result, number] : cases) {
        EXPECT_EQ(number_of_result(error_number(result)), number) << std::hex << result;
        EXPECT_NE(runtime_error_text(number), u"") << number;
    }
}

TEST(NumberOfResult, TakesTheNumberOutOfARuntimeErrorsResult) {
    EXPECT_EQ(number_of_result(error_number(0x800A000D)), 13);
    EXPECT_EQ(number_of_result(error_number(0x800A0BCD)), 3021);
    EXPECT_EQ(number_of_result(error_number(0x800AFFFF)), 65535);
}

TEST(NumberOfResult, LeavesEveryOtherResultAsItIs) {
    for (const std::uint32_t result :
         {0x80004005u, 0x8000FFFFu, 0x80004003u, 0x8004044Fu, 0x80072030u, 0x800A0000u, 0u, 1u}) {
        EXPECT_EQ(number_of_result(error_number(result)), error_number(result))
            << std::hex << result;
    }
}

TEST(ResultOfNumber, CarriesSmallNumbersInTheControlFacility) {
    EXPECT_EQ(result_of_number(1), error_number(0x800A0001));
    EXPECT_EQ(result_of_number(91), error_number(0x800A005B));
    EXPECT_EQ(result_of_number(3021), error_number(0x800A0BCD));
    EXPECT_EQ(result_of_number(0xFFFF), error_number(0x800AFFFF));
}

TEST(ResultOfNumber, IsTheNumberItselfForAResultAndNeverASuccess) {
    EXPECT_EQ(result_of_number(error_number(0x8004044F)), error_number(0x8004044F));
    EXPECT_EQ(result_of_number(-1), -1);
    EXPECT_EQ(result_of_number(0), error_number(0x80004005));
    EXPECT_EQ(result_of_number(0x10000), error_number(0x80004005));
    EXPECT_EQ(result_of_number(std::numeric_limits<std::int32_t>::max()), error_number(0x80004005));
}

TEST(RaiseRuntimeError, RaisesTheNumberWithItsTextAndNoSource) {
    const Failure failure = raised_by([] { raise_runtime_error(runtime_error::overflow); });
    EXPECT_EQ(failure.number, 6);
    EXPECT_EQ(failure.description, u"Overflow");
    EXPECT_EQ(failure.source, u"");
    EXPECT_EQ(failure.help_file, u"");
    EXPECT_EQ(failure.help_context, 0);
}

TEST(Failure, KeepsAllFivePartsAndShowsNumberAndDescription) {
    const Failure failure(error_number(0x8004044F), u"Source", u"Größe", u"help.chm", 12);
    EXPECT_EQ(failure.number, error_number(0x8004044F));
    EXPECT_EQ(failure.source, u"Source");
    EXPECT_EQ(failure.description, u"Größe");
    EXPECT_EQ(failure.help_file, u"help.chm");
    EXPECT_EQ(failure.help_context, 12);
    EXPECT_STREQ(failure.what(), "0x8004044F: Größe");
    EXPECT_STREQ(Failure(13, {}, u"Type mismatch").what(), "13: Type mismatch");
}

}  // namespace
}  // namespace orvo
