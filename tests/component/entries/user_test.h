#pragma once

#include <optional>

#include "component/auth/Validator.h"
#include "component/entries/User_table.h"
#include "tests/component/entries/entry_test.h"

namespace orvo {

// Users among recording neighbours. The component's own classes that a user makes by ProgID, and
// the dictionary of its privilege lists, are classes of this process.
class UserTest : public EntryTest<User> {
protected:
    static constexpr const char16_t* jsmith = u"un=jsmith,ou=Users,o=Shop";

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
