// Passwords across the border, both ways, by slot and by name.

#include <gmock/gmock.h>

#include "platform/interfaces/call.h"
#include "platform/interfaces/hosted.h"
#include "platform/interfaces/late_call.h"
#include "tests/platform/releases.h"
#include "tests/support/clear_text.h"

namespace orvo {
namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

// Keeps a password.
class Safe {
public:
    void Keep(const Secret& password) { kept_ = password.clone(); }
    // Keeps what the caller has and gives what was kept before.
    void Exchange(Secret& password) { std::swap(kept_, password); }
    // Whether both are the same; the second one is emptied where they are not.
    bool Compare(Secret& first, Secret& second) {
        const bool are_equal = first.is_same_as(second);
        if (!are_equal) second = Secret();
        return are_equal;
    }
    Secret Kept() { return kept_.clone(); }
    // What is kept, as a check of it takes it; a wrong one is taken away.
    bool Check(Variant& password) {
        const bool is_right = password.to<Secret>().is_same_as(kept_);
        if (!is_right) password.wipe();
        return is_right;
    }

private:
    Secret kept_;
};

const Text password = u"s3cret-of-17-unit";
const Text wiped = overwritten(password);
const Text halves = u"\xD800x\xDC00 \xDC00\xD800 \xD83D\xDE00 \xD83D";

}  // namespace

template <>
inline constexpr auto table_of<Safe> = describe<Safe>(
    "ISafe", "7e57ab1e-0000-4000-8000-000000000501", method<&Safe::Keep>("Keep", "password"),
    method<&Safe::Exchange>("Exchange", "password"),
    method<&Safe::Compare>("Compare", "first", "second"), get<&Safe::Kept>("Kept"),
    method<&Safe::Check>("Check", "password"));
template <>
inline constexpr auto class_of<Safe> = describe_class<Safe>("Test.Safe");

