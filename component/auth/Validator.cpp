#include "component/auth/Validator.h"

#include "component/common/Lib_ErrorHandling.h"
#include "component/config/SharedServerInfo.h"
#include "component/provider/PMMCreator.h"
#include "platform/abi/call.h"

namespace orvo {

std::int32_t Validator::CheckUserPassword(Text sUserId, Text sPassword) {
    const auto validator = PMMCreator().GetPMMValidator();
    Variant path = shared_server_info()->FullUserPath(sUserId);
    Variant password = sPassword;
    return call<&DirectoryValidator::Validate>(validator, path, password);
}

Variant Validator::ValidatePassword(Variant& iUserId, Variant& iPassword) {
    return trapped(u"OrvoMembership.Validator.ValidatePassword", [&] {
        Text user = iUserId.to<Text>();
        Text password = iPassword.to<Text>();
        return Variant(CheckUserPassword(std::move(user), std::move(password)));
    });
}

void Validator::setServerInfo(const Text& i_sConfigurationPath) {
    Text path = i_sConfigurationPath;
    shared_server_info()->SetConfiguration(path);
}

}  // namespace orvo
