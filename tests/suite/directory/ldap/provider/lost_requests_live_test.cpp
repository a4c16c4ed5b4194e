// Creation and deletion where a request or its answer gets lost, or nothing ever comes back; and
// whose logins end then.

#include <gmock/gmock.h>

#include "platform/interfaces/call.h"
#include "platform/objects/dictionary/dictionary.h"
#include "platform/values/values.h"
#include "suite/directory/ldap/provider/LdapEntry.h"
#include "suite/directory/ldap/wire/password_modify.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/suite/directory/ldap/support/rewriting_proxy.h"
#include "tests/suite/directory/recorded_logins.h"
#include "tests/support/ldap_probe.h"
#include "tests/support/slapd.h"

namespace orvo::directory::ldap {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

// What a request holds, by which it is known.
const std::string creation = "orvoPerson";
const std::string password_change(password_modify_oid);
const std::string deletion =
    "\x4A\x16"
    "cn=new,ou=Users,o=Shop";

class LostRequestsTest : public testing::Test {
protected:
    explicit LostRequestsTest(SlapdOptions options = {}) : server_(std::move(options)) {
        bind(container_, u"");
        // Once everything that has to be known of the server is, a creation begins at once.
        EXPECT_EQ(created(u"first").number, 0);
    }

    void bind(LdapEntry& entry, Text name) {
        Text address = from_utf8(proxy_.server()), users = u"ou=Users,o=Shop";
        Text user = from_utf8(server_.service_dn());
        Secret password(u"service-sample");
        Variant nothing = Values{};
        entry.Bind(address, users, name, user, password, nothing);
    }
    Failure created(Text name, Text password = u"secret-sample") {
        const auto given = make<DictionaryObject>();
        for (const auto& [attribute, value] : {std::pair<Text, Text>{u"cn", name},
                                               {u"userPassword", password},
                                               {u"objectClass", u"orvoPerson"}}) {
            Variant key = attribute, item = value;
            call<&Dictionary::Add>(given, key, item);
        }
        Object attributes = given.object();
        Variant classes = u"orvoPerson";
        Text naming = u"cn";
        return failure_of([&] { container_.CreateChild(classes, naming, attributes); });
    }
    Failure removed() {
        Text class_name = u"orvoPerson", path = path_;
        return failure_of([&] { container_.DeleteChild(class_name, path); });
    }
    bool is_there() { return !probe_.find("ou=Users,o=Shop", "(cn=new)").empty(); }
    std::vector<std::string> password() { return probe_.values(new_user_, "userPassword"); }

