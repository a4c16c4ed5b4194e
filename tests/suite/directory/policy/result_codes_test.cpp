#include "suite/directory/policy/result_codes.h"

#include <gtest/gtest.h>

namespace orvo::directory {
namespace {

struct Known {
    int code;
    std::uint32_t number;
    const char16_t* description;
};

class KnownCode : public testing::TestWithParam<Known> {};

TEST_P(KnownCode, HasItsNumberAndBeginsWithItsCode) {
    const Failure failure = directory_failure(GetParam().code, u"Somebody");
    EXPECT_EQ(failure.number, error_number(GetParam().number));
    EXPECT_EQ(failure.description, GetParam().description);
    EXPECT_EQ(failure.source, u"Somebody");
}

INSTANTIATE_TEST_SUITE_P(
    ThatCallersTellApart, KnownCode,
    testing::Values(Known{68, 0x8004044F, u"(68) The specified entry already exists."},
                    Known{32, 0x80072030, u"(32) There is no such entry."},
                    Known{49, 0x8007052E, u"(49) The user name or the password is wrong."},
                    Known{81, 0x8007203A, u"(81) The server cannot be reached."},
                    Known{84, 0x8007203A, u"(84) The server's answer cannot be read."},
                    Known{85, 0x8007203A, u"(85) The server did not answer in time."},
                    Known{91, 0x8007203A,
                          u"(91) The connection to the server cannot be established."},
                    Known{50, 0x80072098, u"(50) The rights are not sufficient."},
                    Known{19, 0x8007202F, u"(19) The value violates a constraint."}));

TEST(ResultCode, OnlyOneHasTheNumberOfAnExistingEntry) {
    for (int code = 0; code < 200; ++code)
        EXPECT_EQ(number_of_code(code) == error_number(0x8004044F), code == 68) << code;
}

TEST(ResultCode, WithoutARowIsAnUnknownError) {
    const Failure failure = directory_failure(4711, u"Somebody", "hm");
    EXPECT_EQ(failure.number, error_number(0x80072095));
    EXPECT_EQ(failure.description, u"(4711) The server met an unknown error. hm");
}

TEST(ResultCode, CarriesTheServersWordsAndTheNearestEntry) {
    EXPECT_EQ(directory_failure(32, u"", "", "ou=Users,o=Shop").description,
              u"(32) There is no such entry. The nearest entry is 'ou=Users,o=Shop'.");
    EXPECT_EQ(directory_failure(19, u"", "Password is too short", "").description,
              u"(19) The value violates a constraint. Password is too short");
}

}  // namespace
}  // namespace orvo::directory
