#include "suite/directory/ldap/provider/LdapDirectory.h"

#include <gtest/gtest.h>

#include "platform/interfaces/call.h"
#include "platform/values/values.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/support/slapd.h"

namespace orvo::directory::ldap {
namespace {

TEST(LdapDirectory, MakesObjectsThatWorkThroughTheirSlots) {
    PrivateSlapd shop;
    const Ref<DirectoryModule> directory = make<LdapDirectory>();
    const Ref<DirectoryEntry> entry = call<&DirectoryModule::CreateEntry>(directory);
    Text server = from_utf8(shop.server());
    Text container = u"ou=Users,o=Shop";
    Text name = u"cn=djansen";
    Text user = from_utf8(shop.service_dn());
    Secret password = Secret::of_bytes(shop.service_password());
    Variant attributes = Values{u"sn"};
    call<&DirectoryEntry::Bind>(entry, server, container, name, user, password, attributes);
    Text attribute = u"sn";
    EXPECT_EQ(call<&DirectoryEntry::GetValues>(entry, attribute), Variant(Values{u"Jansen"}));

    const Ref<DirectoryValidator> validator = call<&DirectoryModule::CreateValidator>(directory);
    call<&DirectoryValidator::Open>(validator, server, container);
    Variant path = u"cn=djansen,ou=Users,o=Shop";
    Variant right = from_utf8(shop.user_password());
    EXPECT_EQ(call<&DirectoryValidator::Validate>(validator, path, right), 0);
}

TEST(LdapDirectory, MakesANewObjectEachTime) {
    const Ref<DirectoryModule> directory = make<LdapDirectory>();
    const auto one = call<&DirectoryModule::CreateEntry>(directory);
    const auto other = call<&DirectoryModule::CreateEntry>(directory);
    EXPECT_TRUE(one);
    EXPECT_FALSE(one == other);
    EXPECT_TRUE(call<&DirectoryModule::CreateSchema>(directory));
}

TEST(LdapDirectory, NamesItselfAsTheSourceOfItsFailures) {
    const Ref<DirectoryEntry> entry = call<&DirectoryModule::CreateEntry>(make<LdapDirectory>());
    Text attribute = u"sn";
    const Failure failure = failure_of([&] { call<&DirectoryEntry::GetValues>(entry, attribute); });
    EXPECT_EQ(failure.number, 91);
    EXPECT_EQ(failure.source, u"OrvoDirectory.Ldap");
}

}  // namespace
}  // namespace orvo::directory::ldap
