#include "platform/interfaces/late_call.h"

#include <gmock/gmock.h>

#include <algorithm>
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

    abi::HRESULT invoke_with(abi::DISPID member, std::uint16_t flags, abi::DISPPARAMS params) {
        static constexpr abi::IID none{};
        abi::VariantClear(&result);
        return abi::call_slot<abi::HRESULT, abi::DISPID, const abi::IID*, abi::LCID, std::uint16_t,
                              abi::DISPPARAMS*, abi::VARIANT*, abi::EXCEPINFO*, std::uint32_t*>(
            probe.get(), abi::slot_invoke, member, &none, 0x409, flags, &params, &result, nullptr,
            &bad_argument);
    }
    // The first arguments have these names; those without stand behind them, the last one first.
    abi::HRESULT named(const char16_t* member, std::vector<Variant> arguments,
                       std::vector<abi::DISPID> names) {
        std::vector<abi::VARIANT> raw;
        for (const Variant& argument : arguments) raw.push_back(*argument.get());
        return invoke_with(id(member), abi::DISPATCH_METHOD,
                           {raw.data(), names.data(), static_cast<std::uint32_t>(raw.size()),
                            static_cast<std::uint32_t>(names.size())});
    }
    Variant answer() const { return Variant::copy_of(result); }
    std::vector<abi::DISPID> ids(std::vector<const char16_t*> names) {
        static constexpr abi::IID none{};
        std::vector<abi::DISPID> found(names.size());
        const abi::HRESULT code = abi::call_slot<abi::HRESULT, const abi::IID*, const char16_t**,
                                                 std::uint32_t, abi::LCID, abi::DISPID*>(
            probe.get(), abi::slot_get_ids_of_names, &none, names.data(),
            static_cast<std::uint32_t>(names.size()), 0, found.data());
        const bool knows_all = std::ranges::count(found, abi::DISPID_UNKNOWN) == 0;
        EXPECT_EQ(code, knows_all ? abi::s_ok : abi::disp_e_unknownname);
        return found;
    }

    static abi::VARIANT text(const char16_t* value) { return detached(Variant(value)); }
    static abi::VARIANT detached(Variant value) {
        abi::VARIANT raw{};
        value.detach(raw);
        return raw;
    }

    abi::VARIANT result{};
    std::uint32_t bad_argument = 99;
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
    abi::VariantClear(&value);
    abi::VariantClear(&key);
}

TEST_F(LateCall, SetsByReferenceOnlyWhatTakesReferences) {
    abi::VARIANT object = detached(Variant(probe));
    abi::VARIANT value = text(u"v");
    EXPECT_EQ(invoke(id(u"Name"), abi::DISPATCH_PROPERTYPUTREF, {object}),
              abi::disp_e_membernotfound);
    EXPECT_EQ(invoke(id(u"Name"), abi::DISPATCH_PROPERTYPUTREF, {value}),
              abi::disp_e_membernotfound);
    EXPECT_EQ(late::get(probe, u"Name"), Variant(u"probe")) << "nothing was written";
    constexpr std::uint16_t either = abi::DISPATCH_PROPERTYPUT | abi::DISPATCH_PROPERTYPUTREF;
    EXPECT_EQ(invoke(id(u"Name"), either, {value}), abi::s_ok);
    EXPECT_EQ(late::get(probe, u"Name"), Variant(u"v"));
    abi::VariantClear(&object);
    abi::VariantClear(&value);
}

TEST_F(LateCall, KnowsParametersByTheirNamesInAnyCase) {
    EXPECT_THAT(ids({u"join", u"THIRD", u"first"}), testing::ElementsAre(id(u"Join"), 2, 0));
    EXPECT_THAT(ids({u"Join", u"fourth", u"second"}),
                testing::ElementsAre(id(u"Join"), abi::DISPID_UNKNOWN, 1));
    EXPECT_THAT(ids({u"Nobody", u"first"}),
                testing::ElementsAre(abi::DISPID_UNKNOWN, abi::DISPID_UNKNOWN));
    EXPECT_THAT(ids({u"Item", u"key", u"value"}), testing::ElementsAre(0, 0, abi::DISPID_UNKNOWN))
        << "the new value has no name";
}

TEST_F(LateCall, TakesNamedArgumentsInAnyOrder) {
    EXPECT_EQ(named(u"Join", {u"c", u"a"}, {2, 0}), abi::s_ok);
    EXPECT_EQ(answer(), Variant(u"a||c")) << "what is not named is left out";
    EXPECT_EQ(named(u"Join", {u"b", u"a"}, {1}), abi::s_ok);
    EXPECT_EQ(answer(), Variant(u"a|b|missing")) << "those in their places come first";
    EXPECT_EQ(named(u"Join", {Variant::missing(), u"c", u"a"}, {1, 2}), abi::s_ok);
    EXPECT_EQ(answer(), Variant(u"a||c"));
}

