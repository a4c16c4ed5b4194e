#include <gmock/gmock.h>

#include "tests/suite/directory/ldap/provider/mapped_test.h"

namespace orvo::directory::ldap {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* names =
    "[DIRECTORY.MAP]\ncn = uid\nPhoneNumber = telephoneNumber\nOrvoGUID =\n"
    "UserSearch = sub\n"
    "CompanyNumber = departmentNumber\nLanguageID = preferredLanguage\n"
    "[DIRECTORY.MAP.VALUES.LanguageID]\n1 = en\n2 = nl | nl-NL\n"
    "[DIRECTORY.MAP.CLASSES]\norvoPerson = inetOrgPerson | organizationalPerson | person | top\n"
    "[DIRECTORY.MAP.DEFAULTS]\nOrvoUserType = 1\nOrvoApps = 1 | 7\n"
    "[DIRECTORY.MAP.ACCOUNTS]\n1.User = web-user\n1.Password = @file:web.code\n";

class MappedNames : public MappedTest {
protected:
    MappedNames() { use(names); }
};

TEST_F(MappedNames, AreReadByOurNamesWithOurTypes) {
    LdapEntry entry({}, client_);
    bind(entry, "djansen");
    EXPECT_EQ(text(entry, u"CN"), "djansen");
    EXPECT_EQ(text(entry, u"PhoneNumber"), "+31 20 555 2001");
    EXPECT_EQ(text(entry, u"LanguageID"), "2");
    EXPECT_EQ(text(entry, u"sn"), "Jansen");
    EXPECT_EQ(text(entry, u"OrvoGUID"), "");
    EXPECT_EQ(text(entry, u"OrvoApps"), "1,7");
    Text type = u"OrvoUserType";
    EXPECT_EQ(entry.GetValues(type), Variant(Values{std::int32_t{1}}));
}

TEST_F(MappedNames, AreWrittenByTheirsAndReadBack) {
    LdapEntry entry({}, client_);
    bind(entry, "djansen");
    set(entry, u"LanguageID", Values{u"1"});
    EXPECT_THAT(stored(dn("djansen", "Warehouse"), "preferredLanguage"), ElementsAre("en"));
    EXPECT_EQ(text(entry, u"LanguageID"), "1");
    Text phone = u"PhoneNumber";
    entry.ClearValues(phone);
    EXPECT_THAT(stored(dn("djansen", "Warehouse"), "telephoneNumber"), IsEmpty());
    EXPECT_EQ(text(entry, u"PhoneNumber"), "");
}

TEST_F(MappedNames, RefuseWhatTheDirectoryHasNoPlaceFor) {
    LdapEntry entry({}, client_);
    bind(entry, "djansen");
    set(entry, u"OrvoUserType", Values{std::int32_t{1}});
    const Failure failure =
        failure_of([&] { set(entry, u"OrvoUserType", Values{std::int32_t{4}}); });
    EXPECT_THAT(to_utf8(failure.description), HasSubstr("no place for OrvoUserType"));
}

TEST_F(MappedNames, AreColumnsFiltersAndTheOrderOfLists) {
    EXPECT_THAT(found(u"(& (objectClass=orvoPerson)(OrvoUserType=*)(LanguageID=2))",
                      {u"CN", u"PhoneNumber", u"OrvoUserType", u"LanguageID"}),
                ElementsAre("djansen +31 20 555 2001 1 2", "efischer +31 20 555 2002 1 2",
                            "fgarcia +31 20 555 2003 1 2", "twin +31 20 555 2004 1 2"));
    EXPECT_THAT(found(u"(&(objectClass=orvoPerson)(!OrvoUserType = 1))"), IsEmpty());
    EXPECT_THAT(found(u"(&(objectClass=orvoPerson)(OrvoApps=9))"), IsEmpty());
}

TEST_F(MappedNames, ArePagedByOurNames) {
    const Text all = u"(objectClass=orvoPerson)";
    EXPECT_THAT(found(u"(&" + all + u"(cn=*))", {u"cn"}, 3), ElementsAre("alee", "bkim", "cnovak"));
    EXPECT_THAT(found(u"(&" + all + u"(cn=*)(cn>=cnovak!))", {u"cn"}, 3),
                ElementsAre("djansen", "efischer", "fgarcia"));
}

TEST_F(MappedNames, NameANewUserWhoIsFoundAtOnceAndDeletedByThem) {
    const std::string mapped = names;
    use("[DIRECTORY.MAP]\ncn = uid | cn\n" + mapped.substr(mapped.find("PhoneNumber")));
    LdapEntry container({}, client_);
    bind(container, u"cn=root,o=Company", server_.root_password().c_str(), u"");
    Object given = dictionary({{u"cn", u"newbie"},
                               {u"OrvoGUID", u"0123"},
                               {u"userPassword", u"newbie-sample"},
                               {u"uid", u"newbie"},
                               {u"sn", u""},
                               {u"objectClass", Values{u"orvoPerson"}}});
    Variant classes = Values{u"orvoPerson"};
    Text naming = u"uid", name = u"uid=newbie,ou=People,o=Company", class_name = u"orvoPerson";
    EXPECT_EQ(checked("newbie", "newbie-sample"), -1);
    container.CreateChild(classes, naming, given);
    EXPECT_THAT(stored("uid=newbie,ou=People,o=Company", "objectClass"),
                ElementsAre("inetOrgPerson", "organizationalPerson", "person", "top"));
    EXPECT_THAT(stored("uid=newbie,ou=People,o=Company", "cn"), ElementsAre("newbie"));
    EXPECT_EQ(checked("newbie", "newbie-sample"), 0);
    container.DeleteChild(class_name, name);
    EXPECT_EQ(checked("newbie", "newbie-sample"), -1);
}

TEST_F(MappedNames, AnAccountIsTheConfigurationsForTheServiceAccountAlone) {
    std::ofstream(folder_.path() / "web.code") << "secret-of-web\n";
    LdapEntry entry({}, client_);
    bind(entry, u"cn=shop,ou=Services,o=Company", "service-sample", u"cn=1",
         u"ou=Accounts,o=Company");
    EXPECT_EQ(text(entry, u"OrvoNTUser"), "web-user");
    EXPECT_EQ(text(entry, u"OrvoNTPassword"), "secret-of-web");
    EXPECT_THAT(to_utf8(failure_of([&] { set(entry, u"OrvoNTUser", u"x"); }).description),
                HasSubstr("configuration's"));
    LdapEntry other({}, client_);
    EXPECT_EQ(failure_of([&] {
                  bind(other, path_of("jsmith"), "company-sample", u"cn=1",
                       u"ou=Accounts,o=Company");
              }).number,
              error_number(0x80072098));
    EXPECT_EQ(failure_of([&] {
                  bind(other, u"cn=shop,ou=Services,o=Company", "guessed", u"cn=1",
                       u"ou=Accounts,o=Company");
              }).number,
              error_number(0x8007052E));
}

TEST_F(MappedNames, AMapThatCannotBeReadIsToldToWhoeverBinds) {
    use("[DIRECTORY.MAP]\nOrvoRolle = title\n");
    LdapEntry entry({}, client_);
    EXPECT_THAT(to_utf8(failure_of([&] { bind(entry, "djansen"); }).description),
                HasSubstr("site.ini, line 11: there is no key \"OrvoRolle\""));
    use(names);
    bind(entry, "djansen");
}

TEST_F(MappedNames, AreNobodyElsesDirectory) {
    PrivateSlapd shop;
    LdapEntry entry({}, client_);
    Text server = from_utf8(shop.server()), container = u"ou=Users,o=Shop", name = u"cn=jsmith";
    Text user = from_utf8(shop.service_dn());
    Secret password(from_utf8(shop.service_password()));
    Variant attributes = Values{};
    entry.Bind(server, container, name, user, password, attributes);
    EXPECT_EQ(text(entry, u"OrvoUserType"), "1");
    EXPECT_NE(text(entry, u"OrvoGUID"), "");
}

}  // namespace
}  // namespace orvo::directory::ldap
