#include "tests/component/server/module_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;

class LateBinding : public ModuleTest {};

TEST_FRESH(LateBinding, NamesAreFoundWithoutRegardToCase) {
    const Object info = loaded_settings();
    for (const char16_t* name : {u"GetServerName", u"getservername", u"GETSERVERNAME"})
        EXPECT_EQ(late::call(info, name), Variant(u"dir01:389"));
    EXPECT_EQ(late::call(info, u"MAKELDAPSTRING", {u"h", u"o=Shop"}), Variant(u"LDAP://h/o=Shop"));
}

TEST_FRESH(LateBinding, ANameThatAnObjectLacksIs438) {
    const Object info = create_object(u"OrvoMembership.ServerInfo");
    for (const char16_t* name : {u"NoSuchName", u"CheckState", u"IsLoaded", u""})
        expect_failure(raised_by([&] { late::call(info, name); }), 438, u"",
                       "Object doesn't support this property or method");
}

TEST_FRESH(LateBinding, TheOptionalObjectMayBeLeftOut) {
    const Object info = loaded_settings();
    const Variant path(u"LDAP://dir01/ou=Users,o=Shop");
    EXPECT_EQ(late::call(info, u"makeLDAPString", {u"dir01", u"ou=Users,o=Shop"}), path);
    EXPECT_EQ(
        late::call(info, u"makeLDAPString", {u"dir01", u"ou=Users,o=Shop", Variant::missing()}),
        path);
    EXPECT_EQ(late::call(info, u"makeLDAPString", {u"dir01", u"ou=Users,o=Shop", u""}), path);
}

TEST_FRESH(LateBinding, InOutArgumentsAreWrittenBackIntoTheCallersVariables) {
    const Object info = loaded_settings();
    Variant arguments[] = {u"LDAP://dir01:389/", u"ou=Users,o=Shop", u"jsmith"};
    EXPECT_EQ(late::call_by_reference(info, u"makeLDAPString", arguments),
              Variant(u"LDAP://dir01:389/un=jsmith,ou=Users,o=Shop"));
    EXPECT_THAT(arguments, ElementsAre(Variant(u"dir01:389"), Variant(u"ou=Users,o=Shop"),
                                       Variant(u"un=jsmith")));
}

TEST_FRESH(LateBinding, ArgumentsByValueStayTheCallers) {
    const Object info = loaded_settings();
    const Variant host(u"LDAP://dir01/");
    EXPECT_EQ(late::call(info, u"makeLDAPString", {host, u"o=Shop"}),
              Variant(u"LDAP://dir01/o=Shop"));
    EXPECT_EQ(host, Variant(u"LDAP://dir01/"));
}

TEST_FRESH(LateBinding, AnArgumentThatIsLeftOutIs449) {
    const Object info = loaded_settings();
    expect_failure(raised_by([&] { late::call(info, u"makeLDAPString", {u"dir01"}); }), 449, u"",
                   "Argument not optional");
    const Object entry = bound_entry();
    expect_failure(raised_by([&] { late::call(entry, u"GetAttribValue"); }), 449, u"",
                   "Argument not optional");
}

TEST_FRESH(LateBinding, AnArgumentTooManyIs450) {
    const Object info = loaded_settings();
    constexpr const char* text = "Wrong number of arguments or invalid property assignment";
    expect_failure(raised_by([&] {
                       late::call(info, u"makeLDAPString", {u"a", u"b", u"c", u"d"});
                   }),
                   450, u"", text);
    expect_failure(raised_by([&] { late::call(info, u"GetServerName", {u"x"}); }), 450, u"", text);
    const Object entry = bound_entry();
    expect_failure(raised_by([&] { late::call(entry, u"BindToConfig", {u"x"}); }), 450, u"", text);
}

TEST_FRESH(LateBinding, AnArgumentThatDoesNotConvertIsAnErrorOfTheCallAndTheMethodNeverRuns) {
    const Object entry = bound_entry();
    journal_.clear();
    for (const Variant& wrong : {Variant(Values{u"sn"}), Variant::null(), Variant(Object())})
        EXPECT_THAT(raised_by([&] { late::call(entry, u"GetAttribValue", {wrong}); }).number,
                    testing::AnyOf(13, 91));
    const Object account = create_object(u"OrvoMembership.Account");
    expect_failure(raised_by([&] { late::call(account, u"Init", {u"two"}); }), 13, u"",
                   "Type mismatch");
    expect_failure(raised_by([&] { late::call(account, u"Init", {70000}); }), 6, u"", "Overflow");
    EXPECT_THAT(journal_.take(), testing::IsEmpty());
    EXPECT_THAT(log_.take(), testing::IsEmpty());
}

