#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "component/config/SharedServerInfo.h"
#include "component/containers/Members.h"

namespace orvo {

void User::BindToGuid(Text& iGUID, Text& iUsername, Secret& iPassword) {
    trapped(u"OrvoMembership.User.BindToGuid", [&] {
        const auto members = Gen_GetComponent<Members>(u"OrvoMembership.Members");
        call<&Members::BindAs>(members, iUsername, iPassword);
        const Text configuration = shared_server_info()->ConfigurationPath();
        call<&Members::setServerInfo>(members, configuration);
        // The lookup binds the entry once to read its name, and this object is bound by it once
        // more, so that it ends in the state that BindAs gives.
        const auto found = call<&Members::GetUserFromGUID>(members, iGUID);
        Text name = call<&User::CN>(found);
        BindAs(name, iUsername, iPassword);
    });
}

}  // namespace orvo
