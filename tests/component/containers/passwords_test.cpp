// A password reaches the provider unit by unit, whichever way it takes.

#include "component/config/PMMAccessor.h"
#include "component/containers/Profiles.h"
#include "component/entries/LdapAccess.h"
#include "tests/component/containers/containers_test.h"
#include "tests/support/clear_text.h"

namespace orvo {
namespace {

// Its halves of surrogate pairs are nobody else's.
const Text halves = u"\xDC00 half \xD83D";

class Passwords : public ContainersTest {
protected:
    // Every account of the site has this password.
    Passwords() {
        membership()[u"MemScriptCode"] = halves;
        directory_.answer(u"cn", Values{u"jsmith"});
    }
    void expect_passwords(std::size_t count) {
        EXPECT_EQ(directory_.passwords, std::vector<Text>(count, halves));
        directory_.passwords.clear();
    }
};

TEST_FRESH(Passwords, OfTheMembersContainerItsSearchesAndItsUsers) {
    directory_.found = users({u"jsmith"});
    members_through_every_door([this](Behind<Members>& members) {
        bind(members, u"cn=web,o=Shop", halves);
        expect_passwords(1);
        create(members, u"jsmith", halves);
        expect_passwords(3);
        members.call<&Members::GetOrvoUsers>(no_criteria(), Text(), Variant::missing());
        expect_passwords(1);
    });
}

TEST_FRESH(Passwords, OfAUserItsProfileAndItsServiceAccount) {
    give_profile();
    through_every_door([this](Behind<User>& user) {
        UserTest::bind(user, u"jsmith", u"cn=web,o=Shop", halves);
        expect_passwords(3);
        Secret former{TextView(halves)}, next{TextView(halves)};
        user.call<&User::ChangePassword>(former, next);
        expect_passwords(2);
    });
}

TEST_FRESH(Passwords, OfASession) {
    load_settings();
    RecordingContext context(journal_);
    context.items[u"Session"] = session({{u"REMOTE_USER", u"jsmith"},
                                         {u"REMOTE_ACCOUNT", u"un=jsmith,ou=Users,o=Shop"},
                                         {u"REMOTE_PASSWORD", halves}});
    User user;
    expect_passwords(2);
    Profiles profiles;
    expect_passwords(1);
    profiles.AsRecordset();
    expect_passwords(1);
}

TEST_FRESH(Passwords, OfTheScriptAccount) {
    PMMAccessor accessor;
    accessor.InitConfigFile(u"site.ini");
    accessor.GetLDAPUsers(7);
    expect_passwords(1);
    LdapAccess entry;
    entry.BindToConfig();
    expect_passwords(1);
    EXPECT_EQ(shared_server_info()->GetMemScriptCode(), Variant(halves));
}

TEST_FRESH(Passwords, OfACheck) {
    load_settings();
    Validator validator;
    Variant user = u"jsmith", password = halves;
    validator.ValidatePassword(user, password);
    expect_passwords(1);
    EXPECT_EQ(password, Variant(halves));
}

}  // namespace
}  // namespace orvo
