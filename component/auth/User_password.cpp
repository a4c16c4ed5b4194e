#include "component/auth/Validator.h"
#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "component/common/OrvoMemErrors.h"
#include "component/entries/User_table.h"

namespace orvo {
namespace {

// What the validator answers for a password that is right but has expired or is to be changed.
constexpr std::int32_t right_but_expired = -4;

}  // namespace

void User::ChangePassword(Text& iOldPwd, Text& iNewPwd) {
    constexpr const char16_t* source = u"OrvoMembership.User.ChangePassword";
    trapped(source, [&] {
        if (!directory_object_) return;
        const auto validator = Gen_GetComponent<Validator>(u"OrvoMembership.Validator");
        Variant user = CN();
        Variant old = iOldPwd;
        const auto result =
            call<&Validator::ValidatePassword>(validator, user, old).to<std::int32_t>();
        if (result < 0 && result != right_but_expired)
            throw Failure(emErrPwdNotCorrect, source, u"The current password is not correct");
        Text name = u"userPassword";
        Variant value = Values{iNewPwd};
        SetAttribValue(name, value);
    });
}

}  // namespace orvo
