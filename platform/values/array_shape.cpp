#include "platform/values/array_shape.h"

#include "platform/values/array_view.h"
#include "platform/values/failure.h"

namespace orvo {

std::vector<ArrayBounds> bounds_of(const Variant& array) {
    const abi::SAFEARRAY* held = detail::array_of(*array.get()).array;
    std::vector<ArrayBounds> bounds;
    if (held == nullptr) return bounds;
    for (unsigned i = held->cDims; i-- > 0;) {
        const abi::SAFEARRAYBOUND& bound = held->rgsabound[i];
        bounds.push_back({bound.lLbound, static_cast<std::int32_t>(
                                             bound.lLbound + std::int64_t{bound.cElements} - 1)});
    }
    return bounds;
}

std::size_t element_count(const Variant& array) { return detail::array_of(*array.get()).size(); }

Variant element_at(const Variant& array, std::size_t position) {
    const detail::ArrayView view = detail::array_of(*array.get());
    if (position >= view.size()) raise_runtime_error(runtime_error::subscript_out_of_range);
    return view.at(position);
}

Variant element(const Variant& array, std::span<const std::int32_t> indices) {
    const std::vector<ArrayBounds> bounds = bounds_of(array);
    if (bounds.empty() || indices.size() != bounds.size())
        raise_runtime_error(runtime_error::subscript_out_of_range);
    std::size_t position = 0;
    std::size_t step = 1;
    for (std::size_t i = 0; i < bounds.size(); ++i) {
        if (indices[i] < bounds[i].lower || indices[i] > bounds[i].upper)
            raise_runtime_error(runtime_error::subscript_out_of_range);
        position += step * static_cast<std::size_t>(std::int64_t{indices[i]} - bounds[i].lower);
        step *= static_cast<std::size_t>(std::int64_t{bounds[i].upper} - bounds[i].lower + 1);
    }
    return detail::array_of(*array.get()).at(position);
}

}  // namespace orvo