namespace {

TEST(SecretCrossing, BySlotKeepsEveryUnitInBothDirections) {
    const auto safe = make<Safe>();
    call<&Safe::Keep>(safe, Secret(halves));
    EXPECT_EQ(clear_text(call<&Safe::Kept>(safe)), halves);
    Secret given(u"another");
    call<&Safe::Exchange>(safe, given);
    EXPECT_EQ(clear_text(given), halves);
    call<&Safe::Exchange>(safe, given);
    EXPECT_EQ(clear_text(given), u"another");
}

TEST(SecretCrossing, ByNameKeepsEveryUnitInBothDirections) {
    const auto safe = make<Safe>();
    late::call(safe.object(), u"Keep", {halves});
    EXPECT_EQ(late::get(safe.object(), u"Kept"), Variant(halves));
    Variant given[] = {u"another"};
    late::call_by_reference(safe.object(), u"Exchange", given);
    EXPECT_EQ(given[0], Variant(halves));
}

TEST(SecretCrossing, ByNameAnythingThatIsATextServes) {
    const auto safe = make<Safe>();
    late::call(safe.object(), u"Keep", {std::int32_t{4711}});
    EXPECT_EQ(clear_text(call<&Safe::Kept>(safe)), u"4711");
    EXPECT_THROW(late::call(safe.object(), u"Keep", {Variant::null()}), Failure);
}

TEST(SecretCrossing, OneStringMayBePassedForTwoPasswords) {
    const auto safe = make<Safe>();
    abi::BSTR same = crossing<Text>::give(password);
    abi::VARIANT_BOOL are_equal = abi::variant_false;
    const auto code = abi::call_slot<abi::HRESULT, abi::BSTR*, abi::BSTR*, abi::VARIANT_BOOL*>(
        safe.get(), slot_of<&Safe::Compare>, &same, &same, &are_equal);
    EXPECT_EQ(code, abi::s_ok);
    EXPECT_EQ(are_equal, abi::variant_true);
    EXPECT_EQ(crossing<Text>::take(same), password);
}

TEST(SecretCrossing, IsTextToWhoReadsTheDescription) {
    EXPECT_EQ(crossing<Secret>::idl(), crossing<Text>::idl());
}

TEST(SecretCrossing, WhatIsHandedOverForACallIsOverwrittenAfterIt) {
    const auto safe = make<Safe>();
    const Secret secret(password);
    const Releases releases;
    call<&Safe::Keep>(safe, secret);
    EXPECT_THAT(releases.as_long_as(password), ElementsAre(wiped));
}

TEST(SecretCrossing, WhatIsTakenOverIsOverwrittenWhenItWasRead) {
    const auto safe = make<Safe>();
    call<&Safe::Keep>(safe, Secret(password));
    const Releases releases;
    EXPECT_EQ(clear_text(call<&Safe::Kept>(safe)), password);
    EXPECT_THAT(releases.as_long_as(password), ElementsAre(wiped));
}

TEST(SecretCrossing, AReplacedPasswordIsOverwrittenOnBothSides) {
    const auto safe = make<Safe>();
    call<&Safe::Keep>(safe, Secret(u"of another length"));
    Secret given(password);
    {
        const Releases releases;
        call<&Safe::Exchange>(safe, given);
        EXPECT_THAT(releases.as_long_as(password), ElementsAre(wiped, wiped));
    }
    EXPECT_EQ(clear_text(given), u"of another length");
}

// Calls a member by name with one argument, and asks for no result.
abi::HRESULT call_by_name(const Ref<Safe>& safe, TextView name, abi::VARIANT argument) {
    abi::DISPPARAMS arguments{&argument, nullptr, 1, 0};
    const abi::IID none{};
    return abi::call_slot<abi::HRESULT, abi::DISPID, const abi::IID*, abi::LCID, std::uint16_t,
                          abi::DISPPARAMS*, abi::VARIANT*, abi::EXCEPINFO*, std::uint32_t*>(
        safe.get(), abi::slot_invoke, detail::callee<Safe>::info().id_of(name), &none, 0,
        abi::DISPATCH_METHOD, &arguments, nullptr, nullptr, nullptr);
}

void check_by_slot(const Ref<Safe>& safe, abi::VARIANT& password) {
    abi::VARIANT_BOOL is_right = abi::variant_false;
    const auto code = abi::call_slot<abi::HRESULT, abi::VARIANT*, abi::VARIANT_BOOL*>(
        safe.get(), slot_of<&Safe::Check>, &password, &is_right);
    EXPECT_EQ(code, abi::s_ok);
}

// A caller's variable of a string type, and a by-reference argument for it.
struct StringVariable {
    explicit StringVariable(const Text& text) : value(crossing<Text>::give(text)) {
        argument.vt = abi::VT_BYREF | abi::VT_BSTR;
        argument.pbstrVal = &value;
    }

