#include "tests/component/entries/user_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class UserPassword : public UserTest {
protected:
    UserPassword() { directory_.answer_of(jsmith, u"cn", Values{u"jsmith"}); }
    static void change(Behind<User>& user) {
        Secret before(u"old-code"), after(u"new-code");
        user.call<&User::ChangePassword>(before, after);
        EXPECT_EQ(clear_text(before), u"old-code");
        EXPECT_EQ(clear_text(after), u"new-code");
    }
    // Nobody sees a password but the provider.
    void expect_no_password_in_the_log() {
        for (const LogEntry& entry : log_.take())
            EXPECT_THAT(entry.message, testing::Not(testing::HasSubstr("-code")));
    }
};

TEST_FRESH(UserPassword, ARightOldPasswordIsReplaced) {
    for (const std::int32_t verdict : {0, 1, 42, -4}) {
        SCOPED_TRACE(verdict);
        directory_.verdict = verdict;
        bound_through_every_door([this](Behind<User>& user) {
            change(user);
            EXPECT_THAT(journal_.take(),
                        ElementsAre("GetValues(cn)", "new Test.Directory()", "CreateValidator()",
                                    "Open(dir01:389, ou=Users,o=Shop)",
                                    "Validate(un=jsmith,ou=Users,o=Shop, old-code)",
                                    "SetValues(userPassword, [new-code])"));
            expect_no_password_in_the_log();
        });
    }
}

TEST_FRESH(UserPassword, TheOldPasswordIsCheckedForTheNameThatTheEntryCallsItself) {
    directory_.answer_of(jsmith, u"cn", Values{u"John Smith", u"jsmith"});
    bound_through_every_door([this](Behind<User>& user) {
        change(user);
        EXPECT_THAT(journal_.take(),
                    testing::Contains("Validate(un=John Smith,ou=Users,o=Shop, old-code)"));
    });
}

TEST_FRESH(UserPassword, AnEmptyNewPasswordIsTheProvidersToJudge) {
    bound_through_every_door([this](Behind<User>& user) {
        Secret before(u"old-code"), after;
        user.call<&User::ChangePassword>(before, after);
        EXPECT_EQ(journal_.take().back(), "SetValues(userPassword, [])");
        EXPECT_EQ(directory_.written, Variant(Values{u""}));
    });
}

TEST_FRESH(UserPassword, InAContextTheValidatorIsCreatedThroughIt) {
    load_settings();
    Behind<User> user(Door::slots);
    bind(user);
    const RecordingContext context(journal_);
    forget();
    change(user);
    EXPECT_EQ(journal_.take().front(), "CreateInstance(OrvoMembership.Validator)");
}

TEST_FRESH(UserPassword, AWrongOldPasswordIsRefusedAndNothingIsWritten) {
    for (const std::int32_t verdict : {-1, -2, -3, -5, -100}) {
        SCOPED_TRACE(verdict);
        directory_.verdict = verdict;
        bound_through_every_door([this](Behind<User>& user) {
            expect_failure(raised_by([&] { change(user); }), error_number(0x80040325),
                           u"OrvoMembership.User.ChangePassword",
                           "\r\n"
                           "ERROR 0x80040325\r\n"
                           " METHOD: OrvoMembership.User.ChangePassword\r\n"
                           " DESC: The current password is not correct.\r\n");
            EXPECT_EQ(journal_.take().back(), "Validate(un=jsmith,ou=Users,o=Shop, old-code)");
            expect_no_password_in_the_log();
        });
    }
}

TEST_FRESH(UserPassword, AnUnboundUserDoesNothing) {
    through_every_door([this](Behind<User>& user) {
        EXPECT_NO_THROW(change(user));
        EXPECT_THAT(journal_.take(), IsEmpty());
        EXPECT_THAT(log_.take(), IsEmpty());
    });
}

TEST_FRESH(UserPassword, AValidatorThatFailsIsReportedUnderBothNames) {
    journal_.refuse("Validate", {error_number(0x8007203A), u"Its.Own", u"(81) Can't reach"});
    bound_through_every_door([this](Behind<User>& user) {
        expect_failure(raised_by([&] { change(user); }), error_number(0x8007203A), u"Its.Own",
                       block("8007203A", "OrvoMembership.User.ChangePassword",
                             block("8007203A", "OrvoMembership.Validator.ValidatePassword",
                                   "(81) Can't reach")));
        expect_no_password_in_the_log();
    });
}

TEST_FRESH(UserPassword, ARefusedWriteIsReportedWithoutThePassword) {
    journal_.refuse("SetValues", no_rights());
    bound_through_every_door([this](Behind<User>& user) {
        expect_failure(raised_by([&] { change(user); }), error_number(0x80072098), u"Its.Own",
                       block("80072098", "OrvoMembership.User.ChangePassword",
                             block("80072098", "OrvoMembership.User.SetAttribValue",
                                   "(50) no rights", "Attribute is: userPassword")));
        expect_no_password_in_the_log();
    });
}

}  // namespace
}  // namespace orvo