TEST_F(LateCall, NamesTheArgumentWhoseNameIsNoParametersOrAnothersToo) {
    EXPECT_EQ(named(u"Join", {u"x", u"a"}, {3}), abi::disp_e_paramnotfound);
    EXPECT_EQ(bad_argument, 0u);
    EXPECT_EQ(named(u"Join", {u"c", u"x", u"a"}, {2, -1}), abi::disp_e_paramnotfound);
    EXPECT_EQ(bad_argument, 1u);
    EXPECT_EQ(named(u"Join", {u"x", u"a"}, {0}), abi::disp_e_paramnotfound)
        << "it stands in its place already";
    EXPECT_EQ(named(u"Join", {u"b", u"b"}, {1, 1}), abi::disp_e_paramnotfound);
    EXPECT_EQ(named(u"Join", {u"b"}, {1}), abi::disp_e_paramnotoptional);
    EXPECT_EQ(named(u"Crash", {u"b"}, {0}), abi::disp_e_paramnotfound);
    EXPECT_EQ(named(u"Add", {u"abc", 1}, {1, 0}), abi::disp_e_typemismatch);
    EXPECT_EQ(bad_argument, 0u);
    EXPECT_EQ(named(u"Join", {u"a"}, {0, 1}), abi::e_invalidarg) << "more names than arguments";
}

TEST_F(LateCall, WritesNamedArgumentsBack) {
    abi::BSTR name = abi::SysAllocString(u"Bo");
    abi::VARIANT argument{};
    argument.vt = abi::VT_BYREF | abi::VT_BSTR;
    argument.pbstrVal = &name;
    abi::DISPID place = 0;
    ASSERT_EQ(invoke_with(id(u"Greet"), abi::DISPATCH_METHOD, {&argument, &place, 1, 1}),
              abi::s_ok);
    EXPECT_EQ(crossing<Text>::take(name), u"Bo!");
}

TEST_F(LateCall, TakesANamedIndexBesideTheNewValue) {
    abi::VARIANT arguments[] = {text(u"v"), text(u"k")};
    for (abi::DISPID value_place : {0, 1}) {
        abi::DISPID names[] = {value_place == 0 ? abi::DISPID_PROPERTYPUT : 0,
                               value_place == 0 ? 0 : abi::DISPID_PROPERTYPUT};
        EXPECT_EQ(
            invoke_with(abi::DISPID_VALUE, abi::DISPATCH_PROPERTYPUT, {arguments, names, 2, 2}),
            abi::s_ok);
        EXPECT_EQ(late::get(probe, u"Name"), Variant(value_place == 0 ? u"k=v" : u"v=k"));
    }
    abi::DISPID as_value[] = {abi::DISPID_PROPERTYPUT, 1};
    EXPECT_EQ(
        invoke_with(abi::DISPID_VALUE, abi::DISPATCH_PROPERTYPUT, {arguments, as_value, 2, 2}),
        abi::disp_e_paramnotfound)
        << "the new value's parameter is not there to be named";
    for (abi::VARIANT& argument : arguments) abi::VariantClear(&argument);
}

TEST_F(LateCall, RefusesAnObjectWithoutAValueWhereOneIsWantedAndAValueWhereAnObjectIs) {
    std::uint32_t bad = 99;
    const Object valueless = make<Valueless>().object();
    abi::VARIANT object = detached(Variant(valueless));
    EXPECT_EQ(invoke(id(u"Greet"), 1, {object}, &bad), abi::disp_e_typemismatch);
    EXPECT_EQ(bad, 0u);
    abi::VariantClear(&object);
    for (const Variant& wrong : {Variant(u"text"), Variant(1), Variant(), Variant::null()})
        EXPECT_EQ(number_of([&] { late::call(valueless, u"Take", {wrong}); }), 13);
    EXPECT_EQ(number_of([&] { late::call(probe, u"Greet", {Object()}); }), 13);
}

TEST_F(LateCall, ThatGoesWellLeavesNoErrorObjectOfAnEarlierOne) {
    const auto left_after = [&](auto body) {
        abi::SetErrorInfo(0, probe.get());
        body();
        Object left;
        return abi::GetErrorInfo(0, left.put()) == abi::s_ok;
    };
    EXPECT_FALSE(left_after([&] { late::call(probe, u"Add", {1, 2}); }));
    EXPECT_FALSE(left_after([&] { call<&Probe::Add>(Ref<Probe>::from(probe), 1, 2); }));
    EXPECT_FALSE(left_after([&] { call<&Probe::SetName>(Ref<Probe>::from(probe), u"n"); }));
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
