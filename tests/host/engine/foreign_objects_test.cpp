// Objects of other makers, which do not tell methods from properties: what reaches them.

#include "platform/system/automation.h"
#include "tests/host/engine/script_test.h"

namespace orvo::script {
namespace {

using abi::HRESULT;

// It has a property "Value" and a method "Join", and is not counted.
class Stranger {
public:
    Object object() { return Object::share(reinterpret_cast<abi::IUnknown*>(this)); }

private:
    enum : abi::DISPID { value = 1, join };

    static HRESULT query(Stranger* self, const abi::IID* iid, void** out) {
        const bool is_known = *iid == abi::iid_unknown || *iid == abi::iid_dispatch;
        *out = is_known ? self : nullptr;
        return is_known ? abi::s_ok : abi::e_nointerface;
    }
    static std::uint32_t count(Stranger*) { return 1; }
    static HRESULT no_type_information(Stranger*, std::uint32_t* count) {
        *count = 0;
        return abi::s_ok;
    }
    static HRESULT nothing() { return abi::e_notimpl; }
    static HRESULT ids(Stranger*, const abi::IID*, const char16_t** names, std::uint32_t, abi::LCID,
                       abi::DISPID* id) {
        const TextView name = names[0];
        *id = name == u"Value" ? value : name == u"Join" ? join : abi::DISPID_UNKNOWN;
        return *id == abi::DISPID_UNKNOWN ? abi::disp_e_unknownname : abi::s_ok;
    }
    static HRESULT invoke(Stranger* self, abi::DISPID id, const abi::IID*, abi::LCID,
                          std::uint16_t flags, abi::DISPPARAMS* passed, abi::VARIANT* result,
                          abi::EXCEPINFO*, std::uint32_t*) {
        self->heard += std::to_string(id) + " " + std::to_string(flags) + " (" +
                       std::to_string(passed->cArgs) + ") ";
        if (id != value && id != join) return abi::disp_e_membernotfound;
        const std::uint16_t own = id == value ? abi::DISPATCH_PROPERTYGET : abi::DISPATCH_METHOD;
        if (!(flags & own)) return abi::disp_e_membernotfound;
        if (passed->cArgs != (id == value ? 0u : 2u)) return abi::disp_e_badparamcount;
        Variant answer(id == value ? u"it" : u"joined");
        answer.detach(*result);
        return abi::s_ok;
    }

    static inline const abi::Slot all[] = {
        reinterpret_cast<abi::Slot>(&query),   reinterpret_cast<abi::Slot>(&count),
        reinterpret_cast<abi::Slot>(&count),   reinterpret_cast<abi::Slot>(&no_type_information),
        reinterpret_cast<abi::Slot>(&nothing), reinterpret_cast<abi::Slot>(&ids),
        reinterpret_cast<abi::Slot>(&invoke)};
    // First, as in every interface.
    const abi::Slot* slots_ = all;

public:
    std::string heard;
};

class ScriptForeignObjects : public ScriptTest {
protected:
    ScriptForeignObjects() { engine.set_global("stranger", stranger.object()); }
    // What an expression gives, and what has reached the object meanwhile.
    std::string told(const std::string& expression) {
        stranger.heard.clear();
        const std::string answer = text(expression);
        return stranger.heard + answer;
    }

    Stranger stranger;
};

TEST_F(ScriptForeignObjects, ReadingAPropertyAsksForItsValue) {
    EXPECT_EQ(told("stranger.Value"), "1 2 (0) it");
    EXPECT_EQ(told("(function (o) { return !o.Value; })(stranger)"), "1 2 (0) false");
}

TEST_F(ScriptForeignObjects, ACallReachesThemOnceAndAsACall) {
    EXPECT_EQ(told("stranger.Join(1, 2)"), "2 3 (2) joined");
    EXPECT_EQ(told("stranger['Jo' + 'in'](1, 2)"), "2 3 (2) joined");
    EXPECT_EQ(told("(function (o, n) { return o[n](1, 2); })(stranger, 'Join')"), "2 3 (2) joined");
    EXPECT_EQ(told("stranger.Value()"), "1 3 (0) it");
    EXPECT_EQ(told("stranger.Join(stranger.Value, stranger.Value())"),
              "1 2 (0) 1 3 (0) 2 3 (2) joined");
    EXPECT_EQ(told("eval('stranger.Join(1, 2)')"), "2 3 (2) joined");
}

TEST_F(ScriptForeignObjects, AMethodThatIsLookedAtIsAFunction) {
    EXPECT_EQ(told("(function () { var join = stranger.Join; return join(1, 2); })()"),
              "2 2 (0) 2 3 (2) joined");
    EXPECT_EQ(told("typeof stranger.Join"), "2 2 (0) function");
}

TEST_F(ScriptForeignObjects, AFrozenFunctionCallsThemAsAnyOther) {
    run("var frozen = Object.freeze(function () { return stranger.Join(1, 2) + stranger.Value; });"
        "frozen();");
    EXPECT_EQ(told("frozen()"), "2 3 (2) 1 2 (0) joinedit");
    EXPECT_EQ(text("Object.getOwnPropertyNames(frozen).sort()"),
              text("Object.getOwnPropertyNames(function () {}).sort()"));
}

TEST_F(ScriptForeignObjects, WithoutADefaultValueTheyHaveATextAllTheSame) {
    EXPECT_EQ(text("'' + stranger"), "[object]");
}

TEST_F(ScriptForeignObjects, WhatTheyRefuseIsRaised) {
    EXPECT_EQ(static_cast<std::uint32_t>(error("stranger.Join(1)").number), 0x800A01C2);
    EXPECT_EQ(static_cast<std::uint32_t>(error("stranger.Nowhere").number), 0x800A01B6);
}

}  // namespace
}  // namespace orvo::script