    PrivateSlapd server_;
    RewritingProxy proxy_{server_.server(), "cn=nothing", "cn=nothing"};
    LdapProbe probe_{server_.url(), server_.root_dn(), server_.root_password()};
    LdapEntry container_{Limits{2s, 1s}};
    const std::string new_user_ = server_.user_dn("new");
    Text path_ = from_utf8(new_user_);
};

TEST_F(LostRequestsTest, ThatWriteAreNotMadeAgain) {
    proxy_.cut_requests(1, creation);
    EXPECT_EQ(created(u"new").number, error_number(0x8007203A));
    EXPECT_FALSE(is_there());
    EXPECT_EQ(created(u"new").number, 0);
    proxy_.cut_requests(1, deletion);
    EXPECT_EQ(removed().number, error_number(0x8007203A));
    EXPECT_TRUE(is_there());
    EXPECT_EQ(removed().number, 0);
}

TEST_F(LostRequestsTest, AnEntryWhosePasswordIsNotSetIsTakenBack) {
    proxy_.cut_requests(1, password_change);
    Failure failure = created(u"new");
    EXPECT_EQ(failure.number, error_number(0x8007203A));
    EXPECT_EQ(failure.description, u"(81) The server cannot be reached.");
    EXPECT_FALSE(is_there());

    proxy_.swallow_requests(1, password_change);
    failure = created(u"new");
    EXPECT_EQ(failure.number, error_number(0x8007203A));
    EXPECT_EQ(failure.description, no_answer_of(proxy_.server(), 1s));
    EXPECT_FALSE(is_there());
}

TEST_F(LostRequestsTest, AnEntryThatCannotBeTakenBackMayBeLeftWithoutAPassword) {
    proxy_.swallow_requests(1, password_change);
    proxy_.cut_requests(1, deletion);
    const Failure failure = created(u"new");
    EXPECT_EQ(failure.number, error_number(0x8007203A));
    EXPECT_EQ(failure.description,
              no_answer_of(proxy_.server(), 1s) +
                  u" The entry 'cn=new,ou=Users,o=Shop' may be "
                  u"left without a password: (81) The server cannot be reached.");
    EXPECT_TRUE(is_there());
    EXPECT_THAT(password(), IsEmpty());
}

TEST_F(LostRequestsTest, ACreationWithoutAnAnswerMayHaveLeftAnEntryWithoutAPassword) {
    proxy_.cut_answers(1, creation);
    const Failure failure = created(u"new");
    EXPECT_EQ(failure.number, error_number(0x8007203A));
    EXPECT_EQ(failure.description,
              u"(81) The server cannot be reached. The entry 'cn=new,ou=Users,o=Shop' may exist, "
              u"without a password.");
    EXPECT_TRUE(is_there());
    EXPECT_THAT(password(), IsEmpty());
}

TEST_F(LostRequestsTest, AnEntryThatSomebodyElseMayHaveMadeIsLeftAlone) {
    ASSERT_EQ(probe_.add(new_user_, {{"objectClass", {"orvoPerson"}}, {"cn", {"new"}}}), 0);
    const auto before = probe_.values(new_user_, "entryUUID");
    proxy_.swallow_requests(1, creation);
    EXPECT_EQ(created(u"new").description, no_answer_of(proxy_.server(), 1s) +
                                               u" The entry 'cn=new,ou=Users,o=Shop' may "
                                               u"exist, without a password.");
    EXPECT_EQ(probe_.values(new_user_, "entryUUID"), before);
    EXPECT_EQ(created(u"new").number, error_number(0x8004044F));
    EXPECT_EQ(probe_.values(new_user_, "entryUUID"), before);
}

TEST_F(LostRequestsTest, ACreationWithoutAPasswordSpeaksOfNone) {
    proxy_.swallow_requests(1, creation);
    EXPECT_EQ(created(u"new", u"").description, no_answer_of(proxy_.server(), 1s) +
                                                    u" The entry 'cn=new,ou=Users,o=Shop' may "
                                                    u"exist.");
}

TEST_F(LostRequestsTest, ACreationThatIsRefusedSpeaksOfNoEntry) {
    EXPECT_EQ(created(Text(300, u'x')).description,
              u"(80) The server met an error of another kind. The name may be too long for it.");
}

TEST_F(LostRequestsTest, ADeletionWithoutAnAnswerMayHaveBeenDone) {
    ASSERT_EQ(created(u"new").number, 0);
    proxy_.swallow_requests(1, deletion);
    EXPECT_EQ(removed().description, no_answer_of(proxy_.server(), 1s) +
                                         u" The entry may have been deleted all the "
                                         u"same.");
    EXPECT_TRUE(is_there());
    proxy_.cut_answers(1, deletion);
    EXPECT_EQ(removed().description,
              u"(81) The server cannot be reached. The entry may have been deleted all the same.");
    EXPECT_FALSE(is_there());
    EXPECT_EQ(removed().number, error_number(0x80072030));
}

struct LostAccountChangesTest : LostRequestsTest {
    LostAccountChangesTest() : LostRequestsTest({.password_policy = true}) {}
};

TEST_F(LostAccountChangesTest, OfWhichNobodyHeardEndTheUsersLogins) {
    ASSERT_EQ(created(u"new").number, 0);
    LoginsOnRecord logins;
    const auto expect_ended = [&](const std::string& request, const auto& change) {
        proxy_.cut_answers(1, request);
        EXPECT_EQ(failure_of(change).number, error_number(0x8007203A)) << request;
        EXPECT_THAT(logins.ended(), ElementsAre(new_user_)) << request;
    };
    LdapEntry entry{Limits{2s, 1s}};
    bind(entry, u"cn=new");
    Text password = u"userPassword", lock = u"pwdAccountLockedTime", class_name = u"orvoPerson";
    Variant secret = u"other-sample", locked = u"000001010000Z";
    expect_ended(password_change, [&] { entry.SetValues(password, secret); });
    expect_ended("userPassword", [&] { entry.ClearValues(password); });
    expect_ended("pwdAccountLockedTime", [&] { entry.SetValues(lock, locked); });
    expect_ended(deletion, [&] { container_.DeleteChild(class_name, path_); });
}

TEST_F(LostAccountChangesTest, ThatAreRefusedEndNoLogins) {
    LoginsOnRecord logins;
    EXPECT_EQ(removed().number, error_number(0x80072030));
    EXPECT_THAT(logins.ended(), IsEmpty());
}

}  // namespace
}  // namespace orvo::directory::ldap
