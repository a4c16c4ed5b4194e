#include "counted_object.h"

#include <utility>

namespace orvo {

CountedObject::CountedObject(Variant default_value, bool speaks_dispatch)
    : unknown_{{slots()}, this},
      dispatch_{{slots()}, this},
      default_value_(std::move(default_value)),
      speaks_dispatch_(speaks_dispatch) {}

const abi::Slot* CountedObject::slots() {
    static const abi::Slot table[] = {reinterpret_cast<abi::Slot>(query),
                                      reinterpret_cast<abi::Slot>(add),
                                      reinterpret_cast<abi::Slot>(drop),
                                      nullptr,
                                      nullptr,
                                      nullptr,
                                      reinterpret_cast<abi::Slot>(get_value)};
    return table;
}

abi::HRESULT CountedObject::query(abi::IUnknown* self, const abi::IID* iid, void** out) {
    CountedObject& object = owner_of(self);
    if (*iid == abi::iid_unknown) {
        *out = object.unknown();
    } else if (*iid == abi::iid_dispatch && object.speaks_dispatch_) {
        *out = object.dispatch();
    } else {
        *out = nullptr;
        return abi::e_nointerface;
    }
    ++object.references_;
    return abi::s_ok;
}

std::uint32_t CountedObject::add(abi::IUnknown* self) {
    return static_cast<std::uint32_t>(++owner_of(self).references_);
}

std::uint32_t CountedObject::drop(abi::IUnknown* self) {
    return static_cast<std::uint32_t>(--owner_of(self).references_);
}

abi::HRESULT CountedObject::get_value(abi::IUnknown* self, abi::DISPID member, const abi::IID*,
                                      abi::LCID, std::uint16_t flags, abi::DISPPARAMS*,
                                      abi::VARIANT* out, abi::EXCEPINFO*, std::uint32_t*) {
    if (member != abi::DISPID_VALUE || !(flags & abi::DISPATCH_PROPERTYGET)) {
        return abi::disp_e_membernotfound;
    }
    return abi::VariantCopy(out, owner_of(self).default_value_.get());
}

}  // namespace orvo
