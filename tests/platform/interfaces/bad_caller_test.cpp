// Callers that pass one variable twice, references to nothing, or too little, and callers that left
// an error object behind.

#include <gtest/gtest.h>

#include "platform/interfaces/call.h"
#include "platform/interfaces/hosted.h"

namespace orvo {

class Pair {
public:
    Text Both(Variant& a, Variant& b) { return a.to<Text>() + u"|" + b.to<Text>(); }
    Text Mixed(Text& a, Variant& b) { return a + u"|" + b.to<Text>(); }
    void MarkText(Text& a, Text&) { a += u"!"; }
    void MarkValue(Variant& a, Variant&) { a = a.to<Text>() + u"!"; }
    void Fail() { throw Failure(13, u"Pair", u"An earlier failure"); }
};

template <>
inline constexpr auto table_of<Pair> = describe<Pair>(
    "IPair", "0b5d7c9e-53a1-4a35-8d4b-5c1f6f1d2a11", method<&Pair::Both>("Both", "a", "b"),
    method<&Pair::Mixed>("Mixed", "a", "b"), method<&Pair::MarkText>("MarkText", "a", "b"),
    method<&Pair::MarkValue>("MarkValue", "a", "b"), method<&Pair::Fail>("Fail"));
template <>
inline constexpr auto class_of<Pair> = describe_class<Pair>("Test.Pair");

namespace {

class BadCaller : public testing::Test {
protected:
    ~BadCaller() override { abi::VariantClear(&variable); }

    template <auto M, class... A>
    abi::HRESULT slot(A... arguments) {
        return abi::call_slot<abi::HRESULT, A...>(pair.get(), slot_of<M>, arguments...);
    }

    // Invoke; the last argument comes first.
    abi::HRESULT late(const char16_t* name, abi::DISPPARAMS arguments) {
        static constexpr abi::IID none{};
        abi::DISPID id = abi::DISPID_UNKNOWN;
        abi::call_slot<abi::HRESULT, const abi::IID*, const char16_t**, std::uint32_t, abi::LCID,
                       abi::DISPID*>(pair.get(), abi::slot_get_ids_of_names, &none, &name, 1, 0,
                                     &id);
        return abi::call_slot<abi::HRESULT, abi::DISPID, const abi::IID*, abi::LCID, std::uint16_t,
                              abi::DISPPARAMS*, abi::VARIANT*, abi::EXCEPINFO*, std::uint32_t*>(
            pair.get(), abi::slot_invoke, id, &none, 0, abi::DISPATCH_METHOD, &arguments,
            answer.put(), nullptr, &bad);
    }
    abi::HRESULT late_twice(const char16_t* name) {
        abi::VARIANT twice[] = {reference(&variable), reference(&variable)};
        return late(name, {twice, nullptr, 2, 0});
    }

    static abi::VARIANT reference(abi::VARIANT* to) {
        abi::VARIANT raw{};
        raw.vt = abi::VT_BYREF | abi::VT_VARIANT;
        raw.pvarVal = to;
        return raw;
    }
    static abi::VARIANT text(const char16_t* content) {
        abi::VARIANT raw{};
        Variant(content).detach(raw);
        return raw;
    }

    const Ref<Pair> pair = make<Pair>();
    abi::VARIANT variable = text(u"x");
    Variant answer;
    std::uint32_t bad = 99;
};

TEST_F(BadCaller, MayPassOneVariantForTwoArgumentsBySlot) {
    abi::BSTR both = nullptr;
    ASSERT_EQ((slot<&Pair::Both>(&variable, &variable, &both)), abi::s_ok);
    EXPECT_EQ(crossing<Text>::take(both), u"x|x");
    ASSERT_EQ((slot<&Pair::MarkValue>(&variable, &variable)), abi::s_ok);
    EXPECT_EQ(Variant::copy_of(variable), Variant(u"x!"));
}

TEST_F(BadCaller, MayPassOneTextForTwoArgumentsBySlot) {
    abi::BSTR name = abi::SysAllocString(u"x");
    ASSERT_EQ((slot<&Pair::MarkText>(&name, &name)), abi::s_ok);
    EXPECT_EQ(crossing<Text>::take(name), u"x!");
}

TEST_F(BadCaller, MayReferToOneVariableWithTwoVariants) {
    abi::BSTR name = abi::SysAllocString(u"x");
    abi::VARIANT a{};
    a.vt = abi::VT_BYREF | abi::VT_BSTR;
    a.pbstrVal = &name;
    abi::VARIANT b = a;
    ASSERT_EQ((slot<&Pair::MarkValue>(&a, &b)), abi::s_ok);
    EXPECT_EQ(crossing<Text>::take(name), u"x!");
}

TEST_F(BadCaller, MayPassOneVariableForTwoArgumentsLateBound) {
    ASSERT_EQ(late_twice(u"Both"), abi::s_ok);
    EXPECT_EQ(answer, Variant(u"x|x"));
    ASSERT_EQ(late_twice(u"Mixed"), abi::s_ok);
    EXPECT_EQ(answer, Variant(u"x|x"));
    EXPECT_EQ(Variant::copy_of(variable), Variant(u"x"));
    ASSERT_EQ(late_twice(u"MarkText"), abi::s_ok);
    ASSERT_EQ(late_twice(u"MarkValue"), abi::s_ok);
    EXPECT_EQ(Variant::copy_of(variable), Variant(u"x!!"));
}

TEST_F(BadCaller, MayPassOneValueForTwoArgumentsFromCpp) {
    Variant value = u"x";
    EXPECT_EQ(call<&Pair::Both>(pair, value, value), u"x|x");
    EXPECT_EQ(value, Variant(u"x"));
}

TEST_F(BadCaller, IsToldWhichReferenceRefersToNothing) {
    abi::VARIANT arguments[] = {reference(&variable), reference(nullptr)};
    EXPECT_EQ(late(u"Both", {arguments, nullptr, 2, 0}), abi::e_invalidarg);
    EXPECT_EQ(bad, 1u);
    EXPECT_EQ(late(u"MarkText", {arguments, nullptr, 2, 0}), abi::e_invalidarg);
    abi::VARIANT inner = reference(nullptr);
    arguments[1] = reference(&inner);
    EXPECT_EQ(late(u"Both", {arguments, nullptr, 2, 0}), abi::e_invalidarg);
    EXPECT_EQ((slot<&Pair::MarkValue>(&inner, &variable)), abi::result(0x800A0005));
    EXPECT_EQ(Variant::copy_of(variable), Variant(u"x"));
}

TEST_F(BadCaller, IsRefusedWithoutTheArgumentsThatItCounts) {
    EXPECT_EQ(late(u"Both", {nullptr, nullptr, 2, 0}), abi::e_invalidarg);
    EXPECT_EQ(late(u"Fail", {nullptr, nullptr, 0, 1}), abi::e_invalidarg);
}

TEST_F(BadCaller, CannotLeaveOutWhatIsNotOptional) {
    abi::VARIANT arguments[] = {*Variant::missing().get(), variable};
    EXPECT_EQ(late(u"Both", {arguments, nullptr, 2, 0}), abi::disp_e_paramnotoptional);
}

TEST_F(BadCaller, DoesNotGetTheErrorOfAnEarlierCall) {
    slot<&Pair::Fail>();
    EXPECT_EQ((slot<&Pair::Both>(&variable, &variable, static_cast<abi::BSTR*>(nullptr))),
              abi::e_pointer);
    Object left;
    EXPECT_EQ(abi::GetErrorInfo(0, left.put()), abi::s_false);
}

}  // namespace
}  // namespace orvo
