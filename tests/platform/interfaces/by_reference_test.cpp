#include "platform/interfaces/by_reference.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>

namespace orvo {
namespace {

constexpr unsigned char untouched = 0xAA;

// A caller's variable of some type, which lies among other memory of the caller's.
struct Neighbourhood {
    alignas(16) std::array<unsigned char, 32> memory;

    explicit Neighbourhood(std::size_t width) {
        memory.fill(untouched);
        std::memset(memory.data(), 0, width);
    }
    abi::VARIANT reference(abi::VARTYPE type) {
        abi::VARIANT variable{};
        variable.vt = static_cast<abi::VARTYPE>(type | abi::VT_BYREF);
        variable.byref = memory.data();
        return variable;
    }
};

struct Width {
    abi::VARTYPE type;
    std::size_t bytes;
};

constexpr Width widths[] = {
    {abi::VT_I1, 1},      {abi::VT_UI1, 1},  {abi::VT_I2, 2},  {abi::VT_UI2, 2},
    {abi::VT_BOOL, 2},    {abi::VT_I4, 4},   {abi::VT_UI4, 4}, {abi::VT_INT, 4},
    {abi::VT_UINT, 4},    {abi::VT_R4, 4},   {abi::VT_I8, 8},  {abi::VT_UI8, 8},
    {abi::VT_R8, 8},      {abi::VT_DATE, 8}, {abi::VT_CY, 8},  {abi::VT_BSTR, sizeof(abi::BSTR)},
    {abi::VT_DECIMAL, 16}};

TEST(ByReference, AVariableIsWrittenAsWideAsItsTypeIs) {
    for (const auto [type, width] : widths) {
        SCOPED_TRACE(type);
        Neighbourhood caller(width);
        abi::VARIANT reference = caller.reference(type);
        Variant one = std::int32_t{1};
        detail::store_through_reference(reference, one);
        // True is -1.
        EXPECT_EQ(std::abs(Variant::copy_of(reference).to<double>()), 1);
        for (std::size_t i = width; i < caller.memory.size(); ++i)
            ASSERT_EQ(caller.memory[i], untouched) << "byte " << i;
        if (type == abi::VT_BSTR) abi::SysFreeString(*reference.pbstrVal);
    }
}

TEST(ByReference, WhatCannotBeConvertedLeavesTheVariableAlone) {
    Neighbourhood caller(4);
    abi::VARIANT reference = caller.reference(abi::VT_I4);
    Variant text = u"no number";
    EXPECT_TRUE(detail::store_through_reference(reference, text).is_empty());
    EXPECT_EQ(text, Variant(u"no number"));
    EXPECT_EQ(Variant::copy_of(reference).to<std::int32_t>(), 0);
}

TEST(ByReference, TheTextThatAVariableHeldIsAnsweredAndTheNewOneMovedThere) {
    abi::BSTR text = abi::SysAllocString(u"before");
    abi::VARIANT reference{};
    reference.vt = abi::VT_BYREF | abi::VT_BSTR;
    reference.pbstrVal = &text;
    Variant value = u"after";
    EXPECT_EQ(detail::store_through_reference(reference, value), Variant(u"before"));
    EXPECT_TRUE(value.is_empty());
    EXPECT_EQ(TextView(text, abi::SysStringLen(text)), u"after");
    abi::SysFreeString(text);
}

}  // namespace
}  // namespace orvo
