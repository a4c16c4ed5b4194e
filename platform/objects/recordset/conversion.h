#pragma once

// Any thread that the value belongs to; nothing is raised.

#include <optional>

#include "platform/system/automation.h"
#include "platform/values/variant.h"

namespace orvo::recordset {

// Conversion by the Automation rules; `code` tells why there is no value.
inline std::optional<Variant> try_converted(const Variant& value, abi::VARTYPE type,
                                            abi::HRESULT* code = nullptr) {
    Variant converted;
    const abi::HRESULT result =
        abi::VariantChangeTypeEx(converted.put(), value.get(), abi::fixed_locale,
                                 abi::VARIANT_ALPHABOOL | abi::VARIANT_NOUSEROVERRIDE, type);
    if (code != nullptr) *code = result;
    if (abi::failed(result)) return {};
    return converted;
}

}  // namespace orvo::recordset
