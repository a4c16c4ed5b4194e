#include <gtest/gtest.h>

#include <cstring>

#include "counted.h"
#include "printed.h"

namespace {

using namespace orvo::abi;
using orvo::testing::Counted;
using orvo::testing::Owned;
using orvo::testing::printed;

constexpr HRESULT bad_index = result(0x8002000B);
constexpr HRESULT locked = result(0x8002000D);

struct Kind {
    VARTYPE type;
    std::uint16_t features;
    std::uint32_t size;
};

TEST(SafeArray, HasTheFeaturesAndTheElementSizeOfItsType) {
    const Kind kinds[] = {{VT_VARIANT, 0x880, 24}, {VT_BSTR, 0x180, 8},    {VT_I4, 0x80, 4},
                          {VT_UI1, 0x80, 1},       {VT_BOOL, 0x80, 2},     {VT_DISPATCH, 0x440, 8},
                          {VT_UNKNOWN, 0x240, 8},  {VT_DECIMAL, 0x80, 16}, {VT_CY, 0x80, 8}};
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.type);
        SAFEARRAYBOUND bound{2, 0};
        SAFEARRAY* array = SafeArrayCreate(kind.type, 1, &bound);
        ASSERT_NE(array, nullptr);
        EXPECT_EQ(array->fFeatures, kind.features);
        EXPECT_EQ(array->cbElements, kind.size);
        EXPECT_EQ(SafeArrayGetElemsize(array), kind.size);
        VARTYPE type = 0;
        EXPECT_EQ(SafeArrayGetVartype(array, &type), s_ok);
        EXPECT_EQ(type, kind.type);
        SafeArrayDestroy(array);
        SAFEARRAY* vector = SafeArrayCreateVector(kind.type, 0, 2);
        EXPECT_EQ(vector->fFeatures, kind.features | 0x2000);
        SafeArrayDestroy(vector);
    }
}

TEST(SafeArray, HidesItsTypeOrInterfaceBeforeItself) {
    SAFEARRAY* numbers = SafeArrayCreateVector(VT_R8, 0, 1);
    std::uint32_t type;
    std::memcpy(&type, reinterpret_cast<char*>(numbers) - 4, 4);
    EXPECT_EQ(type, std::uint32_t{VT_R8});
    SAFEARRAY* objects = SafeArrayCreateVector(VT_DISPATCH, 0, 1);
    EXPECT_EQ(std::memcmp(reinterpret_cast<char*>(objects) - 16, &iid_dispatch, 16), 0);
    SafeArrayDestroy(numbers);
    SafeArrayDestroy(objects);
}

TEST(SafeArray, StoresItsBoundsInReverseAndItsElementsFirstIndexFastest) {
    SAFEARRAYBOUND bounds[] = {{2, 1}, {3, 10}};
    SAFEARRAY* array = SafeArrayCreate(VT_I4, 2, bounds);
    EXPECT_EQ(SafeArrayGetDim(array), 2u);
    EXPECT_EQ(array->rgsabound[0].cElements, 3u);
    EXPECT_EQ(array->rgsabound[1].cElements, 2u);
    std::int32_t lower = 0, upper = 0;
    EXPECT_EQ(SafeArrayGetLBound(array, 1, &lower), s_ok);
    EXPECT_EQ(SafeArrayGetUBound(array, 2, &upper), s_ok);
    EXPECT_EQ(lower, 1);
    EXPECT_EQ(upper, 12);
    for (std::int32_t column = 10; column <= 12; ++column)
        for (std::int32_t row = 1; row <= 2; ++row) {
            std::int32_t indices[] = {row, column};
            std::int32_t value = row * 100 + column;
            EXPECT_EQ(SafeArrayPutElement(array, indices, &value), s_ok);
        }
    const std::int32_t expected[] = {110, 210, 111, 211, 112, 212};
    EXPECT_EQ(std::memcmp(array->pvData, expected, sizeof expected), 0);
    std::int32_t last[] = {2, 12};
    void* place = nullptr;
    EXPECT_EQ(SafeArrayPtrOfIndex(array, last, &place), s_ok);
    EXPECT_EQ(*static_cast<std::int32_t*>(place), 212);
    SafeArrayDestroy(array);
}

