#include "tests/component/auth/login_test.h"

namespace orvo {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

static_assert(slot_of<&Validator::ValidateCredentials> == 7);
static_assert(slot_of<&Validator::ValidatePassword> == 8);
static_assert(slot_of<&Validator::setServerInfo> == 9);
static_assert(slot_of<&Validator::ChangePassword> == 10);

constexpr const char* login = "OrvoMembership.Validator.ValidateCredentialsEx";
constexpr const char* update = "OrvoMembership.Validator.UpdateAuthorizationFilter";
constexpr const char* bind_jsmith =
    "Bind(dir01:389, ou=Users,o=Shop, un=jsmith, un=jsmith,ou=Users,o=Shop, s3cret, "
    "[cn, OrvoUserType, BusinessPartnerID])";

TEST_FRESH(LoginTest, AReturningBrowserWithAKnownGuidGetsNoCookieAndAllSessionVariables) {
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        page.cookies[u"ShopLogin"] = u"A1";
        filter_.known = {u"A1"};
        EXPECT_EQ(log_in(validator), 0);
        EXPECT_THAT(
            deeds(),
            ElementsAre("Validate(un=jsmith,ou=Users,o=Shop, s3cret)", "Request.Cookies(ShopLogin)",
                        "Application(TavikAuthFilter.Connector)", "FindUserByGUID(A1)",
                        "AccountPath =(un=jsmith,ou=Users,o=Shop)", "Password =(s3cret)",
                        "NTUser =(SHOP\\web)", "NTPassword =(nt-code)", "UserName =(jsmith)",
                        "Save()", "Session(QUENDRAID) =(A1)", "Session(REMOTE_USER) =(jsmith)",
                        "Session(REMOTE_ACCOUNT) =(un=jsmith,ou=Users,o=Shop)",
                        "Session(REMOTE_PASSWORD) =(s3cret)", "LoadSiteConfig(False)",
                        "GetValue2(GLOBAL, MultiLogin, 0)",
                        "GetValue2(GLOBAL, MultiLoginTimeout, 0)", "Session(QUENDRAID)",
                        "RegisterLogin(jsmith, [3], A1, 1, 10)"));
        EXPECT_EQ(filter_.alive, 0) << "the record is released";
    });
}

TEST_FRESH(LoginTest, TheUserBindsToTheOwnEntryWithTheOwnCredentialsTwice) {
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        page.cookies[u"ShopLogin"] = u"A1";
        log_in(validator);
        auto calls = journal_.take();
        EXPECT_EQ(std::count(calls.begin(), calls.end(), bind_jsmith), 2);
    });
}

TEST_FRESH(LoginTest, AGuidThatTheFilterForgotIsRegisteredAnewAndTheCookieStays) {
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        page.cookies[u"ShopLogin"] = u"A1";
        log_in(validator);
        const auto calls = deeds();
        EXPECT_THAT(calls, Contains("FindUserByGUID(A1)"));
        EXPECT_THAT(calls, Contains("CreateUserWithGUID(A1)"));
        EXPECT_THAT(calls, Not(Contains(StartsWith("Response"))));
    });
}

TEST_FRESH(LoginTest, ABrowserWithoutACookieGetsANewGuidForTheWholeSite) {
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        log_in(validator);
        const Text guid = page.session_values[u"QUENDRAID"].to<Text>();
        EXPECT_THAT(to_utf8(guid), testing::MatchesRegex("[0-9A-F]{32}"));
        const auto calls = deeds();
        EXPECT_THAT(calls, Not(Contains(StartsWith("FindUser"))));
        EXPECT_THAT(calls, Contains("CreateUserWithGUID(" + to_utf8(guid) + ")"));
        const auto cookie = std::find_if(calls.begin(), calls.end(), [](const std::string& call) {
            return call.starts_with("Response");
        });
        ASSERT_LT(cookie + 2, calls.end());
        EXPECT_EQ(cookie[0], "Response.Cookies(ShopLogin) =(" + to_utf8(guid) + ")");
        EXPECT_EQ(cookie[1], "Response.Cookies.Path(ShopLogin) =(/)");
        EXPECT_EQ(cookie[2], "Session(QUENDRAID) =(" + to_utf8(guid) + ")");
        Text second = guid;
        log_in(validator);
        EXPECT_NE(page.session_values[u"QUENDRAID"].to<Text>(), second)
            << "a fresh one for each login";
    });
}

