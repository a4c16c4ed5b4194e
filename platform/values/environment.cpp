#include "platform/values/environment.h"

#include <cstdlib>

#ifdef _WIN32
#include <cwchar>
#endif

namespace orvo {

#ifdef _WIN32

Text environment_variable(const char* name) {
    const Text wide_name = from_utf8(name);
    const wchar_t* value = _wgetenv(reinterpret_cast<const wchar_t*>(wide_name.c_str()));
    return value ? Text(reinterpret_cast<const char16_t*>(value)) : Text();
}

#else

Text environment_variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? from_utf8(value) : Text();
}

#endif

}  // namespace orvo
