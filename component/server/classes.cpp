#include "component/server/class_list.h"
#include "platform/module/module.h"

namespace orvo {

const ModuleDescription& this_module() {
    static constexpr auto classes = []<class... C>(std::type_identity<std::tuple<C...>>) {
        return std::array{module_class<C>()...};
    }(std::type_identity<PublicClasses>{});
    static constexpr ModuleDescription description{"OrvoMembership", classes};
    return description;
}

}  // namespace orvo
