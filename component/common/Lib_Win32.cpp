#include "component/common/Lib_Win32.h"

namespace orvo {

abi::GUID Win32_CreateGuid() {
    abi::GUID id{};
    abi::CoCreateGuid(&id);
    return id;
}

}  // namespace orvo
