// What is known of a server, where not everybody may see it.

#include "tests/suite/directory/ldap/pool/pool_test.h"

namespace orvo::directory::ldap {
namespace {

class HiddenRootEntryTest : public PoolTest {
protected:
    HiddenRootEntryTest()
        : PoolTest({.config = "database frontend\n"
                              "access to dn.base=\"\"\n"
                              "    by dn.exact=\"cn=orvo-service,ou=Services,o=Shop\" read\n"
                              "    by * none\n"
                              "access to *\n"
                              "    by * read\n"}) {}
    long extended_operations() {
        return counted("cn=Extended,cn=Operations", "monitorOpInitiated");
    }
};

TEST_F(HiddenRootEntryTest, WhoMaySeeItHasWhatItSaysThoughSomebodyElseReadItFirst) {
    LdapEntry own({}, client_), entry({}, client_);
    bind(own, user("djansen"), u"cn=djansen");
    EXPECT_EQ(values(own, u"sn"), Variant(Values{u"Jansen"}));
    const long before = extended_operations();
    bind(entry, service());
    set(entry, u"userPassword", u"hashed-by-the-server");
    EXPECT_EQ(extended_operations(), before + 1);
    EXPECT_EQ(checked({server_.user_dn("djansen"), "hashed-by-the-server"}), 0);
}

}  // namespace
}  // namespace orvo::directory::ldap
