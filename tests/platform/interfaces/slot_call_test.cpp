#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "platform/interfaces/call.h"
#include "platform/interfaces/late_call.h"
#include "tests/platform/interfaces/probe.h"
#include "tests/support/raised.h"

namespace orvo {
namespace {

static_assert(slot_of<&Probe::Add> == 7);
static_assert(slot_of<&Probe::Greet> == 8);
static_assert(slot_of<&Probe::Swap> == 11, "reserved slots keep their places");
static_assert(slot_of<&Switch::Turn> == 3, "an interface without late binding starts at 3");

// Does in its method what it was told to.
class Errand {
public:
    explicit Errand(std::function<void()> work) : work_(std::move(work)) {}
    std::int32_t Run() {
        work_();
        return ++runs_;
    }

private:
    std::function<void()> work_;
    std::int32_t runs_ = 0;
};

}  // namespace

// clang-format off
template <>
inline constexpr auto table_of<Errand> = describe<Errand>(
    "IErrand", "7e57ab1e-0000-4000-8000-0000000000f3",
    method<&Errand::Run>("Run"));
// clang-format on
template <>
inline constexpr auto class_of<Errand> = describe_class<Errand>("Test.Errand");

namespace {

TEST(SlotCall, CarriesScalarsBothWays) {
    const auto probe = make<SwitchedProbe>();
    EXPECT_EQ(call<&Probe::Add>(probe, 40, 2), 42);
    EXPECT_TRUE(call<&Probe::Not>(probe, false));
    EXPECT_EQ(call<&Probe::Half>(probe, 5.0), 2.5);
    EXPECT_EQ(call<&Probe::Twice>(probe, Currency{12345}), Currency{24690});
    EXPECT_EQ(call<&Probe::NextDay>(probe, Date{37623.75}), Date{37624.75});
}

TEST(SlotCall, BringsAnInOutTextBack) {
    const auto probe = make<SwitchedProbe>();
    Text name = u"Zoë";
    EXPECT_EQ(call<&Probe::Greet>(probe, name), u"Hello, Zoë!");
    EXPECT_EQ(name, u"Zoë!");
}

TEST(SlotCall, BringsInOutVariantsBackWithoutCopyingThem) {
    const auto probe = make<SwitchedProbe>();
    Variant a = u"left";
    Variant b = Values{1, 2, 3};
    const void* array = b.to<Values>().get();
    call<&Probe::Swap>(probe, a, b);
    EXPECT_EQ(b, Variant(u"left"));
    EXPECT_EQ(a, Variant(Values{1, 2, 3}));
    EXPECT_NE(array, nullptr);
}

TEST(SlotCall, CarriesArraysBothWays) {
    const auto probe = make<SwitchedProbe>();
    Values values{u"a", 2, Variant::null()};
    EXPECT_EQ(call<&Probe::Reverse>(probe, values), (Values{Variant::null(), 2, u"a"}));
    EXPECT_EQ(values, (Values{u"a", 2, Variant::null(), u"seen"}));
}

TEST(SlotCall, CarriesTextsWithNulsInside) {
    const auto probe = make<SwitchedProbe>();
    const Text text(u"a\0b", 3);
    EXPECT_EQ(call<&Probe::Echo>(probe, Variant(text)), Variant(text));
}

TEST(SlotCall, OnNothingRaisesObjectNotSet) {
    const Failure failure = raised_by([] { call<&Probe::Counted>(Ref<Probe>()); });
    EXPECT_EQ(failure.number, 91);
    EXPECT_EQ(failure.description, u"Object variable or With block variable not set");
}

TEST(SlotCall, HoldsTheObjectWhileItRuns) {
    Ref<Errand> errand;
    errand = make<Errand>([&] { errand = nullptr; });
    EXPECT_EQ(call<&Errand::Run>(errand), 1);
    EXPECT_FALSE(errand);
    Object object;
    object = make<Errand>([&] { object = nullptr; }).object();
    EXPECT_EQ(late::call(object, u"Run"), Variant(1));
    EXPECT_FALSE(object);
}

TEST(SlotCall, BringsAWholeFailureAcross) {
    const auto probe = make<SwitchedProbe>();
    const Failure failure = raised_by([&] { call<&Probe::Fail>(probe, error_number(0x80040321)); });
    EXPECT_EQ(failure.number, error_number(0x80040321));
    EXPECT_EQ(failure.source, u"Probe.Source");
    EXPECT_EQ(failure.description, u"It failed");
    EXPECT_EQ(failure.help_file, u"help.chm");
    EXPECT_EQ(failure.help_context, 17);
}

TEST(SlotCall, CarriesRunTimeErrorsInTheirOwnRange) {
    const auto probe = make<SwitchedProbe>();
    EXPECT_EQ(raised_by([&] { call<&Probe::Fail>(probe, 13); }).number, 13);
    EXPECT_EQ(raised_by([&] { call<&Probe::Fail>(probe, 3021); }).number, 3021);

    using Fail = abi::HRESULT (*)(abi::IUnknown*, std::int32_t);
    const auto raw = reinterpret_cast<Fail>(probe.get()->slots[slot_of<&Probe::Fail>]);
    EXPECT_EQ(raw(probe.get(), 13), abi::result(0x800A000D));
}

TEST(SlotCall, AFailureWithoutASourceNamesTheClass) {
    const auto probe = make<SwitchedProbe>();
    EXPECT_EQ(raised_by([&] { call<&Probe::FailBare>(probe); }).source, u"Test.Probe");
}

TEST(SlotCall, AnEmptySourceThatAnErrorObjectHasStaysEmpty) {
    Object made, readable;
    ASSERT_EQ(abi::CreateErrorInfo(made.put()), abi::s_ok);
    abi::call_slot<abi::HRESULT, const char16_t*>(made.get(), abi::slot_error_set_description,
                                                  u"what?");
    ASSERT_EQ(abi::query_interface(made.get(), abi::iid_error_info,
                                   reinterpret_cast<void**>(readable.put())),
              abi::s_ok);
    abi::SetErrorInfo(0, readable.get());
    const auto passed_on = [] {
        try {
            detail::raise_result(abi::e_fail);
        } catch (...) {
            return current_failure("Test.Class");
        }
    };
    const Failure told = passed_on();
    EXPECT_EQ(told.description, u"what?");
    EXPECT_EQ(told.source, u"");
    EXPECT_EQ(passed_on().source, u"Test.Class") << "without an error object";

    const auto errand = make<Errand>([&] { throw told; });
    EXPECT_EQ(raised_by([&] { call<&Errand::Run>(errand); }).source, u"");
    EXPECT_EQ(raised_by([&] { late::call(errand.object(), u"Run"); }).source, u"");
}

TEST(SlotCall, AnExceptionThatIsNoFailureKeepsItsText) {
    const auto probe = make<SwitchedProbe>();
    const Failure failure = raised_by([&] { call<&Probe::Crash>(probe); });
    EXPECT_EQ(failure.number, abi::e_unexpected);
    EXPECT_EQ(failure.description, u"out of cheese");
}

TEST(SlotCall, ANullPointerForAnInOutArgumentIsRefusedByName) {
    const auto probe = make<SwitchedProbe>();
    using Greet = abi::HRESULT (*)(abi::IUnknown*, abi::BSTR*, abi::BSTR*);
    const auto greet = reinterpret_cast<Greet>(probe.get()->slots[slot_of<&Probe::Greet>]);
    abi::BSTR result = nullptr;
    EXPECT_EQ(greet(probe.get(), nullptr, &result), abi::e_pointer);
    const Failure failure = raised_by([] { detail::raise_result(abi::e_pointer); });
    EXPECT_EQ(failure.description, u"The argument name is a null pointer");
    abi::BSTR name = nullptr;
    EXPECT_EQ(greet(probe.get(), &name, nullptr), abi::e_pointer);
}

TEST(SlotCall, ANullPointerForAnOptionalArgumentIsAnArgumentLeftOut) {
    const auto probe = make<SwitchedProbe>();
    using Join = abi::HRESULT (*)(abi::IUnknown*, abi::BSTR, abi::BSTR*, abi::VARIANT, abi::BSTR*);
    const auto join = reinterpret_cast<Join>(probe.get()->slots[slot_of<&Probe::Join>]);
    abi::VARIANT third{};
    third.vt = abi::VT_BSTR;
    abi::BSTR result = nullptr;
    ASSERT_EQ(join(probe.get(), nullptr, nullptr, third, &result), abi::s_ok);
    EXPECT_EQ(crossing<Text>::take(result), u"||");
}

TEST(SlotCall, WritesThroughAVariantThatRefersToAVariable) {
    const auto probe = make<SwitchedProbe>();
    std::int32_t number = 7;
    abi::VARIANT a{};
    a.vt = abi::VT_BYREF | abi::VT_I4;
    a.plVal = &number;
    abi::VARIANT b{};
    b.vt = abi::VT_I4;
    b.lVal = 8;
    using Swap = abi::HRESULT (*)(abi::IUnknown*, abi::VARIANT*, abi::VARIANT*);
    const auto swap = reinterpret_cast<Swap>(probe.get()->slots[slot_of<&Probe::Swap>]);
    ASSERT_EQ(swap(probe.get(), &a, &b), abi::s_ok);
    EXPECT_EQ(number, 8);
    EXPECT_EQ(b.lVal, 7);
}

TEST(SlotCall, AReservedSlotAnswersThatItIsNotImplemented) {
    const auto probe = make<SwitchedProbe>();
    using Reserved = abi::HRESULT (*)(abi::IUnknown*);
    EXPECT_EQ(reinterpret_cast<Reserved>(probe.get()->slots[9])(probe.get()), abi::e_notimpl);
}

TEST(SlotCall, FromAnotherThreadIsAnsweredWrongThread) {
    const auto probe = make<SwitchedProbe>();
    std::int32_t number = 0;
    std::thread([&] { number = raised_by([&] { call<&Probe::Counted>(probe); }).number; }).join();
    EXPECT_EQ(number, abi::rpc_e_wrong_thread);
    EXPECT_EQ(call<&Probe::Counted>(probe), 0) << "the call was not carried out";
}

TEST(SlotCall, OfASharedObjectMayComeFromAnyThread) {
    const auto probe = make<SharedProbe>();
    std::int32_t sum = 0;
    std::thread([&] { sum = call<&Probe::Add>(probe, 1, 2); }).join();
    EXPECT_EQ(sum, 3);
}

TEST(Faces, ShareOneObject) {
    bool destroyed = false;
    {
        const auto probe = make<SwitchedProbe>(&destroyed);
        const auto lever = Ref<Switch>::from(probe.object());
        EXPECT_FALSE(call<&Switch::IsOn>(lever));
        call<&Switch::Turn>(lever, true);
        EXPECT_TRUE(call<&Switch::IsOn>(lever));
        call<&Switch::Reset>(lever);
        EXPECT_FALSE(call<&Switch::IsOn>(lever));
        EXPECT_EQ(lever.object(), probe.object());
        EXPECT_EQ(call<&Probe::Add>(Ref<Probe>::from(lever.object()), 1, 1), 2);
    }
    EXPECT_TRUE(destroyed);
}

TEST(Faces, AskedForAnInterfaceThatIsNotThereRaiseTypeMismatch) {
    const auto probe = make<SharedProbe>();
    EXPECT_EQ(raised_by([&] { Ref<Switch>::from(probe.object()); }).number, 13);
    EXPECT_FALSE(Ref<Switch>::from(nullptr));
}

TEST(Faces, SayWhichInterfacesReportErrors) {
    const auto probe = make<SwitchedProbe>();
    Object support;
    ASSERT_EQ(abi::query_interface(probe.get(), abi::iid_support_error_info,
                                   reinterpret_cast<void**>(support.put())),
              abi::s_ok);
    auto ask = [&](const abi::IID& iid) {
        return abi::call_slot<abi::HRESULT, const abi::IID*>(
            support.get(), abi::slot_interface_supports_error_info, &iid);
    };
    EXPECT_EQ(ask(table_of<Probe>.iid), abi::s_ok);
    EXPECT_EQ(ask(table_of<Switch>.iid), abi::s_ok);
    EXPECT_EQ(ask(abi::iid_class_factory), abi::s_false);
}

TEST(Objects, AreCountedForTheirModule) {
    const long before = detail::live_objects();
    {
        const auto probe = make<SwitchedProbe>();
        const auto again = probe;
        EXPECT_EQ(detail::live_objects(), before + 1);
    }
    EXPECT_EQ(detail::live_objects(), before);
}

}  // namespace
}  // namespace orvo
