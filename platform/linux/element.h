#pragma once

// What copying and clearing a value of a given type takes. Any thread.

#include <cstddef>

#include "platform/system/vartypes.h"

namespace orvo::runtime {

// Whether VariantClear and its like know the type; by itself, as VT_ARRAY or as VT_BYREF.
bool is_variant_type(abi::VARTYPE type);

// The elements of an array, by what they own.
enum class Owned { nothing, text, object, variant };
Owned owned_by(const abi::SAFEARRAY& array);

// A copy of a text, byte for byte; null stays null. False when memory runs out.
bool copy_text(abi::BSTR from, abi::BSTR& to);

// Elements in a row. copy_elements expects nothing in `to`; when it fails, nothing is left there.
abi::HRESULT copy_elements(Owned owned, std::size_t size, const void* from, void* to,
                           std::size_t count);
void clear_elements(Owned owned, std::size_t size, void* elements, std::size_t count);

}  // namespace orvo::runtime