    abi::BSTR value;
    abi::VARIANT argument{};
};

TEST(SecretCrossing, ByNameTheCopyOfAVariableIsOverwrittenAndTheVariableStays) {
    const auto safe = make<Safe>();
    StringVariable variable(password);
    {
        const Releases releases;
        EXPECT_EQ(call_by_name(safe, u"Keep", variable.argument), abi::s_ok);
        EXPECT_THAT(releases.as_long_as(password), ElementsAre(wiped));
    }
    EXPECT_EQ(crossing<Text>::take(variable.value), password);
    EXPECT_EQ(clear_text(call<&Safe::Kept>(safe)), password);
}

TEST(SecretCrossing, ByNameAReplacedPasswordIsOverwrittenInAVariableOfEachType) {
    const auto safe = make<Safe>();
    call<&Safe::Keep>(safe, Secret(u"of another length"));
    StringVariable string(password);
    {
        const Releases releases;
        EXPECT_EQ(call_by_name(safe, u"Exchange", string.argument), abi::s_ok);
        EXPECT_THAT(releases.as_long_as(password), ElementsAre(wiped, wiped))
            << "the copy, and what the variable held";
    }
    EXPECT_EQ(crossing<Text>::take(string.value), u"of another length");

    call<&Safe::Keep>(safe, Secret(u"of another length"));
    Variant variant[] = {password};
    const Releases releases;
    late::call_by_reference(safe.object(), u"Exchange", variant);
    EXPECT_THAT(releases.as_long_as(password), ElementsAre(wiped));
    EXPECT_EQ(variant[0], Variant(u"of another length"));
}

TEST(SecretCrossing, ByNameAPasswordThatDoesNotFitTheVariableIsOverwritten) {
    const auto safe = make<Safe>();
    call<&Safe::Keep>(safe, Secret(password));
    std::int32_t number = 4711;
    abi::VARIANT argument{};
    argument.vt = abi::VT_BYREF | abi::VT_I4;
    argument.plVal = &number;
    const Releases releases;
    EXPECT_EQ(call_by_name(safe, u"Exchange", argument), abi::s_ok);
    EXPECT_THAT(releases.as_long_as(password), ElementsAre(wiped));
    EXPECT_EQ(number, 4711);
}

TEST(SecretCrossing, ByNameAPasswordThatNobodyAskedForIsOverwritten) {
    const auto safe = make<Safe>();
    call<&Safe::Keep>(safe, Secret(password));
    abi::DISPPARAMS none{};
    const abi::IID reserved{};
    const Releases releases;
    const auto code =
        abi::call_slot<abi::HRESULT, abi::DISPID, const abi::IID*, abi::LCID, std::uint16_t,
                       abi::DISPPARAMS*, abi::VARIANT*, abi::EXCEPINFO*, std::uint32_t*>(
            safe.get(), abi::slot_invoke, detail::callee<Safe>::info().id_of(u"Kept"), &reserved, 0,
            abi::DISPATCH_PROPERTYGET, &none, nullptr, nullptr, nullptr);
    EXPECT_EQ(code, abi::s_ok);
    EXPECT_THAT(releases.as_long_as(password), ElementsAre(wiped));
}

TEST(SecretInAVariant, EveryCopyOfAVariableIsOverwritten) {
    const auto safe = make<Safe>();
    call<&Safe::Keep>(safe, Secret(password));
    StringVariable variable(password);
    {
        const Releases releases;
        EXPECT_EQ(call_by_name(safe, u"Check", variable.argument), abi::s_ok);
        EXPECT_THAT(releases.as_long_as(password), AllOf(Not(IsEmpty()), Each(wiped)));
    }
    {
        const Releases releases;
        check_by_slot(safe, variable.argument);
        EXPECT_THAT(releases.as_long_as(password), AllOf(Not(IsEmpty()), Each(wiped)));
    }
    {
        const Releases releases;
        late::call(safe.object(), u"Check", {password});
        // The argument itself is this test's own.
        EXPECT_THAT(releases.as_long_as(password), ElementsAre(wiped, password));
    }
    EXPECT_EQ(crossing<Text>::take(variable.value), password);
}

TEST(SecretInAVariant, AReplacedOneIsOverwritten) {
    const auto safe = make<Safe>();
    StringVariable by_name(password), by_slot(password);
    const Releases releases;
    EXPECT_EQ(call_by_name(safe, u"Check", by_name.argument), abi::s_ok);
    check_by_slot(safe, by_slot.argument);
    EXPECT_THAT(releases.as_long_as(password), AllOf(Not(IsEmpty()), Each(wiped)));
    EXPECT_EQ(crossing<Text>::take(by_name.value), u"");
    EXPECT_EQ(crossing<Text>::take(by_slot.value), u"");
}

TEST(SecretValue, IsOverwrittenWhereItStandsAndInAList) {
    Variant text = password, list = Values{password, u"short", password};
    const Releases releases;
    text.wipe();
    list.wipe();
    EXPECT_TRUE(text.is_empty());
    EXPECT_TRUE(list.is_empty());
    EXPECT_THAT(releases.as_long_as(password), ElementsAre(wiped, wiped, wiped));
}

}  // namespace
}  // namespace orvo
