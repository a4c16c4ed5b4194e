#pragma once

#include <optional>

#include "component/auth/Validator.h"
#include "component/config/SharedServerInfo.h"
#include "component/entries/User_table.h"
#include "platform/dictionary/dictionary.h"
#include "tests/component/component_test.h"

namespace orvo {

inline constexpr const char* not_set = "Object variable or With block variable not set";
inline constexpr const char* type_mismatch = "Type mismatch";

// What the provider refuses with, where a test only asks how a refusal travels.
inline Failure no_rights() { return {error_number(0x80072098), u"Its.Own", u"(50) no rights"}; }

// Users among recording neighbours. The component's own classes that a user makes by ProgID, and
// the dictionary of its privilege lists, are classes of this process.
class UserTest : public ComponentTest {
protected:
    static constexpr const char16_t* jsmith = u"un=jsmith,ou=Users,o=Shop";

    // The thread's settings, as the site has them.
    void load_settings() {
        load_site_configuration();
        forget();
    }
    void forget() {
        journal_.clear();
        log_.take();
    }

    static void bind(Behind<User>& user, Text name = u"jsmith", Text account = u"cn=web,o=Shop",
                     Text password = u"web-code") {
        user.call<&User::BindAs>(name, account, password);
    }
    static void bind(User& user, Text name = u"jsmith") {
        Text account = u"cn=web,o=Shop", password = u"web-code";
        user.BindAs(name, account, password);
    }

    // Each door to an unbound user, with the settings loaded and nothing noted yet.
    template <class Body>
    void through_every_door(Body body) {
        load_settings();
        for (const Door door : every_door) {
            SCOPED_TRACE(testing::PrintToString(door));
            Behind<User> user(door);
            forget();
            body(user);
        }
    }
    // The same, bound to jsmith.
    template <class Body>
    void bound_through_every_door(Body body) {
        through_every_door([&](Behind<User>& user) {
            bind(user);
            forget();
            body(user);
        });
    }

    // jsmith has a profile.
    void give_profile(const Text& name = u"sales") {
        directory_.answer_of(jsmith, u"ProfileCN", Values{name});
        directory_.answer_of(u"pn=" + name + u",ou=Profiles,o=Shop", u"cn", Values{name});
    }
    // What a profile of that name answers.
    void answer_profile(const Text& attribute, const Variant& values, const Text& name = u"sales") {
        directory_.answer_of(u"pn=" + name + u",ou=Profiles,o=Shop", attribute, values);
    }

    LocalClass profile_class_ = local_class<Profile>();
    LocalClass validator_class_ = local_class<Validator>();
    std::optional<LocalClass> dictionary_class_{std::in_place, u"Scripting.Dictionary",
                                                class_of<DictionaryObject>.clsid,
                                                [] { return make<DictionaryObject>().object(); }};
};

}  // namespace orvo