TEST_FRESH(LoginTest, AWrongPasswordAnswersTheProvidersNumberAndTouchesNothing) {
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        for (const std::int32_t verdict : {-1, -2, -5}) {
            directory_.verdict = verdict;
            EXPECT_EQ(log_in(validator), verdict);
            EXPECT_THAT(deeds(), ElementsAre("Validate(un=jsmith,ou=Users,o=Shop, s3cret)"));
        }
        EXPECT_TRUE(page.session_values.empty());
        directory_.verdict = 0;
    });
}

TEST_FRESH(LoginTest, APositiveNumberIsARightPasswordAndPassesUnchanged) {
    directory_.verdict = 7;
    in_a_page([](Behind<Validator>& validator, RecordingPage& page) {
        EXPECT_EQ(log_in(validator), 7);
        EXPECT_FALSE(page.session_values.empty());
    });
}

TEST_FRESH(LoginTest, AnAdministratorLogsInToApplicationTenAsWell) {
    for (const int type : {3, 4}) {
        give_type(type);
        give_applications({std::int32_t{3}, std::int32_t{5}});
        in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
            page.cookies[u"ShopLogin"] = u"A1";
            log_in(validator);
            EXPECT_THAT(deeds_beginning("RegisterLogin"),
                        ElementsAre("RegisterLogin(jsmith, [3, 5, 10], A1, 1, 10)"));
        });
    }
}

TEST_FRESH(LoginTest, AnAdministratorWithoutApplicationsLogsInToTenAlone) {
    give_type(4);
    for (const Variant& none : {Variant(), Variant(std::int32_t{0}), Variant(u"0")}) {
        give_applications({none});
        in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
            page.cookies[u"ShopLogin"] = u"A1";
            log_in(validator);
            EXPECT_THAT(deeds_beginning("RegisterLogin"),
                        ElementsAre("RegisterLogin(jsmith, [10], A1, 1, 10)"));
        });
    }
}

TEST_FRESH(LoginTest, AUserWithoutApplicationsGetsASessionAndNoRegistration) {
    give_applications({Variant()});
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        EXPECT_EQ(log_in(validator), 0);
        const auto calls = deeds();
        EXPECT_THAT(calls, Contains(StartsWith("Response.Cookies(ShopLogin)")));
        EXPECT_EQ(page.session_values.size(), 4u);
        EXPECT_THAT(calls, Not(Contains(StartsWith("RegisterLogin"))));
        EXPECT_THAT(calls, Not(Contains(StartsWith("LoadSiteConfig"))));
    });
}

TEST_FRESH(LoginTest, TheSiteDecidesOnSeveralLoginsAndTheirTimeout) {
    configuration_.sections[u"GLOBAL"] = {{u"MultiLogin", u"0"}, {u"MultiLoginTimeout", u"99999"}};
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        page.cookies[u"ShopLogin"] = u"A1";
        log_in(validator);
        EXPECT_THAT(deeds_beginning("RegisterLogin"),
                    ElementsAre("RegisterLogin(jsmith, [3], A1, 0, 99999)"));
    });
}

TEST_FRESH(LoginTest, WhatTheSiteDoesNotSayIsManyLoginsAndTenMinutes) {
    struct Said {
        const char16_t* key;
        const char16_t* value;
        const char* registered;
    };
    for (const Said& said :
         {Said{u"MultiLogin", u"0", "RegisterLogin(jsmith, [3], A1, 0, 10)"},
          Said{u"MultiLoginTimeout", u"5", "RegisterLogin(jsmith, [3], A1, 1, 5)"}}) {
        configuration_.sections[u"GLOBAL"] = {{said.key, said.value}};
        in_a_page([&](Behind<Validator>& validator, RecordingPage& page) {
            page.cookies[u"ShopLogin"] = u"A1";
            log_in(validator);
            EXPECT_THAT(deeds_beginning("RegisterLogin"), ElementsAre(said.registered));
        });
    }
}

TEST_FRESH(LoginTest, AFailingCookieLeavesTheRecordAndNoSession) {
    for (const char* refused :
         {"Response.Cookies(ShopLogin) =", "Response.Cookies.Path(ShopLogin) ="}) {
        in_a_page([&](Behind<Validator>& validator, RecordingPage& page) {
            journal_.refuse_nth(refused, 1, {error_number(0x80004005), u"Its.Own", u"broken"});
            EXPECT_EQ(raised_by([&] { log_in(validator); }).number, error_number(0x80004005));
            EXPECT_TRUE(page.session_values.empty());
            EXPECT_THAT(deeds(), Contains("Save()"));
        });
    }
}

