#include "platform/interfaces/late_call.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/interfaces/call.h"
#include "tests/platform/interfaces/probe.h"

namespace orvo {
namespace {

template <class Body>
std::int32_t number_of(Body body) {
    try {
        body();
    } catch (const Failure& failure) {
        return failure.number;
    }
    return 0;
}

class LateCall : public testing::Test {
protected:
    const Object probe = make<SwitchedProbe>().object();

    abi::DISPID id(const char16_t* name) {
        static constexpr abi::IID none{};
        abi::DISPID found = 0;
        abi::call_slot<abi::HRESULT, const abi::IID*, const char16_t**, std::uint32_t, abi::LCID,
                       abi::DISPID*>(probe.get(), abi::slot_get_ids_of_names, &none, &name, 1, 0,
                                     &found);
        return found;
    }

    // Raw Invoke; arguments are given last one first.
    abi::HRESULT invoke(abi::DISPID member, std::uint16_t flags,
                        std::vector<abi::VARIANT> arguments, std::uint32_t* bad = nullptr,
                        abi::EXCEPINFO* failure = nullptr) {
        static constexpr abi::IID none{};
        abi::DISPID put = abi::DISPID_PROPERTYPUT;
        abi::DISPPARAMS params{arguments.data(), nullptr,
                               static_cast<std::uint32_t>(arguments.size()), 0};
        if (flags & (abi::DISPATCH_PROPERTYPUT | abi::DISPATCH_PROPERTYPUTREF)) {
            params.rgdispidNamedArgs = &put;
            params.cNamedArgs = 1;
        }
        abi::VariantClear(&result);
        return abi::call_slot<abi::HRESULT, abi::DISPID, const abi::IID*, abi::LCID, std::uint16_t,
                              abi::DISPPARAMS*, abi::VARIANT*, abi::EXCEPINFO*, std::uint32_t*>(
            probe.get(), abi::slot_invoke, member, &none, 0x409, flags, &params, &result, failure,
            bad);
    }
    ~LateCall() override { abi::VariantClear(&result); }

    static abi::VARIANT text(const char16_t* value) { return detached(Variant(value)); }
    static abi::VARIANT detached(Variant value) {
        abi::VARIANT raw{};
        value.detach(raw);
        return raw;
    }

