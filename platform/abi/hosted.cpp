#include "platform/abi/hosted.h"

namespace orvo::detail {
namespace {

// An object reports all its failures in the error object, whichever of its interfaces was called.
abi::HRESULT supports_error_info(Face* face, const abi::IID* iid) noexcept {
    if (iid == nullptr) return abi::e_pointer;
    for (const Face& other : face->core->faces())
        if (*iid == *other.info->iid) return abi::s_ok;
    return abi::s_false;
}

}  // namespace

const InterfaceInfo& support_error_info() {
    static const InterfaceInfo info{&abi::iid_support_error_info, false, {}, {}};
    return info;
}

const abi::Slot* support_error_info_slots() {
    static const auto slots = [] {
        std::array<abi::Slot, 4> all;
        put_standard_slots(all.data(), false);
        all[abi::slot_interface_supports_error_info] =
            reinterpret_cast<abi::Slot>(&supports_error_info);
        return all;
    }();
    return slots.data();
}

}  // namespace orvo::detail
