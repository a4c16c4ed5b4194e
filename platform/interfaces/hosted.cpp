#include "platform/interfaces/hosted.h"

#include "platform/interfaces/member_kinds.h"
#include "platform/interfaces/standard_slots.h"

namespace orvo::detail {
namespace {

// An object reports all its failures in the error object, whichever of its interfaces was called.
abi::HRESULT supports_error_info(Face* face, const abi::IID* iid) noexcept {
    if (iid == nullptr) return abi::e_pointer;
    for (const Face& other : face->core->faces())
        if (*iid == *other.info->iid) return abi::s_ok;
    return abi::s_false;
}

abi::HRESULT describe_member(Face* face, abi::IUnknown* as, abi::DISPID id, std::uint32_t* flags,
                             std::uint32_t* parameters, std::uint32_t* required) noexcept {
    if (flags == nullptr || parameters == nullptr || required == nullptr) return abi::e_pointer;
    *flags = *parameters = *required = 0;
    for (const Face& other : face->core->faces()) {
        if (static_cast<const void*>(&other) != as) continue;
        auto add = [&](Shape shape, std::uint16_t flag) {
            const LateMember* member = other.info->find(id, shape);
            if (member == nullptr) return;
            *flags |= flag;
            if (shape != Shape::method && shape != Shape::get) return;
            if (member->answers_object) *flags |= member_answers_object;
            *parameters = static_cast<std::uint32_t>(member->row->arity);
            for (std::size_t i = 0; i < member->row->arity; ++i)
                *required += member->row->parameters[i].may_be_missing ? 0 : 1;
        };
        add(Shape::method, abi::DISPATCH_METHOD);
        add(Shape::get, abi::DISPATCH_PROPERTYGET);
        add(Shape::put, abi::DISPATCH_PROPERTYPUT);
        add(Shape::put_reference, abi::DISPATCH_PROPERTYPUTREF);
    }
    return *flags != 0 ? abi::s_ok : abi::disp_e_membernotfound;
}

abi::HRESULT is_shared(Face* face) noexcept {
    return face->core->is_shared() ? abi::s_ok : abi::s_false;
}

}  // namespace

const InterfaceInfo& support_error_info() {
    static const InterfaceInfo info{&abi::iid_support_error_info, false, {}};
    return info;
}

const abi::Slot* support_error_info_slots() {
    static const auto slots = [] {
        std::array<abi::Slot, slot_is_shared + 1> all;
        put_standard_slots(all.data(), false);
        all[abi::slot_interface_supports_error_info] =
            reinterpret_cast<abi::Slot>(&supports_error_info);
        all[slot_describe_member] = reinterpret_cast<abi::Slot>(&describe_member);
        all[slot_is_shared] = reinterpret_cast<abi::Slot>(&is_shared);
        return all;
    }();
    return slots.data();
}

}  // namespace orvo::detail
