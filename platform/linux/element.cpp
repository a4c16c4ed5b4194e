#include "platform/linux/element.h"

#include <cstring>
#include <utility>

namespace orvo::runtime {

using namespace abi;

bool is_variant_type(VARTYPE type) {
    const VARTYPE form = type & 0xF000;
    if (form & ~(VT_ARRAY | VT_BYREF)) return false;
    const TypeRow& row = row_of(type & 0x0FFF);
    if (form) return row.size != 0;
    return row.content != Content::unknown && row.content != Content::variant;
}

Owned owned_by(const SAFEARRAY& array) {
    if (array.fFeatures & FADF_VARIANT) return Owned::variant;
    if (array.fFeatures & FADF_BSTR) return Owned::text;
    if (array.fFeatures & (FADF_DISPATCH | FADF_UNKNOWN)) return Owned::object;
    return Owned::nothing;
}

bool copy_text(BSTR from, BSTR& to) {
    to = from ? SysAllocStringByteLen(reinterpret_cast<const char*>(from), SysStringByteLen(from))
              : nullptr;
    return to || !from;
}

HRESULT copy_elements(Owned owned, std::size_t size, const void* from, void* to,
                      std::size_t count) {
    if (count == 0) return s_ok;
    if (owned == Owned::nothing) {
        std::memcpy(to, from, size * count);
        return s_ok;
    }
    for (std::size_t i = 0; i < count; ++i) {
        HRESULT outcome = s_ok;
        if (owned == Owned::variant) {
            VARIANT* target = static_cast<VARIANT*>(to) + i;
            VariantInit(target);
            outcome = VariantCopy(target, static_cast<const VARIANT*>(from) + i);
        } else if (owned == Owned::text) {
            if (!copy_text(static_cast<const BSTR*>(from)[i], static_cast<BSTR*>(to)[i]))
                outcome = e_outofmemory;
        } else {
            IUnknown* object = static_cast<IUnknown* const*>(from)[i];
            if (object) add_ref(object);
            static_cast<IUnknown**>(to)[i] = object;
        }
        if (failed(outcome)) {
            clear_elements(owned, size, to, i);
            return outcome;
        }
    }
    return s_ok;
}

void clear_elements(Owned owned, std::size_t size, void* elements, std::size_t count) {
    if (count == 0) return;
    switch (owned) {
        case Owned::nothing:
            break;
        case Owned::variant:
            for (std::size_t i = 0; i < count; ++i)
                VariantClear(static_cast<VARIANT*>(elements) + i);
            break;
        case Owned::text:
            for (std::size_t i = 0; i < count; ++i) SysFreeString(static_cast<BSTR*>(elements)[i]);
            break;
        case Owned::object:
            for (std::size_t i = 0; i < count; ++i)
                if (IUnknown* object = std::exchange(static_cast<IUnknown**>(elements)[i], nullptr))
                    release(object);
            break;
    }
    std::memset(elements, 0, size * count);
}

}  // namespace orvo::runtime
