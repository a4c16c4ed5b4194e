#include "platform/abi/face.h"

#include "platform/abi/dispatch.h"
#include "platform/abi/hosted.h"
#include "platform/abi/member_kinds.h"
#include "platform/abi/thunk.h"

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
            (*iid == iid_member_kinds && candidate.info == &support_error_info())) {
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

ObjectCore::ObjectCore(const char* source, bool shared)
    : home_(shared ? std::thread::id() : std::this_thread::get_id()), source_(source) {
    ++live_objects();
}

ObjectCore::~ObjectCore() { --live_objects(); }

std::uint32_t ObjectCore::release_reference() {
    const std::uint32_t left = references_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) {
        // While the object is destroyed, references that its own code takes and gives back must not
        // destroy it once more.
        references_.store(1, std::memory_order_relaxed);
        delete this;
    }
    return left;
}

std::atomic<long>& live_objects() {
    static std::atomic<long> count{0};
    return count;
}

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

abi::HRESULT reserved_slot() { return refused(abi::e_notimpl); }

abi::HRESULT refused(abi::HRESULT code) noexcept {
    abi::SetErrorInfo(0, nullptr);
    return code;
}

void raise_null_pointer(const char* parameter) {
    throw Failure(abi::e_pointer, {},
                  u"The argument " + from_utf8(parameter) + u" is a null pointer");
}

void store_through_reference(abi::VARIANT& reference, const Variant& value) {
    const auto type = static_cast<abi::VARTYPE>(reference.vt & ~abi::VT_BYREF);
    if (type == abi::VT_VARIANT) {
        abi::VARIANT& to = *reference.pvarVal;
        if (to.vt & abi::VT_BYREF)
            store_through_reference(to, value);
        else
            abi::VariantCopy(&to, value.get());
        return;
    }
    abi::VARIANT converted{};
    if (abi::failed(abi::VariantChangeTypeEx(&converted, value.get(), abi::fixed_locale,
                                             abi::VARIANT_ALPHABOOL, type)))
        return;
    abi::VARIANT old{};
    old.vt = type;
    // Every by-value member of the union starts at the same place, as the referred-to variable
    // does.
    auto exchange = [&]<class T>(T*) {
        T now;
        std::memcpy(&now, &converted.bVal, sizeof now);
        std::memcpy(&old.bVal, reference.byref, sizeof now);
        std::memcpy(reference.byref, &now, sizeof now);
    };
    switch (type) {
        case abi::VT_I1:
        case abi::VT_UI1:
            exchange(static_cast<std::uint8_t*>(nullptr));
            break;
        case abi::VT_I2:
        case abi::VT_UI2:
        case abi::VT_BOOL:
            exchange(static_cast<std::int16_t*>(nullptr));
            break;
        case abi::VT_I4:
        case abi::VT_UI4:
        case abi::VT_INT:
        case abi::VT_UINT:
        case abi::VT_R4:
        case abi::VT_ERROR:
            exchange(static_cast<std::int32_t*>(nullptr));
            break;
        case abi::VT_DECIMAL:
            *static_cast<abi::DECIMAL*>(reference.byref) = abi::decimal_of(converted);
            return;
        default:
            exchange(static_cast<std::int64_t*>(nullptr));
            break;
    }
    abi::VariantClear(&old);
}

Variant* in_place(abi::VARIANT& variable) {
    static_assert(sizeof(Variant) == sizeof(abi::VARIANT));
    return reinterpret_cast<Variant*>(&variable);
}

const Variant& follow_reference(const abi::VARIANT& passed, Variant& storage) {
    const abi::VARIANT* value = &passed;
    if (value->vt == (abi::VT_BYREF | abi::VT_VARIANT)) value = value->pvarVal;
    if (!(value->vt & abi::VT_BYREF)) return reinterpret_cast<const Variant&>(*value);
    storage = Variant::copy_of(*value);
    return storage;
}

}  // namespace orvo::detail
