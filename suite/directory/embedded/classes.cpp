#include "platform/module/module.h"
#include "suite/directory/embedded/provider/EmbeddedDirectory.h"

namespace orvo {

const ModuleDescription& this_module() {
    static constexpr ModuleClass classes[] = {
        module_class<directory::embedded::EmbeddedDirectory>(),
    };
    static constexpr ModuleDescription description{"OrvoEmbedded", classes};
    return description;
}

}  // namespace orvo
