// Profiles created, listed and deleted in a real directory.

#include "tests/component/containers/containers_live_test.h"

namespace orvo {
namespace {

class ProfilesLive : public ContainersLive {
protected:
    static Object create_profile(const Object& profiles, const Text& name) {
        return late::call(profiles, u"CreateProfile", {name}).to<Object>();
    }
    static Variant remove(const Object& profiles, const Text& name) {
        return late::call(profiles, u"DeleteProfile", {name});
    }
    std::vector<std::string> all() {
        return column(late::call(profiles(), u"AsRecordset").to<Object>());
    }
};

TEST_FRESH_FOR_EACH(ProfilesLive, AreListedByName) {
    EXPECT_THAT(all(), UnorderedElementsAre("Administrators", "Approvers", "Branch Office",
                                            "Buyer's Friends", "Buyers", "Eink\xC3\xA4ufer",
                                            "Guests", "Nobody", "Receivers", "Sales",
                                            "\xD0\x9F\xD0\xBE\xD0\xBA\xD1\x83\xD0\xBF\xD0\xB0\xD1"
                                            "\x82\xD0\xB5\xD0\xBB\xD0\xB8"));
}

TEST_FRESH_FOR_EACH(ProfilesLive, ANewProfileIsBoundAndDeletedWhileNobodyHasIt) {
    const auto before = shop_.everything();
    const Object container = profiles();
    const Object made = create_profile(container, u"Night, Shift");
    EXPECT_EQ(property(made, u"CN"), "Night, Shift");
    const auto name = shop_.find("ou=Profiles,o=Shop", "(cn=Night, Shift)");
    ASSERT_EQ(name.size(), 1u);
    EXPECT_THAT(shop_.values(name[0], "objectClass"), ElementsAre("orvoProfile"));
    late::put(made, u"Locale", std::int16_t(1031));
    EXPECT_THAT(shop_.values(name[0], "Locale"), ElementsAre("1031"));
    EXPECT_EQ(remove(container, u"Night, Shift"), Variant(true));
    EXPECT_EQ(shop_.everything(), before);
}

TEST_FRESH_FOR_EACH(ProfilesLive, AnUnboundContainerCreatesAsTheScriptAccount) {
    load_settings();
    const Object container = create_object(u"OrvoMembership.Profiles");
    create_profile(container, u"Night Shift");
    EXPECT_THAT(shop_.values("cn=Night Shift,ou=Profiles,o=Shop", "creatorsName"),
                ElementsAre(shop_.service_dn()));
    EXPECT_EQ(remove(container, u"Night Shift"), Variant(true)) << "it stays bound so";
}

TEST_FRESH_FOR_EACH(ProfilesLive, AnUnboundContainerDeletesNothing) {
    load_settings();
    const Object container = create_object(u"OrvoMembership.Profiles");
    expect_failure(raised_by([&] { remove(container, u"Nobody"); }), error_number(0x80040327),
                   u"OrvoMembership.Profiles.DeleteProfile",
                   block("80040327", "Profiles.DeleteProfile",
                         "Object not bound to Profiles organizational unit. Call BindAs first"));
}

TEST_FRESH_FOR_EACH(ProfilesLive, ANameThatIsTakenIsRefused) {
    const auto before = shop_.everything();
    for (const char16_t* name : {u"Buyers", u"BUYERS"})
        expect_failure(raised_by([&] { create_profile(profiles(), name); }),
                       error_number(0x8004044F), u"OrvoMembership.Profiles.CreateProfile",
                       block("8004044F", "Profiles.CreateProfile",
                             "Unable to add profile with profile name:'" + to_utf8(Text(name)) +
                                 "'. The profile already exists."));
    EXPECT_EQ(shop_.everything(), before);
}

TEST_FRESH_FOR_EACH(ProfilesLive, AProfileWithUsersOrLocalAdministratorsStays) {
    const auto before = shop_.everything();
    const Object container = profiles();
    EXPECT_EQ(remove(container, u"Buyers"), Variant(false));
    EXPECT_EQ(remove(container, u"Branch Office"), Variant(false));
    EXPECT_EQ(shop_.everything(), before);
    EXPECT_EQ(remove(container, u"Nobody"), Variant(true));
    EXPECT_THAT(shop_.find("ou=Profiles,o=Shop", "(cn=Nobody)"), IsEmpty());
}

TEST_FRESH_FOR_EACH(ProfilesLive, AProfileStaysUntilItsLastUserLeaves) {
    const Object container = profiles();
    create_profile(container, u"Night Shift");
    const Object tina = create(members(), u"tina");
    late::put(tina, u"ProfileCN", u"Night Shift");
    EXPECT_EQ(remove(container, u"Night Shift"), Variant(false));
    late::put(tina, u"ProfileCN", u"");
    EXPECT_EQ(remove(container, u"Night Shift"), Variant(true));
}

// The apostrophe is doubled in the query for its users, and nothing undoes that.
TEST_FRESH_FOR_EACH(ProfilesLive, AProfileWithAnApostropheIsDeletedUnderItsUsers) {
    const Object container = profiles();
    const Object tina = create(members(), u"tina");
    late::put(tina, u"ProfileCN", u"Buyer's Friends");
    EXPECT_THAT(stored("tina", "ProfileCN"), ElementsAre("Buyer's Friends"));
    EXPECT_EQ(remove(container, u"Buyer's Friends"), Variant(true)) << "deliberate";
    EXPECT_THAT(shop_.find("ou=Profiles,o=Shop", "(cn=Buyer's Friends)"), IsEmpty());
    EXPECT_THAT(stored("tina", "ProfileCN"), ElementsAre("Buyer's Friends"));
}

TEST_FRESH_FOR_EACH(ProfilesLive, AMissingProfileIsNoSuchEntry) {
    const Failure failure = raised_by([&] { remove(profiles(), u"Night Shift"); });
    EXPECT_EQ(failure.number, error_number(0x80072030)) << failure.what();
    EXPECT_EQ(failure.source, source());
    EXPECT_THAT(to_utf8(failure.description),
                HasSubstr("(32) There is no such entry. The nearest entry is "
                          "'ou=Profiles,o=Shop'."));
}

TEST_FRESH_FOR_EACH(ProfilesLive, AnOrdinaryUserSeesTheProfilesAndChangesNone) {
    load_settings();
    const Object container = create_object(u"OrvoMembership.Profiles");
    late::call(container, u"BindAs",
               {from_utf8(shop_.user_dn("jsmith")), from_utf8(shop_.user_password())});
    EXPECT_EQ(column(late::call(container, u"AsRecordset").to<Object>()).size(), 11u);
    const auto before = shop_.everything();
    EXPECT_EQ(raised_by([&] { create_profile(container, u"Mine"); }).number,
              error_number(0x80072098));
    EXPECT_EQ(raised_by([&] { remove(container, u"Nobody"); }).number, error_number(0x80072098));
    EXPECT_EQ(shop_.everything(), before);
}

TEST_FRESH_FOR_EACH(ProfilesLive, NamesWithSignsOfTheirOwnAreCreatedBoundAndDeleted) {
    const auto before = shop_.everything();
    const Object container = profiles();
    for (const char16_t* name :
         {u"a, b", u"a+b", u"\"quoted\"", u"#hash", u"(paren)", u"back\\slash", u"back\\", u"a=b",
          u"R&D <core>, team=blue", u"\u65E5\u672C", u"O'Neill", u" blank"}) {
        SCOPED_TRACE(to_utf8(Text(name)));
        EXPECT_EQ(property(create_profile(container, name), u"CN"), to_utf8(Text(name)));
        EXPECT_EQ(remove(container, name), Variant(true));
        EXPECT_EQ(shop_.everything(), before);
    }
}

// The queries for those who have a profile hold its name as it is.
TEST_FRESH_FOR_EACH(ProfilesLive, NamesThatMeanSomethingElseInAQueryAreRefused) {
    const auto before = shop_.everything();
    const Object container = profiles();
    for (const char16_t* name :
         {u"*", u"star*", u"p)D", u"p(E", u"p&(Y", u"p|Q)(x=*", u"pZ)(objectClass=*"}) {
        const Failure failure = raised_by([&] { create_profile(container, name); });
        EXPECT_EQ(failure.number, error_number(0x80072032));
        EXPECT_NE(
            failure.description.find(u"(34) The distinguished name is not valid. The name '" +
                                     Text(name) + u"' would mean something else in a filter."),
            Text::npos)
            << to_utf8(failure.description);
    }
    EXPECT_EQ(shop_.everything(), before);
}

}  // namespace
}  // namespace orvo
