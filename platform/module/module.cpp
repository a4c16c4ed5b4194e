// The platform's own classes, as a module of their own.

#include "platform/abi/module.h"
#include "platform/module/classes.h"

namespace orvo {

const ModuleDescription& this_module() {
    static const ModuleDescription description{"OrvoPlatform", platform_classes()};
    return description;
}

}  // namespace orvo
