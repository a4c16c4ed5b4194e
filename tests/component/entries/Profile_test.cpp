#include "component/entries/Profile.h"

#include "component/config/SharedServerInfo.h"
#include "platform/dictionary/dictionary.h"
#include "platform/recordset/builder.h"
#include "tests/component/component_test.h"

namespace orvo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(slot_of<&Profile::GetAttribValue> == 7);
static_assert(slot_of<&Profile::SetAttribValue> == 8);
static_assert(slot_of<&Profile::ClearAttribValue> == 9);
static_assert(slot_of<&Profile::BindAs> == 10);
static_assert(slot_of<&Profile::GetUsers> == 11);
static_assert(slot_of<&Profile::ClearOrvoApps> == 12);
static_assert(slot_of<&Profile::HasRole> == 13);
static_assert(slot_of<&Profile::AssignRole> == 14);
static_assert(slot_of<&Profile::setServerInfo> == 15);
static_assert(slot_of<&Profile::Init> == 16);
static_assert(slot_of<&Profile::CN> == 17);
static_assert(slot_of<&Profile::Locale> == 18);
static_assert(slot_of<&Profile::put_LanguageID> == 21);
static_assert(slot_of<&Profile::OrvoApps> == 28);
static_assert(slot_of<&Profile::put_whole<3>> == 31);

constexpr const char* not_set = "Object variable or With block variable not set";
constexpr const char* type_mismatch = "Type mismatch";
constexpr const char* bind_as = "OrvoMembership.Profile.BindAs";
// What the activation's entries name, which is the user's class. Deliberate.
constexpr const char* activate = "OrvoMembership.User.IObjectControl_Activate";

constexpr const char* bind_sales =
    "Bind(dir01:389, ou=Profiles,o=Shop, pn=sales, cn=web,o=Shop, web-code, [])";

Failure no_rights() { return {error_number(0x80072098), u"Its.Own", u"(50) no rights"}; }

Values numbers(std::initializer_list<int> elements) {
    Values values(0, 0);
    for (const int number : elements) values.push_back(std::int32_t{number});
    return values;
}

class ProfileTest : public ComponentTest {
protected:
    void load_settings() {
        load_site_configuration();
        forget();
    }
    void forget() {
        journal_.clear();
        log_.take();
    }
    static void bind(Behind<Profile>& profile, Text name = u"sales",
                     Text account = u"cn=web,o=Shop", Text password = u"web-code") {
        profile.call<&Profile::BindAs>(name, account, password);
    }
    static void init(Behind<Profile>& profile, Text name = u"sales") {
        profile.call<&Profile::Init>(name);
        EXPECT_THAT(name, testing::AnyOf(u"sales", u"stock")) << "stays as it is";
    }
    template <class Body>
    void through_every_door(Body body) {
        load_settings();
        for (const Door door : every_door) {
            SCOPED_TRACE(testing::PrintToString(door));
            Behind<Profile> profile(door);
            forget();
            body(profile);
        }
    }
    template <class Body>
    void bound_through_every_door(Body body) {
        through_every_door([&](Behind<Profile>& profile) {
            bind(profile);
            forget();
            body(profile);
        });
    }
    Ref<Profile> bound() {
        load_settings();
        const auto profile = make<Profile>();
        Text name = u"sales", account = u"cn=web,o=Shop", password = u"web-code";
        call<&Profile::BindAs>(profile, name, account, password);
        forget();
        return profile;
    }
    static Object session(const std::map<Text, Text>& values) {
        const auto session = make<DictionaryObject>();
        for (const auto& [name, value] : values) {
            Variant key = name, item = value;
            call<&Dictionary::Add>(session, key, item);
        }
        return session.object();
    }
};

// Activation.

TEST_FRESH(ProfileTest, OutsideAContextOnlyANoteIsWrittenUnderTheUsersName) {
    const Profile profile;
    EXPECT_THAT(journal_.take(), IsEmpty());
    EXPECT_THAT(
        log_.take(),
        ElementsAre(LogEntry{"LogMessage", activate,
                             block("0", activate, "Not an actual error", "No objectcontext"), 1}));
    EXPECT_FALSE(shared_server_info()->IsLoaded());
}

