#include "platform/abi/module.h"
#include "platform/context/app_server.h"

namespace orvo {

const ModuleDescription& this_module() {
    static constexpr ModuleClass classes[] = {module_class<AppServerObject>()};
    static constexpr ModuleDescription description{"OrvoPlatform", classes};
    return description;
}

}  // namespace orvo
