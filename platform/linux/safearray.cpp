#include <atomic>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "platform/linux/element.h"
#include "platform/linux/safearray_block.h"
#include "platform/system/automation.h"

namespace orvo::abi {

namespace {

using namespace runtime;

constexpr std::uint32_t most_dimensions = 64;
constexpr std::uint16_t foreign_memory = FADF_AUTO | FADF_STATIC | FADF_EMBEDDED;

bool is_locked(SAFEARRAY* array) {
    return std::atomic_ref(array->cLocks).load(std::memory_order_acquire) != 0;
}

// Moves the elements of a vector, or of an array that has a block of its own, into a block of
// `bytes` whose new part is zero.
bool resize_block(SAFEARRAY* array, std::size_t old_bytes, std::size_t bytes) {
    std::size_t kept = old_bytes < bytes ? old_bytes : bytes;
    char* block;
    if (array->fFeatures & FADF_CREATEVECTOR) {
        block = static_cast<char*>(std::malloc(bytes ? bytes : 1));
        if (!block) return false;
        if (kept) std::memcpy(block, array->pvData, kept);
        array->fFeatures &= ~FADF_CREATEVECTOR;
    } else {
        block = static_cast<char*>(std::realloc(array->pvData, bytes ? bytes : 1));
        if (!block) return false;
    }
    if (bytes > kept) std::memset(block + kept, 0, bytes - kept);
    array->pvData = block;
    return true;
}

}  // namespace

extern "C" {

SAFEARRAY* SafeArrayCreate(VARTYPE type, std::uint32_t dimensions, SAFEARRAYBOUND* bounds) {
    if (dimensions == 0 || dimensions > most_dimensions || !bounds) return nullptr;
    SAFEARRAYBOUND stored[most_dimensions];
    for (std::uint32_t i = 0; i < dimensions; ++i) stored[i] = bounds[dimensions - 1 - i];
    return make_array(type, static_cast<std::uint16_t>(dimensions), stored, false);
}

SAFEARRAY* SafeArrayCreateVector(VARTYPE type, std::int32_t lower, std::uint32_t count) {
    SAFEARRAYBOUND bound{count, lower};
    return make_array(type, 1, &bound, true);
}

HRESULT SafeArrayDestroy(SAFEARRAY* array) {
    if (!array) return s_ok;
    if (is_locked(array)) return disp_e_arrayislocked;
    if (array->pvData)
        clear_elements(owned_by(*array), array->cbElements, array->pvData, element_count(*array));
    if (!(array->fFeatures & foreign_memory)) free_array(array);
    return s_ok;
}

HRESULT SafeArrayCopy(SAFEARRAY* from, SAFEARRAY** to) {
    if (!to) return e_invalidarg;
    *to = nullptr;
    if (!from) return s_ok;
    if (from->cbElements == 0) return e_invalidarg;
    SAFEARRAY* copy = make_array_like(*from);
    if (!copy) return e_outofmemory;
    HRESULT outcome = copy_elements(owned_by(*from), from->cbElements, from->pvData, copy->pvData,
                                    element_count(*from));
    if (failed(outcome)) {
        free_array(copy);
        return outcome;
    }
    *to = copy;
    return s_ok;
}

// The last dimension is the slowest one: the elements that stay keep their places.
HRESULT SafeArrayRedim(SAFEARRAY* array, SAFEARRAYBOUND* last_bound) {
    if (!array || !last_bound || array->cDims == 0) return e_invalidarg;
    if (is_locked(array) || (array->fFeatures & (FADF_FIXEDSIZE | foreign_memory)))
        return disp_e_arrayislocked;
    std::size_t old_count = element_count(*array);
    std::uint64_t row = array->cbElements;
    for (std::uint16_t i = 1; i < array->cDims; ++i) row *= array->rgsabound[i].cElements;
    std::uint64_t bytes = row * last_bound->cElements;
    if (bytes > std::numeric_limits<std::int32_t>::max()) return e_outofmemory;
    std::size_t count = bytes / array->cbElements;
    if (count < old_count) {
        clear_elements(owned_by(*array), array->cbElements,
                       static_cast<char*>(array->pvData) + bytes, old_count - count);
    }
    if (count != old_count && !resize_block(array, old_count * array->cbElements, bytes))
        return e_outofmemory;
    array->rgsabound[0] = *last_bound;
    return s_ok;
}

}  // extern "C"

}  // namespace orvo::abi
