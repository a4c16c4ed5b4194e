#include "platform/interfaces/sharing.h"

#include <gtest/gtest.h>

#include "platform/system/automation.h"

namespace orvo {
namespace {

using abi::HRESULT;

constexpr abi::IID iid_agile{
    0x94EA2B94, 0xE9CC, 0x49E0, {0xC0, 0xFF, 0xEE, 0x64, 0xCA, 0x8F, 0x5B, 0x90}};
constexpr abi::IID iid_marshal{3, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr abi::CLSID free_threaded{0x33A, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr abi::CLSID another{0x33B, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// Somebody else's object, which has one interface beside IUnknown, and is not counted.
class Outsider {
public:
    Outsider(const abi::IID& has, const abi::CLSID& unmarshaller = {})
        : has_(has), unmarshaller_(unmarshaller) {}
    Object object() { return Object::share(reinterpret_cast<abi::IUnknown*>(this)); }

private:
    static HRESULT query(Outsider* self, const abi::IID* iid, void** out) {
        const bool has_it = *iid == self->has_;
        *out = has_it ? self : nullptr;
        return has_it ? abi::s_ok : abi::e_nointerface;
    }
    static std::uint32_t count(Outsider*) { return 1; }
    static HRESULT unmarshal_class(Outsider* self, const abi::IID*, void*, std::uint32_t, void*,
                                   std::uint32_t, abi::CLSID* out) {
        *out = self->unmarshaller_;
        return abi::s_ok;
    }

    static inline const abi::Slot all[] = {
        reinterpret_cast<abi::Slot>(&query), reinterpret_cast<abi::Slot>(&count),
        reinterpret_cast<abi::Slot>(&count), reinterpret_cast<abi::Slot>(&unmarshal_class)};
    // First, as in every interface.
    const abi::Slot* slots_ = all;
    const abi::IID has_;
    const abi::CLSID unmarshaller_;
};

TEST(AnotherMakersObject, ServesAnyThreadWhereItSaysSo) {
    EXPECT_FALSE(serves_any_thread(Outsider(abi::iid_dispatch).object()));
    EXPECT_TRUE(serves_any_thread(Outsider(iid_agile).object()));
    EXPECT_TRUE(serves_any_thread(Outsider(iid_marshal, free_threaded).object()));
    EXPECT_FALSE(serves_any_thread(Outsider(iid_marshal, another).object()));
}

}  // namespace
}  // namespace orvo
