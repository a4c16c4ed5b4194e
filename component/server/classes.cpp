#include "component/auth/Validator.h"
#include "component/config/Account.h"
#include "component/config/ServerInfo.h"
#include "component/entries/LdapAccess.h"
#include "component/provider/PMMCreator.h"
#include "platform/abi/module.h"

namespace orvo {

const ModuleDescription& this_module() {
    static constexpr ModuleClass classes[] = {
        module_class<Account>(),    module_class<LdapAccess>(), module_class<PMMCreator>(),
        module_class<ServerInfo>(), module_class<Validator>(),
    };
    static constexpr ModuleDescription description{"OrvoMembership", classes};
    return description;
}

}  // namespace orvo
