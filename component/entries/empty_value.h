#pragma once

#include "platform/values/variant.h"

namespace orvo {

// Whether an attribute's value says nothing: it is empty, or an empty text.
inline bool is_empty_value(const Variant& value) {
    return value.is_empty() || (value.is_text() && value.text_view().empty());
}

}  // namespace orvo
