#include "tests/component/auth/login_test.h"

namespace orvo {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

constexpr const char* login = "OrvoMembership.Validator.ValidateCredentialsEx";
constexpr const char* activate = "OrvoMembership.Validator.IObjectControl_Activate";
constexpr const char* bind_jsmith =
    "Bind(dir01:389, ou=Users,o=Shop, un=jsmith, un=jsmith,ou=Users,o=Shop, s3cret, "
    "[cn, OrvoUserType, BusinessPartnerID])";

class ValidatorPage : public LoginTest {};

TEST_FRESH(ValidatorPage, OutsideAPageThePasswordIsCheckedAndTheLoginFails) {
    load_settings();
    for (const Door door : every_door) {
        Behind<Validator> validator(door);
        EXPECT_EQ(log_.take().back(),
                  (LogEntry{"LogMessage", activate,
                            block("0", activate, "Not an actual error", "No object context"), 1}));
        directory_.verdict = -1;
        EXPECT_EQ(log_in(validator), -1);
        directory_.verdict = 0;
        forget();
        expect_failure(
            raised_by([&] { log_in(validator); }), error_number(0x8004044C), from_utf8(login),
            block("8004044C", login, "No response object, session variables cannot be set"));
        EXPECT_THAT(journal_.take(), Contains(bind_jsmith)) << "the user was bound";
    }
}

TEST_FRESH(ValidatorPage, AContextWithoutAnApplicationIsNoted) {
    const RecordingContext context(journal_);
    const Validator validator;
    EXPECT_THAT(log_.take(), ElementsAre(LogEntry{"LogMessage", activate,
                                                  block("0", activate, "Not an actual error",
                                                        "No items found in object context"),
                                                  1}));
    EXPECT_FALSE(shared_server_info()->IsLoaded());
}

TEST_FRESH(ValidatorPage, ActivationTakesThePagesObjectsAndLoadsTheSettings) {
    RecordingContext context(journal_);
    RecordingPage page(journal_);
    context.items = {{u"Request", page.request},
                     {u"Response", page.response},
                     {u"Session", page.session},
                     {u"Application", page.application}};
    const Validator validator;
    auto calls = journal_.take();
    std::erase_if(calls, [](const std::string& call) { return call.starts_with("ReadConfig"); });
    EXPECT_THAT(calls,
                ElementsAre("Item(Application)", "Item(Response)", "Item(Session)", "Item(Request)",
                            "Item(Application)", "CreateInstance(Quendra.Configuration)",
                            "new Quendra.Configuration()", "Initialize()"));
    EXPECT_TRUE(shared_server_info()->IsLoaded());
    EXPECT_EQ(configuration_.alive, 0);
}

TEST_FRESH(ValidatorPage, DeactivationLetsGoOfThePageUntilTheNextActivation) {
    load_settings();
    RecordingContext context(journal_);
    RecordingPage page(journal_);
    context.items = {{u"Request", page.request},
                     {u"Response", page.response},
                     {u"Session", page.session},
                     {u"Application", page.application}};
    page.application_values[filter_connector_progid] = filter_.connector();
    const auto references = [&] {
        std::vector<std::uint32_t> counts;
        for (const Object* item :
             {&page.request, &page.response, &page.session, &page.application}) {
            abi::add_ref(item->get());
            counts.push_back(abi::release(item->get()));
        }
        return counts;
    };
    const auto log_in_by_slot = [](const Ref<Validator>& validator) {
        Variant user = u"jsmith", password = u"s3cret", url = u"/shop";
        return call<&Validator::ValidateCredentials>(validator, user, password, url);
    };
    const auto before = references();
    const Ref<Validator> validator = make<Validator>();
    const auto control = Ref<ObjectControl>::from(validator.object());
    EXPECT_NE(references(), before);
    call<&ObjectControl::IObjectControl_Deactivate>(control);
    EXPECT_EQ(references(), before);
    expect_failure(raised_by([&] { log_in_by_slot(validator); }), error_number(0x8004044C),
                   from_utf8(login),
                   block("8004044C", login, "No response object, session variables cannot be set"));
    call<&ObjectControl::IObjectControl_Activate>(control);
    EXPECT_EQ(log_in_by_slot(validator), Variant(std::int32_t{0}));
    EXPECT_EQ(page.session_values.size(), 4u);
}

TEST_FRESH(ValidatorPage, WhatTheProviderDoesToThePasswordStaysWithTheProvider) {
    in_a_page([this](Behind<Validator>& validator, RecordingPage& page) {
        directory_.changes_arguments = true;
        Variant user = u"jsmith", password = u"s3cret";
        validator.call<&Validator::ValidatePassword>(user, password);
        EXPECT_EQ(user, Variant(u"jsmith"));
        EXPECT_EQ(password, Variant(u"s3cret"));
        log_in(validator);
        EXPECT_EQ(page.session_values[u"REMOTE_PASSWORD"], Variant(u"s3cret"));
        directory_.changes_arguments = false;
    });
}

}  // namespace
}  // namespace orvo