TEST(SafeArray, RefusesIndicesAndDimensionsOutsideItsBounds) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_I4, 5, 2);
    std::int32_t value = 0;
    for (std::int32_t index : {4, 7, -2147483647}) {
        EXPECT_EQ(SafeArrayGetElement(array, &index, &value), bad_index);
        EXPECT_EQ(SafeArrayPutElement(array, &index, &value), bad_index);
    }
    EXPECT_EQ(array->cLocks, 0u) << "a refused access leaves no lock";
    EXPECT_EQ(SafeArrayGetLBound(array, 0, &value), bad_index);
    EXPECT_EQ(SafeArrayGetUBound(array, 2, &value), bad_index);
    SafeArrayDestroy(array);
}

TEST(SafeArray, WithoutElementsHasBoundsZeroToMinusOne) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, 0);
    std::int32_t lower = 7, upper = 7;
    EXPECT_EQ(SafeArrayGetLBound(array, 1, &lower), s_ok);
    EXPECT_EQ(SafeArrayGetUBound(array, 1, &upper), s_ok);
    EXPECT_EQ(lower, 0);
    EXPECT_EQ(upper, -1);
    void* data = nullptr;
    EXPECT_EQ(SafeArrayAccessData(array, &data), s_ok);
    EXPECT_NE(data, nullptr);
    EXPECT_EQ(SafeArrayUnaccessData(array), s_ok);
    SafeArrayDestroy(array);
}

TEST(SafeArray, ThatIsLockedIsNeitherDestroyedNorResized) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_I4, 0, 2);
    SAFEARRAYBOUND bound{3, 0};
    EXPECT_EQ(SafeArrayLock(array), s_ok);
    EXPECT_EQ(SafeArrayLock(array), s_ok);
    EXPECT_EQ(SafeArrayUnlock(array), s_ok);
    EXPECT_EQ(SafeArrayDestroy(array), locked);
    EXPECT_EQ(SafeArrayRedim(array, &bound), locked);
    EXPECT_EQ(SafeArrayUnlock(array), s_ok);
    EXPECT_EQ(SafeArrayUnlock(array), e_unexpected) << "one unlock too many";
    EXPECT_EQ(SafeArrayDestroy(array), s_ok);
}

TEST(SafeArray, KeepsCopiesOfTexts) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_BSTR, 0, 1);
    std::int32_t index = 0;
    BSTR text = SysAllocString(u"one");
    EXPECT_EQ(SafeArrayPutElement(array, &index, text), s_ok);
    EXPECT_EQ(SafeArrayPutElement(array, &index, text), s_ok) << "the old one is given back";
    SysFreeString(text);
    BSTR got = nullptr;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &got), s_ok);
    EXPECT_EQ(std::u16string(got), u"one");
    SysFreeString(got);
    EXPECT_EQ(SafeArrayPutElement(array, &index, nullptr), s_ok) << "no text is a text";
    SafeArrayDestroy(array);
}

TEST(SafeArray, KeepsReferencesToObjects) {
    Counted object;
    SAFEARRAY* array = SafeArrayCreateVector(VT_DISPATCH, 0, 2);
    std::int32_t index = 0;
    EXPECT_EQ(SafeArrayPutElement(array, &index, &object), s_ok);
    EXPECT_EQ(object.references, 2);
    IUnknown* got = nullptr;
    EXPECT_EQ(SafeArrayGetElement(array, &index, &got), s_ok);
    EXPECT_EQ(object.references, 3);
    release(got);
    SAFEARRAY* copy = nullptr;
    EXPECT_EQ(SafeArrayCopy(array, &copy), s_ok);
    EXPECT_EQ(object.references, 3);
    SafeArrayDestroy(copy);
    SafeArrayDestroy(array);
    EXPECT_EQ(object.references, 1);
}