TEST_FRESH(ProfileTest, InAContextWithoutASessionOnlyANoteIsWrittenUnderTheUsersName) {
    const RecordingContext context(journal_);
    const Profile profile;
    EXPECT_THAT(journal_.take(), ElementsAre("Item(Session)", "CreateInstance(Quendra.Log)"));
    EXPECT_THAT(log_.take(), ElementsAre(LogEntry{"LogMessage", activate,
                                                  block("0", activate, "Not an actual error",
                                                        "No session in objectcontext"),
                                                  1}));
    EXPECT_FALSE(shared_server_info()->IsLoaded());
}

TEST_FRESH(ProfileTest, ASessionIsTakenAndTheSettingsLoadedButNothingIsBound) {
    RecordingContext context(journal_);
    context.items[u"Session"] = session({{u"REMOTE_USER", u"jsmith"}});
    Profile profile;
    const auto calls = journal_.take();
    ASSERT_EQ(calls.size(), 22u);
    EXPECT_EQ(calls[0], "Item(Session)");
    EXPECT_EQ(calls[1], "Item(Session)");
    EXPECT_EQ(calls[2], "CreateInstance(Quendra.Configuration)");
    EXPECT_EQ(calls[3], "new Quendra.Configuration()");
    EXPECT_EQ(calls[4], "Initialize()");
    EXPECT_EQ(calls[5], "ReadConfigValue(MEMBERSHIP, LDAPServer)");
    EXPECT_THAT(log_.take(), IsEmpty());
    EXPECT_TRUE(shared_server_info()->IsLoaded());
    EXPECT_EQ(configuration_.alive, 0) << "the component is released";
    EXPECT_EQ(raised_by([&] { profile.CN(); }).number, 91);
}

TEST_FRESH(ProfileTest, AFailingConfigurationSurfacesFromCreation) {
    RecordingContext context(journal_);
    context.items[u"Session"] = session({});
    journal_.refuse("Initialize", {53, u"Its.Own", u"site.ini: not there"});
    expect_failure(raised_by([] { Profile(); }), 53, u"Its.Own",
                   block("35", "OrvoMembership.Profile.IObjectControl", "site.ini: not there"));
}

TEST_FRESH(ProfileTest, DeactivationKeepsTheProfileBound) {
    const auto profile = bound();
    const auto control = Ref<ObjectControl>::from(profile.object());
    call<&ObjectControl::IObjectControl_Deactivate>(control);
    EXPECT_EQ(call<&Profile::CN>(profile), u"");
    EXPECT_FALSE(call<&ObjectControl::IObjectControl_CanBePooled>(control));
}

// Binding.

TEST_FRESH(ProfileTest, BindAsBindsANewEntryBelowTheProfileContainer) {
    through_every_door([this](Behind<Profile>& profile) {
        bind(profile);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("new Test.Directory()", "CreateEntry()", bind_sales));
        bind(profile, u"stock", u"", u"");
        EXPECT_THAT(
            journal_.take(),
            ElementsAre("CreateEntry()", "Bind(dir01:389, ou=Profiles,o=Shop, pn=stock, , , [])"));
        EXPECT_EQ(directory_.entries, 1);
    });
}

TEST_FRESH(ProfileTest, NeitherAnEmptyNameNorMissingSettingsAreRefusedByTheProfile) {
    membership().erase(u"LDAPServer");
    membership().erase(u"LDAPRoot");
    through_every_door([this](Behind<Profile>& profile) {
        bind(profile, u"");
        EXPECT_THAT(journal_.take().back(), testing::EndsWith("pn=, cn=web,o=Shop, web-code, [])"));
    });
}

