#include "component/common/GUIDGenerator.h"

#include <dlfcn.h>
#include <gmock/gmock.h>

#include <set>

#include "component/common/Lib_Win32.h"

namespace orvo {
namespace {

bool system_makes_no_guids = false;

}  // namespace

// The system's own, unless it is to fail: a program's functions come before those of its libraries.
extern "C" abi::HRESULT abi::CoCreateGuid(abi::GUID* out) {
    if (system_makes_no_guids) return abi::e_fail;
    static const auto real =
        reinterpret_cast<decltype(&abi::CoCreateGuid)>(dlsym(RTLD_NEXT, "CoCreateGuid"));
    return real(out);
}

namespace {

using testing::MatchesRegex;

std::string formatted(abi::GUID id, bool with_dashes = false) {
    return to_utf8(FormatGUIDValue(id, with_dashes));
}

TEST(NewGUIDText, IsAlways32UpperCaseHexadecimalDigits) {
    for (int i = 0; i < 2000; ++i)
        ASSERT_THAT(to_utf8(NewGUIDText()), MatchesRegex("[0-9A-F]{32}"));
}

TEST(NewGUIDText, IsNewAtEachCall) {
    std::set<Text> seen;
    for (int i = 0; i < 1000; ++i) seen.insert(NewGUIDText());
    EXPECT_EQ(seen.size(), 1000u);
}

TEST(NewGUIDText, IsNotAskedWhetherTheSystemCouldMakeOne) {
    system_makes_no_guids = true;
    EXPECT_EQ(NewGUIDText(), Text(32, u'0'));
    system_makes_no_guids = false;
}

TEST(FormatGUID, WritesThePartsInTheirOrder) {
    EXPECT_EQ(
        formatted({0x12345678, 0x9ABC, 0xDEF1, {0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0x12}}),
        "123456789ABCDEF123456789ABCDEF12");
}

TEST(FormatGUID, PutsTheFillingZerosBehindTheDigits) {
    EXPECT_EQ(formatted({0x00ABCDEF, 0x00FF, 0x0001, {0x0A, 0x01, 0x10, 0x0F, 0, 0, 0, 0}}),
              "ABCDEF00"
              "FF00"
              "1000"
              "A010"
              "10F0"
              "00000000");
}

TEST(FormatGUID, WritesAFieldOfZeroAsZerosOfItsWidth) {
    EXPECT_EQ(formatted({0, 0, 0, {}}), "00000000000000000000000000000000");
}

TEST(FormatGUID, WritesAFieldWithItsHighestBitInItsOwnWidth) {
    EXPECT_EQ(formatted({0xFFFFFFFF, 0x8000, 0xFFFF, {0x80, 0xFF, 0, 0, 0, 0, 0, 0}}),
              "FFFFFFFF8000FFFF80FF000000000000");
}

TEST(FormatGUID, WithDashesPutsOneBehindEachOfTheElevenParts) {
    EXPECT_EQ(formatted({0x00ABCDEF, 0x1234, 0, {1, 2, 3, 4, 5, 6, 7, 0xFF}}, true),
              "ABCDEF00-1234-0000-10-20-30-40-50-60-70-FF-");
    bool with_dashes = true;
    EXPECT_THAT(to_utf8(FormatGUID(with_dashes)),
                MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-([0-9A-F]{2}-){8}"));
    EXPECT_TRUE(with_dashes);
}

TEST(FormatGUID, WithoutDashesIsTheTextOfNewGUIDText) {
    bool with_dashes = false;
    EXPECT_THAT(to_utf8(FormatGUID(with_dashes)), MatchesRegex("[0-9A-F]{32}"));
}

TEST(Win32CreateGuid, MakesARandomIdentifierOfVersionFour) {
    const abi::GUID id = Win32_CreateGuid();
    EXPECT_EQ(id.Data3 >> 12, 4);
    EXPECT_FALSE(id == Win32_CreateGuid());
}

}  // namespace
}  // namespace orvo