TEST_FRESH(LoginTest, SessionVariablesTakeUserAndPasswordAsTheyWerePassed) {
    in_a_page([](Behind<Validator>& validator, RecordingPage& page) {
        log_in(validator, std::int32_t{4711}, std::int32_t{12});
        EXPECT_EQ(page.session_values[u"REMOTE_USER"], Variant(std::int32_t{4711}));
        EXPECT_EQ(page.session_values[u"REMOTE_PASSWORD"], Variant(std::int32_t{12}));
        EXPECT_EQ(page.session_values[u"REMOTE_ACCOUNT"], Variant(u"un=4711,ou=Users,o=Shop"));
    });
}

TEST_FRESH(LoginTest, ABlankCookieNameFailsAfterTheUserWasBound) {
    membership()[u"CookieName"] = u"  ";
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        expect_failure(raised_by([&] { log_in(validator); }), error_number(0x8004044C),
                       from_utf8(login),
                       block("8004044C", login,
                             "Cookie name is empty, cannot continue. Check configuration file"));
        EXPECT_THAT(journal_.take(), Contains(bind_jsmith));
        EXPECT_TRUE(page.session_values.empty());
    });
}

TEST_FRESH(LoginTest, WithoutAFilterABrowserWithACookieKeepsItsGuid) {
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        for (const Variant& other :
             {Variant(), Variant(u"text"), Variant(make<DictionaryObject>().object())}) {
            page.application_values[filter_connector_progid] = other;
            page.cookies[u"ShopLogin"] = u"A1";
            log_.take();
            EXPECT_EQ(log_in(validator), 0);
            EXPECT_EQ(page.session_values[u"QUENDRAID"], Variant(u"A1"));
            for (const LogEntry& entry : log_.take())
                EXPECT_EQ(entry.level, 1) << "no failure is logged: " << entry.message;
        }
    });
}

TEST_FRESH(LoginTest, WithoutAFilterABrowserWithoutACookieIsRefused) {
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        page.application_values.clear();
        expect_failure(
            raised_by([&] { log_in(validator); }), error_number(0x8004044C), from_utf8(login),
            block("8004044C", login,
                  "No new GUID can be set. Check installation of the authorization filter"));
        EXPECT_TRUE(page.session_values.empty());
        EXPECT_THAT(deeds(), Not(Contains(StartsWith("Response"))));
    });
}

TEST_FRESH(LoginTest, AFilterThatMakesNoRecordLeavesTheGuidWithoutOne) {
    filter_.refuses_new = true;
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        page.cookies[u"ShopLogin"] = u"A1";
        EXPECT_EQ(log_in(validator), 0);
        const auto calls = deeds();
        EXPECT_THAT(calls, Not(Contains("Save()")));
        EXPECT_EQ(page.session_values[u"QUENDRAID"], Variant(u"A1"));
        EXPECT_THAT(calls, Contains("RegisterLogin(jsmith, [3], A1, 1, 10)"));
    });
}

TEST_FRESH(LoginTest, TheFilterIsGivenWhatASecondUserReads) {
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        page.cookies[u"ShopLogin"] = u"A1";
        log_in(validator);
        const auto calls = journal_.take();
        EXPECT_EQ(std::ranges::count(calls, "CreateInstance(OrvoMembership.User)"), 1)
            << "made by the context; the first one is not";
        page.session_values.clear();
        // The binds: the user, its account, the second user.
        journal_.refuse_nth("Bind", 3, {error_number(0x80072098), u"Its.Own", u"(50) no rights"});
        expect_failure(
            raised_by([&] { log_in(validator); }), error_number(0x80072098), u"Its.Own",
            block("80072098", login,
                  block("80072098", update,
                        block("80072098", "OrvoMembership.User.BindAs", "(50) no rights"))));
        EXPECT_THAT(deeds(), ElementsAre("Validate(un=jsmith,ou=Users,o=Shop, s3cret)",
                                         "Request.Cookies(ShopLogin)"));
    });
}

TEST_FRESH(LoginTest, AllThreeArgumentsMustBeTextsBeforeThePasswordIsChecked) {
    in_a_page([this](Behind<Validator>& validator, RecordingPage&) {
        const std::pair<Variant, int> wrong[] = {{Variant::null(), 94}, {Values{u"a"}, 13}};
        for (const auto& [value, number] : wrong) {
            for (const int which : {0, 1, 2}) {
                Variant arguments[] = {u"jsmith", u"s3cret", u"/shop"};
                arguments[which] = value;
                const Failure failure = raised_by([&] {
                    validator.call<&Validator::ValidateCredentials>(arguments[0], arguments[1],
                                                                    arguments[2]);
                });
                expect_failure(failure, number, u"OrvoMembership",
                               block(to_utf8(hexadecimal(number)), login,
                                     to_utf8(runtime_error_text(number))));
                EXPECT_THAT(deeds(), IsEmpty());
            }
        }
    });
}