TEST_FRESH(ProfileTest, ARefusedBindIsReportedUnderBindAs) {
    journal_.refuse("Bind", {error_number(0x80072030), u"Its.Own", u"(32) No such object"});
    through_every_door([this](Behind<Profile>& profile) {
        expect_failure(raised_by([&] { bind(profile); }), error_number(0x80072030), u"Its.Own",
                       block("80072030", bind_as, "(32) No such object"));
        EXPECT_THAT(log_.take_sources(), ElementsAre("Its.Own"));
    });
}

TEST_FRESH(ProfileTest, WithoutSettingsBindAsFailsInTheProviderFactory) {
    Behind<Profile> profile(Door::slots);
    expect_failure(raised_by([&] { bind(profile); }), 91, u"OrvoMembership",
                   block("5B", bind_as, block("5B", "OrvoMembership.PMMCreator.GetPMM", not_set)));
}

TEST_FRESH(ProfileTest, SetServerInfoLoadsAFileIntoTheThreadsSettings) {
    membership() = {};
    configuration_.files[u"C:\\Shop\\site.ini"][u"MEMBERSHIP"] = shop();
    for (const Door door : every_door) {
        in_fresh_thread([&] {
            Behind<Profile> profile(door);
            forget();
            profile.call<&Profile::setServerInfo>(Text(u"C:\\Shop\\site.ini"));
            bind(profile);
            EXPECT_EQ(journal_.take().back(), bind_sales);
            journal_.refuse_nth("LoadConfigurationFile", 1, {53, u"Its.Own", u"not there"});
            expect_failure(
                raised_by([&] { profile.call<&Profile::setServerInfo>(Text(u"missing.ini")); }), 53,
                u"Its.Own", block("35", "OrvoMembership.Profile.setServerInfo", "not there"));
        });
    }
}

TEST_FRESH(ProfileTest, InitWithoutSessionAndCredentialsReturnsQuietlyUnbound) {
    through_every_door([this](Behind<Profile>& profile) {
        EXPECT_NO_THROW(init(profile));
        EXPECT_THAT(journal_.take(), IsEmpty());
        EXPECT_THAT(log_.take(), IsEmpty());
        expect_failure(raised_by([&] { profile.call<&Profile::CN>(); }), 91, u"OrvoMembership",
                       block("5B", "OrvoMembership.Profile.CN", not_set));
    });
}

TEST_FRESH(ProfileTest, InitBindsWithTheSessionsLogin) {
    load_settings();
    RecordingContext context(journal_);
    context.items[u"Session"] = session({{u"REMOTE_USER", u"jsmith"},
                                         {u"REMOTE_ACCOUNT", u"un=jsmith,ou=Users,o=Shop"},
                                         {u"REMOTE_PASSWORD", u"js-code"}});
    for (const Door door : every_door) {
        SCOPED_TRACE(testing::PrintToString(door));
        Behind<Profile> profile(door);
        init(profile);
        EXPECT_EQ(journal_.take().back(),
                  "Bind(dir01:389, ou=Profiles,o=Shop, pn=sales, "
                  "un=jsmith,ou=Users,o=Shop, js-code, [])");
    }
}

TEST_FRESH(ProfileTest, InitAfterBindAsBindsWithTheStoredCredentialsAndNotTheSessions) {
    load_settings();
    RecordingContext context(journal_);
    context.items[u"Session"] = session(
        {{u"REMOTE_ACCOUNT", u"un=jsmith,ou=Users,o=Shop"}, {u"REMOTE_PASSWORD", u"js-code"}});
    for (const Door door : every_door) {
        SCOPED_TRACE(testing::PrintToString(door));
        Behind<Profile> profile(door);
        bind(profile);
        init(profile, u"stock");
        EXPECT_EQ(journal_.take().back(),
                  "Bind(dir01:389, ou=Profiles,o=Shop, pn=stock, cn=web,o=Shop, web-code, [])");
    }
}

TEST_FRESH(ProfileTest, CredentialsAreStoredEvenWhereTheBindFails) {
    through_every_door([this](Behind<Profile>& profile) {
        journal_.refuse_nth("Bind", 1, no_rights());
        raised_by([&] { bind(profile); });
        journal_.clear();
        init(profile);
        EXPECT_EQ(journal_.take().back(), bind_sales);
    });
}

