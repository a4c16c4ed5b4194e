#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/system/automation.h"

namespace {

using namespace orvo::abi;

std::uint32_t count_before(BSTR text) {
    std::uint32_t bytes;
    std::memcpy(&bytes, reinterpret_cast<char*>(text) - 4, 4);
    return bytes;
}

TEST(Bstr, HasItsByteCountBeforeItAndANulBehindIt) {
    BSTR text = SysAllocString(u"Müller");
    EXPECT_EQ(count_before(text), 12u);
    EXPECT_EQ(SysStringByteLen(text), 12u);
    EXPECT_EQ(SysStringLen(text), 6u);
    EXPECT_EQ(text[6], u'\0');
    EXPECT_EQ(std::u16string(text), u"Müller");
    SysFreeString(text);
}

TEST(Bstr, NullIsTheEmptyText) {
    EXPECT_EQ(SysStringLen(nullptr), 0u);
    EXPECT_EQ(SysStringByteLen(nullptr), 0u);
    EXPECT_EQ(SysAllocString(nullptr), nullptr);
    SysFreeString(nullptr);
}

TEST(Bstr, AnEmptyTextIsNotNull) {
    BSTR text = SysAllocString(u"");
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(SysStringLen(text), 0u);
    EXPECT_EQ(text[0], u'\0');
    SysFreeString(text);
}

TEST(Bstr, HoldsNuls) {
    BSTR text = SysAllocStringLen(u"a\0b", 3);
    EXPECT_EQ(std::u16string(text, SysStringLen(text)), std::u16string(u"a\0b", 3));
    SysFreeString(text);
}

TEST(Bstr, WithoutAFillingIsZero) {
    BSTR text = SysAllocStringLen(nullptr, 5);
    EXPECT_EQ(std::u16string(text, 5), std::u16string(5, u'\0'));
    SysFreeString(text);
}

TEST(Bstr, MayHaveAnOddNumberOfBytes) {
    BSTR text = SysAllocStringByteLen("abc", 3);
    EXPECT_EQ(SysStringByteLen(text), 3u);
    EXPECT_EQ(SysStringLen(text), 1u);
    EXPECT_EQ(std::memcmp(text, "abc\0\0\0", 6), 0);
    SysFreeString(text);
}

TEST(Bstr, LongerThanAnyMemoryIsRefused) {
    EXPECT_EQ(SysAllocStringLen(nullptr, 0x80000000u), nullptr);
    EXPECT_EQ(SysAllocStringByteLen(nullptr, 0xFFFFFFFFu), nullptr);
}

TEST(Bstr, ReallocatingPutsTheNewTextInPlaceOfTheOld) {
    BSTR text = SysAllocString(u"old");
    EXPECT_EQ(SysReAllocStringLen(&text, u"replaced", 7), 1);
    EXPECT_EQ(std::u16string(text), u"replace");
    EXPECT_EQ(SysReAllocStringLen(&text, text + 2, 3), 1) << "a part of itself";
    EXPECT_EQ(std::u16string(text), u"pla");
    EXPECT_EQ(SysReAllocStringLen(&text, nullptr, 5), 1) << "no text: what was there stays";
    EXPECT_EQ(std::u16string(text, 5), std::u16string(u"pla\0\0", 5));
    SysFreeString(text);
}

}  // namespace