TEST(SafeArray, GivesAVariantWithoutLookingAtWhatWasThere) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, 1);
    std::int32_t index = 0;
    Owned text;
    text.set_text(u"kept");
    EXPECT_EQ(SafeArrayPutElement(array, &index, &text), s_ok);
    Owned got;
    std::memset(static_cast<void*>(&got), 0xAB, sizeof(VARIANT));
    EXPECT_EQ(SafeArrayGetElement(array, &index, &got), s_ok);
    EXPECT_EQ(printed(got), "BSTR \"kept\"");
    SafeArrayDestroy(array);
}

TEST(SafeArray, CopyIsDeepAndUnlocked) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 3, 2);
    std::int32_t index = 4;
    Owned text;
    text.set_text(u"deep");
    SafeArrayPutElement(array, &index, &text);
    SafeArrayLock(array);
    SAFEARRAY* copy = nullptr;
    EXPECT_EQ(SafeArrayCopy(array, &copy), s_ok);
    SafeArrayUnlock(array);
    SafeArrayDestroy(array);
    EXPECT_EQ(copy->cLocks, 0u);
    std::int32_t lower = 0;
    SafeArrayGetLBound(copy, 1, &lower);
    EXPECT_EQ(lower, 3);
    Owned got;
    EXPECT_EQ(SafeArrayGetElement(copy, &index, &got), s_ok);
    EXPECT_EQ(printed(got), "BSTR \"deep\"");
    SafeArrayDestroy(copy);
}

TEST(SafeArray, CopyOfNoneIsNone) {
    SAFEARRAY* copy = reinterpret_cast<SAFEARRAY*>(&copy);
    EXPECT_EQ(SafeArrayCopy(nullptr, &copy), s_ok);
    EXPECT_EQ(copy, nullptr);
}

TEST(SafeArray, ResizingKeepsWhatStaysAndGivesBackWhatGoes) {
    for (bool vector : {false, true}) {
        SCOPED_TRACE(vector);
        SAFEARRAYBOUND bound{2, 0};
        SAFEARRAY* array =
            vector ? SafeArrayCreateVector(VT_BSTR, 0, 2) : SafeArrayCreate(VT_BSTR, 1, &bound);
        BSTR text = SysAllocString(u"first");
        for (std::int32_t index : {0, 1}) SafeArrayPutElement(array, &index, text);
        SysFreeString(text);
        bound.cElements = 5;
        EXPECT_EQ(SafeArrayRedim(array, &bound), s_ok);
        BSTR* texts = static_cast<BSTR*>(array->pvData);
        EXPECT_EQ(std::u16string(texts[1]), u"first");
        EXPECT_EQ(texts[4], nullptr);
        bound.cElements = 1;
        EXPECT_EQ(SafeArrayRedim(array, &bound), s_ok);
        EXPECT_EQ(std::u16string(static_cast<BSTR*>(array->pvData)[0]), u"first");
        SafeArrayDestroy(array);
    }
}

TEST(SafeArray, ResizesItsLastDimension) {
    SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
    SAFEARRAY* array = SafeArrayCreate(VT_I4, 2, bounds);
    const std::int32_t before[] = {1, 2, 3, 4};
    std::memcpy(array->pvData, before, sizeof before);
    SAFEARRAYBOUND bound{3, 1};
    EXPECT_EQ(SafeArrayRedim(array, &bound), s_ok);
    const std::int32_t after[] = {1, 2, 3, 4, 0, 0};
    EXPECT_EQ(std::memcmp(array->pvData, after, sizeof after), 0);
    std::int32_t upper = 0;
    SafeArrayGetUBound(array, 2, &upper);
    EXPECT_EQ(upper, 3);
    SafeArrayDestroy(array);
}

TEST(SafeArray, OfATypeThatIsNoneOrTooLargeIsNotMade) {
    SAFEARRAYBOUND bound{1, 0};
    EXPECT_EQ(SafeArrayCreate(VT_EMPTY, 1, &bound), nullptr);
    EXPECT_EQ(SafeArrayCreate(VT_I4, 0, &bound), nullptr);
    EXPECT_EQ(SafeArrayCreateVector(VT_VARIANT, 0, 0x10000000), nullptr);
}

}  // namespace