TEST_FRESH(ProfileTest, AFailingInitShowsBothMethods) {
    through_every_door([this](Behind<Profile>& profile) {
        bind(profile);
        journal_.refuse_nth("Bind", 1, no_rights());
        expect_failure(raised_by([&] { init(profile); }), error_number(0x80072098), u"Its.Own",
                       block("80072098", "OrvoMembership.Profile.Init",
                             block("80072098", bind_as, "(50) no rights")));
    });
}

// Attributes.

TEST_FRESH(ProfileTest, AttributesGoStraightToTheProvider) {
    directory_.answer(u"mail", Values{u"a@shop", u"b@shop"});
    directory_.answer(u"text", u"no array");
    bound_through_every_door([this](Behind<Profile>& profile) {
        Text mail = u"mail", text = u"text", absent = u"absent";
        Variant value = Values{u"x", u"y"};
        EXPECT_EQ(profile.call<&Profile::GetAttribValue>(mail),
                  Variant(Values{u"a@shop", u"b@shop"}));
        EXPECT_EQ(profile.call<&Profile::GetAttribValue>(text), Variant(u"no array"));
        EXPECT_EQ(profile.call<&Profile::GetAttribValue>(absent), Variant(Values{Variant()}));
        profile.call<&Profile::SetAttribValue>(mail, value);
        profile.call<&Profile::ClearAttribValue>(mail);
        EXPECT_THAT(journal_.take(),
                    ElementsAre("GetValues(mail)", "GetValues(text)", "GetValues(absent)",
                                "SetValues(mail, [x, y])", "ClearValues(mail)"));
    });
}

TEST_FRESH(ProfileTest, RefusedAttributesAreReportedUnderTheirNamesAndClearingWithItsOwnSpelling) {
    for (const char* operation : {"GetValues", "SetValues", "ClearValues"})
        journal_.refuse(operation, no_rights());
    bound_through_every_door([](Behind<Profile>& profile) {
        Text mail = u"mail";
        Variant value;
        const auto number = error_number(0x80072098);
        expect_failure(
            raised_by([&] { profile.call<&Profile::GetAttribValue>(mail); }), number, u"Its.Own",
            block("80072098", "OrvoMembership.Profile.GetAttribValue", "(50) no rights"));
        expect_failure(
            raised_by([&] { profile.call<&Profile::SetAttribValue>(mail, value); }), number,
            u"Its.Own",
            block("80072098", "OrvoMembership.Profile.SetAttribValue", "(50) no rights"));
        expect_failure(
            raised_by([&] { profile.call<&Profile::ClearAttribValue>(mail); }), number, u"Its.Own",
            block("80072098", "OrvoMembership.Profile.ClearAttribvalue", "(50) no rights"));
    });
}

// Properties.

TEST_FRESH(ProfileTest, SingleValuesAreTheFirstElementAsItsType) {
    directory_.answer(u"cn", Values{u"sales", u"other"});
    directory_.answer(u"Locale", Values{u"1031"});
    directory_.answer(u"LanguageID", Values{std::int32_t{7}});
    bound_through_every_door([this](Behind<Profile>& profile) {
        EXPECT_EQ(profile.call<&Profile::CN>(), u"sales");
        EXPECT_EQ(profile.call<&Profile::Locale>(), 1031);
        EXPECT_EQ(profile.call<&Profile::LanguageID>(), u"7");
        EXPECT_THAT(journal_.take(),
                    ElementsAre("GetValues(cn)", "GetValues(Locale)", "GetValues(LanguageID)"));
    });
}

TEST_FRESH(ProfileTest, AbsentSingleValuesAreEmptyTextAndZero) {
    bound_through_every_door([](Behind<Profile>& profile) {
        EXPECT_EQ(profile.call<&Profile::CN>(), u"");
        EXPECT_EQ(profile.call<&Profile::Locale>(), 0);
        EXPECT_EQ(profile.call<&Profile::LanguageID>(), u"");
    });
}

