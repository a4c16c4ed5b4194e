#include "platform/values/array_view.h"

#include "platform/values/failure.h"

namespace orvo::detail {

std::size_t ArrayView::size() const {
    if (!array) return 0;
    std::size_t size = 1;
    for (unsigned i = 0; i < array->cDims; ++i) size *= array->rgsabound[i].cElements;
    return size;
}

Variant ArrayView::at(std::size_t position) const {
    abi::VARIANT reference{};
    reference.vt = static_cast<abi::VARTYPE>(type | abi::VT_BYREF);
    reference.byref = static_cast<std::byte*>(array->pvData) + position * array->cbElements;
    return Variant::copy_of(reference);
}

ArrayView array_of(const abi::VARIANT& value) {
    if (!(value.vt & abi::VT_ARRAY)) raise_runtime_error(runtime_error::type_mismatch);
    return {value.parray, static_cast<abi::VARTYPE>(value.vt & ~abi::VT_ARRAY)};
}

}  // namespace orvo::detail
