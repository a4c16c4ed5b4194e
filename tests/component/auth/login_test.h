#pragma once

#include "tests/component/entries/user_test.h"
#include "tests/support/recording/recording_page.h"

namespace orvo {

// Logins in a web page, among recording neighbours.
class LoginTest : public UserTest {
protected:
    // Each door to a validator that was activated in a page, in which jsmith may use application 3.
    template <class Body>
    void in_a_page(Body body) {
        for (const Door door : every_door) {
            SCOPED_TRACE(testing::PrintToString(door));
            in_fresh_thread([&] {
                load_settings();
                RecordingContext context(journal_);
                RecordingPage page(journal_);
                context.items = {{u"Request", page.request},
                                 {u"Response", page.response},
                                 {u"Session", page.session},
                                 {u"Application", page.application}};
                page.application_values[filter_connector_progid] = filter_.connector();
                {
                    Behind<Validator> validator(door);
                    forget();
                    body(validator, page);
                }
                filter_.known.clear();
            });
        }
    }

    static std::int32_t log_in(Behind<Validator>& validator, Variant user = u"jsmith",
                               Variant password = u"s3cret") {
        Variant url = u"/shop";
        return validator.call<&Validator::ValidateCredentials>(user, password, url)
            .to<std::int32_t>();
    }
    // What was done to page and filter, without the questions to the directory.
    std::vector<std::string> deeds() {
        auto calls = journal_.take();
        std::erase_if(calls, [](const std::string& call) {
            for (const char* other :
                 {"Item(", "CreateInstance(", "new ", "GetValues", "CreateEntry", "CreateValidator",
                  "Open(", "Initialize", "ReadConfigValue", "Bind("})
                if (call.starts_with(other)) return true;
            return call == "Session(REMOTE_USER)";
        });
        return calls;
    }
    std::vector<std::string> deeds_beginning(const char* with) {
        auto calls = deeds();
        std::erase_if(calls, [&](const std::string& call) { return !call.starts_with(with); });
        return calls;
    }

    void give_applications(std::initializer_list<Variant> numbers) {
        directory_.answer_of(jsmith, u"OrvoApps", Values(numbers));
    }
    void give_type(int type) {
        directory_.answer_of(jsmith, u"OrvoUserType", Values{std::int32_t{type}});
    }

    LoginTest() {
        directory_.answer_of(jsmith, u"cn", Values{u"jsmith"});
        give_applications({std::int32_t{3}});
        give_type(1);
        directory_.answer(u"OrvoNTUser", Values{u"SHOP\\web"});
        directory_.answer(u"OrvoNTPassword", Values{u"nt-code"});
    }

    RecordingFilter filter_{journal_};
    LocalClass user_class_ = local_class<User>();
};

}  // namespace orvo
