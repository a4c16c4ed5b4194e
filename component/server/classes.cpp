#include "component/server/class_list.h"
#include "platform/module/module.h"

namespace orvo {

const ModuleDescription& this_module() {
    static constexpr auto classes = []<class... C>(std::type_identity<std::tuple<C...>>) {
        return std::array{module_class<C>()...};
    }(std::type_identity<PublicClasses>{});
    static constexpr ModuleDescription description{"OrvoMembership", classes,
                                                   guid("6b0d9a7e-3c52-4f0b-9d2e-8a41c1f5e7a1")};
    return description;
}

}  // namespace orvo
