#pragma once

// What type information says of a whole type, as the platform lays it out, and the calls of
// ITypeInfo that more than one reader makes. What such a call lends is taken back by the call
// beside it.

#include "platform/system/automation.h"

namespace orvo::abi {

enum : std::size_t {
    slot_type_get_attributes = 3,
    slot_type_get_documentation = 12,
    slot_type_release_attributes = 19,
};

struct TypeAttributes {
    GUID id;
    LCID locale;
    std::uint32_t reserved;
    DISPID constructor;
    DISPID destructor;
    char16_t* schema;
    std::uint32_t instance_size;
    std::int32_t kind;
    std::uint16_t functions;
    std::uint16_t variables;
    std::uint16_t bases;
    std::uint16_t vtable_size;
    std::uint16_t alignment;
    std::uint16_t flags;
};

inline constexpr std::uint16_t type_is_dual = 0x40;

}  // namespace orvo::abi
