#include "component/auth/Validator.h"

#include "component/common/Lib_ErrorHandling.h"
#include "component/config/PMMCreator.h"
#include "component/config/SharedServerInfo.h"
#include "platform/interfaces/call.h"

namespace orvo {

std::int32_t Validator::CheckUserPassword(Text& sUserId, Variant sPassword) {
    const auto validator = PMMCreator().GetPMMValidator();
    Variant path = shared_server_info()->FullUserPath(sUserId);
    return call<&DirectoryValidator::Validate>(validator, path, sPassword);
}

Variant Validator::ValidatePassword(Variant& iUserId, Variant& iPassword) {
    return trapped(u"OrvoMembership.Validator.ValidatePassword", [&] {
        Text user = iUserId.to<Text>();
        return Variant(CheckUserPassword(
            user, iPassword.is_text() ? iPassword : Variant(iPassword.to<Text>())));
    });
}

void Validator::setServerInfo(const Text& i_sConfigurationPath) {
    Text path = i_sConfigurationPath;
    shared_server_info()->SetConfiguration(path);
}

template struct detail::callee<Validator>;

}  // namespace orvo
