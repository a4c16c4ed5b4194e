// A module that carries a type library, and no classes.

#include "platform/module/module.h"

namespace orvo {

const ModuleDescription& this_module() {
    static constexpr ModuleDescription description{"Versioned", {}};
    return description;
}

}  // namespace orvo
