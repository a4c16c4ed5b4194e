#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/system/automation.h"

// A text is one block: its count of bytes, the bytes, the closing NUL. A text of an odd number of
// bytes has one more NUL byte, so that its last unit is whole and closed too.

namespace orvo::abi {

namespace {

constexpr std::size_t prefix_size = 4;
constexpr std::uint32_t longest = 0x7FFFFFF0;

BSTR allocate(std::uint32_t bytes) {
    if (bytes > longest) return nullptr;
    std::size_t closing = 2 + (bytes & 1);
    char* block = static_cast<char*>(std::malloc(prefix_size + bytes + closing));
    if (!block) return nullptr;
    std::memcpy(block, &bytes, prefix_size);
    std::memset(block + prefix_size + bytes, 0, closing);
    return reinterpret_cast<BSTR>(block + prefix_size);
}

BSTR filled(const void* from, std::uint32_t bytes) {
    BSTR text = allocate(bytes);
    if (!text || bytes == 0) return text;
    if (from)
        std::memcpy(text, from, bytes);
    else
        std::memset(text, 0, bytes);
    return text;
}

bool has_byte_count(std::uint32_t units) { return units <= longest / 2; }

}  // namespace

extern "C" {

BSTR SysAllocString(const char16_t* text) {
    if (!text) return nullptr;
    std::size_t length = std::char_traits<char16_t>::length(text);
    return length > longest / 2 ? nullptr : filled(text, static_cast<std::uint32_t>(length * 2));
}

BSTR SysAllocStringLen(const char16_t* text, std::uint32_t length) {
    return has_byte_count(length) ? filled(text, length * 2) : nullptr;
}

BSTR SysAllocStringByteLen(const char* bytes, std::uint32_t count) { return filled(bytes, count); }

std::int32_t SysReAllocStringLen(BSTR* text, const char16_t* from, std::uint32_t length) {
    if (!text || !has_byte_count(length)) return 0;
    BSTR renewed;
    if (from) {
        renewed = filled(from, length * 2);
    } else {
        renewed = filled(nullptr, length * 2);
        std::uint32_t kept = SysStringByteLen(*text);
        if (kept > length * 2) kept = length * 2;
        if (renewed && kept) std::memcpy(renewed, *text, kept);
    }
    if (!renewed) return 0;
    SysFreeString(*text);
    *text = renewed;
    return 1;
}

void SysFreeString(BSTR text) {
    if (text) std::free(reinterpret_cast<char*>(text) - prefix_size);
}

std::uint32_t SysStringByteLen(BSTR text) {
    if (!text) return 0;
    std::uint32_t bytes;
    std::memcpy(&bytes, reinterpret_cast<char*>(text) - prefix_size, prefix_size);
    return bytes;
}

std::uint32_t SysStringLen(BSTR text) { return SysStringByteLen(text) / 2; }

}  // extern "C"

}  // namespace orvo::abi
