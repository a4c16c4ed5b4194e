// With which changes of an entry its user's logins end.

#include "platform/objects/context/app_server.h"
#include "platform/objects/context/context_scope.h"
#include "tests/suite/directory/provider/provider_test.h"
#include "tests/suite/directory/recorded_logins.h"

namespace orvo {
namespace directory {

// A page's session, in which somebody is logged in.
class LoggedInSession {
public:
    Text Value(const Text& name) { return name == u"QUENDRAID" ? u"G1" : u""; }
};

}  // namespace directory

template <>
inline constexpr auto table_of<directory::LoggedInSession> = describe<directory::LoggedInSession>(
    "ILoggedInSession", "5e0f4b0a-6f3e-4b43-9a57-0f6f2a1d7c03",
    get<&directory::LoggedInSession::Value>("Value", "name").as_default());
template <>
inline constexpr auto class_of<directory::LoggedInSession> =
    describe_class<directory::LoggedInSession>("Test.LoggedInSession");

namespace directory {
namespace {

constexpr const char* djansen = "cn=djansen,ou=Users,o=Shop";
constexpr const char* made_but =
    "The change has been made, but the user's logins may go on: The store is away.";

class EndedLoginsTest : public ProviderTest {
protected:
    EndedLoginsTest() : ProviderTest({.password_policy = true}) {}
    std::vector<std::string> ended() { return logins_.ended(); }

    LoginsOnRecord logins_;
    LocalClass app_server_{app_server_progid, class_of<AppServerObject>.clsid,
                           [] { return make<AppServerObject>().object(); }};
};
FOR_EVERY_DIRECTORY(EndedLoginsTest);

TEST_P(EndedLoginsTest, AreThoseOfAUserWhosePasswordIsChangedOrCleared) {
    const Entry entry = bound(u"CN=djansen");
    set(entry, u"userPassword", u"other-sample");
    EXPECT_THAT(ended(), ElementsAre(testing::StrCaseEq(djansen)));
    clear(entry, u"userpassword");
    EXPECT_THAT(ended(), ElementsAre(testing::StrCaseEq(djansen)));
    set(entry, u"userPassword", u"shop-sample");
    ended();
    EXPECT_NE(refusal_of([&] { set(entry, u"userPassword", u""); }).number, 0);
    EXPECT_THAT(ended(), IsEmpty()) << "nothing was changed";
}

TEST_P(EndedLoginsTest, AreThoseOfAUserWhoIsDisabledOrRemoved) {
    const Entry entry = bound();
    set(entry, u"pwdAccountLockedTime", u"000001010000Z");
    EXPECT_THAT(ended(), ElementsAre(djansen));
    clear(entry, u"pwdAccountLockedTime");
    set(entry, u"sn", u"Jansen");
    EXPECT_THAT(ended(), IsEmpty());
    remove(bound(u""), u"cn=djansen,ou=Users,o=Shop");
    EXPECT_THAT(ended(), ElementsAre(djansen));
}

TEST_P(EndedLoginsTest, AreAllButThatOfThePageThatChangesThePassword) {
    const Entry entry = bound();
    {
        const ContextScope page({{u"Session", make<LoggedInSession>().object()}});
        set(entry, u"userPassword", u"other-sample");
        EXPECT_THAT(ended(), ElementsAre(djansen + std::string(" but G1")));
        set(entry, u"pwdAccountLockedTime", u"000001010000Z");
        EXPECT_THAT(ended(), ElementsAre(djansen)) << "a disabled account has no login";
    }
    const ContextScope script({});
    set(entry, u"userPassword", u"shop-sample");
    EXPECT_THAT(ended(), ElementsAre(djansen));
}

TEST_P(EndedLoginsTest, ThatCannotBeEndedAreToldWithTheChangeThatIsMade) {
    const Entry entry = bound();
    logins_.fail_for(djansen);
    const Failure failure = failure_of([&] { set(entry, u"userPassword", u"other-sample"); });
    EXPECT_EQ(failure.number, 4711);
    EXPECT_EQ(to_utf8(failure.description), made_but);
    EXPECT_EQ(shop_.bind(djansen, "other-sample"), 0);
    EXPECT_EQ(to_utf8(failure_of([&] { remove(bound(u""), from_utf8(djansen)); }).description),
              made_but);
    EXPECT_THAT(shop_.find("ou=Users,o=Shop", "(cn=djansen)"), IsEmpty());
}

}  // namespace
}  // namespace directory
}  // namespace orvo