TEST_FRESH(ProfileTest, SingleValuesThatDoNotFitFailUnderTheirNames) {
    bound_through_every_door([this](Behind<Profile>& profile) {
        constexpr const char* locale = "OrvoMembership.Profile.Locale";
        const std::pair<Variant, int> cases[] = {
            {Values{u"German"}, 13},       {Values{u""}, 13}, {Values{u"70000"}, 6},
            {Values{Variant::null()}, 94}, {Values(), 9},     {u"1031", 13}};
        for (const auto& [values, number] : cases) {
            SCOPED_TRACE(shown(values));
            directory_.answer(u"Locale", values);
            const Failure failure = raised_by([&] { profile.call<&Profile::Locale>(); });
            EXPECT_EQ(failure.number, number);
            EXPECT_EQ(to_utf8(failure.description), block(to_utf8(hexadecimal(number)), locale,
                                                          to_utf8(runtime_error_text(number))));
        }
    });
}

TEST_FRESH(ProfileTest, SettingSingleValuesWritesOneElementAndAnEmptyLanguageRemovesTheAttribute) {
    const auto profile = bound();
    Profile direct;
    Text name = u"sales", account = u"cn=web,o=Shop", password = u"web-code";
    direct.BindAs(name, account, password);
    forget();
    direct.put_Locale(0);
    call<&Profile::put_Locale>(profile, std::int16_t{1031});
    late::put(profile.object(), u"Locale", u"7");
    direct.put_LanguageID(u"DE");
    call<&Profile::put_LanguageID>(profile, Text(u"0"));
    late::put(profile.object(), u"LanguageID", u"EN");
    direct.put_LanguageID(u"");
    call<&Profile::put_LanguageID>(profile, Text());
    late::put(profile.object(), u"LanguageID", u"");
    EXPECT_THAT(
        journal_.take(),
        ElementsAre("SetValues(Locale, [0])", "SetValues(Locale, [1031])", "SetValues(Locale, [7])",
                    "SetValues(LanguageID, [DE])", "SetValues(LanguageID, [0])",
                    "SetValues(LanguageID, [EN])", "ClearValues(LanguageID)",
                    "ClearValues(LanguageID)", "ClearValues(LanguageID)"));
}

TEST_FRESH(ProfileTest, AFailingClearOfTheLanguageIsReportedUnderTheProperty) {
    const auto profile = bound();
    journal_.refuse("ClearValues", no_rights());
    expect_failure(raised_by([&] { call<&Profile::put_LanguageID>(profile, Text()); }),
                   error_number(0x80072098), u"Its.Own",
                   block("80072098", "OrvoMembership.Profile.LanguageID", "(50) no rights"));
}

struct Whole {
    const char* property;
    const char* attribute;
};
constexpr Whole wholes[] = {{"OrvoCatalogIDs", "OrvoCatalogIDs"},
                            {"OrvoDashboardIDs", "OrvoDashboardIDs"},
                            {"AskbookVisibility", "AskbookVisibility"},
                            {"Roles", "OrvoRole"}};

template <std::size_t... row>
void for_each_whole(auto&& body, std::index_sequence<row...>) {
    (body.template operator()<row>(), ...);
}

