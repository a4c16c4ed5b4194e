#include <sys/random.h>

#include <cerrno>

#include "platform/system/automation.h"

namespace orvo::abi {

extern "C" HRESULT CoCreateGuid(GUID* out) {
    if (!out) return e_invalidarg;
    ssize_t got;
    do got = getrandom(out, sizeof *out, 0);
    while (got < 0 && errno == EINTR);
    if (got != sizeof *out) return e_fail;
    out->Data3 = static_cast<std::uint16_t>((out->Data3 & 0x0FFF) | 0x4000);
    out->Data4[0] = static_cast<std::uint8_t>((out->Data4[0] & 0x3F) | 0x80);
    return s_ok;
}

}  // namespace orvo::abi
