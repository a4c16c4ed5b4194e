#include "platform/linux/safearray_block.h"

#include <cstdlib>
#include <cstring>
#include <limits>

#include "platform/linux/element.h"

namespace orvo::runtime {

using namespace abi;

namespace {

constexpr std::size_t prefix_size = 16;
constexpr std::uint16_t owner_features = FADF_AUTO | FADF_STATIC | FADF_EMBEDDED | FADF_FIXEDSIZE;

struct Shape {
    std::uint16_t dimensions;
    std::uint16_t features;
    std::size_t element_size;
    const SAFEARRAYBOUND* stored_bounds;
};

std::uint16_t features_of(VARTYPE type) {
    switch (row_of(type).content) {
        case Content::text:
            return FADF_HAVEVARTYPE | FADF_BSTR;
        case Content::variant:
            return FADF_HAVEVARTYPE | FADF_VARIANT;
        case Content::object:
            return FADF_HAVEIID | (type == VT_DISPATCH ? FADF_DISPATCH : FADF_UNKNOWN);
        default:
            return FADF_HAVEVARTYPE;
    }
}

// Bytes of all elements; false when they are more than an array can have.
bool total_size(const Shape& shape, std::size_t& bytes) {
    std::uint64_t total = shape.element_size;
    for (std::uint16_t i = 0; i < shape.dimensions; ++i) {
        total *= shape.stored_bounds[i].cElements;
        if (total > std::numeric_limits<std::int32_t>::max()) return false;
    }
    bytes = total;
    return true;
}

char* hidden_prefix(const SAFEARRAY* array) {
    return reinterpret_cast<char*>(const_cast<SAFEARRAY*>(array)) - prefix_size;
}

SAFEARRAY* allocate(const Shape& shape, bool vector) {
    std::size_t bytes;
    if (!total_size(shape, bytes)) return nullptr;
    std::size_t head =
        prefix_size + offsetof(SAFEARRAY, rgsabound) + sizeof(SAFEARRAYBOUND) * shape.dimensions;
    char* block = static_cast<char*>(std::calloc(1, head + (vector ? bytes : 0)));
    if (!block) return nullptr;
    void* data = vector ? block + head : std::calloc(1, bytes ? bytes : 1);
    if (!data) {
        std::free(block);
        return nullptr;
    }
    auto* array = reinterpret_cast<SAFEARRAY*>(block + prefix_size);
    array->cDims = shape.dimensions;
    array->fFeatures = shape.features;
    array->cbElements = static_cast<std::uint32_t>(shape.element_size);
    array->pvData = data;
    std::memcpy(array->rgsabound, shape.stored_bounds, sizeof(SAFEARRAYBOUND) * shape.dimensions);
    return array;
}

}  // namespace

SAFEARRAY* make_array(VARTYPE type, std::uint16_t dimensions, const SAFEARRAYBOUND* stored_bounds,
                      bool vector) {
    std::size_t size = row_of(type).size;
    if (size == 0) return nullptr;
    std::uint16_t features = features_of(type);
    if (vector) features |= FADF_CREATEVECTOR;
    SAFEARRAY* array = allocate({dimensions, features, size, stored_bounds}, vector);
    if (!array) return nullptr;
    if (features & FADF_HAVEIID) {
        std::memcpy(hidden_prefix(array), type == VT_DISPATCH ? &iid_dispatch : &iid_unknown,
                    sizeof(IID));
    } else {
        std::uint32_t hidden_type = type;
        std::memcpy(hidden_prefix(array) + 12, &hidden_type, sizeof hidden_type);
    }
    return array;
}

SAFEARRAY* make_array_like(const SAFEARRAY& other) {
    std::uint16_t features = other.fFeatures & ~owner_features;
    SAFEARRAY* array = allocate({other.cDims, features, other.cbElements, other.rgsabound},
                                features & FADF_CREATEVECTOR);
    if (array && (features & (FADF_HAVEIID | FADF_HAVEVARTYPE)))
        std::memcpy(hidden_prefix(array), hidden_prefix(&other), prefix_size);
    return array;
}

void free_array(SAFEARRAY* array) {
    if (!(array->fFeatures & FADF_CREATEVECTOR)) std::free(array->pvData);
    std::free(hidden_prefix(array));
}

std::size_t element_count(const SAFEARRAY& array) {
    std::size_t count = array.cDims ? 1 : 0;
    for (std::uint16_t i = 0; i < array.cDims; ++i) count *= array.rgsabound[i].cElements;
    return count;
}

}  // namespace orvo::runtime