TEST_FRESH(ProfileTest, WholeValuesPassUnchangedInBothDirections) {
    const auto profile = bound();
    Profile direct;
    Text name = u"sales", account, password;
    direct.BindAs(name, account, password);
    static_assert(std::size(wholes) == std::size(Profile::whole_values));
    for_each_whole(
        [&]<std::size_t row>() {
            const auto& [property, attribute] = wholes[row];
            SCOPED_TRACE(property);
            const Text late_name = from_utf8(property);
            for (const Variant& values :
                 {Variant(numbers({-1, 0, 5})), Variant(Values()), Variant(u"x"), Variant()}) {
                directory_.answer(from_utf8(attribute), values);
                journal_.clear();
                EXPECT_EQ(direct.get_whole<row>(), values);
                EXPECT_EQ((call<&Profile::get_whole<row>>(profile)), values);
                EXPECT_EQ(late::get(profile.object(), late_name), values);
                EXPECT_THAT(journal_.take(),
                            testing::Each(std::string("GetValues(") + attribute + ")"));
                direct.put_whole<row>(values);
                call<&Profile::put_whole<row>>(profile, values);
                late::put(profile.object(), late_name, values);
                const std::string written =
                    std::string("SetValues(") + attribute + ", " + shown(values) + ")";
                EXPECT_THAT(journal_.take(), ElementsAre(written, written, written));
            }
            journal_.refuse_nth("SetValues", 1, no_rights());
            expect_failure(raised_by([&] { direct.put_whole<row>(Values()); }),
                           error_number(0x80072098), u"Its.Own",
                           block("80072098", std::string("OrvoMembership.Profile.") + property,
                                 "(50) no rights"));
        },
        std::make_index_sequence<std::size(wholes)>());
}

TEST_FRESH(ProfileTest, ApplicationsAreReadWholeAndWrittenOrClearedWhenEmpty) {
    const auto profile = bound();
    directory_.answer(u"OrvoApps", numbers({-1, 4}));
    EXPECT_EQ(call<&Profile::OrvoApps>(profile), Variant(numbers({-1, 4})));
    EXPECT_EQ(late::get(profile.object(), u"OrvoApps"), Variant(numbers({-1, 4})));
    journal_.clear();
    call<&Profile::put_OrvoApps>(profile, Variant());
    late::put(profile.object(), u"OrvoApps", Variant());
    call<&Profile::put_OrvoApps>(profile, Variant(numbers({4})));
    late::put(profile.object(), u"OrvoApps", numbers({5}));
    call<&Profile::ClearOrvoApps>(profile);
    late::call(profile.object(), u"ClearOrvoApps");
    EXPECT_THAT(journal_.take(), ElementsAre("ClearValues(OrvoApps)", "ClearValues(OrvoApps)",
                                             "SetValues(OrvoApps, [4])", "SetValues(OrvoApps, [5])",
                                             "ClearValues(OrvoApps)", "ClearValues(OrvoApps)"));
}

TEST_FRESH(ProfileTest, FailingWritesOfApplicationsShowTheirChain) {
    const auto profile = bound();
    journal_.refuse("SetValues", no_rights());
    journal_.refuse("ClearValues", no_rights());
    expect_failure(raised_by([&] { call<&Profile::put_OrvoApps>(profile, Variant(Values())); }),
                   error_number(0x80072098), u"Its.Own",
                   block("80072098", "OrvoMembership.Profile.OrvoApps", "(50) no rights"));
    expect_failure(
        raised_by([&] { call<&Profile::ClearOrvoApps>(profile); }), error_number(0x80072098),
        u"Its.Own",
        block("80072098", "OrvoMembership.Profile.ClearOrvoApps",
              block("80072098", "OrvoMembership.Profile.ClearAttribvalue", "(50) no rights")));
}

TEST_FRESH(ProfileTest, OnAnUnboundProfileEveryPropertyFails) {
    const auto profile = make<Profile>();
    for (const char16_t* property :
         {u"CN", u"Locale", u"LanguageID", u"OrvoCatalogIDs", u"OrvoDashboardIDs",
          u"AskbookVisibility", u"OrvoApps", u"Roles"}) {
        SCOPED_TRACE(to_utf8(property));
        expect_failure(raised_by([&] { late::get(profile.object(), property); }), 91,
                       u"OrvoMembership",
                       block("5B", "OrvoMembership.Profile." + to_utf8(property), not_set));
    }
}

// Roles.