    abi::VARIANT result{};
};

TEST_F(LateCall, FindsMembersWithoutRegardToCase) {
    EXPECT_EQ(late::call(probe, u"aDD", {40, 2}), Variant(42));
    EXPECT_EQ(id(u"add"), id(u"ADD"));
    EXPECT_EQ(id(u"nobody"), abi::DISPID_UNKNOWN);
}

TEST_F(LateCall, ConvertsArgumentsByTheAutomationRules) {
    EXPECT_EQ(late::call(probe, u"Add", {u"40", 2.5}), Variant(42));
    EXPECT_EQ(late::call(probe, u"Not", {u"True"}), Variant(false));
}

TEST_F(LateCall, NamesTheArgumentThatCannotBeConverted) {
    std::uint32_t bad = 99;
    abi::VARIANT b{};
    b.vt = abi::VT_I4;
    b.lVal = 70000;
    EXPECT_EQ(invoke(id(u"Add"), 1, {b, abi::VARIANT{}}, &bad), abi::disp_e_overflow);
    EXPECT_EQ(bad, 0u);
    abi::VARIANT word = text(u"abc");
    EXPECT_EQ(invoke(id(u"Add"), 1, {abi::VARIANT{}, word}, &bad), abi::disp_e_typemismatch);
    EXPECT_EQ(bad, 1u);
    abi::VariantClear(&word);
    EXPECT_EQ(number_of([&] { late::call(probe, u"Add", {u"abc", 1}); }), 13);
    EXPECT_EQ(number_of([&] { late::call(probe, u"Greet", {Variant::null()}); }), 13);
}

TEST_F(LateCall, RefusesTooManyAndTooFewArguments) {
    EXPECT_EQ(number_of([&] { late::call(probe, u"Add", {1, 2, 3}); }), 450);
    EXPECT_EQ(number_of([&] { late::call(probe, u"Add", {1}); }), 449);
}

TEST_F(LateCall, LetsOptionalArgumentsBeLeftOut) {
    EXPECT_EQ(late::call(probe, u"Join", {u"a"}), Variant(u"a||missing"));
    EXPECT_EQ(late::call(probe, u"Join", {u"a", Variant::missing(), u"c"}), Variant(u"a||c"));
    EXPECT_EQ(number_of([&] { late::call(probe, u"Join"); }), 449);
}

TEST_F(LateCall, WritesChangedArgumentsBackIntoTheCallersVariables) {
    Variant arguments[] = {u"Ann"};
    EXPECT_EQ(late::call_by_reference(probe, u"Greet", arguments), Variant(u"Hello, Ann!"));
    EXPECT_EQ(arguments[0], Variant(u"Ann!"));

    Variant both[] = {1, u"two"};
    late::call_by_reference(probe, u"Swap", both);
    EXPECT_EQ(both[0], Variant(u"two"));
    EXPECT_EQ(both[1], Variant(1));
}

TEST_F(LateCall, LeavesTheTypeOfAnUnchangedVariableAlone) {
    Variant arguments[] = {Variant(std::int16_t(5)), Variant(std::int16_t(6))};
    late::call_by_reference(probe, u"Join", arguments);
    EXPECT_EQ(arguments[1], Variant(std::int16_t(6)));
}

TEST_F(LateCall, WritesBackIntoTypedVariables) {
    abi::BSTR name = abi::SysAllocString(u"Bo");
    abi::VARIANT argument{};
    argument.vt = abi::VT_BYREF | abi::VT_BSTR;
    argument.pbstrVal = &name;
    ASSERT_EQ(invoke(id(u"Greet"), 1, {argument}), abi::s_ok);
    EXPECT_EQ(crossing<Text>::take(name), u"Bo!");
}

TEST_F(LateCall, ReadsAndWritesProperties) {
    EXPECT_EQ(late::get(probe, u"Name"), Variant(u"probe"));
    late::put(probe, u"name", u"other");
    EXPECT_EQ(late::get(probe, u"Name"), Variant(u"other"));
    EXPECT_EQ(id(u"Name"), id(u"name"));
}

TEST_F(LateCall, TakesTheThreeWaysOfReadingAlike) {
    for (const std::uint16_t flags : {1, 2, 3}) {
        EXPECT_EQ(invoke(id(u"Name"), flags, {}), abi::s_ok) << flags;
        EXPECT_EQ(result.vt, abi::VT_BSTR);
    }
}

TEST_F(LateCall, PutsWithAnIndexAndThroughTheDefaultMember) {
    late::put(probe, u"Item", 3, {u"k"});
    EXPECT_EQ(late::get(probe, u"Name"), Variant(u"k=3"));
    abi::VARIANT value = text(u"v");
    abi::VARIANT key = text(u"q");
    EXPECT_EQ(invoke(abi::DISPID_VALUE, 4, {value, key}), abi::s_ok);
    EXPECT_EQ(late::get(probe, u"Name"), Variant(u"q=v"));
    EXPECT_EQ(invoke(abi::DISPID_VALUE, 8, {value, key}), abi::s_ok) << "by reference too";
    abi::VariantClear(&value);
    abi::VariantClear(&key);
}

TEST_F(LateCall, DoesNotCarryOutAMethodWithTooManyArguments) {
    Variant arguments[] = {u"Ann", 1};
    EXPECT_EQ(number_of([&] { late::call_by_reference(probe, u"Greet", arguments); }), 450);
    EXPECT_EQ(arguments[0], Variant(u"Ann"));
}

TEST_F(LateCall, DoesNotReadAPropertyThatIsToBeWrittenButIsReadOnly) {
    EXPECT_EQ(number_of([&] { late::put(probe, u"Counted", 5); }), 438);
    EXPECT_EQ(late::get(probe, u"Counted"), Variant(0)) << "it was not read before";
}

TEST_F(LateCall, HandsArgumentsThatAPropertyHasNoParameterForToItsResult) {
    EXPECT_EQ(late::get(probe, u"Friend", {u"k"}), Variant(u"<k:probe>"));
    late::put(probe, u"Name", u"mine");
    EXPECT_EQ(number_of([&] { late::get(probe, u"Nothing", {u"k"}); }), 450);
    EXPECT_EQ(number_of([&] { late::call(probe, u"Name", {u"k"}); }), 450);
}

TEST_F(LateCall, EndsWhereAnObjectAnswersItselfByDefault) {
    const Object ring = make<Ring>().object();
    EXPECT_EQ(number_of([&] { late::value_of(ring, {u"k"}); }), 450);
    EXPECT_EQ(number_of([&] { late::put_value(ring, 1, {u"k"}); }), 450);
    EXPECT_EQ(number_of([&] { late::value_of(ring, {u"k"}); }), 450) << "and can be tried again";
    EXPECT_EQ(late::get(probe, u"Friend", {u"k"}), Variant(u"<k:probe>"));
}

TEST_F(LateCall, BringsAWholeFailureAcross) {
    try {
        late::call(probe, u"Fail", {error_number(0x80040321)});
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number, error_number(0x80040321));
        EXPECT_EQ(failure.source, u"Probe.Source");
        EXPECT_EQ(failure.description, u"It failed");
        EXPECT_EQ(failure.help_file, u"help.chm");
        EXPECT_EQ(failure.help_context, 17);
    }
    EXPECT_EQ(number_of([&] { late::call(probe, u"Fail", {13}); }), 13);
}

TEST_F(LateCall, WithoutARoomForTheFailureAnswersItsCode) {
    abi::VARIANT number{};
    number.vt = abi::VT_I4;
    number.lVal = 13;
    EXPECT_EQ(invoke(id(u"Fail"), 1, {number}), abi::result(0x800A000D));
    abi::EXCEPINFO failure{};
    EXPECT_EQ(invoke(id(u"Fail"), 1, {number}, nullptr, &failure), abi::disp_e_exception);
    EXPECT_EQ(failure.scode, abi::result(0x800A000D));
    EXPECT_EQ(failure.wCode, 0);
    abi::SysFreeString(failure.bstrSource);
    abi::SysFreeString(failure.bstrDescription);
    abi::SysFreeString(failure.bstrHelpFile);
}

TEST_F(LateCall, LeavesNoErrorObjectBehind) {
    EXPECT_EQ(number_of([&] { late::call(probe, u"Fail", {13}); }), 13);
    Object left;
    EXPECT_EQ(abi::GetErrorInfo(0, left.put()), abi::s_false);
}

TEST_F(LateCall, RefusesUnknownMembersNamedArgumentsAndForeignInterfaces) {
    EXPECT_EQ(number_of([&] { late::call(probe, u"Nobody"); }), 438);
    EXPECT_EQ(number_of([&] { late::put(probe, u"Add", 1); }), 438);
    EXPECT_EQ(invoke(4711, 1, {}), abi::disp_e_membernotfound);
    EXPECT_EQ(number_of([&] { late::call(nullptr, u"Add"); }), 91);
}

TEST_F(LateCall, FromAnotherThreadIsAnsweredWrongThread) {
    std::int32_t number = 0;
    std::thread([&] { number = number_of([&] { late::call(probe, u"Counted"); }); }).join();
    EXPECT_EQ(number, abi::rpc_e_wrong_thread);
}

TEST_F(LateCall, PassesArraysAndObjects) {
    EXPECT_EQ(late::call(probe, u"Reverse", {Values{1, 2}}), Variant(Values{2, 1}));
    EXPECT_EQ(late::call(probe, u"Echo", {probe}), Variant(probe));
    EXPECT_TRUE(late::get(probe, u"Friend").is_object());
}

}  // namespace
}  // namespace orvo