TEST_FRESH(LoginTest, ApplicationsThatSixteenBitsCannotCountOverflow) {
    Values apps(0, 32768);
    for (Variant& app : apps) app = std::int32_t{3};
    directory_.answer_of(jsmith, u"OrvoApps", apps);
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        expect_failure(raised_by([&] { log_in(validator); }), 6, u"OrvoMembership",
                       block("6", login, "Overflow"));
        EXPECT_TRUE(page.session_values.empty());
        EXPECT_THAT(deeds(), ElementsAre("Validate(un=jsmith,ou=Users,o=Shop, s3cret)"));
    });
}

TEST_FRESH(LoginTest, APageWithoutAResponseFailsAfterTheUserWasBound) {
    load_settings();
    RecordingContext context(journal_);
    RecordingPage page(journal_);
    context.items = {{u"Request", page.request},
                     {u"Response", Object()},
                     {u"Session", page.session},
                     {u"Application", page.application}};
    for (const Door door : every_door) {
        SCOPED_TRACE(testing::PrintToString(door));
        Behind<Validator> validator(door);
        forget();
        expect_failure(
            raised_by([&] { log_in(validator); }), error_number(0x8004044C), from_utf8(login),
            block("8004044C", login, "No response object, session variables cannot be set"));
        EXPECT_THAT(journal_.take(), Contains(bind_jsmith));
        EXPECT_TRUE(page.session_values.empty());
    }
}

TEST_FRESH(LoginTest, AMultiLoginThatIsNoNumberFailsTheRegistration) {
    configuration_.sections[u"GLOBAL"] = {{u"MultiLogin", u"many"}};
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        expect_failure(raised_by([&] { log_in(validator); }), 13, u"OrvoMembership",
                       block("D", login, type_mismatch));
        EXPECT_EQ(page.session_values.size(), 4u) << "the session was set up by then";
        EXPECT_THAT(deeds_beginning("RegisterLogin"), IsEmpty());
    });
}

TEST_FRESH(LoginTest, EachFailingStepLeavesWhatWasDoneBefore) {
    const Failure broken{error_number(0x80004005), u"Its.Own", u"broken"};
    struct Step {
        const char* refused;
        int nth;
        std::size_t session_values;
    };
    for (const Step& step :
         {Step{"Validate", 1, 0}, Step{"Bind", 1, 0}, Step{"Request.Cookies", 1, 0},
          Step{"FindUserByGUID", 1, 0}, Step{"Save", 1, 0}, Step{"Session(REMOTE_ACCOUNT) =", 1, 2},
          Step{"LoadSiteConfig", 1, 4}, Step{"GetValue2", 2, 4},
          Step{"new TavikAuthFilter.Connector", 1, 4}, Step{"Application", 1, 0},
          Step{"CreateUserWithGUID", 1, 0}, Step{"NTUser =", 1, 0}, Step{"RegisterLogin", 1, 4}}) {
        SCOPED_TRACE(step.refused);
        in_a_page([&](Behind<Validator>& validator, RecordingPage& page) {
            page.cookies[u"ShopLogin"] = u"A1";
            journal_.refuse_nth(step.refused, step.nth, broken);
            const Failure failure = raised_by([&] { log_in(validator); });
            EXPECT_EQ(failure.number, broken.number);
            EXPECT_NE(failure.description.find(u" METHOD: " + from_utf8(login)), Text::npos);
            EXPECT_EQ(page.session_values.size(), step.session_values);
        });
    }
}

TEST_FRESH(LoginTest, FailuresOfTheFilterAreReportedUnderTheUpdateToo) {
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        page.cookies[u"ShopLogin"] = u"A1";
        journal_.refuse_nth("Save", 1, {error_number(0x80004005), u"Its.Own", u"broken"});
        expect_failure(raised_by([&] { log_in(validator); }), error_number(0x80004005), u"Its.Own",
                       block("80004005", login, block("80004005", update, "broken")));
    });
}

TEST_FRESH(LoginTest, ThePasswordStandsInNoFailureAndNoEntry) {
    in_a_page([this](Behind<Validator>& validator, RecordingPage&) {
        for (const char* operation : {"Validate", "Bind", "Save", "RegisterLogin"}) {
            journal_.refuse_nth(operation, 1, {error_number(0x80004005), u"Its.Own", u"broken"});
            const Failure failure = raised_by([&] { log_in(validator); });
            EXPECT_EQ(failure.description.find(u"s3cret"), Text::npos);
            for (const LogEntry& entry : log_.take())
                EXPECT_EQ(entry.message.find("s3cret"), std::string::npos);
        }
    });
}

}  // namespace
}  // namespace orvo
