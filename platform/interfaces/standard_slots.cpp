#include "platform/interfaces/standard_slots.h"

#include "platform/interfaces/dispatch.h"
#include "platform/interfaces/member_kinds.h"

namespace orvo::detail {
namespace {

using abi::HRESULT;

HRESULT query(Face* face, const abi::IID* iid, void** out) noexcept {
    if (out == nullptr) return abi::e_pointer;
    *out = nullptr;
    if (iid == nullptr) return abi::e_pointer;
    for (Face& candidate : face->core->faces()) {
        const bool is_first = &candidate == face->core->faces().data();
        if (*iid == *candidate.info->iid || (is_first && *iid == abi::iid_unknown) ||
            (candidate.info->is_dual && *iid == abi::iid_dispatch) ||
            (*iid == iid_member_kinds && *candidate.info->iid == abi::iid_support_error_info)) {
            face->core->add_reference();
            *out = &candidate;
            return abi::s_ok;
        }
    }
    return abi::e_nointerface;
}

std::uint32_t add_reference(Face* face) noexcept { return face->core->add_reference(); }
std::uint32_t release_reference(Face* face) noexcept { return face->core->release_reference(); }

}  // namespace

void put_standard_slots(abi::Slot* slots, bool dispatch) {
    slots[abi::slot_query_interface] = reinterpret_cast<abi::Slot>(&query);
    slots[abi::slot_add_ref] = reinterpret_cast<abi::Slot>(&add_reference);
    slots[abi::slot_release] = reinterpret_cast<abi::Slot>(&release_reference);
    if (!dispatch) return;
    slots[abi::slot_get_type_info_count] = reinterpret_cast<abi::Slot>(&get_type_info_count);
    slots[abi::slot_get_type_info] = reinterpret_cast<abi::Slot>(&get_type_info);
    slots[abi::slot_get_ids_of_names] = reinterpret_cast<abi::Slot>(&get_ids_of_names);
    slots[abi::slot_invoke] = reinterpret_cast<abi::Slot>(&invoke);
}

abi::HRESULT reserved_slot() { return answered(abi::e_notimpl); }

abi::HRESULT answered(abi::HRESULT code) noexcept {
    abi::SetErrorInfo(0, nullptr);
    return code;
}

}  // namespace orvo::detail
