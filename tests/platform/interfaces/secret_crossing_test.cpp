// Passwords across the border, both ways, by slot and by name.

#include <dlfcn.h>
#include <gmock/gmock.h>

#include "platform/interfaces/call.h"
#include "platform/interfaces/hosted.h"
#include "platform/interfaces/late_call.h"
#include "tests/support/clear_text.h"

namespace orvo {
namespace {

using testing::ElementsAre;

// Every string that is released while this lives, as it was then.
class Releases {
public:
    Releases() { watching = this; }
    ~Releases() { watching = nullptr; }

    // Those of as many units as the password.
    std::vector<Text> as_long_as(const Text& password) const {
        std::vector<Text> found;
        for (const Text& text : texts)
            if (text.size() == password.size()) found.push_back(text);
        return found;
    }

    static inline thread_local Releases* watching = nullptr;
    std::vector<Text> texts;
};

}  // namespace

namespace abi {

// In front of the runtime's own, for all of this process.
extern "C" void SysFreeString(BSTR text) {
    static const auto release = reinterpret_cast<void (*)(BSTR)>(dlsym(RTLD_NEXT, "SysFreeString"));
    if (Releases::watching && text)
        Releases::watching->texts.emplace_back(text, SysStringLen(text));
    release(text);
}

}  // namespace abi

namespace {

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

private:
    Secret kept_;
};

const Text password = u"s3cret-of-17-unit";
const Text overwritten(password.size(), u'\0');
const Text halves = u"\xD800x\xDC00 \xDC00\xD800 \xD83D\xDE00 \xD83D";

}  // namespace

template <>
inline constexpr auto table_of<Safe> = describe<Safe>(
    "ISafe", "7e57ab1e-0000-4000-8000-000000000501", method<&Safe::Keep>("Keep", "password"),
    method<&Safe::Exchange>("Exchange", "password"),
    method<&Safe::Compare>("Compare", "first", "second"), get<&Safe::Kept>("Kept"));
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
    EXPECT_THAT(releases.as_long_as(password), ElementsAre(overwritten));
}

TEST(SecretCrossing, WhatIsTakenOverIsOverwrittenWhenItWasRead) {
    const auto safe = make<Safe>();
    call<&Safe::Keep>(safe, Secret(password));
    const Releases releases;
    EXPECT_EQ(clear_text(call<&Safe::Kept>(safe)), password);
    EXPECT_THAT(releases.as_long_as(password), ElementsAre(overwritten));
}

TEST(SecretCrossing, AReplacedPasswordIsOverwrittenOnBothSides) {
    const auto safe = make<Safe>();
    call<&Safe::Keep>(safe, Secret(u"of another length"));
    Secret given(password);
    {
        const Releases releases;
        call<&Safe::Exchange>(safe, given);
        EXPECT_THAT(releases.as_long_as(password), ElementsAre(overwritten, overwritten));
    }
    EXPECT_EQ(clear_text(given), u"of another length");
}

TEST(SecretCrossing, ByNameTheCopyOfAVariableIsOverwrittenAndTheVariableStays) {
    const auto safe = make<Safe>();
    abi::BSTR variable = crossing<Text>::give(password);
    abi::VARIANT argument{};
    argument.vt = abi::VT_BYREF | abi::VT_BSTR;
    argument.pbstrVal = &variable;
    abi::DISPPARAMS arguments{&argument, nullptr, 1, 0};
    const abi::IID none{};
    const abi::DISPID keep = detail::callee<Safe>::info().id_of(u"Keep");
    {
        const Releases releases;
        const auto code =
            abi::call_slot<abi::HRESULT, abi::DISPID, const abi::IID*, abi::LCID, std::uint16_t,
                           abi::DISPPARAMS*, abi::VARIANT*, abi::EXCEPINFO*, std::uint32_t*>(
                safe.get(), abi::slot_invoke, keep, &none, 0, 1, &arguments, nullptr, nullptr,
                nullptr);
        EXPECT_EQ(code, abi::s_ok);
        EXPECT_THAT(releases.as_long_as(password), ElementsAre(overwritten));
    }
    EXPECT_EQ(crossing<Text>::take(variable), password);
    EXPECT_EQ(clear_text(call<&Safe::Kept>(safe)), password);
}

TEST(SecretValue, IsOverwrittenWhereItStandsAndInAList) {
    Variant text = password, list = Values{password, u"short", password};
    const Releases releases;
    text.wipe();
    list.wipe();
    EXPECT_TRUE(text.is_empty());
    EXPECT_TRUE(list.is_empty());
    EXPECT_THAT(releases.as_long_as(password), ElementsAre(overwritten, overwritten, overwritten));
}

}  // namespace
}  // namespace orvo
