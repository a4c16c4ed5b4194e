#include "component/auth/Validator.h"

#include "component/common/Lib_ErrorHandling.h"
#include "component/common/password_value.h"
#include "component/config/PMMCreator.h"
#include "component/config/SharedServerInfo.h"
#include "platform/interfaces/call.h"
#include "platform/values/wiped.h"

namespace orvo {

std::int32_t Validator::CheckUserPassword(Text& sUserId, const Secret& sPassword) {
    PMMCreator factory;
    const auto validator = factory.GetPMMValidator();
    Variant path = shared_server_info()->FullUserPath(sUserId);
    Wiped password(password_value(sPassword));
    return call<&DirectoryValidator::Validate>(validator, path, password.value);
}

Variant Validator::ValidatePassword(Variant& iUserId, Variant& iPassword) {
    return trapped(u"OrvoMembership.Validator.ValidatePassword", [&] {
        Text user = iUserId.to<Text>();
        return Variant(CheckUserPassword(user, iPassword.to<Secret>()));
    });
}

void Validator::setServerInfo(const Text& i_sConfigurationPath) {
    Text path = i_sConfigurationPath;
    shared_server_info()->SetConfiguration(path);
}

template struct detail::callee<Validator>;

}  // namespace orvo