TEST_FRESH(ProfileTest, HasRoleFindsARoleAnywhereInTheList) {
    directory_.answer(u"OrvoRole", Values{std::int32_t{2}, u"21", std::int16_t{7}});
    bound_through_every_door([](Behind<Profile>& profile) {
        for (std::int16_t role : {2, 21, 7}) EXPECT_TRUE(profile.call<&Profile::HasRole>(role));
        std::int16_t other = 3;
        EXPECT_FALSE(profile.call<&Profile::HasRole>(other));
        EXPECT_EQ(other, 3);
    });
}

TEST_FRESH(ProfileTest, AssignRoleWritesTheChangedListAndNothingWhereNothingChanges) {
    struct Assignment {
        Variant before;
        std::int16_t role;
        bool enable;
        const char* written;  // null: nothing
    };
    const Assignment assignments[] = {
        {numbers({2}), 3, true, "SetValues(OrvoRole, [2, 3])"},
        {numbers({0}), 3, true, "SetValues(OrvoRole, [0, 3])"},
        {Values(), 3, true, "SetValues(OrvoRole, [3])"},
        {numbers({3}), 3, false, "SetValues(OrvoRole, [])"},
        {numbers({3, 2, 3, 4}), 3, false, "SetValues(OrvoRole, [2, 4])"},
        {Values{u"2", u"3"}, 3, false, "SetValues(OrvoRole, [2])"},
        {numbers({2, 3}), 3, true, nullptr},
        {numbers({2, 4}), 3, false, nullptr},
        {Values(), 3, false, nullptr},
    };
    for (const auto& [before, role, enable, written] : assignments) {
        SCOPED_TRACE(shown(before) + (enable ? " with " : " without ") + std::to_string(role));
        directory_.answer(u"OrvoRole", before);
        bound_through_every_door([&](Behind<Profile>& profile) {
            std::int16_t type = role;
            bool wanted = enable;
            profile.call<&Profile::AssignRole>(type, wanted);
            EXPECT_EQ(type, role);
            EXPECT_EQ(wanted, enable);
            if (written)
                EXPECT_THAT(journal_.take(),
                            ElementsAre("GetValues(OrvoRole)", "GetValues(OrvoRole)", written));
            else
                EXPECT_THAT(journal_.take(), ElementsAre("GetValues(OrvoRole)"));
        });
    }
}

TEST_FRESH(ProfileTest, RolesThatAreNoArrayFailUnderTheOperationsName) {
    directory_.answer(u"OrvoRole", u"2");
    bound_through_every_door([](Behind<Profile>& profile) {
        std::int16_t role = 2;
        bool enable = true;
        const std::string inner = block("D", "OrvoMembership.Profile.HasRole", type_mismatch);
        expect_failure(raised_by([&] { profile.call<&Profile::HasRole>(role); }), 13,
                       u"OrvoMembership", inner);
        expect_failure(raised_by([&] { profile.call<&Profile::AssignRole>(role, enable); }), 13,
                       u"OrvoMembership", block("D", "OrvoMembership.Profile.AssignRole", inner));
    });
}

TEST_FRESH(ProfileTest, AListOfRolesThatSixteenBitsCannotCountOverflows) {
    Values roles(0, 32768);
    for (Variant& role : roles) role = std::int32_t{5};
    directory_.answer(u"OrvoRole", roles);
    const auto profile = bound();
    std::int16_t held = 5, other = 7;
    bool enable = true, disable = false;
    EXPECT_TRUE(call<&Profile::HasRole>(profile, held));
    const std::string inner = block("6", "OrvoMembership.Profile.HasRole", "Overflow");
    expect_failure(raised_by([&] { call<&Profile::HasRole>(profile, other); }), 6,
                   u"OrvoMembership", inner);
    expect_failure(raised_by([&] { call<&Profile::AssignRole>(profile, other, enable); }), 6,
                   u"OrvoMembership", block("6", "OrvoMembership.Profile.AssignRole", inner));
    expect_failure(raised_by([&] { call<&Profile::AssignRole>(profile, held, disable); }), 6,
                   u"OrvoMembership", block("6", "OrvoMembership.Profile.AssignRole", "Overflow"));
    EXPECT_THAT(journal_.take(), testing::Not(testing::Contains(testing::StartsWith("SetValues"))));
}

