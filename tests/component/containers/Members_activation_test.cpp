#include "tests/component/containers/containers_test.h"

namespace orvo {
namespace {

constexpr const char* bind_container =
    "Bind(dir01:389, ou=Users,o=Shop, , cn=web,o=Shop, web-code, [])";
constexpr const char* bind_new_user =
    "Bind(dir01:389, ou=Users,o=Shop, un=jsmith, cn=web,o=Shop, web-code, "
    "[cn, OrvoUserType, BusinessPartnerID])";

class MembersActivation : public ContainersTest {
protected:
    static Object session_of(const Text& account, const Text& password) {
        const auto session = make<DictionaryObject>();
        Variant key = u"REMOTE_ACCOUNT", value = account;
        call<&Dictionary::Add>(session, key, value);
        key = u"REMOTE_PASSWORD";
        value = password;
        call<&Dictionary::Add>(session, key, value);
        return session.object();
    }
};

TEST_FRESH(MembersActivation, OutsideAContextNothingIsReadOrWritten) {
    const Members members;
    EXPECT_THAT(journal_.take(), IsEmpty());
    EXPECT_THAT(log_.take(), IsEmpty());
}

TEST_FRESH(MembersActivation, AContextWithoutASessionIsNotedUnderTheUsersName) {
    const RecordingContext context(journal_);
    const Members members;
    EXPECT_THAT(log_.take(),
                ElementsAre(LogEntry{"LogMessage", "OrvoMembership.User.IObjectControl_Activate",
                                     block("0", "OrvoMembership.User.IObjectControl_Activate",
                                           "Not an actual error", "No session in objectcontext"),
                                     1}));
    EXPECT_FALSE(shared_server_info()->IsLoaded());
}

TEST_FRESH(MembersActivation, TheSessionsAccountServesWithTheFirstMethodThatNeedsIt) {
    load_settings();
    RecordingContext context(journal_);
    context.items[u"Session"] = session_of(u"cn=web,o=Shop", u"web-code");
    context.items[u"Application"] = make<DictionaryObject>().object();
    for (const Door door : every_door) {
        SCOPED_TRACE(testing::PrintToString(door));
        journal_.clear();
        Behind<Members> members(door);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("Item(Session)", "CreateInstance(Quendra.Configuration)",
                                "new Quendra.Configuration()", "Initialize()", "Item(Session)",
                                "Item(Application)"))
            << "nothing is bound yet";
        create(members);
        const auto calls = journal_.take();
        EXPECT_THAT(calls, testing::Contains(bind_container));
        EXPECT_THAT(calls, testing::Contains(bind_new_user));
    }
}

TEST_FRESH(MembersActivation, AFailureSurfacesFromTheCreationOfTheObject) {
    RecordingContext context(journal_);
    context.items[u"Session"] = session_of(u"cn=web,o=Shop", u"web-code");
    journal_.refuse("Initialize", {53, u"Its.Own", u"site.ini: not there"});
    expect_failure(
        raised_by([] { Members(); }), 53, u"Its.Own",
        block("35", "OrvoMembership.Members.IObjectControl_Activate", "site.ini: not there"));
}

}  // namespace
}  // namespace orvo
