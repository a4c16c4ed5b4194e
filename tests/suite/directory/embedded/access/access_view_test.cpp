#include "suite/directory/embedded/access/access_view.h"

#include <gmock/gmock.h>

#include <random>

#include "tests/suite/directory/embedded/access/access_fixture.h"

namespace orvo::directory::embedded {
namespace {

using testing::ElementsAre;

const std::vector<std::string> attributes = {"sn", "mail-alias", "userPassword", "unknown"};

class AView : public testing::Test {
protected:
    const AccessRules rules_ = AccessRules::parse(
        "group admins\n entries one ou=Users,o=Shop\n filter (OrvoUserType=4)\n"
        "rule\n entries base cn=hidden,ou=Users,o=Shop\n"
        "rule\n entries subtree cn=folder,ou=Users,o=Shop\n attributes sn entry\n read everyone\n"
        "rule\n entries subtree ou=Users,o=Shop\n attributes sn\n write group admins\n read self\n"
        "rule\n entries subtree ou=Users,o=Shop\n write everyone\n"
        "rule\n entries one o=Shop\n attributes mail\n read users\n"
        "rule\n entries subtree ou=Profiles,o=Shop\n attributes sn\n read self\n"
        "rule\n entries subtree ou=Profiles,o=Shop\n read users",
        schema_of({"cn", "sn", "mail"}));
};

TEST_F(AView, TellsWhatMayBeSeenAndRead) {
    const Identity who = user("cn=jsmith,ou=Users,o=Shop");
    AccessView view(rules_, who, attributes);
    const AccessView::Rights& other = view.of("cn=glee,ou=Users,o=Shop");
    EXPECT_TRUE(other.may_see);
    EXPECT_THAT(other.may_read, ElementsAre(false, true, false, true));
    EXPECT_THAT(view.of("cn=jsmith,ou=Users,o=Shop").may_read,
                ElementsAre(true, true, false, true));
    EXPECT_FALSE(view.of("cn=hidden,ou=Users,o=Shop").may_see);
    EXPECT_THAT(view.of("ou=Accounts,o=Shop").may_read, ElementsAre(false, true, false, false));
    EXPECT_FALSE(view.of("o=Shop").may_see);
}

TEST_F(AView, HasOneObjectForEqualRights) {
    const Identity who = user("cn=jsmith,ou=Users,o=Shop");
    AccessView view(rules_, who, attributes);
    const AccessView::Rights* first = &view.of("cn=a,ou=Profiles,o=Shop");
    for (int entry = 0; entry < 100; ++entry)
        EXPECT_EQ(&view.of("cn=" + std::to_string(entry) + ",ou=Profiles,o=Shop"), first);
    EXPECT_NE(&view.of("cn=a,ou=Accounts,o=Shop"), first);
    EXPECT_EQ(&view.of("cn=b,OU=profiles, o=Shop"), first);
}

TEST_F(AView, SaysWhatTheRulesSay) {
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::vector<std::string> names = {"o=Shop",
                                            "ou=Users,o=Shop",
                                            "cn=jsmith,ou=Users,o=Shop",
                                            "cn=glee,ou=Users,o=Shop",
                                            "cn=hidden,ou=Users,o=Shop",
                                            "cn=folder,ou=Users,o=Shop",
                                            "cn=in,cn=folder,ou=Users,o=Shop",
                                            "cn=in\\,cn=folder,ou=Users,o=Shop",
                                            "ou=Profiles,o=Shop",
                                            "cn=Buyers,ou=Profiles,o=Shop",
                                            "cn=a\\\\,ou=Profiles,o=Shop",
                                            "o=Other"};
    for (const Identity& who :
         {Identity::nobody(), user("cn=jsmith,ou=Users,o=Shop"), Identity::manager(),
          user("cn=folder,ou=Users,o=Shop", "4"), user("cn=hidden,ou=Users,o=Shop"),
          user("cn=Buyers,ou=Profiles,o=Shop")}) {
        AccessView view(rules_, who, attributes);
        for (int look = 0; look < 500; ++look) {
            const std::string& name = names[random() % names.size()];
            const AccessView::Rights& rights = view.of(name);
            ASSERT_EQ(rights.may_see, rules_.allow(who, Right::read, dn(name), the_entry)) << name;
            for (std::size_t at = 0; at < attributes.size(); ++at)
                ASSERT_EQ(rights.may_read[at],
                          rules_.allow(who, Right::read, dn(name), attributes[at]))
                    << name << " " << attributes[at];
        }
    }
}

}  // namespace
}  // namespace orvo::directory::embedded
