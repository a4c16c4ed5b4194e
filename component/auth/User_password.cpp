#include "component/auth/Validator.h"
#include "component/common/Lib_ErrorHandling.h"
#include "component/common/Lib_General.h"
#include "component/common/OrvoMemErrors.h"
#include "component/common/password_value.h"
#include "component/entries/User_table.h"
#include "platform/values/wiped.h"

namespace orvo {
namespace {

// What the validator answers for a password that is right but has expired or is to be changed.
constexpr std::int32_t right_but_expired = -4;

}  // namespace

void User::ChangePassword(Secret& iOldPwd, Secret& iNewPwd) {
    constexpr const char16_t* source = u"OrvoMembership.User.ChangePassword";
    trapped(source, [&] {
        if (!directory_object_) return;
        const auto validator = Gen_GetComponent<Validator>(u"OrvoMembership.Validator");
        Variant user = CN();
        Wiped old(password_value(iOldPwd));
        const auto result =
            call<&Validator::ValidatePassword>(validator, user, old.value).to<std::int32_t>();
        if (result < 0 && result != right_but_expired)
            throw Failure(emErrPwdNotCorrect, source, u"The current password is not correct");
        Text name = u"userPassword";
        Wiped stored(password_value(iNewPwd));
        Values one(0, 1);
        one[0] = std::move(stored.value);
        stored.value = std::move(one);
        SetAttribValue(name, stored.value);
    });
}

}  // namespace orvo
