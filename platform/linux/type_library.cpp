#include "platform/system/type_library.h"

namespace orvo::runtime {

void register_type_library(std::span<const ClassEntry>) {}
void unregister_type_library() {}
abi::IUnknown* try_type_info(const abi::IID&) noexcept { return nullptr; }

}  // namespace orvo::runtime
