#include "platform/abi/guid.h"

#include <cstdio>

namespace orvo {

Text guid_text(const abi::GUID& id) {
    char text[37];
    std::snprintf(text, sizeof text, "%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X",
                  static_cast<unsigned>(id.Data1), id.Data2, id.Data3, id.Data4[0], id.Data4[1],
                  id.Data4[2], id.Data4[3], id.Data4[4], id.Data4[5], id.Data4[6], id.Data4[7]);
    return from_utf8(text);
}

}  // namespace orvo
