#include "platform/system/type_library.h"

namespace orvo::runtime {

void register_type_libraries(std::span<const ClassEntry>, Scope) {}
void unregister_type_libraries(Scope) {}
abi::IUnknown* try_type_info(const abi::IID&) noexcept { return nullptr; }

}  // namespace orvo::runtime
