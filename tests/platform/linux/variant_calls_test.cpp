#include <gtest/gtest.h>

#include "counted.h"
#include "printed.h"

namespace {

using namespace orvo::abi;
using orvo::testing::Counted;
using orvo::testing::Owned;
using orvo::testing::printed;

TEST(Variant, ClearedIsEmpty) {
    Owned value;
    value.set_text(u"text");
    EXPECT_EQ(VariantClear(&value), s_ok);
    EXPECT_EQ(value.vt, VT_EMPTY);
}

TEST(Variant, OfAnUnknownTypeIsNotCleared) {
    VARIANT value{};
    value.vt = 77;
    EXPECT_EQ(VariantClear(&value), disp_e_badvartype);
    EXPECT_EQ(value.vt, 77);
}

TEST(Variant, ClearingReleasesItsObject) {
    Counted object;
    VARIANT value{};
    value.vt = VT_DISPATCH;
    value.pdispVal = &object;
    object.references = 2;
    EXPECT_EQ(VariantClear(&value), s_ok);
    EXPECT_EQ(object.references, 1);
}

TEST(Variant, ClearingAReferenceLeavesWhatItRefersTo) {
    BSTR text = SysAllocString(u"kept");
    VARIANT value{};
    value.vt = VT_BYREF | VT_BSTR;
    value.pbstrVal = &text;
    EXPECT_EQ(VariantClear(&value), s_ok);
    EXPECT_EQ(std::u16string(text), u"kept");
    SysFreeString(text);
}

TEST(Variant, WithALockedArrayIsNotCleared) {
    Owned value;
    value.vt = VT_ARRAY | VT_I4;
    value.parray = SafeArrayCreateVector(VT_I4, 0, 3);
    SafeArrayLock(value.parray);
    EXPECT_EQ(VariantClear(&value), disp_e_arrayislocked);
    EXPECT_EQ(value.vt, VT_ARRAY | VT_I4);
    SafeArrayUnlock(value.parray);
}

TEST(Variant, CopyOfATextIsATextOfItsOwn) {
    Owned from, to;
    from.set_text(std::u16string(u"a\0b", 3));
    to.set_text(u"before");
    EXPECT_EQ(VariantCopy(&to, &from), s_ok);
    EXPECT_NE(to.bstrVal, from.bstrVal);
    EXPECT_EQ(printed(to), "BSTR \"a\\u0000b\"");
}

TEST(Variant, CopyOfAnObjectSharesIt) {
    Counted object;
    VARIANT from{};
    from.vt = VT_DISPATCH;
    from.pdispVal = &object;
    Owned to;
    EXPECT_EQ(VariantCopy(&to, &from), s_ok);
    EXPECT_EQ(object.references, 2);
    EXPECT_EQ(VariantClear(&to), s_ok);
    EXPECT_EQ(object.references, 1);
}

TEST(Variant, CopyOfAnElementOverItsOwnArray) {
    Owned value;
    value.vt = VT_ARRAY | VT_VARIANT;
    value.parray = SafeArrayCreateVector(VT_VARIANT, 0, 1);
    VARIANT* element = static_cast<VARIANT*>(value.parray->pvData);
    element->vt = VT_BSTR;
    element->bstrVal = SysAllocString(u"inside");
    EXPECT_EQ(VariantCopy(&value, element), s_ok);
    EXPECT_EQ(printed(value), "BSTR \"inside\"");
}

TEST(Variant, CopyToItselfChangesNothing) {
    Owned value;
    value.set_text(u"same");
    BSTR before = value.bstrVal;
    EXPECT_EQ(VariantCopy(&value, &value), s_ok);
    EXPECT_EQ(value.bstrVal, before);
}

TEST(VariantCopyInd, FollowsAReference) {
    BSTR text = SysAllocString(u"far");
    VARIANT reference{};
    reference.vt = VT_BYREF | VT_BSTR;
    reference.pbstrVal = &text;
    Owned to;
    EXPECT_EQ(VariantCopyInd(&to, &reference), s_ok);
    EXPECT_EQ(printed(to), "BSTR \"far\"");
    EXPECT_NE(to.bstrVal, text);
    SysFreeString(text);
}

TEST(VariantCopyInd, InPlaceReplacesTheReferenceByTheValue) {
    std::int32_t number = 42;
    VARIANT value{};
    value.vt = VT_BYREF | VT_I4;
    value.plVal = &number;
    EXPECT_EQ(VariantCopyInd(&value, &value), s_ok);
    EXPECT_EQ(printed(value), "I4 42");
}

TEST(VariantCopyInd, FollowsAReferenceToAVariantThatIsAReference) {
    std::int32_t number = 7;
    VARIANT inner{};
    inner.vt = VT_BYREF | VT_I4;
    inner.plVal = &number;
    VARIANT outer{};
    outer.vt = VT_BYREF | VT_VARIANT;
    outer.pvarVal = &inner;
    EXPECT_EQ(outer.vt, 0x400C);
    Owned to;
    EXPECT_EQ(VariantCopyInd(&to, &outer), s_ok);
    EXPECT_EQ(printed(to), "I4 7");
}

TEST(VariantCopyInd, RefusesAReferenceToAReferenceToAVariant) {
    VARIANT value{}, inner{}, outer{};
    inner.vt = outer.vt = VT_BYREF | VT_VARIANT;
    inner.pvarVal = &value;
    outer.pvarVal = &inner;
    Owned to;
    EXPECT_EQ(VariantCopyInd(&to, &outer), e_invalidarg);
}

TEST(VariantCopyInd, CopiesTheArrayThatAReferenceRefersTo) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_I4, 0, 2);
    VARIANT reference{};
    reference.vt = VT_BYREF | VT_ARRAY | VT_I4;
    reference.pparray = &array;
    Owned to;
    EXPECT_EQ(VariantCopyInd(&to, &reference), s_ok);
    EXPECT_EQ(to.vt, VT_ARRAY | VT_I4);
    EXPECT_NE(to.parray, array);
    SafeArrayDestroy(array);
}

TEST(Variant, ADecimalKeepsItsTypeWhenItIsReferredTo) {
    DECIMAL decimal{0xFFFF, 2, 0x80, 0, 150};
    VARIANT reference{};
    reference.vt = VT_BYREF | VT_DECIMAL;
    reference.pdecVal = &decimal;
    Owned to;
    EXPECT_EQ(VariantCopyInd(&to, &reference), s_ok);
    EXPECT_EQ(printed(to), "DECIMAL -000000000000000000000096/2");
}

}  // namespace
