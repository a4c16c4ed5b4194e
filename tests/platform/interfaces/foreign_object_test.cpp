// Late-bound calls of an object that somebody else made, down to what reaches its slots.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/interfaces/late_member.h"
#include "platform/system/automation.h"

namespace orvo {
namespace {

using abi::HRESULT;

// Notes what it is asked and called with. It has no other interface and is not counted.
class ForeignObject {
public:
    Object object() { return Object::share(reinterpret_cast<abi::IUnknown*>(this)); }

private:
    static HRESULT query(ForeignObject*, const abi::IID*, void** out) {
        *out = nullptr;
        return abi::e_nointerface;
    }
    static std::uint32_t count(ForeignObject*) { return 1; }
    static HRESULT ids(ForeignObject* self, const abi::IID*, const char16_t** names, std::uint32_t,
                       abi::LCID, abi::DISPID* id) {
        self->heard = names[0];
        *id = 7;
        return abi::s_ok;
    }
    static HRESULT invoke(ForeignObject* self, abi::DISPID, const abi::IID*, abi::LCID,
                          std::uint16_t flags, abi::DISPPARAMS* passed, abi::VARIANT*,
                          abi::EXCEPINFO*, std::uint32_t*) {
        self->heard = decimal(flags) + u" (" + decimal(passed->cNamedArgs) + u" named):";
        for (std::uint32_t i = passed->cArgs; i-- > 0;) {
            const abi::VARIANT* value = &passed->rgvarg[i];
            if (value->vt & abi::VT_BYREF) value = value->pvarVal;
            self->heard += u" " + Variant::copy_of(*value).to<Text>();
        }
        return abi::s_ok;
    }
    static HRESULT nothing() { return abi::e_notimpl; }

    static inline const abi::Slot all[] = {
        reinterpret_cast<abi::Slot>(&query),   reinterpret_cast<abi::Slot>(&count),
        reinterpret_cast<abi::Slot>(&count),   reinterpret_cast<abi::Slot>(&nothing),
        reinterpret_cast<abi::Slot>(&nothing), reinterpret_cast<abi::Slot>(&ids),
        reinterpret_cast<abi::Slot>(&invoke)};
    // First, as in every interface.
    const abi::Slot* slots_ = all;

public:
    Text heard;
};

TEST(AForeignObject, GetsAnyNumberOfArgumentsInTheirOrder) {
    ForeignObject foreign;
    const Object object = foreign.object();
    for (const int count : {0, 1, 7, 8, 9, 100}) {
        std::vector<Variant> arguments;
        Text all;
        for (int i = 0; i < count; ++i) {
            arguments.emplace_back(i);
            all += u" " + decimal(i);
        }
        late::call_member(object, 7, arguments);
        EXPECT_EQ(foreign.heard, u"3 (0 named):" + all);
        late::call_member_by_reference(object, 7, arguments);
        EXPECT_EQ(foreign.heard, u"3 (0 named):" + all);
        late::get_member(object, 7, arguments);
        EXPECT_EQ(foreign.heard, u"2 (0 named):" + all);
        late::put_member(object, 7, u"value", arguments);
        EXPECT_EQ(foreign.heard, u"4 (1 named):" + all + u" value");
    }
}

TEST(AForeignObject, IsAskedForANameOfAnyLength) {
    ForeignObject foreign;
    for (const std::size_t size : {0, 1, 63, 64, 65, 1000}) {
        const Text longer(size + 1, u'n');
        EXPECT_TRUE(late::try_member(foreign.object(), TextView(longer).substr(0, size)));
        EXPECT_EQ(foreign.heard, Text(size, u'n'));
    }
}

}  // namespace
}  // namespace orvo
