#include "tests/component/auth/login_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

constexpr const char* change = "OrvoMembership.Validator.ChangePassword";

class ValidatorPassword : public LoginTest {};

TEST_FRESH(ValidatorPassword, ChangePasswordOpensTheEntryWithTheServiceAccount) {
    in_a_page([this](Behind<Validator>& validator, RecordingPage&) {
        Text user = u"jsmith";
        Secret old_password(u"old"), new_password(u"new");
        validator.call<&Validator::ChangePassword>(user, old_password, new_password);
        auto calls = journal_.take();
        std::erase_if(calls, [](const std::string& call) {
            for (const char* kept : {"Bind(", "Validate(", "SetValues("})
                if (call.starts_with(kept)) return false;
            return true;
        });
        EXPECT_THAT(calls,
                    ElementsAre("Bind(dir01:389, ou=Users,o=Shop, un=jsmith, cn=script,o=Shop, "
                                "script-code, [cn, OrvoUserType, BusinessPartnerID])",
                                "Bind(dir01:389, ou=Accounts,o=Shop, an=1, cn=script,o=Shop, "
                                "script-code, [])",
                                "Validate(un=jsmith,ou=Users,o=Shop, old)",
                                "SetValues(userPassword, [new])"));
    });
}

TEST_FRESH(ValidatorPassword, AWrongOldPasswordIsReportedUnderBothNames) {
    directory_.verdict = -1;
    in_a_page([](Behind<Validator>& validator, RecordingPage&) {
        Text user = u"jsmith";
        Secret old_password(u"old"), new_password(u"new");
        const Failure failure = raised_by(
            [&] { validator.call<&Validator::ChangePassword>(user, old_password, new_password); });
        expect_failure(failure, error_number(0x80040325), u"OrvoMembership.User.ChangePassword",
                       block("80040325", change,
                             block("80040325", "OrvoMembership.User.ChangePassword",
                                   "The current password is not correct")));
    });
}

}  // namespace
}  // namespace orvo