// The users of a profile.

class ProfileUsers : public ProfileTest {
protected:
    static Object rows(std::initializer_list<const char16_t*> names) {
        RecordSetBuilder builder({u"un"});
        for (const char16_t* name : names) builder.add({name});
        return builder.open().object();
    }
    static constexpr const char* connect =
        "Connect(dir01:389, ou=Users,o=Shop, cn=web,o=Shop, web-code)";
};

TEST_FRESH(ProfileUsers, AreFoundByTheProfilesName) {
    directory_.answer(u"cn", Values{u"sales"});
    directory_.found = rows({u"jsmith", u"mlee"});
    bound_through_every_door([this](Behind<Profile>& profile) {
        const Object users = profile.call<&Profile::GetUsers>();
        EXPECT_EQ(users, directory_.found) << "the provider's own record set";
        EXPECT_THAT(journal_.take(),
                    ElementsAre("CreateSearch()", connect, "GetValues(cn)",
                                "Execute((&(objectClass=top)(ProfileCN=sales)), [un], 1000)"));
    });
}

TEST_FRESH(ProfileUsers, AProfileWithoutMembersListsTheUsersItIsTheLocalAdministrationOf) {
    directory_.answer(u"cn", Values{u"sales"});
    for (const Object& none : {rows({}), Object()}) {
        bound_through_every_door([&](Behind<Profile>& profile) {
            directory_.found = none;
            EXPECT_EQ(profile.call<&Profile::GetUsers>(), none) << "from the second search";
            EXPECT_THAT(
                journal_.take(),
                ElementsAre(
                    "CreateSearch()", connect, "GetValues(cn)",
                    "Execute((&(objectClass=top)(ProfileCN=sales)), [un], 1000)", "CreateSearch()",
                    connect, "GetValues(cn)",
                    "Execute((&(objectClass=top)(LocalAdminProfileCN=sales)), [un], 1000)"));
        });
    }
}

TEST_FRESH(ProfileUsers, OnlyApostrophesOfTheNameAreDoubledInBothFilters) {
    directory_.answer(u"cn", Values{u"O'Neil's (*\\) & co"});
    directory_.found = rows({});
    bound_through_every_door([this](Behind<Profile>& profile) {
        profile.call<&Profile::GetUsers>();
        const auto calls = journal_.take();
        ASSERT_EQ(calls.size(), 8u);
        EXPECT_EQ(calls[3],
                  "Execute((&(objectClass=top)(ProfileCN=O''Neil''s (*\\) & co)), "
                  "[un], 1000)");
        EXPECT_EQ(calls[7],
                  "Execute((&(objectClass=top)(LocalAdminProfileCN=O''Neil''s (*\\) & "
                  "co)), [un], 1000)");
    });
}

TEST_FRESH(ProfileUsers, FailuresOfTheSearchAreReportedUnderGetUsers) {
    directory_.found = rows({});
    constexpr const char* source = "OrvoMembership.Profile.GetUsers";
    bound_through_every_door([&](Behind<Profile>& profile) {
        for (const char* operation : {"Connect", "Execute"}) {
            for (const int nth : {1, 2}) {
                SCOPED_TRACE(operation);
                journal_.refuse_nth(operation, nth, no_rights());
                expect_failure(raised_by([&] { profile.call<&Profile::GetUsers>(); }),
                               error_number(0x80072098), u"Its.Own",
                               block("80072098", source, "(50) no rights"));
            }
        }
    });
}

TEST_FRESH(ProfileUsers, OfAnUnboundProfileCannotBeFound) {
    through_every_door([](Behind<Profile>& profile) {
        expect_failure(raised_by([&] { profile.call<&Profile::GetUsers>(); }), 91,
                       u"OrvoMembership",
                       block("5B", "OrvoMembership.Profile.GetUsers",
                             block("5B", "OrvoMembership.Profile.CN", not_set)));
    });
}

}  // namespace
}  // namespace orvo