TEST_FRESH(LateBinding, ArgumentsConvertByTheRulesOfAutomation) {
    const Object account = create_object(u"OrvoMembership.Account");
    late::call(create_object(u"OrvoMembership.Validator"), u"setServerInfo", {u"site.ini"});
    for (const Variant& two :
         {Variant(2), Variant(u" 2 "), Variant(2.4), Variant(std::int16_t{2})}) {
        journal_.clear();
        late::call(account, u"Init", {two});
        EXPECT_THAT(journal_.take().back(), testing::HasSubstr(", an=2, "));
    }
    const Object entry = bound_entry();
    journal_.clear();
    late::call(entry, u"GetAttribValue", {42});
    EXPECT_THAT(journal_.take(), ElementsAre("GetValues(42)"));
}

TEST_FRESH(LateBinding, AnEntryIsBoundReadWrittenAndCleared) {
    directory_.answer(u"mail", Values{u"a@shop", u"b@shop"});
    const Object entry = create_object(u"OrvoMembership.LdapAccess");
    journal_.clear();
    late::call(entry, u"BindAs", {u"cn=jsmith", u"cn=admin", u"secret", u"dir01", u"o=Shop"});
    EXPECT_EQ(late::call(entry, u"GetAttribValue", {u"mail"}), Variant(u"a@shop"));
    late::call(entry, u"SetAttribValue", {u"mail", Values{u"c@shop"}});
    late::call(entry, u"SetAttribValue", {u"sn", std::int32_t{5}});
    late::call(entry, u"ClearAttribValue", {u"title"});
    EXPECT_THAT(journal_.take(), ElementsAre("new Test.Directory()", "CreateEntry()",
                                             "Bind(dir01, o=Shop, cn=jsmith, cn=admin, secret, [])",
                                             "GetValues(mail)", "SetValues(mail, [c@shop])",
                                             "SetValues(sn, 5)", "ClearValues(title)"));
}

TEST_FRESH(LateBinding, AFailureArrivesWithNumberSourceAndBlock) {
    const Object entry = create_object(u"OrvoMembership.LdapAccess");
    expect_failure(raised_by([&] { late::call(entry, u"clearattribvalue", {u"sn"}); }), 91,
                   u"OrvoMembership",
                   "\r\n"
                   "ERROR 0x5B\r\n"
                   " METHOD: OrvoMembership.LDAPAccess.ClearAttribvalue\r\n"
                   " DESC: Object variable or With block variable not set.\r\n");
}

TEST_FRESH(LateBinding, PropertiesOfAnAccountAreReadAndCannotBeWritten) {
    directory_.answer(u"OrvoNTUser", Values{u"SHOP\\web"});
    late::call(create_object(u"OrvoMembership.Validator"), u"setServerInfo", {u"site.ini"});
    const Object account = create_object(u"OrvoMembership.Account");
    late::call(account, u"Init", {0});
    EXPECT_EQ(late::get(account, u"ntuser"), Variant(u"SHOP\\web"));
    expect_failure(raised_by([&] { late::put(account, u"NTUser", u"x"); }), 438, u"",
                   "Object doesn't support this property or method");
}

TEST_FRESH(LateBinding, TheDefaultValueOfServerInfoIsItsConfigurationsPath) {
    EXPECT_EQ(late::value_of(loaded_settings()), Variant(u"site.ini"));
}

TEST_FRESH(LateBinding, ServerInfoTakesAConfigurationFromItsCaller) {
    const Object info = create_object(u"OrvoMembership.ServerInfo");
    EXPECT_EQ(late::call(info, u"GetServerName"), Variant(u""));
    late::call(info, u"LoadConfigFile", {configuration_.make_one().object()});
    EXPECT_EQ(late::call(info, u"GetServerName"), Variant(u"dir01:389"));
    EXPECT_EQ(raised_by([&] { late::call(info, u"LoadConfigFile", {info}); }).number, 13)
        << "an object of another class";
    EXPECT_EQ(raised_by([&] { late::call(info, u"LoadConfigFile", {u"site.ini"}); }).number, 13)
        << "no object at all";
}

TEST_FRESH(LateBinding, ThePasswordCheckTakesVariantsAndAnswersANumber) {
    directory_.verdict = -1;
    const Object validator = create_object(u"OrvoMembership.Validator");
    late::call(validator, u"SETSERVERINFO", {u"site.ini"});
    EXPECT_EQ(late::call(validator, u"ValidatePassword", {u"jsmith", u"wrong"}),
              Variant(std::int32_t{-1}));
    EXPECT_EQ(raised_by([&] {
                  late::call(validator, u"ValidatePassword", {Variant::null(), u"wrong"});
              }).number,
              94);
}

TEST_FRESH(LateBinding, ACreatorsObjectsAreUsedByNameToo) {
    late::call(create_object(u"OrvoMembership.Validator"), u"setServerInfo", {u"site.ini"});
    const Object creator = create_object(u"OrvoMembership.PMMCreator");
    const Object entry = late::call(creator, u"GetPMMObject").to<Object>();
    EXPECT_EQ(shown(late::call(entry, u"GetValues", {u"sn"})), "[Empty]");
    EXPECT_TRUE(late::call(creator, u"GetPMMSchema").to<Object>());
}

}  // namespace
}  // namespace orvo
