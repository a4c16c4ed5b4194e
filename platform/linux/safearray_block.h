#pragma once

// The memory of an array.
//
// Before the structure lie 16 hidden bytes: the interface's identifier over all of them
// (FADF_HAVEIID), or the type of the elements in the last four (FADF_HAVEVARTYPE). A vector's
// elements follow its structure in the same block; those of other arrays have a block of their own.
//
// Any thread. Who makes an array owns it, and frees it here; nothing is raised.

#include <cstddef>
#include <cstdint>

#include "platform/system/automation.h"

namespace orvo::runtime {

// An array of `type` with the bounds as they are stored (last dimension first), not locked, its
// elements zero. Null when the bounds are too large or memory runs out.
abi::SAFEARRAY* make_array(abi::VARTYPE type, std::uint16_t dimensions,
                           const abi::SAFEARRAYBOUND* stored_bounds, bool vector);

// An array of the same kind, size and hidden bytes as another, its elements zero; it owns its
// memory.
abi::SAFEARRAY* make_array_like(const abi::SAFEARRAY& other);

// Gives the blocks back; the elements have been cleared.
void free_array(abi::SAFEARRAY* array);

// How many elements the bounds make.
std::size_t element_count(const abi::SAFEARRAY& array);

}  // namespace orvo::runtime
