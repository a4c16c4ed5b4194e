// What one failure of the directory leaves in the log: a note of the provider that tells the cause,
// and one entry of the component.

#include <regex>

#include "tests/component/containers/containers_live_test.h"

namespace orvo {
namespace {

class FailureEntriesLive : public ContainersLive {
protected:
    // What an operation adds to the log, without the time stamps.
    template <class Operation>
    std::string added_by(Operation operation) {
        create_object(u"OrvoMembership.User");  // notes its activation, so that there is a log
        const std::size_t before = logged().size();
        operation();
        static const std::regex stamp(R"((^|\n)\d{4}-\d\d-\d\dT\S+ )");
        return std::regex_replace(logged().substr(before), stamp, "$1");
    }
};

TEST_FRESH_FOR_EACH(FailureEntriesLive,
                    AWrongPasswordIsANoteOfTheProviderAndAnEntryOfTheComponent) {
    load_settings();
    const Object users = create_object(u"OrvoMembership.Members");
    EXPECT_EQ(added_by([&] {
                  raised_by([&] { late::call(users, u"BindAs", {service(), u"not-it"}); });
              }),
              "note " + to_utf8(source()) +
                  ": Bind of 'ou=Users,o=Shop' failed, 0x8007052E: "
                  "(49) The user name or the password is wrong.\n"
                  "error " +
                  to_utf8(source()) +
                  ":\n"
                  "    ERROR 0x8007052E\n"
                  "     METHOD: OrvoMembership.Members.BindAs\n"
                  "     DESC: \n"
                  "    ERROR 0x8007052E\n"
                  "     METHOD: OrvoMembership.Members.BindAs\n"
                  "     DESC: (49) The user name or the password is wrong..\n"
                  "    .\n");
}

TEST_FRESH_FOR_EACH(FailureEntriesLive, AFailureToldInOtherWordsHasItsCauseInTheNote) {
    const Object users = members();
    EXPECT_EQ(added_by([&] { raised_by([&] { late::call(users, u"DeleteUser", {u"nobody"}); }); }),
              "note " + to_utf8(source()) +
                  ": DeleteChild of 'ou=Users,o=Shop' failed, 0x80072030: "
                  "(32) There is no such entry. The nearest entry is 'ou=Users,o=Shop'.\n"
                  "error OrvoMembership.Members.DeleteUser:\n"
                  "    ERROR 0x80072030\n"
                  "     METHOD: OrvoMembership.Members.DeleteUser\n"
                  "     DESC: \n"
                  "    ERROR 0x80072030\n"
                  "     METHOD: OrvoMembership.Members.DeleteUser\n"
                  "     DESC: User with common name 'nobody' doesn't exist in the directory.\n"
                  "    .\n");
}

TEST_FRESH_FOR_EACH(FailureEntriesLive, ANegativeAnswerOfAPasswordCheckIsNoFailure) {
    load_settings();
    const Object validator = create_object(u"OrvoMembership.Validator");
    EXPECT_EQ(added_by([&] {
                  EXPECT_EQ(late::call(validator, u"ValidatePassword", {u"jsmith", u"not-it"}),
                            Variant(-1));
              }),
              "");
}

TEST_FRESH_FOR_EACH(FailureEntriesLive, WhereErrorsAloneAreAskedForTheNoteIsLeftOut) {
    load_settings();
    const Object users = create_object(u"OrvoMembership.Members");
    EXPECT_THAT(added_by([&] {
                    const Environment errors_only("ORVO_LOG_LEVEL", "error");
                    raised_by([&] { late::call(users, u"BindAs", {service(), u"not-it"}); });
                }),
                StartsWith("error " + to_utf8(source()) + ":\n"));
}

}  // namespace
}  // namespace orvo
