#include "platform/abi/type_library.h"

namespace orvo::detail {

void register_type_library(std::span<const ModuleClass>) {}
void unregister_type_library() {}
Object try_type_info(const abi::IID&) noexcept { return {}; }

}  // namespace orvo::detail
