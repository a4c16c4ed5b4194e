#include "platform/interfaces/sharing.h"

#include "platform/interfaces/member_kinds.h"

namespace orvo {
namespace {

constexpr abi::IID iid_agile_object{
    0x94EA2B94, 0xE9CC, 0x49E0, {0xC0, 0xFF, 0xEE, 0x64, 0xCA, 0x8F, 0x5B, 0x90}};
constexpr abi::IID iid_marshal{3, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr abi::CLSID clsid_free_threaded{0x33A, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

constexpr std::size_t slot_get_unmarshal_class = 3;
constexpr std::uint32_t within_the_process = 3;

Object try_interface(const Object& object, const abi::IID& iid) {
    Object found;
    if (abi::failed(abi::query_interface(object.get(), iid, reinterpret_cast<void**>(found.put()))))
        return {};
    return found;
}

}  // namespace

bool serves_any_thread(const Object& object) {
    if (const Object own = try_interface(object, detail::iid_member_kinds))
        return abi::call_slot<abi::HRESULT>(own.get(), detail::slot_is_shared) == abi::s_ok;
    if (try_interface(object, iid_agile_object)) return true;
    const Object marshal = try_interface(object, iid_marshal);
    if (!marshal) return false;
    abi::CLSID unmarshaller{};
    const abi::HRESULT code =
        abi::call_slot<abi::HRESULT, const abi::IID*, void*, std::uint32_t, void*, std::uint32_t,
                       abi::CLSID*>(marshal.get(), slot_get_unmarshal_class, &abi::iid_unknown,
                                    object.get(), within_the_process, nullptr, 0, &unmarshaller);
    return abi::succeeded(code) && unmarshaller == clsid_free_threaded;
}

}  // namespace orvo
