#include "host/idl/guid_numbers.h"

#include <cstdio>
#include <iterator>

namespace orvo {

std::string guid_numbers(const abi::GUID& id, const char* before_last) {
    char text[64];
    std::snprintf(text, sizeof text, "0x%08X, 0x%04X, 0x%04X, ", static_cast<unsigned>(id.Data1),
                  id.Data2, id.Data3);
    std::string numbers = std::string(text) + before_last;
    for (std::size_t i = 0; i < std::size(id.Data4); ++i) {
        std::snprintf(text, sizeof text, i == 0 ? "0x%02X" : ", 0x%02X", id.Data4[i]);
        numbers += text;
    }
    return numbers;
}

}  // namespace orvo
